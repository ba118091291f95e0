#pragma once
// Each test's own world: a temporary folder holding HOME, the XDG folders, a catalogue and files.

#include "FakeHost.h"
#include "QtPrinters.h"
#include "Store.h"

#include <QTemporaryDir>
#include <memory>

namespace ql::test {

class TestWorld {
public:
    TestWorld();
    QString root() const { return dir_.path(); }
    QString path(const QString& relative) const { return dir_.path() + "/" + relative; }
    // Creates a file with the given bytes (folders made as needed); returns its full path.
    QString writeFile(const QString& relative, const QByteArray& bytes = "x");
    // A fresh catalogue at root()/Atari.mdb; with config, already past the first start.
    QString makeCatalogue(bool configured = true);
    std::unique_ptr<Catalogue> open() { return std::make_unique<Catalogue>(path("Atari.mdb")); }
    FakeHost& fake() { return *fake_; }

private:
    QTemporaryDir dir_;
    std::unique_ptr<FakeHost> fake_;
};

// A program row with the usual fields filled.
ProgramRecord program(const QString& category, const QString& name, const QString& fileName1);

} // namespace ql::test

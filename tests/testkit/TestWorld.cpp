#include "TestWorld.h"

#include <QFile>
#include <QFileInfo>

namespace ql::test {

TestWorld::TestWorld() {
    qputenv("HOME", dir_.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", (dir_.path() + "/config").toUtf8());
    qputenv("XDG_STATE_HOME", (dir_.path() + "/state").toUtf8());
    qputenv("XDG_DATA_HOME", (dir_.path() + "/data").toUtf8());
    fake_ = std::make_unique<FakeHost>(dir_.path() + "/state/quaylight");
}

QString TestWorld::writeFile(const QString& relative, const QByteArray& bytes) {
    const QString full = path(relative);
    QDir().mkpath(QFileInfo(full).path());
    QFile file(full);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write test file");
    return full;
}

QString TestWorld::makeCatalogue(bool configured) {
    const QString file = path("Atari.mdb");
    Catalogue::create(file);
    if (configured) {
        Catalogue c(file);
        c.addConfig({QStringLiteral("XP"), root() + "/"});
    }
    return file;
}

ProgramRecord program(const QString& category, const QString& name, const QString& fileName1) {
    ProgramRecord r;
    r.category = category;
    r.name = name;
    r.fileName1 = fileName1;
    r.fileName2 = r.fileName3 = r.fileName4 = QStringLiteral(" ");
    return r;
}

} // namespace ql::test

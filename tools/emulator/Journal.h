#pragma once
// What the stand-in did, one line per event, for tests that drive it from outside: the file named
// by QUAYLIGHT_EMU_JOURNAL, if any.

#include <QString>

namespace ql::emu {

class Journal {
public:
    explicit Journal(QString path = {}) : path_(std::move(path)) {}
    static Journal fromEnvironment();

    // Appends the line at once, so a test polling the file sees it while the stand-in still runs.
    void write(const QString& line) const;

private:
    QString path_; // empty: no journal
};

} // namespace ql::emu

#include "Journal.h"

#include <QFile>

namespace ql::emu {

Journal Journal::fromEnvironment() {
    return Journal(qEnvironmentVariable("QUAYLIGHT_EMU_JOURNAL"));
}

void Journal::write(const QString& line) const {
    if (path_.isEmpty()) return;
    QFile file(path_);
    // One unbuffered write of a whole line: lines of several stand-ins never interleave.
    if (file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        file.write((line + u'\n').toUtf8());
}

} // namespace ql::emu

#pragma once
// The real Linux host with scripted dialogs, for the tests that drive real programs on the test's X
// server. The facilities read HOME and the XDG folders when used: a TestWorld's, for the whole test.

#include "FakeHost.h"
#include "LinuxHost.h"

#include <QStringList>
#include <functional>

namespace ql::test {

struct LinuxTestHost {
    FakeDialogs dialogs;
    LinuxProcesses processes;
    LinuxScripts scripts;
    LinuxClock clock;
    LinuxFileSystem fileSystem;
    LinuxKeyboard keyboard;
    LinuxRegistry registry;
    LinuxAssociations associations;
    LinuxWindows windows;
    Host host{dialogs, processes, scripts, clock, fileSystem, keyboard, registry, associations, windows};

    // Pumps events until done() holds, for at most the seconds given; false when time ran out.
    bool waitFor(const std::function<bool()>& done, double seconds);
    // Whether a window of that title is open, whether or not it takes the focus.
    bool windowOpen(const QString& title);
};

// The lines of a text file, none when it is missing (a program's journal, say).
QStringList fileLines(const QString& path);

} // namespace ql::test

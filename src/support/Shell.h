#pragma once
// Waiting and throw-away scripts, on top of the host.

#include "Host.h"

namespace ql {

// Waits the given seconds while the event loop keeps running, so forms stay alive and handlers can
// run inside the wait. Reads the clock at least once; a monotonic clock, so midnight changes nothing.
void Pause(Clock& clock, double seconds);

// Runs one POSIX shell command line through the script rundos.sh in the private script folder,
// gives it one second, and deletes the script. A failing step is tried again a second later, a few
// times; then the user is told and the call returns. The caller quotes every name (ShellQuote).
void RunDosCommand(Host& host, const QString& commandLine);

// True when the path exists and its attribute word is not exactly 16.
bool FileExists(FileSystem& fs, const QString& path);

// Taps one key by its Windows virtual-key code.
inline void SendVirtualKey(Keyboard& keyboard, std::uint8_t vk) {
    keyboard.tapVirtualKey(vk);
}

} // namespace ql

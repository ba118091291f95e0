#pragma once
// The rebuild: makes catalogue rows from what lies on disk. Each chosen target (the resident
// cartridges, a program tab, Everything) has all its rows replaced, in one transaction each, so a
// rebuild that stops on a fault leaves that target's old rows. The form and the command line call
// the same function.

#include "Host.h"

#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace ql {

constexpr int kFormRows = 25;
constexpr int kCartridgeRow = 24;
constexpr int kLastTabRow = 23;

// What the rebuild makes of a file name.
QString programNameFor(const QString& fileName);
int programTypeFor(const QString& fileName);
bool isBasicName(const QString& fileName);
// The extension test: a search for a piece of text in the list, so "tx" and "" pass too.
bool isKnownProgramFile(const QString& fileName);
bool isCartridgeFile(const QString& fileName);
QString cartridgeNameFor(const QString& fileName);
// The root of the Everything walk: AtariDir followed by one separator, whatever it ends in.
QString everythingRoot(const QString& atariDir);

struct TabTarget {
    int row = 0; // form row 0..23, the rows' TabNumber
    QString name;
    QString source;
};

struct RebuildRequest {
    QString cataloguePath;
    std::optional<QString> cartridgeSource; // set when form row 24 is chosen
    std::vector<TabTarget> tabs;            // in ascending row order
    bool everything = false;
    int crcThreads = 0; // 0: one per core, at most four
};

struct RebuildProgress {
    enum class Event {
        Walking,       // listing folders; filesTotal counts what was found so far
        TargetStarted, // target is kCartridgeRow, a tab row, or kEverythingTabNumber
        TabsBegin,     // the tabs' turn: rows are coloured by whether they are chosen
        Files,         // files and bytes done moved on
        TargetDone,
        TabsEnd,
    };
    Event event = Event::Files;
    int target = -1;
    std::int64_t filesDone = 0, filesTotal = 0;
    std::int64_t bytesDone = 0, bytesTotal = 0;
};

// Called on the calling thread at every event and every few tens of milliseconds while files are
// read, so a form can repaint and take clicks. What it throws ends the rebuild; the target under
// way keeps its old rows.
using RebuildProgressFn = std::function<void(const RebuildProgress&)>;

struct RebuildResult {
    int programs = 0;
    int cartridges = 0;
    std::int64_t files = 0;
    std::int64_t bytes = 0;
};

// Throws StoreError when the catalogue fails; targets finished before that stay rebuilt.
RebuildResult rebuildCatalogue(const RebuildRequest& request, FileSystem& fileSystem,
                               const RebuildProgressFn& progress = {});

// A request from the saved Tabs rows, for callers without a form: the given tab rows (none: every
// tab row with a source), the cartridges when asked and row 25 has a source, and Everything.
RebuildRequest savedTabsRequest(const QString& cataloguePath, const std::vector<int>& rows, bool cartridges,
                                bool everything);

} // namespace ql

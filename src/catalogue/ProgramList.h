#pragma once
#include "Store.h"

#include <optional>
#include <string>
#include <vector>

namespace ql {

// The one list of file extensions that the program list and the rebuild accept.
inline const QString KnownExtensions = QStringLiteral(
    ".lnx,.xfz,.atz,.pro,.atr,.dcm,.bin,.xex,.cas,.xfd,.a26,.a52,.a78,.jag,.msa,.st,.txt,.bas,.lst,.rom");

// The list's row counter has always been a signed 16-bit number.
constexpr int kMaxListRows = 32767;

// True when the lower-cased extension of the path occurs anywhere in KnownExtensions. A piece
// such as "at" passes, and so does the empty extension of a name that ends in a dot.
bool isListedFile(std::string_view fileName1);
bool isListedFile(const QString& fileName1);

// The rows a tab lists for its caption and the filter, in name order, at most kMaxListRows.
std::vector<ListRow> listRows(Catalogue& catalogue, const QString& caption, const QString& searchText);

// What a catalogue file looks like from outside: which file the name stands for, and the size and
// time of the file and of its write-ahead log, with the log's header. Any commit grows the log, or
// starts it over with new salts in its header, or, once it has been folded back, changes the file.
struct CatalogueStamp {
    quint64 commits = 0; // commits of this process, which need no clock
    quint64 device = 0, inode = 0;
    qint64 size = -1, modifiedNs = 0;
    qint64 logSize = -1, logModifiedNs = 0;
    QByteArray logHeader;
    bool operator==(const CatalogueStamp&) const = default;
};
CatalogueStamp catalogueStamp(const QString& cataloguePath);

// The same rows, for the filter as the user types. A whole category is read once and kept with
// the stamp of the catalogue it was read at; each call compares the stamp (two stat calls) and
// reads again when anything has committed since, in this process or another. No connection is
// held between calls, so a catalogue replaced under the same name is simply read anew. The result
// is always what listRows would give, without a scan of the category at every keystroke.
class CategoryList {
public:
    std::vector<ListRow> rows(const QString& cataloguePath, const QString& caption,
                              const QString& searchText);
    // Lets go of the kept rows.
    void clear();

private:
    struct Row {
        int programCode;
        std::string name;
    };
    QString path_;
    QString caption_;
    std::optional<CatalogueStamp> stamp_;
    std::vector<Row> rows_;
};

} // namespace ql

#pragma once
#include "Store.h"

#include <memory>
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

// The same rows, for the filter as the user types. A whole category is read once and kept with
// the version of the catalogue it was read at; every call asks SQLite whether any connection, of
// this process or another, has committed since, and reads again if so. The result is always what
// listRows would give, without a scan of the category at every keystroke.
class CategoryList {
public:
    CategoryList();
    ~CategoryList();
    std::vector<ListRow> rows(const QString& cataloguePath, const QString& caption,
                              const QString& searchText);
    // Lets go of the rows and the connection.
    void clear();

private:
    struct Row {
        int programCode;
        std::string name;
    };
    std::unique_ptr<Catalogue> connection_;
    QString path_;
    QString caption_;
    qint64 version_ = -1;
    std::vector<Row> rows_;
};

} // namespace ql

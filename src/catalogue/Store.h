#pragma once
// The catalogue file Atari.mdb: an SQLite database. Each handler opens its own Catalogue, works,
// and lets it go; several may be open at once. Every value reaches SQL as a bound parameter.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

class QSqlQuery;
struct sqlite3;

namespace ql {

class StoreError : public std::runtime_error {
public:
    explicit StoreError(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString message() const { return QString::fromStdString(what()); }
};

constexpr int kEverythingTabNumber = 99;
inline const QString kEverything = QStringLiteral("Everything");
inline const QString kFavourites = QStringLiteral("Favourites");

struct ProgramRecord {
    int programCode = 0; // given by the store
    QString category;
    int tabNumber = 0;
    int type = 0;
    QString name;
    QString fileName1;
    QString fileName2, fileName3, fileName4;
    QString crc;
    int rating = 0;
    int machineType = 1;
    bool basic = false;
    int video = 262;
    int memory = 64;
    int artifact = 0;
    int stretch = 0;
    QVariant description; // may be null
};

// What the program list keeps of a row.
struct ListRow {
    int programCode = 0;
    QString name;
};

// A row of a category as the list query gives it: UTF-8 texts valid during the callback only.
struct RawListRow {
    int programCode = 0;
    std::string_view name;
    std::string_view fileName1;
};

struct CartridgeRecord {
    int cartCode = 0;
    QString cartName;
    QString cartPath;
};

struct ConfigRecord {
    QString windowsVersion;
    QString atariDir;
};

struct TabRecord {
    int tabCode = 0;
    QString tabName;   // null reads as empty
    QString tabSource; // null reads as empty
};

struct DiskFileRecord {
    QString crc;
    QString filename;
    bool isNew = false;
};

class Catalogue {
public:
    // Opens an existing catalogue. Throws StoreError when the file is missing, is not an SQLite
    // database (an old Jet file, say) or lacks the catalogue's tables; such a file is left untouched.
    explicit Catalogue(const QString& path);
    ~Catalogue();
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    // Writes a new, empty catalogue with its tables, defaults and 25 Tabs rows. Refuses to
    // replace an existing file.
    static void create(const QString& path);
    // The tab names a new catalogue starts with, by TabCode - 1 (25 entries, some empty).
    static const std::vector<QString>& defaultTabNames();

    // Programs
    std::optional<ProgramRecord> programByCode(int code);
    // Rows of a category ordered by Name; with a filter, only names LIKE *filter*.
    // The callback returns false to stop early. This is the list's hot path: it reads SQLite's
    // own buffers so that rows the caller passes over cost no conversion.
    void forEachInCategory(const QString& category, const QString& filter,
                           const std::function<bool(const RawListRow&)>& row);
    std::vector<ProgramRecord> programsByTabNumber(int tabNumber);
    std::vector<ProgramRecord> programsByTabNumberAndCrc(int tabNumber, const QString& crc);
    // The CRC texts of a tab's rows, read from the index alone.
    std::vector<QString> crcsByTabNumber(int tabNumber);
    int countCategory(const QString& category);
    int countPrograms();
    void deleteProgram(int code);
    void deleteProgramsByTabNumber(int tabNumber);
    int addProgram(const ProgramRecord& record); // returns the new ProgramCode
    void updateProgram(const ProgramRecord& record);
    // The named fields of one row, keyed by the names as given (matched to the columns ignoring
    // case); nothing when no row has the code. A name that is not a column of Programs throws.
    std::optional<QVariantMap> programFields(int code, const QStringList& names);
    // Writes the named fields of one row in one statement, so it lands whole or not at all. False
    // when no row has the code. A name that is not a column of Programs, a name given twice or the
    // key ProgramCode throws before anything is written.
    bool setProgramFields(int code, const QVariantMap& fields);
    // Puts the letter in place of the drive letter of every stored path that has one. The caller
    // holds a Transaction, so that the three tables move together.
    void relocateDrive(QChar letter);

    // Cartridges
    std::vector<CartridgeRecord> cartridges();
    std::optional<CartridgeRecord> cartridgeByCode(int code);
    void deleteCartridges();
    int addCartridge(const QString& name, const QString& path);

    // Config
    std::optional<ConfigRecord> config();
    void addConfig(const ConfigRecord& config);

    // Tabs
    std::vector<TabRecord> tabs();
    void updateTab(int tabCode, const QString& name, const QString& source);

    // DiskFiles
    std::vector<DiskFileRecord> diskFiles();
    void deleteDiskFiles();
    void addDiskFile(const DiskFileRecord& record);
    std::vector<QString> distinctDiskFileCrcs();
    std::vector<DiskFileRecord> diskFilesByCrcLongestFirst(const QString& crc);

    // Counts the commits that connections of this process have made, to any catalogue.
    static quint64 commitCount();

    // Work that must land whole or not at all.
    void begin();
    void commit();
    void rollback();

    QSqlDatabase& database() { return db_; }

private:
    QSqlQuery run(const QString& sql, const QVariantList& values = {});
    QSqlQuery& prepared(const QString& sql);
    static ProgramRecord readProgram(const QSqlQuery& q);
    // The real names of the Programs columns, as the file declares them.
    QStringList programColumns();

    QString connectionName_;
    QSqlDatabase db_;
    sqlite3* handle_ = nullptr;
    std::vector<std::pair<QString, std::unique_ptr<QSqlQuery>>> cache_;
};

// Commits at commit(); rolls back when left without it, so a failure leaves the old rows.
class Transaction {
public:
    explicit Transaction(Catalogue& c) : c_(c) { c_.begin(); }
    ~Transaction() {
        if (!done_) {
            try {
                c_.rollback();
            } catch (...) {
            }
        }
    }
    void commit() {
        c_.commit();
        done_ = true;
    }

private:
    Catalogue& c_;
    bool done_ = false;
};

} // namespace ql

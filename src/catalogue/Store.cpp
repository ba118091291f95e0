#include "Store.h"
#include "JetText.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <atomic>
#include <sqlite3.h>

namespace ql {

namespace {

std::atomic<quint64> gCommits{0};

// The whole schema of a new catalogue. Text columns compare and sort ignoring case (JET).
const char* const kSchema[] = {
    R"(CREATE TABLE Programs (
        ProgramCode INTEGER PRIMARY KEY AUTOINCREMENT,
        Category    TEXT COLLATE JET NOT NULL DEFAULT '',
        TabNumber   INTEGER NOT NULL DEFAULT 0,
        Type        INTEGER NOT NULL DEFAULT 0,
        Name        TEXT COLLATE JET NOT NULL DEFAULT '',
        FileName1   TEXT COLLATE JET NOT NULL DEFAULT '',
        Filename2   TEXT COLLATE JET NOT NULL DEFAULT '',
        Filename3   TEXT COLLATE JET NOT NULL DEFAULT '',
        Filename4   TEXT COLLATE JET NOT NULL DEFAULT '',
        CRC         TEXT COLLATE JET NOT NULL DEFAULT '',
        Rating      INTEGER NOT NULL DEFAULT 0,
        MachineType INTEGER NOT NULL DEFAULT 1,
        Basic       INTEGER NOT NULL DEFAULT 0,
        Video       INTEGER NOT NULL DEFAULT 262,
        Memory      INTEGER NOT NULL DEFAULT 64,
        Artifact    INTEGER NOT NULL DEFAULT 0,
        Stretch     INTEGER NOT NULL DEFAULT 0,
        Description TEXT COLLATE JET))",
    // Covers the list query, so a keystroke of the filter reads the index alone.
    "CREATE INDEX ProgramsByCategory ON Programs (Category, Name, FileName1)",
    "CREATE INDEX ProgramsByTabCrc ON Programs (TabNumber, CRC)",
    R"(CREATE TABLE Cartridges (
        CartCode INTEGER PRIMARY KEY AUTOINCREMENT,
        CartName TEXT COLLATE JET NOT NULL DEFAULT '',
        CartPath TEXT COLLATE JET NOT NULL DEFAULT ''))",
    R"(CREATE TABLE Config (
        WindowsVersion TEXT COLLATE JET,
        AtariDir       TEXT COLLATE JET))",
    R"(CREATE TABLE Tabs (
        TabCode   INTEGER PRIMARY KEY,
        TabName   TEXT COLLATE JET,
        TabSource TEXT COLLATE JET))",
    R"(CREATE TABLE DiskFiles (
        CRC      TEXT COLLATE JET NOT NULL DEFAULT '',
        Filename TEXT COLLATE JET NOT NULL DEFAULT '',
        IsNew    INTEGER NOT NULL DEFAULT 0))",
    "CREATE INDEX DiskFilesByCrc ON DiskFiles (CRC)",
};

const QStringList kTables = {"Programs", "Cartridges", "Config", "Tabs", "DiskFiles"};
const QString kProgramColumns = QStringLiteral(
    "ProgramCode, Category, TabNumber, Type, Name, FileName1, Filename2, Filename3, Filename4, CRC, Rating, "
    "MachineType, Basic, Video, Memory, Artifact, Stretch, Description");

QString nextConnectionName() {
    static std::atomic<int> counter{0};
    return QStringLiteral("quaylight-%1").arg(++counter);
}

bool hasSqliteHeader(const QString& path, QString& why) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        why = file.errorString();
        return false;
    }
    const QByteArray head = file.read(32);
    if (head.startsWith(QByteArray("SQLite format 3\0", 16))) return true;
    if (head.size() >= 16 && head.mid(4, 15) == "Standard Jet DB")
        why = QStringLiteral(
            "it is a Microsoft Access (Jet) database; export its tables to a Quaylight catalogue first");
    else if (head.isEmpty())
        why = QStringLiteral("the file is empty");
    else
        why = QStringLiteral("it is not an SQLite database");
    return false;
}

sqlite3* nativeHandle(QSqlDatabase& db) {
    const QVariant v = db.driver()->handle();
    if (v.isValid() && qstrcmp(v.typeName(), "sqlite3*") == 0) return *static_cast<sqlite3* const*>(v.data());
    return nullptr;
}

QString str(const QVariant& v) {
    return v.isNull() ? QString() : v.toString();
}

// A null QString would bind as SQL NULL; the text columns hold empty texts instead. Only a
// QVariant() with no value at all stands for NULL.
QVariant bindable(const QVariant& v) {
    if (v.typeId() == QMetaType::QString && v.toString().isNull()) return QString("");
    return v;
}

void bindAll(QSqlQuery& q, const QVariantList& values) {
    for (int i = 0; i < values.size(); ++i)
        q.bindValue(i, bindable(values[i]));
}

} // namespace

Catalogue::Catalogue(const QString& path) : connectionName_(nextConnectionName()) {
    const QString shown = QFileInfo(path).absoluteFilePath();
    if (!QFileInfo(path).isFile())
        throw StoreError(QStringLiteral("Cannot find the catalogue %1.").arg(shown));
    QString why;
    if (!hasSqliteHeader(path, why))
        throw StoreError(
            QStringLiteral("%1 is not a Quaylight catalogue: %2. The file was not changed.").arg(shown, why));

    db_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName_);
    db_.setDatabaseName(path);
    db_.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
    if (!db_.open())
        throw StoreError(
            QStringLiteral("Cannot open the catalogue %1: %2").arg(shown, db_.lastError().text()));
    handle_ = nativeHandle(db_);
    if (!handle_) throw StoreError(QStringLiteral("The SQLite driver gave no handle for %1.").arg(shown));
    registerJetFunctions(handle_);
    sqlite3_commit_hook(
        handle_,
        [](void*) {
            ++gCommits;
            return 0; // let the commit go ahead
        },
        nullptr);

    QSqlQuery q(db_);
    if (!q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'")))
        throw StoreError(QStringLiteral("%1 is not a Quaylight catalogue: %2. The file was not changed.")
                             .arg(shown, q.lastError().text()));
    QStringList found;
    while (q.next())
        found << q.value(0).toString().toLower();
    for (const QString& table : kTables)
        if (!found.contains(table.toLower()))
            throw StoreError(
                QStringLiteral(
                    "%1 is not a Quaylight catalogue: it has no table %2. The file was not changed.")
                    .arg(shown, table));
    // WAL: overlapping connections of the process never block each other, and a crash never
    // leaves a half-written row.
    run(QStringLiteral("PRAGMA journal_mode=WAL"));
    run(QStringLiteral("PRAGMA synchronous=NORMAL"));
    // Every handler opens a fresh connection, so nothing of the page cache survives between
    // keystrokes; mapping the file lets a new connection read pages without copying them.
    run(QStringLiteral("PRAGMA mmap_size=1073741824"));
}

Catalogue::~Catalogue() {
    cache_.clear();
    db_.close();
    db_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(connectionName_);
}

void Catalogue::create(const QString& path) {
    if (QFileInfo::exists(path))
        throw StoreError(
            QStringLiteral("%1 already exists; a new catalogue never replaces a file.").arg(path));
    const QString name = nextConnectionName();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (!db.open())
            throw StoreError(QStringLiteral("Cannot create %1: %2").arg(path, db.lastError().text()));
        if (sqlite3* h = nativeHandle(db)) registerJetFunctions(h);
        QSqlQuery q(db);
        bool ok = db.transaction();
        for (const char* statement : kSchema)
            ok = ok && q.exec(QString::fromUtf8(statement));
        ok = ok &&
             q.prepare(QStringLiteral("INSERT INTO Tabs (TabCode, TabName, TabSource) VALUES (?, ?, '')"));
        const auto& names = defaultTabNames();
        for (size_t i = 0; ok && i < names.size(); ++i) {
            q.bindValue(0, static_cast<int>(i + 1));
            q.bindValue(1, names[i]);
            ok = q.exec();
        }
        const QString error = q.lastError().text();
        ok = ok && db.commit();
        db.close();
        if (!ok) {
            QSqlDatabase::removeDatabase(name);
            QFile::remove(path);
            throw StoreError(QStringLiteral("Cannot create %1: %2").arg(path, error));
        }
    }
    QSqlDatabase::removeDatabase(name);
}

const std::vector<QString>& Catalogue::defaultTabNames() {
    static const std::vector<QString> names = [] {
        std::vector<QString> n = {"Games", "Demos", "Utilities",  "Education", "Music",
                                  "BASIC", "Tapes", "Favourites", "Atari ST",  "2600",
                                  "5200",  "7800",  "Lynx",       "Jaguar",    "Everything"};
        n.resize(24);
        n.push_back(QStringLiteral("Resident Cartridges"));
        return n;
    }();
    return names;
}

QSqlQuery Catalogue::run(const QString& sql, const QVariantList& values) {
    QSqlQuery q(db_);
    q.setForwardOnly(true);
    if (!q.prepare(sql))
        throw StoreError(QStringLiteral("The catalogue refused a statement: %1").arg(q.lastError().text()));
    bindAll(q, values);
    if (!q.exec())
        throw StoreError(QStringLiteral("The catalogue refused a statement: %1").arg(q.lastError().text()));
    return q;
}

QSqlQuery& Catalogue::prepared(const QString& sql) {
    for (auto& [text, query] : cache_)
        if (text == sql) return *query;
    auto q = std::make_unique<QSqlQuery>(db_);
    if (!q->prepare(sql))
        throw StoreError(QStringLiteral("The catalogue refused a statement: %1").arg(q->lastError().text()));
    cache_.emplace_back(sql, std::move(q));
    return *cache_.back().second;
}

ProgramRecord Catalogue::readProgram(const QSqlQuery& q) {
    ProgramRecord r;
    r.programCode = q.value(0).toInt();
    r.category = str(q.value(1));
    r.tabNumber = q.value(2).toInt();
    r.type = q.value(3).toInt();
    r.name = str(q.value(4));
    r.fileName1 = str(q.value(5));
    r.fileName2 = str(q.value(6));
    r.fileName3 = str(q.value(7));
    r.fileName4 = str(q.value(8));
    r.crc = str(q.value(9));
    r.rating = q.value(10).toInt();
    r.machineType = q.value(11).toInt();
    r.basic = q.value(12).toInt() != 0;
    r.video = q.value(13).toInt();
    r.memory = q.value(14).toInt();
    r.artifact = q.value(15).toInt();
    r.stretch = q.value(16).toInt();
    r.description = q.value(17);
    return r;
}

std::optional<ProgramRecord> Catalogue::programByCode(int code) {
    QSqlQuery q = run("SELECT " + kProgramColumns + " FROM Programs WHERE ProgramCode = ?", {code});
    if (!q.next()) return std::nullopt;
    return readProgram(q);
}

void Catalogue::forEachInCategory(const QString& category, const QString& filter,
                                  const std::function<bool(const RawListRow&)>& row) {
    const char* sql = filter.isEmpty() ? "SELECT ProgramCode, Name, FileName1 FROM Programs "
                                         "WHERE Category = ?1 ORDER BY Name"
                                       : "SELECT ProgramCode, Name, FileName1 FROM Programs "
                                         "WHERE Category = ?1 AND Name LIKE ?2 ORDER BY Name";
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(handle_, sql, -1, &stmt, nullptr) != SQLITE_OK)
        throw StoreError(
            QStringLiteral("The catalogue refused a statement: %1").arg(sqlite3_errmsg(handle_)));
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> guard(stmt, sqlite3_finalize);
    const QByteArray categoryText = category.toUtf8();
    const QByteArray pattern = QStringLiteral("*%1*").arg(filter).toUtf8();
    sqlite3_bind_text(stmt, 1, categoryText.constData(), static_cast<int>(categoryText.size()),
                      SQLITE_STATIC);
    if (!filter.isEmpty())
        sqlite3_bind_text(stmt, 2, pattern.constData(), static_cast<int>(pattern.size()), SQLITE_STATIC);
    const auto text = [stmt](int column) {
        const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt, column));
        return p ? std::string_view(p, static_cast<size_t>(sqlite3_column_bytes(stmt, column)))
                 : std::string_view();
    };
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW)
        if (!row(RawListRow{sqlite3_column_int(stmt, 0), text(1), text(2)})) return;
    if (rc != SQLITE_DONE)
        throw StoreError(
            QStringLiteral("The catalogue refused a statement: %1").arg(sqlite3_errmsg(handle_)));
}

std::vector<ProgramRecord> Catalogue::programsByTabNumber(int tabNumber) {
    std::vector<ProgramRecord> rows;
    QSqlQuery q = run("SELECT " + kProgramColumns + " FROM Programs WHERE TabNumber = ?", {tabNumber});
    while (q.next())
        rows.push_back(readProgram(q));
    return rows;
}

std::vector<ProgramRecord> Catalogue::programsByTabNumberAndCrc(int tabNumber, const QString& crc) {
    std::vector<ProgramRecord> rows;
    QSqlQuery q =
        run("SELECT " + kProgramColumns + " FROM Programs WHERE TabNumber = ? AND CRC = ?", {tabNumber, crc});
    while (q.next())
        rows.push_back(readProgram(q));
    return rows;
}

std::vector<QString> Catalogue::crcsByTabNumber(int tabNumber) {
    std::vector<QString> crcs;
    QSqlQuery q = run(QStringLiteral("SELECT CRC FROM Programs WHERE TabNumber = ?"), {tabNumber});
    while (q.next())
        crcs.push_back(str(q.value(0)));
    return crcs;
}

int Catalogue::countCategory(const QString& category) {
    QSqlQuery q = run(QStringLiteral("SELECT Count(ProgramCode) AS tCount FROM Programs WHERE Category = ?"),
                      {category});
    return q.next() ? q.value(0).toInt() : 0;
}

int Catalogue::countPrograms() {
    QSqlQuery q = run(QStringLiteral("SELECT Count(ProgramCode) AS tCount FROM Programs"));
    return q.next() ? q.value(0).toInt() : 0;
}

void Catalogue::deleteProgram(int code) {
    run(QStringLiteral("DELETE FROM Programs WHERE ProgramCode = ?"), {code});
}

void Catalogue::deleteProgramsByTabNumber(int tabNumber) {
    run(QStringLiteral("DELETE FROM Programs WHERE TabNumber = ?"), {tabNumber});
}

int Catalogue::addProgram(const ProgramRecord& r) {
    QSqlQuery& q =
        prepared(QStringLiteral("INSERT INTO Programs (Category, TabNumber, Type, Name, FileName1, "
                                "Filename2, Filename3, Filename4, CRC, "
                                "Rating, MachineType, Basic, Video, Memory, Artifact, Stretch, Description) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    const QVariantList values = {r.category,    r.tabNumber,     r.type,      r.name,   r.fileName1,
                                 r.fileName2,   r.fileName3,     r.fileName4, r.crc,    r.rating,
                                 r.machineType, r.basic ? 1 : 0, r.video,     r.memory, r.artifact,
                                 r.stretch,     r.description};
    bindAll(q, values);
    if (!q.exec())
        throw StoreError(QStringLiteral("The catalogue refused a new row: %1").arg(q.lastError().text()));
    return q.lastInsertId().toInt();
}

void Catalogue::updateProgram(const ProgramRecord& r) {
    run(QStringLiteral("UPDATE Programs SET Category = ?, TabNumber = ?, Type = ?, Name = ?, FileName1 = ?, "
                       "Filename2 = ?, Filename3 = ?, Filename4 = ?, CRC = ?, Rating = ?, MachineType = ?, "
                       "Basic = ?, Video = ?, Memory = ?, Artifact = ?, Stretch = ?, Description = ? "
                       "WHERE ProgramCode = ?"),
        {r.category, r.tabNumber, r.type, r.name, r.fileName1, r.fileName2, r.fileName3, r.fileName4, r.crc,
         r.rating, r.machineType, r.basic ? 1 : 0, r.video, r.memory, r.artifact, r.stretch, r.description,
         r.programCode});
}

QStringList Catalogue::programColumns() {
    const QSqlRecord record = db_.record(QStringLiteral("Programs"));
    QStringList columns;
    for (int i = 0; i < record.count(); ++i)
        columns << record.fieldName(i);
    return columns;
}

namespace {

// Field names come from callers and forms, so only a real column's own name, quoted, ever reaches
// the SQL text.
QString quotedColumn(const QStringList& columns, const QString& name) {
    for (const QString& column : columns)
        if (column.compare(name, Qt::CaseInsensitive) == 0)
            return '"' + QString(column).replace('"', QStringLiteral("\"\"")) + '"';
    throw StoreError(QStringLiteral("The catalogue has no field \"%1\" in Programs.").arg(name));
}

} // namespace

std::optional<QVariantMap> Catalogue::programFields(int code, const QStringList& names) {
    const QStringList columns = programColumns();
    QStringList selected;
    for (const QString& name : names)
        selected << quotedColumn(columns, name);
    const QString list = selected.isEmpty() ? QStringLiteral("1") : selected.join(QStringLiteral(", "));
    QSqlQuery q = run("SELECT " + list + " FROM Programs WHERE ProgramCode = ?", {code});
    if (!q.next()) return std::nullopt;
    QVariantMap fields;
    for (int i = 0; i < names.size(); ++i)
        fields.insert(names[i], q.value(i));
    return fields;
}

bool Catalogue::setProgramFields(int code, const QVariantMap& fields) {
    if (fields.isEmpty()) return programFields(code, {}).has_value();
    const QStringList columns = programColumns();
    QStringList assignments, seen;
    QVariantList values;
    for (auto it = fields.cbegin(); it != fields.cend(); ++it) {
        const QString column = quotedColumn(columns, it.key());
        if (column.compare(QStringLiteral("\"ProgramCode\""), Qt::CaseInsensitive) == 0)
            throw StoreError(QStringLiteral("ProgramCode is the key of a record and cannot be changed."));
        if (seen.contains(column, Qt::CaseInsensitive))
            throw StoreError(QStringLiteral("The field %1 was given twice.").arg(it.key()));
        seen << column;
        assignments << column + QStringLiteral(" = ?");
        values << it.value();
    }
    values << code;
    try {
        const QSqlQuery q =
            run("UPDATE Programs SET " + assignments.join(QStringLiteral(", ")) + " WHERE ProgramCode = ?",
                values);
        return q.numRowsAffected() > 0;
    } catch (const StoreError& e) {
        throw StoreError(
            QStringLiteral("The record %1 could not be changed: %2").arg(QString::number(code), e.message()));
    }
}

void Catalogue::relocateDrive(QChar letter) {
    const QString l(letter);
    // Only paths that carry a drive letter have one to replace.
    static const char* const kStatements[] = {
        "UPDATE Programs SET FileName1 = ? || substr(FileName1, 2) WHERE FileName1 GLOB '[A-Za-z]:*'",
        "UPDATE Cartridges SET CartPath = ? || substr(CartPath, 2) WHERE CartPath GLOB '[A-Za-z]:*'",
        "UPDATE Config SET AtariDir = ? || substr(AtariDir, 2) WHERE AtariDir GLOB '[A-Za-z]:*'",
    };
    for (const char* sql : kStatements)
        run(QString::fromLatin1(sql), {l});
}

std::vector<CartridgeRecord> Catalogue::cartridges() {
    std::vector<CartridgeRecord> rows;
    QSqlQuery q =
        run(QStringLiteral("SELECT CartCode, CartName, CartPath FROM Cartridges ORDER BY CartCode"));
    while (q.next())
        rows.push_back({q.value(0).toInt(), str(q.value(1)), str(q.value(2))});
    return rows;
}

std::optional<CartridgeRecord> Catalogue::cartridgeByCode(int code) {
    QSqlQuery q =
        run(QStringLiteral("SELECT CartCode, CartName, CartPath FROM Cartridges WHERE CartCode = ?"), {code});
    if (!q.next()) return std::nullopt;
    return CartridgeRecord{q.value(0).toInt(), str(q.value(1)), str(q.value(2))};
}

void Catalogue::deleteCartridges() {
    run(QStringLiteral("DELETE FROM Cartridges"));
}

int Catalogue::addCartridge(const QString& name, const QString& path) {
    QSqlQuery& q = prepared(QStringLiteral("INSERT INTO Cartridges (CartName, CartPath) VALUES (?, ?)"));
    bindAll(q, {name, path});
    if (!q.exec())
        throw StoreError(
            QStringLiteral("The catalogue refused a new cartridge: %1").arg(q.lastError().text()));
    return q.lastInsertId().toInt();
}

std::optional<ConfigRecord> Catalogue::config() {
    QSqlQuery q = run(QStringLiteral("SELECT WindowsVersion, AtariDir FROM Config LIMIT 1"));
    if (!q.next()) return std::nullopt;
    return ConfigRecord{str(q.value(0)), str(q.value(1))};
}

void Catalogue::addConfig(const ConfigRecord& c) {
    run(QStringLiteral("INSERT INTO Config (WindowsVersion, AtariDir) VALUES (?, ?)"),
        {c.windowsVersion, c.atariDir});
}

std::vector<TabRecord> Catalogue::tabs() {
    std::vector<TabRecord> rows;
    QSqlQuery q = run(QStringLiteral("SELECT TabCode, TabName, TabSource FROM Tabs ORDER BY TabCode"));
    while (q.next())
        rows.push_back({q.value(0).toInt(), str(q.value(1)), str(q.value(2))});
    return rows;
}

void Catalogue::updateTab(int tabCode, const QString& name, const QString& source) {
    run(QStringLiteral("UPDATE Tabs SET TabName = ?, TabSource = ? WHERE TabCode = ?"),
        {name, source, tabCode});
}

std::vector<DiskFileRecord> Catalogue::diskFiles() {
    std::vector<DiskFileRecord> rows;
    QSqlQuery q = run(QStringLiteral("SELECT CRC, Filename, IsNew FROM DiskFiles"));
    while (q.next())
        rows.push_back({str(q.value(0)), str(q.value(1)), q.value(2).toInt() != 0});
    return rows;
}

void Catalogue::deleteDiskFiles() {
    run(QStringLiteral("DELETE FROM DiskFiles"));
}

void Catalogue::addDiskFile(const DiskFileRecord& r) {
    QSqlQuery& q = prepared(QStringLiteral("INSERT INTO DiskFiles (CRC, Filename, IsNew) VALUES (?, ?, ?)"));
    bindAll(q, {r.crc, r.filename, r.isNew ? 1 : 0});
    if (!q.exec())
        throw StoreError(QStringLiteral("The catalogue refused a new row: %1").arg(q.lastError().text()));
}

std::vector<QString> Catalogue::distinctDiskFileCrcs() {
    std::vector<QString> rows;
    QSqlQuery q = run(QStringLiteral("SELECT DISTINCT CRC FROM DiskFiles"));
    while (q.next())
        rows.push_back(str(q.value(0)));
    return rows;
}

std::vector<DiskFileRecord> Catalogue::diskFilesByCrcLongestFirst(const QString& crc) {
    std::vector<DiskFileRecord> rows;
    QSqlQuery q = run(QStringLiteral("SELECT CRC, Filename, IsNew FROM DiskFiles WHERE CRC = ? "
                                     "ORDER BY length(Filename) DESC"),
                      {crc});
    while (q.next())
        rows.push_back({str(q.value(0)), str(q.value(1)), q.value(2).toInt() != 0});
    return rows;
}

quint64 Catalogue::commitCount() {
    return gCommits.load();
}

void Catalogue::begin() {
    if (!db_.transaction())
        throw StoreError(
            QStringLiteral("Cannot start work on the catalogue: %1").arg(db_.lastError().text()));
}

void Catalogue::commit() {
    if (!db_.commit())
        throw StoreError(
            QStringLiteral("Cannot save the work to the catalogue: %1").arg(db_.lastError().text()));
}

void Catalogue::rollback() {
    db_.rollback();
}

} // namespace ql

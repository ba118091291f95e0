#include "ProgramList.h"
#include "JetText.h"
#include "StringFuncs.h"

#include <QFile>
#include <sys/stat.h>

namespace ql {

namespace {
const std::string kKnownExtensionsUtf8 = KnownExtensions.toStdString();
} // namespace

bool isListedFile(std::string_view fileName1) {
    const size_t dot = fileName1.rfind('.');
    const std::string_view extension = dot == std::string_view::npos ? fileName1 : fileName1.substr(dot + 1);
    // The literal is ASCII: an extension with any other byte cannot occur in it.
    std::string lower(extension);
    for (char& c : lower) {
        if (static_cast<unsigned char>(c) >= 0x80) return false;
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    return kKnownExtensionsUtf8.find(lower) != std::string::npos;
}

bool isListedFile(const QString& fileName1) {
    return isListedFile(std::string_view(fileName1.toStdString()));
}

std::vector<ListRow> listRows(Catalogue& catalogue, const QString& caption, const QString& searchText) {
    std::vector<ListRow> rows;
    catalogue.forEachInCategory(caption, searchText, [&](const RawListRow& row) {
        if (isListedFile(row.fileName1))
            rows.push_back({row.programCode,
                            QString::fromUtf8(row.name.data(), static_cast<qsizetype>(row.name.size()))});
        return rows.size() < static_cast<size_t>(kMaxListRows);
    });
    return rows;
}

CatalogueStamp catalogueStamp(const QString& cataloguePath) {
    CatalogueStamp stamp;
    stamp.commits = Catalogue::commitCount();
    struct stat st {};
    if (::stat(QFile::encodeName(cataloguePath).constData(), &st) == 0) {
        stamp.device = st.st_dev;
        stamp.inode = st.st_ino;
        stamp.size = st.st_size;
        stamp.modifiedNs = st.st_mtim.tv_sec * 1'000'000'000LL + st.st_mtim.tv_nsec;
    }
    if (::stat(QFile::encodeName(cataloguePath + QStringLiteral("-wal")).constData(), &st) == 0) {
        stamp.logSize = st.st_size;
        stamp.logModifiedNs = st.st_mtim.tv_sec * 1'000'000'000LL + st.st_mtim.tv_nsec;
        // A log that starts over can come back to the same size within one tick of the clock; its
        // header's checkpoint count and salts change every time it does.
        QFile log(cataloguePath + QStringLiteral("-wal"));
        if (log.open(QIODevice::ReadOnly)) stamp.logHeader = log.read(32);
    }
    return stamp;
}

void CategoryList::clear() {
    rows_.clear();
    stamp_.reset();
}

std::vector<ListRow> CategoryList::rows(const QString& cataloguePath, const QString& caption,
                                        const QString& searchText) {
    // Taken before the read: a commit that lands during it changes the stamp again, so the next
    // call reads once more rather than keeping rows older than the file.
    const CatalogueStamp stamp = catalogueStamp(cataloguePath);
    if (!stamp_ || *stamp_ != stamp || path_ != cataloguePath || caption_ != caption) {
        clear();
        Catalogue catalogue(cataloguePath);
        catalogue.forEachInCategory(caption, QString(), [&](const RawListRow& row) {
            if (isListedFile(row.fileName1)) rows_.push_back({row.programCode, std::string(row.name)});
            return true;
        });
        path_ = cataloguePath;
        caption_ = caption;
        stamp_ = stamp;
    }
    std::vector<ListRow> result;
    const auto take = [&](const Row& row) {
        result.push_back(
            {row.programCode, QString::fromUtf8(row.name.data(), static_cast<qsizetype>(row.name.size()))});
        return result.size() < static_cast<size_t>(kMaxListRows);
    };
    if (searchText.isEmpty()) {
        for (const Row& row : rows_)
            if (!take(row)) break;
    } else {
        const JetPattern pattern(QStringLiteral("*%1*").arg(searchText).toStdString());
        for (const Row& row : rows_)
            if (pattern.matches(row.name) && !take(row)) break;
    }
    return result;
}

} // namespace ql

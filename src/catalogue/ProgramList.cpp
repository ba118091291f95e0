#include "ProgramList.h"
#include "JetText.h"
#include "StringFuncs.h"

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

CategoryList::CategoryList() = default;
CategoryList::~CategoryList() = default;

void CategoryList::clear() {
    rows_.clear();
    connection_.reset();
    version_ = -1;
}

std::vector<ListRow> CategoryList::rows(const QString& cataloguePath, const QString& caption,
                                        const QString& searchText) {
    if (!connection_ || path_ != cataloguePath) {
        clear();
        connection_ = std::make_unique<Catalogue>(cataloguePath);
        path_ = cataloguePath;
    }
    const qint64 version = connection_->dataVersion();
    if (version != version_ || caption != caption_) {
        rows_.clear();
        version_ = -1;
        connection_->forEachInCategory(caption, QString(), [&](const RawListRow& row) {
            if (isListedFile(row.fileName1)) rows_.push_back({row.programCode, std::string(row.name)});
            return true;
        });
        version_ = version;
        caption_ = caption;
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

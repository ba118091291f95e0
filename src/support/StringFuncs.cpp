#include "StringFuncs.h"

namespace ql {

namespace {
bool isSeparator(QChar c) {
    return c == QLatin1Char('/') || c == QLatin1Char('\\');
}
} // namespace

QString ReplaceString(const QString& source, const QString& find, const QString& replacement,
                      Qt::CaseSensitivity cs) {
    if (find.isEmpty()) return source;
    QString result;
    result.reserve(source.size());
    qsizetype scan = 0;
    for (;;) {
        const qsizetype hit = source.indexOf(find, scan, cs);
        if (hit < 0) {
            result += QStringView(source).mid(scan);
            return result;
        }
        result += QStringView(source).mid(scan, hit - scan);
        result += replacement;
        scan = hit + find.size();
    }
}

QString GetFileName(const QString& path) {
    for (qsizetype i = path.size() - 1; i >= 0; --i)
        if (isSeparator(path[i])) return path.mid(i + 1);
    return path;
}

QString GetFolderPath(const QString& path) {
    for (qsizetype i = path.size() - 1; i >= 0; --i) {
        // A colon separates only as the drive of a Windows path: Linux names may hold colons.
        if (isSeparator(path[i]) || (i == 1 && path[i] == QLatin1Char(':') && path[0].isLetter()))
            return path.left(i + 1);
    }
    return QString();
}

QString GetExtension(const QString& path) {
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    return path.mid(dot + 1);
}

bool IsBlank(const QString& value) {
    return value.trimmed().isEmpty();
}

bool IsBlank(const QVariant& value) {
    if (value.isNull() || !value.isValid()) return true;
    return IsBlank(value.toString());
}

QString ShellQuote(const QString& text) {
    QString quoted = text;
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

bool HasDriveLetter(const QString& path) {
    return path.size() >= 2 && path[1] == QLatin1Char(':') && path[0].isLetter() && path[0].unicode() < 128;
}

QString WithTrailingSeparator(const QString& folder) {
    if (folder.isEmpty() || isSeparator(folder.back())) return folder;
    const bool windows =
        HasDriveLetter(folder) || (folder.contains(QLatin1Char('\\')) && !folder.contains(QLatin1Char('/')));
    return folder + (windows ? QLatin1Char('\\') : QLatin1Char('/'));
}

} // namespace ql

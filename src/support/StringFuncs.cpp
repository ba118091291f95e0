#include "StringFuncs.h"

namespace ql {

namespace {
// A path with a slash is one of this system, where a backslash is an ordinary character of a name.
// One without is a Windows path from a shared catalogue, where the backslash separates.
bool isWindowsPath(const QString& path) {
    return !path.contains(QLatin1Char('/')) && (HasDriveLetter(path) || path.contains(QLatin1Char('\\')));
}
QChar separatorOf(const QString& path) {
    return isWindowsPath(path) ? QLatin1Char('\\') : QLatin1Char('/');
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
    return path.mid(path.lastIndexOf(separatorOf(path)) + 1);
}

QString GetFolderPath(const QString& path) {
    const qsizetype separator = path.lastIndexOf(separatorOf(path));
    if (separator >= 0) return path.left(separator + 1);
    // A colon separates only as the drive of a Windows path: Linux names may hold colons.
    return HasDriveLetter(path) ? path.left(2) : QString();
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
    const QChar separator = separatorOf(folder);
    if (folder.isEmpty() || folder.back() == separator) return folder;
    return folder + separator;
}

} // namespace ql

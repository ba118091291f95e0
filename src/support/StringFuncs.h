#pragma once
// Free routines on texts and paths. Paths use "/" (this system) or, in catalogues shared with
// Windows machines, "\"; a path that holds a "/" is taken as one of this system, where "\" is an
// ordinary character of a name.

#include <QString>
#include <QVariant>

namespace ql {

// Replaces every occurrence of find in source; the replacement is never scanned again, so
// occurrences do not overlap ("aaa", "aa" -> "b" gives "ba"). An empty find returns source unchanged.
QString ReplaceString(const QString& source, const QString& find, const QString& replacement,
                      Qt::CaseSensitivity cs = Qt::CaseSensitive);

// The text behind the last path separator; the whole text when there is none.
QString GetFileName(const QString& path);
// The text up to and including the last separator, or the "C:" of a drive-relative path; empty when none.
QString GetFolderPath(const QString& path);
// The text behind the last dot, without it; the whole text when there is no dot. Case kept.
QString GetExtension(const QString& path);

// True for a null value and for a text of blanks only.
bool IsBlank(const QVariant& value);
bool IsBlank(const QString& value);

// The text single-quoted for a POSIX shell: nothing inside can expand or end the word.
QString ShellQuote(const QString& text);

// True when the path starts with a drive letter and a colon, as Windows paths do.
bool HasDriveLetter(const QString& path);

// A folder text with its closing separator: "/" normally, "\" for a Windows path that uses them.
QString WithTrailingSeparator(const QString& folder);

} // namespace ql

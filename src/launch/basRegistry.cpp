#include "basRegistry.h"

#include <cmath>
#include <optional>

namespace ql {

namespace {

QString rootName(std::uint32_t rootKey) {
    switch (rootKey) {
    case HKEY_CLASSES_ROOT:
        return QStringLiteral("HKEY_CLASSES_ROOT");
    case HKEY_CURRENT_USER:
        return QStringLiteral("HKEY_CURRENT_USER");
    case HKEY_LOCAL_MACHINE:
        return QStringLiteral("HKEY_LOCAL_MACHINE");
    case HKEY_USERS:
        return QStringLiteral("HKEY_USERS");
    default:
        return QStringLiteral("HKEY_%1").arg(rootKey, 8, 16, QLatin1Char('0'));
    }
}

// A DWORD holds anything from the signed to the unsigned 32-bit range; negative numbers keep
// their two's-complement bits, as a Long handed to the registry does.
std::optional<std::uint32_t> asDword(double number) {
    if (!std::isfinite(number)) return std::nullopt;
    const double rounded = std::nearbyint(number); // halves to even, as Basic's rounding
    if (rounded < -2147483648.0 || rounded > 4294967295.0) return std::nullopt;
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(rounded));
}

// Only blanks are trimmed: a tab or a line break is part of the text.
QString withoutBlanks(const QString& text) {
    qsizetype first = 0, last = text.size();
    while (first < last && text[first] == QLatin1Char(' '))
        ++first;
    while (last > first && text[last - 1] == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}

std::optional<std::uint32_t> numberInText(const QString& trimmed) {
    // Qt's number parsing would pass over other white space at the ends.
    if (trimmed.isEmpty() || trimmed != trimmed.trimmed()) return std::nullopt;
    bool ok = false;
    if (trimmed.startsWith(QLatin1String("&H"), Qt::CaseInsensitive)) {
        const qint64 hex = trimmed.mid(2).toLongLong(&ok, 16);
        return ok ? asDword(static_cast<double>(hex)) : std::nullopt;
    }
    const qint64 whole = trimmed.toLongLong(&ok, 10);
    if (ok) return asDword(static_cast<double>(whole));
    const double real = trimmed.toDouble(&ok);
    return ok ? asDword(real) : std::nullopt;
}

std::optional<std::uint32_t> numberIn(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? 1u : 0u;
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::SChar:
        return asDword(static_cast<double>(value.toLongLong()));
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UChar:
        return asDword(static_cast<double>(value.toULongLong()));
    case QMetaType::Double:
    case QMetaType::Float:
        return asDword(value.toDouble());
    default:
        return numberInText(withoutBlanks(value.toString()));
    }
}

} // namespace

void SaveRegistryValue(Registry& registry, std::uint32_t rootKey, const QString& keyPath,
                       const QString& valueName, const QVariant& value) {
    const QString fullPath = rootName(rootKey) + QLatin1Char('\\') + keyPath;
    if (const auto number = numberIn(value))
        registry.setDword(fullPath, valueName, *number);
    else
        registry.setString(fullPath, valueName, withoutBlanks(value.toString()));
}

} // namespace ql

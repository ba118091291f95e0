#include "SendKeysText.h"
#include "Host.h"

#include <array>
#include <utility>

namespace ql {

namespace {

struct NamedKey {
    const char* name;
    std::uint8_t vk;
};

constexpr std::array<NamedKey, 30> kNames{{
    {"BACKSPACE", 8}, {"BS", 8},         {"BKSP", 8},       {"TAB", 9},       {"ENTER", 13},
    {"BREAK", 19},    {"CAPSLOCK", 20},  {"ESC", 27},       {"ESCAPE", 27},   {"PGUP", 33},
    {"PGDN", 34},     {"END", 35},       {"HOME", 36},      {"LEFT", 37},     {"UP", 38},
    {"RIGHT", 39},    {"DOWN", 40},      {"PRTSC", 44},     {"INS", 45},      {"INSERT", 45},
    {"DEL", 46},      {"DELETE", 46},    {"HELP", 47},      {"NUMLOCK", 144}, {"SCROLLLOCK", 145},
    {"ADD", 107},     {"SUBTRACT", 109}, {"MULTIPLY", 106}, {"DIVIDE", 111},  {"SPACE", 32},
}};

std::uint8_t namedKey(const QString& name) {
    const QString upper = name.toUpper();
    for (const NamedKey& key : kNames)
        if (upper == QLatin1String(key.name)) return key.vk;
    // F1 to F16, as Windows numbers them.
    if (upper.size() >= 2 && upper.size() <= 3 && upper.startsWith(QLatin1Char('F'))) {
        bool ok = false;
        const int n = upper.mid(1).toInt(&ok);
        if (ok && n >= 1 && n <= 16 && !upper.mid(1).startsWith(QLatin1Char('0')))
            return static_cast<std::uint8_t>(111 + n);
    }
    return 0;
}

[[noreturn]] void fail(const QString& what, qsizetype position) {
    throw HostError(
        QStringLiteral("Invalid key text: %1 at position %2").arg(what).arg(position + 1).toStdString());
}

int modifierOf(QChar c) {
    switch (c.unicode()) {
    case u'+':
        return KeyStroke::Shift;
    case u'^':
        return KeyStroke::Ctrl;
    case u'%':
        return KeyStroke::Alt;
    default:
        return 0;
    }
}

} // namespace

std::vector<KeyStroke> parseSendKeys(const QString& keys) {
    std::vector<KeyStroke> strokes;
    // The modifiers of the open groups, innermost last, and those waiting for the next key.
    std::vector<std::pair<int, qsizetype>> groups;
    int pending = 0;
    const auto held = [&] {
        int m = pending;
        for (const auto& g : groups)
            m |= g.first;
        return m;
    };
    const auto press = [&](std::uint8_t vk, char32_t character, int count = 1) {
        for (int n = 0; n < count; ++n)
            strokes.push_back({held(), vk, vk ? char32_t(0) : character});
        pending = 0;
    };
    const qsizetype n = keys.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = keys[i];
        if (const int m = modifierOf(c)) {
            if (i + 1 >= n) fail(QStringLiteral("a modifier with no key behind it"), i);
            pending |= m;
            continue;
        }
        if (c == QLatin1Char('(')) {
            groups.emplace_back(pending, i);
            pending = 0;
            continue;
        }
        if (c == QLatin1Char(')')) {
            if (groups.empty()) fail(QStringLiteral("unmatched )"), i);
            groups.pop_back();
            pending = 0;
            continue;
        }
        if (c == QLatin1Char('~')) {
            press(13, 0);
            continue;
        }
        if (c == QLatin1Char('{')) {
            // The character right behind "{" is never the closing brace: "{}}" types "}".
            const qsizetype close = i + 2 <= n ? keys.indexOf(QLatin1Char('}'), i + 2) : -1;
            if (close < 0) fail(QStringLiteral("{ without its closing }"), i);
            const QString body = keys.mid(i + 1, close - i - 1);
            QString name = body;
            int count = 1;
            const qsizetype blank = body.lastIndexOf(QLatin1Char(' '));
            if (blank > 0) {
                bool ok = false;
                count = body.mid(blank + 1).toInt(&ok);
                if (!ok || count < 0) fail(QStringLiteral("bad repeat count in {%1}").arg(body), i);
                name = body.left(blank);
            }
            if (const std::uint8_t vk = namedKey(name)) {
                press(vk, 0, count);
            } else if (name.size() == 1 || (name.size() == 2 && name[0].isHighSurrogate())) {
                press(0, name.toUcs4().value(0), count);
            } else {
                fail(QStringLiteral("unknown key {%1}").arg(name), i);
            }
            i = close;
            continue;
        }
        char32_t character = c.unicode();
        if (c.isHighSurrogate() && i + 1 < n && keys[i + 1].isLowSurrogate())
            character = QChar::surrogateToUcs4(c, keys[++i]);
        press(0, character);
    }
    if (!groups.empty()) fail(QStringLiteral("unmatched ("), groups.back().second);
    return strokes;
}

QString SendKeysLiteral(const QString& text) {
    static const QString special = QStringLiteral("+^%~(){}[]");
    QString literal;
    for (const QChar c : text) {
        if (special.contains(c))
            literal += QLatin1Char('{') + c + QLatin1Char('}');
        else
            literal += c;
    }
    return literal;
}

} // namespace ql

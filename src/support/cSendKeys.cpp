#include "cSendKeys.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <cmath>
#include <optional>
#include <vector>

namespace ql {

namespace {

constexpr int kSubscriptOutOfRange = 9;
constexpr int kOverflow = 6;
// Errors of the host keyboard carry no number of their own.
constexpr int kHostFailure = 5;

// The code of a modifier character, 0 for any other character.
int modifierCode(QChar c) {
    switch (c.unicode()) {
    case u'+':
        return 16;
    case u'^':
        return 17;
    case u'%':
        return 18;
    default:
        return 0;
    }
}

QString errorSource() {
    QString name;
    if (QCoreApplication::instance())
        name = QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
    if (name.isEmpty()) name = QStringLiteral("quaylight");
    return name + QStringLiteral(".cSendKeys");
}

// A repetition count: optional sign, digits with at most one decimal point, blanks around; rounded
// to the nearest whole number (halves to even). Empty when the text is not a number.
std::optional<double> readCount(const QString& text) {
    const QString t = text.trimmed();
    int k = 0;
    if (k < t.size() && (t[k] == u'+' || t[k] == u'-')) ++k;
    int digits = 0;
    bool point = false;
    for (; k < t.size(); ++k) {
        if (t[k].isDigit() && t[k].unicode() < 128) {
            ++digits;
        } else if (t[k] == u'.' && !point) {
            point = true;
        } else {
            return std::nullopt;
        }
    }
    if (digits == 0) return std::nullopt;
    return std::nearbyint(t.toDouble());
}

// One of SendKeys' own faults, which leave with number 0.
struct CommandFault {
    QString description;
};

} // namespace

SendKeysError::SendKeysError(int number, QString source, QString description)
    : std::runtime_error(description.toStdString()), number(number), source(std::move(source)),
      description(std::move(description)) {}

cSendKeys::cSendKeys(Keyboard& keyboard) : keyboard_(keyboard) {
    const struct {
        const char* name;
        int code;
    } names[] = {{"BACKSPACE", 8}, {"BS", 8},     {"BKSP", 8},      {"TAB", 9},       {"ENTER", 13},
                 {"~", 13},        {"BREAK", 19}, {"CAPSLOCK", 20}, {"ESC", 27},      {"PGUP", 33},
                 {"PGDN", 34},     {"END", 35},   {"HOME", 36},     {"LEFT", 37},     {"UP", 38},
                 {"RIGHT", 39},    {"DOWN", 40},  {"PRTSC", 42},    {"INS", 45},      {"INSERT", 45},
                 {"DELETE", 46},   {"DEL", 46},   {"HELP", 47},     {"NUMLOCK", 144}, {"SCROLLLOCK", 145}};
    for (const auto& entry : names)
        colKeys.insert(QString::fromLatin1(entry.name), entry.code);
    for (int f = 1; f <= 16; ++f)
        colKeys.insert(QStringLiteral("F%1").arg(f), 111 + f);
}

void cSendKeys::SendKeys(const QString& sKeys, bool Wait) {
    Q_UNUSED(Wait) // events go out at once; there is nothing to wait for
    std::vector<QChar> colBrackets;
    int number = 0;
    QString description;
    try {
        const int n = static_cast<int>(sKeys.size());
        int i = 1;
        while (i <= n) {
            const QChar c = sKeys[i - 1];
            if (const int modifier = modifierCode(c)) {
                if (NextChar(sKeys, i, n) == u"(") {
                    colBrackets.push_back(c);
                    KeyDown(modifier);
                    i += 2;
                } else {
                    KeyDown(modifier);
                    KeyUp(modifier);
                    ++i;
                }
            } else if (c == u'~') {
                KeyDown(13);
                KeyUp(13);
                ++i;
            } else if (c == u')') {
                if (colBrackets.empty())
                    throw CommandFault{"Invalid sendkeys command: unmatched ) at position " +
                                       QString::number(i)};
                KeyUp(modifierCode(colBrackets.back()));
                colBrackets.pop_back();
                ++i;
            } else if (c == u'{') {
                if (i + 2 > n)
                    throw CommandFault{
                        "Invalid sendkeys command; opening { without content or closing } at position " +
                        QString::number(i)};
                // The search starts one past the character behind "{", so "{}}" is the key "}".
                const int close = static_cast<int>(sKeys.indexOf(u'}', i + 1)) + 1;
                if (close == 0)
                    throw CommandFault{"Invalid sendkeys command; opening { without closing } at position " +
                                       QString::number(i)};
                const QString body = sKeys.mid(i, close - i - 1);
                i = close + 1;
                const auto blank = body.indexOf(u' ');
                if (blank < 0) {
                    KeyPress(body, 1);
                } else {
                    const QString repetitions = body.mid(blank + 1);
                    const std::optional<double> count = readCount(repetitions);
                    if (!count)
                        throw CommandFault{"Invalid sendkeys command; key repetitions '" + repetitions +
                                           "' is invalid near position " + QString::number(i)};
                    if (*count < -2147483648.0 || *count > 2147483647.0)
                        throw SendKeysError(kOverflow, QString(), QStringLiteral("Overflow"));
                    KeyPress(body.left(blank), static_cast<int>(*count));
                }
            } else {
                KeyPress(QString(c), 1);
                ++i;
            }
        }
        if (!colBrackets.empty())
            throw CommandFault{
                QStringLiteral("Invalid sendkeys command: more open brackets than close brackets.")};
        return;
    } catch (const CommandFault& fault) {
        description = fault.description;
    } catch (const SendKeysError& error) {
        number = error.number;
        description = error.description;
    } catch (const std::exception& error) {
        number = kHostFailure;
        description = QString::fromStdString(error.what());
    }
    // Never leave a modifier down. A release that fails does not stop the others, and the first
    // fault is the one reported.
    while (!colBrackets.empty()) {
        try {
            KeyUp(modifierCode(colBrackets.back()));
        } catch (const std::exception&) {
        }
        colBrackets.pop_back();
    }
    throw SendKeysError(number, errorSource(), description);
}

void cSendKeys::KeyPress(const QString& sKey, int lCount) {
    int code = colKeys.value(sKey.toUpper(), 0);
    // A name the table lacks stands for the key of its first character: "{F17}" is "F".
    if (code == 0) code = KeyCode(sKey);
    if (code == 0)
        throw SendKeysError(kSubscriptOutOfRange, QString(), "Key " + sKey + " could not be interpreted.");
    for (int k = 0; k < lCount; ++k) {
        KeyDown(code);
        KeyUp(code);
    }
}

void cSendKeys::KeyDown(int vKey) {
    if (vKey < 0 || vKey > 255) throw SendKeysError(kOverflow, QString(), QStringLiteral("Overflow"));
    keyboard_.keyEvent(static_cast<std::uint8_t>(vKey), true, true);
}

void cSendKeys::KeyUp(int vKey) {
    if (vKey < 0 || vKey > 255) throw SendKeysError(kOverflow, QString(), QStringLiteral("Overflow"));
    keyboard_.keyEvent(static_cast<std::uint8_t>(vKey), false, true);
}

int cSendKeys::KeyCode(const QString& sChar) {
    if (sChar.isEmpty())
        throw SendKeysError(kSubscriptOutOfRange, QString(), QStringLiteral("Subscript out of range"));
    return keyboard_.keyScan(sChar[0].unicode()) & 0xff;
}

void cSendKeys::SendKeyF10() {
    keyboard_.keyEvent(121, true, false);
    keyboard_.keyEvent(121, false, false);
}

QString cSendKeys::NextChar(const QString& sText, int lPos, int lLen) const {
    const int length = lLen == 0 ? static_cast<int>(sText.size()) : lLen;
    if (lPos < 0 || lPos >= length || lPos >= sText.size()) return QString();
    return QString(sText[lPos]);
}

} // namespace ql

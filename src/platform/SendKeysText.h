#pragma once
// The key text of the SendKeys statement, read into keystrokes. Reading is separate from sending so
// that a bad text is refused before any key goes out, and so that tests see what a text means.

#include <QString>
#include <cstdint>
#include <vector>

namespace ql {

// One keystroke with the modifiers held around it.
struct KeyStroke {
    enum Modifier { Shift = 1, Ctrl = 2, Alt = 4 };
    int modifiers = 0;
    std::uint8_t vk = 0;    // a named key by its virtual-key code; 0 for a typed character
    char32_t character = 0; // the typed character when vk is 0
    bool operator==(const KeyStroke&) const = default;
};

// "+" Shift, "^" Ctrl, "%" Alt act on the next key, or on every key of a group in "( )"; "~" is
// Enter; "{NAME}" is a named key or, for one character, that character typed ("{+}", "{{}", "{}}");
// "{NAME n}" repeats it n times. Everything else is typed as it stands. Throws HostError, naming
// the position, on an unmatched bracket or brace, an unknown key name or a bad count.
std::vector<KeyStroke> parseSendKeys(const QString& keys);

// The text with every character that means something to SendKeys put in braces, so that it is
// typed as it stands: a file name such as "Game (Disk 1).atr".
QString SendKeysLiteral(const QString& text);

} // namespace ql

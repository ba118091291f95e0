#include "VirtualKeys.h"

#include <X11/keysym.h>
#include <array>
#include <utility>

namespace ql {

namespace {
// Codes that are not in a contiguous run below.
constexpr std::array<std::pair<std::uint8_t, unsigned long>, 42> kSpecial{{
    {8, XK_BackSpace},     {9, XK_Tab},         {13, XK_Return},
    {16, XK_Shift_L},      {17, XK_Control_L},  {18, XK_Alt_L},
    {19, XK_Pause},        {20, XK_Caps_Lock},  {27, XK_Escape},
    {32, XK_space},        {33, XK_Prior},      {34, XK_Next},
    {35, XK_End},          {36, XK_Home},       {37, XK_Left},
    {38, XK_Up},           {39, XK_Right},      {40, XK_Down},
    {45, XK_Insert},       {46, XK_Delete},     {186, XK_semicolon},
    {187, XK_equal},       {188, XK_comma},     {189, XK_minus},
    {190, XK_period},      {191, XK_slash},     {192, XK_grave},
    {219, XK_bracketleft}, {220, XK_backslash}, {221, XK_bracketright},
    {222, XK_apostrophe},  {42, XK_Print},      {44, XK_Print},
    {47, XK_Help},         {144, XK_Num_Lock},  {145, XK_Scroll_Lock},
    {106, XK_KP_Multiply}, {107, XK_KP_Add},    {109, XK_KP_Subtract},
    {110, XK_KP_Decimal},  {111, XK_KP_Divide},
}};
} // namespace

unsigned long keysymForVirtualKey(std::uint8_t vk) {
    if (vk >= 'A' && vk <= 'Z') return XK_a + (vk - 'A');
    if (vk >= '0' && vk <= '9') return XK_0 + (vk - '0');
    if (vk >= 112 && vk <= 135) return XK_F1 + (vk - 112);
    if (vk >= 96 && vk <= 105) return XK_KP_0 + (vk - 96);
    for (const auto& [code, sym] : kSpecial)
        if (code == vk) return sym;
    return 0;
}

std::uint8_t virtualKeyForKeysym(unsigned long keysym) {
    if (keysym >= XK_a && keysym <= XK_z) return static_cast<std::uint8_t>('A' + (keysym - XK_a));
    if (keysym >= XK_A && keysym <= XK_Z) return static_cast<std::uint8_t>('A' + (keysym - XK_A));
    if (keysym >= XK_0 && keysym <= XK_9) return static_cast<std::uint8_t>('0' + (keysym - XK_0));
    if (keysym >= XK_F1 && keysym <= XK_F24) return static_cast<std::uint8_t>(112 + (keysym - XK_F1));
    if (keysym >= XK_KP_0 && keysym <= XK_KP_9) return static_cast<std::uint8_t>(96 + (keysym - XK_KP_0));
    for (const auto& [code, sym] : kSpecial)
        if (sym == keysym) return code;
    return 0;
}

unsigned long keysymForCharacter(char32_t character) {
    switch (character) {
    case U'\n':
    case U'\r':
        return XK_Return;
    case U'\t':
        return XK_Tab;
    case U'\b':
        return XK_BackSpace;
    default:
        break;
    }
    if ((character >= 0x20 && character <= 0x7e) || (character >= 0xa0 && character <= 0xff))
        return character;
    return 0x1000000 | character;
}

int usLayoutKeyScan(char16_t c) {
    constexpr int shift = 0x100;
    if (c >= u'a' && c <= u'z') return 'A' + (c - u'a');
    if (c >= u'A' && c <= u'Z') return shift | ('A' + (c - u'A'));
    if (c >= u'0' && c <= u'9') return c;
    // The shifted digit row, from 1 to 0.
    constexpr char16_t digitRow[] = u"!@#$%^&*()";
    for (int i = 0; i < 10; ++i)
        if (c == digitRow[i]) return shift | (i == 9 ? '0' : '1' + i);
    // Punctuation keys: the plain character, the shifted one, the key's code.
    constexpr struct {
        char16_t plain, shifted;
        int vk;
    } punctuation[] = {{u';', u':', 186},  {u'=', u'+', 187}, {u',', u'<', 188}, {u'-', u'_', 189},
                       {u'.', u'>', 190},  {u'/', u'?', 191}, {u'`', u'~', 192}, {u'[', u'{', 219},
                       {u'\\', u'|', 220}, {u']', u'}', 221}, {u'\'', u'"', 222}};
    for (const auto& key : punctuation) {
        if (c == key.plain) return key.vk;
        if (c == key.shifted) return shift | key.vk;
    }
    switch (c) {
    case u' ':
        return 32;
    case u'\t':
        return 9;
    case u'\r':
    case u'\n':
        return 13;
    case u'\b':
        return 8;
    case 27:
        return 27;
    default:
        return -1;
    }
}

} // namespace ql

#include "VirtualKeys.h"

#include <X11/keysym.h>
#include <array>
#include <utility>

namespace ql {

namespace {
// Codes that are not in a contiguous run below.
constexpr std::array<std::pair<std::uint8_t, unsigned long>, 31> kSpecial{{
    {8, XK_BackSpace},    {9, XK_Tab},     {13, XK_Return},       {16, XK_Shift_L},    {17, XK_Control_L},
    {18, XK_Alt_L},       {19, XK_Pause},  {20, XK_Caps_Lock},    {27, XK_Escape},     {32, XK_space},
    {33, XK_Prior},       {34, XK_Next},   {35, XK_End},          {36, XK_Home},       {37, XK_Left},
    {38, XK_Up},          {39, XK_Right},  {40, XK_Down},         {45, XK_Insert},     {46, XK_Delete},
    {186, XK_semicolon},  {187, XK_equal}, {188, XK_comma},       {189, XK_minus},     {190, XK_period},
    {191, XK_slash},      {192, XK_grave}, {219, XK_bracketleft}, {220, XK_backslash}, {221, XK_bracketright},
    {222, XK_apostrophe},
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

} // namespace ql

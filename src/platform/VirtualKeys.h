#pragma once
#include <cstdint>

namespace ql {
// The X keysym for a Windows virtual-key code, or 0 when the code has none here.
unsigned long keysymForVirtualKey(std::uint8_t vk);
// The Windows virtual-key code for an X keysym, or 0.
std::uint8_t virtualKeyForKeysym(unsigned long keysym);
// The X keysym that types a character (Latin-1 as it stands, the rest by Unicode number).
unsigned long keysymForCharacter(char32_t character);
// The key scan of a character on a US keyboard, as Windows gives it: the virtual-key code in the low
// byte, 1 in the high byte when Shift is needed; -1 when the layout has no key for it. Used where
// no display can be asked.
int usLayoutKeyScan(char16_t character);
} // namespace ql

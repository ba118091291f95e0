#pragma once
#include <cstdint>

namespace ql {
// The X keysym for a Windows virtual-key code, or 0 when the code has none here.
unsigned long keysymForVirtualKey(std::uint8_t vk);
// The Windows virtual-key code for an X keysym, or 0.
std::uint8_t virtualKeyForKeysym(unsigned long keysym);
} // namespace ql

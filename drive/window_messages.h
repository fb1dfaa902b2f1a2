#pragma once
/// The window messages that driving answers, and the keys with a fixed meaning, by their classic numbers.

#include <cstdint>

namespace tavrik {

constexpr std::uint32_t kWmActivate = 0x0006, kWmPaint = 0x000F, kWmClose = 0x0010, kWmInitDialog = 0x0110, kWmCommand = 0x0111,
                        kWmKeyDown = 0x0100, kWmKeyUp = 0x0101, kWmTimer = 0x0113, kWmMouseMove = 0x0200,
                        kWmLButtonDown = 0x0201, kWmLButtonUp = 0x0202, kWmRButtonDown = 0x0204, kWmRButtonUp = 0x0205,
                        kWmMouseWheel = 0x020A;
constexpr std::uint64_t kWaInactive = 0, kWaActive = 1, kWaClickActive = 2;  // first parameter of kWmActivate
constexpr std::int32_t kVkReturn = 13, kVkEscape = 27;

/// A word of a message's parameter as a signed number.
inline std::int32_t SignedLowWord(std::uint64_t param) { return std::int16_t(std::uint16_t(param)); }
inline std::int32_t SignedHighWord(std::uint64_t param) { return std::int16_t(std::uint16_t(param >> 16)); }

}  // namespace tavrik

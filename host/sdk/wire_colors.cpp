#include "host/sdk/wire_colors.h"

#include <iterator>

namespace tavrik_host {
namespace {

constexpr DWORD Rgb(DWORD red, DWORD green, DWORD blue) { return red | green << 8 | blue << 16; }

// Clear colours that differ from what views say with theirs: white is selected, blue is locked, green is a car as a whole.
constexpr DWORD kColors[] = {
    Rgb(0x6E, 0x9F, 0xD0), Rgb(0xD8, 0x4A, 0x3A), Rgb(0xE6, 0xC2, 0x2E), Rgb(0xB4, 0x5C, 0xD2), Rgb(0x9A, 0x6B, 0x3C),
    Rgb(0xE8, 0x7C, 0xA8), Rgb(0xC0, 0x2C, 0x4C), Rgb(0x18, 0xA8, 0x9C), Rgb(0x8C, 0xB0, 0x28), Rgb(0xF0, 0x8C, 0x1E),
};

}  // namespace

DWORD WireColorOf(const Class_ID& id) {
    constexpr DWORD kSpread = 15;  // takes the helpers that a car is made of to colours of their own
    return kColors[(id.PartA() ^ id.PartB() * kSpread) % DWORD(std::size(kColors))];
}

}  // namespace tavrik_host

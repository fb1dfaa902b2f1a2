#include "host/wide_text.h"

#include <cstdint>

namespace tavrik_host {
namespace {

constexpr std::uint32_t kNoCharacter = 0xfffd;
constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;

bool IsSurrogate(std::uint32_t c) { return c >= 0xd800 && c < 0xe000; }

/// The character at `at`, which moves past it.
std::uint32_t NextWide(std::wstring_view text, std::size_t& at) {
    const auto unit = [&](std::size_t i) { return kWideIsUtf16 ? std::uint32_t(text[i]) & 0xffff : std::uint32_t(text[i]); };
    const std::uint32_t c = unit(at++);
    if (kWideIsUtf16 && c >= 0xd800 && c < 0xdc00 && at < text.size() && unit(at) >= 0xdc00 && unit(at) < 0xe000) {
        return 0x10000 + ((c - 0xd800) << 10) + (unit(at++) - 0xdc00);
    }
    return IsSurrogate(c) || c > 0x10ffff ? kNoCharacter : c;
}

/// Likewise. Each byte that begins no character is one that isn't.
std::uint32_t NextByte(std::string_view text, std::size_t& at) {
    const std::uint32_t head = std::uint8_t(text[at++]);
    if (head < 0x80) return head;
    const int more = head >= 0xf0 ? 3 : head >= 0xe0 ? 2 : 1;
    if (head < 0xc2 || head > 0xf4 || text.size() - at < std::size_t(more)) return kNoCharacter;
    std::uint32_t c = head & (0x3fu >> more);
    for (int i = 0; i < more; ++i) {
        const std::uint32_t next = std::uint8_t(text[at + std::size_t(i)]);
        if ((next & 0xc0) != 0x80) return kNoCharacter;
        c = c << 6 | (next & 0x3f);
    }
    constexpr std::uint32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    if (c < kLeast[more] || c > 0x10ffff || IsSurrogate(c)) return kNoCharacter;
    at += std::size_t(more);
    return c;
}

void AppendUtf8(std::string& out, std::uint32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += {char(0xc0 | c >> 6), char(0x80 | (c & 0x3f))};
    } else if (c < 0x10000) {
        out += {char(0xe0 | c >> 12), char(0x80 | (c >> 6 & 0x3f)), char(0x80 | (c & 0x3f))};
    } else {
        out += {char(0xf0 | c >> 18), char(0x80 | (c >> 12 & 0x3f)), char(0x80 | (c >> 6 & 0x3f)), char(0x80 | (c & 0x3f))};
    }
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) AppendUtf8(out, NextWide(text, at));
    return out;
}

std::wstring FromUtf8(std::string_view text) {
    std::wstring out;
    for (std::size_t at = 0; at < text.size();) {
        const std::uint32_t c = NextByte(text, at);
        if (c == 0) break;
        if (kWideIsUtf16 && c >= 0x10000) {
            out += {wchar_t(0xd800 + ((c - 0x10000) >> 10)), wchar_t(0xdc00 + ((c - 0x10000) & 0x3ff))};
        } else {
            out += wchar_t(c);
        }
    }
    return out;
}

}  // namespace tavrik_host

#include "plugin/wide_text.h"

#include <cstdint>
#include <map>

#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

void AppendUtf8(std::string& out, std::uint32_t code) {
    if (code < 0x80) {
        out += char(code);
    } else if (code < 0x800) {
        out += {char(0xC0 | (code >> 6)), char(0x80 | (code & 0x3F))};
    } else if (code < 0x10000) {
        out += {char(0xE0 | (code >> 12)), char(0x80 | (code >> 6 & 0x3F)), char(0x80 | (code & 0x3F))};
    } else {
        out += {char(0xF0 | (code >> 18 & 0x07)), char(0x80 | (code >> 12 & 0x3F)), char(0x80 | (code >> 6 & 0x3F)),
                char(0x80 | (code & 0x3F))};
    }
}

/// The character at `text`, which moves on behind it. Where wide characters have 16 bits, two of them may make one.
std::uint32_t NextCode(const MCHAR*& text) {
    const std::uint32_t first = std::uint32_t(*text++);
    if (sizeof(MCHAR) > 2 || first < 0xD800 || first > 0xDBFF) return first;
    const std::uint32_t second = std::uint32_t(*text);
    if (second < 0xDC00 || second > 0xDFFF) return '?';
    ++text;
    return 0x10000 + ((first - 0xD800) << 10 | (second - 0xDC00));
}

}  // namespace

std::wstring Widen(std::string_view text) { return {text.begin(), text.end()}; }

std::string Narrow(const MCHAR* text) {
    std::string result;
    if (text == nullptr) return result;
    while (*text != 0) AppendUtf8(result, NextCode(text));
    return result;
}

const MCHAR* WideText(std::string_view text) {
    // Never freed: the host may look at a name until its very end.
    static auto& texts = *new std::map<std::string, std::wstring, std::less<>>;
    const auto found = texts.find(text);
    if (found != texts.end()) return found->second.c_str();
    return texts.emplace(std::string(text), Widen(text)).first->second.c_str();
}

const MCHAR* StringOf(int id) { return WideText(tavrik::ParamString(id)); }

}  // namespace tavrik_plugin

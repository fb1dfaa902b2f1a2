#include "drive/key_names.h"

#include <charconv>
#include <span>
#include <system_error>

namespace tavrik {
namespace {

struct NamedCode {
    std::int32_t code;
    std::string_view name;
};

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::int32_t kFirstLetter = 65, kLastLetter = 90, kFirstDigit = 48, kLargestKeyCode = 0xFF;

constexpr NamedCode kKeyNames[] = {
    {38, "UP"},  {40, "DN"},  {37, "LF"},  {39, "RT"},                                // arrows
    {112, "F1"}, {113, "F2"}, {114, "F3"}, {115, "F4"},  {116, "F5"},  {117, "F6"},   //
    {118, "F7"}, {119, "F8"}, {120, "F9"}, {121, "F10"}, {122, "F11"}, {123, "F12"},  //
    {42, "PS"},  {145, "SL"},                                                         // print, scroll lock
    {8, "BS"},   {32, "SP"},                                                          // backspace, space
    {45, "IN"},  {36, "HO"},  {34, "PDN"}, {33, "PUP"},  {46, "DE"},                  //
    {144, "NL"},                                                                      // num lock
    {96, "N0"},  {97, "N1"},  {98, "N2"},  {99, "N3"},   {100, "N4"},                 // number pad
    {101, "N5"}, {102, "N6"}, {103, "N7"}, {104, "N8"},  {105, "N9"},                 //
    {13, "EN"},  {16, "SH"},  {161, "RS"}, {9, "TB"},    {20, "CL"},                  // enter, shifts, tab, caps lock
    {162, "LC"}, {163, "RC"}, {164, "LA"}, {165, "RA"},  {91, "LW"},   {92, "RW"},    // control, alt, system
};

// Typed, never shown. ESC can't be bound, yet a script of events may press it.
constexpr NamedCode kLongKeyNames[] = {
    {40, "DOWN"},   {37, "LEFT"}, {39, "RIGHT"}, {8, "BACKSPACE"}, {32, "SPACE"}, {45, "INSERT"}, {36, "HOME"},
    {35, "END"},    {34, "PGDN"}, {33, "PGUP"},  {46, "DELETE"},   {13, "ENTER"}, {16, "SHIFT"},  {34, "PAGEDOWN"},
    {33, "PAGEUP"}, {9, "TAB"},   {17, "CTRL"},  {18, "ALT"},      {27, "ESC"},
};

constexpr NamedCode kButtonNames[] = {{4096, "A"}, {8192, "B"}, {16384, "X"}, {32768, "Y"}, {256, "LB"}, {512, "RB"}};

char Upper(char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; }

/// @param name  in upper case
bool SameName(std::string_view typed, std::string_view name) {
    if (typed.size() != name.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (Upper(typed[i]) != name[i]) return false;
    }
    return true;
}

std::optional<std::int32_t> FindCode(std::span<const NamedCode> rows, std::string_view typed) {
    for (const NamedCode& row : rows) {
        if (SameName(typed, row.name)) return row.code;
    }
    return std::nullopt;
}

/// The whole of `digits` as a number, or nothing.
std::optional<std::int32_t> ParseNumber(std::string_view digits, int base) {
    std::int32_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

}  // namespace

std::string_view KeyName(std::int32_t code) {
    if (code >= kFirstLetter && code <= kLastLetter) return kLetters.substr(std::size_t(code - kFirstLetter), 1);
    for (const NamedCode& row : kKeyNames) {
        if (row.code == code) return row.name;
    }
    return "UNK";
}

std::string ButtonName(std::int32_t value) {
    for (const NamedCode& row : kButtonNames) {
        if (row.code == value) return std::string(row.name);
    }
    return std::to_string(value);
}

std::optional<std::int32_t> KeyCode(std::string_view name) {
    if (name.size() == 1) {
        const char key = Upper(name[0]);
        if (key >= 'A' && key <= 'Z') return kFirstLetter + (key - 'A');
        if (key >= '0' && key <= '9') return kFirstDigit + (key - '0');
        return std::nullopt;
    }
    if (const auto code = FindCode(kKeyNames, name)) return code;
    if (const auto code = FindCode(kLongKeyNames, name)) return code;
    if (!SameName(name.substr(0, 2), "0X")) return std::nullopt;
    const auto code = ParseNumber(name.substr(2), 16);
    return code && *code >= 0 && *code <= kLargestKeyCode ? code : std::nullopt;
}

std::optional<std::int32_t> ButtonCode(std::string_view name) {
    if (const auto value = FindCode(kButtonNames, name)) return value;
    return ParseNumber(name, 10);
}

}  // namespace tavrik

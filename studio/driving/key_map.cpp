#include "studio/driving/key_map.h"

#include <linux/input-event-codes.h>

#include <Qt>
#include <iterator>

namespace tavrik_studio {
namespace {

constexpr std::int32_t kShift = 16, kControl = 17, kAlt = 18;
constexpr std::int32_t kPadDigit = 96;

/// A key that is the same key under every layout.
struct NamedKey {
    int key;
    VirtualKey virtualKey;
};
constexpr NamedKey kNamedKeys[] = {
    {Qt::Key_Backspace, {8}},    {Qt::Key_Tab, {9}},     {Qt::Key_Backtab, {9}}, {Qt::Key_Clear, {12}},
    {Qt::Key_Return, {13}},      {Qt::Key_Enter, {13}},  {Qt::Key_Pause, {19}},  {Qt::Key_CapsLock, {20}},
    {Qt::Key_Escape, {27}},      {Qt::Key_Space, {32}},  {Qt::Key_PageUp, {33}}, {Qt::Key_PageDown, {34}},
    {Qt::Key_End, {35}},         {Qt::Key_Home, {36}},   {Qt::Key_Left, {37}},   {Qt::Key_Up, {38}},
    {Qt::Key_Right, {39}},       {Qt::Key_Down, {40}},   {Qt::Key_Print, {44}},  {Qt::Key_SysReq, {44}},
    {Qt::Key_Insert, {45}},      {Qt::Key_Delete, {46}}, {Qt::Key_Menu, {93}},   {Qt::Key_NumLock, {144}},
    {Qt::Key_ScrollLock, {145}},
};

/// A key by its place.
struct PlacedKey {
    int place;  // the kernel's code
    VirtualKey virtualKey;
};
constexpr PlacedKey kPlacedKeys[] = {
    {KEY_Q, {'Q'}},
    {KEY_W, {'W'}},
    {KEY_E, {'E'}},
    {KEY_R, {'R'}},
    {KEY_T, {'T'}},
    {KEY_Y, {'Y'}},
    {KEY_U, {'U'}},
    {KEY_I, {'I'}},
    {KEY_O, {'O'}},
    {KEY_P, {'P'}},
    {KEY_A, {'A'}},
    {KEY_S, {'S'}},
    {KEY_D, {'D'}},
    {KEY_F, {'F'}},
    {KEY_G, {'G'}},
    {KEY_H, {'H'}},
    {KEY_J, {'J'}},
    {KEY_K, {'K'}},
    {KEY_L, {'L'}},
    {KEY_Z, {'Z'}},
    {KEY_X, {'X'}},
    {KEY_C, {'C'}},
    {KEY_V, {'V'}},
    {KEY_B, {'B'}},
    {KEY_N, {'N'}},
    {KEY_M, {'M'}},  //
    {KEY_1, {'1'}},
    {KEY_2, {'2'}},
    {KEY_3, {'3'}},
    {KEY_4, {'4'}},
    {KEY_5, {'5'}},
    {KEY_6, {'6'}},
    {KEY_7, {'7'}},
    {KEY_8, {'8'}},
    {KEY_9, {'9'}},
    {KEY_0, {'0'}},  //
    {KEY_SEMICOLON, {186}},
    {KEY_EQUAL, {187}},
    {KEY_COMMA, {188}},
    {KEY_MINUS, {189}},
    {KEY_DOT, {190}},
    {KEY_SLASH, {191}},
    {KEY_GRAVE, {192}},
    {KEY_LEFTBRACE, {219}},
    {KEY_BACKSLASH, {220}},
    {KEY_RIGHTBRACE, {221}},
    {KEY_APOSTROPHE, {222}},
    {KEY_102ND, {226}},
    {KEY_KPASTERISK, {106}},
    {KEY_KPPLUS, {107}},
    {KEY_KPMINUS, {109}},
    {KEY_KPSLASH, {111}},
    {KEY_LEFTSHIFT, {16}},
    {KEY_RIGHTSHIFT, {161, kShift}},
    {KEY_LEFTCTRL, {162, kControl}},
    {KEY_RIGHTCTRL, {163, kControl}},
    {KEY_LEFTALT, {164, kAlt}},
    {KEY_RIGHTALT, {165, kAlt}},
    {KEY_LEFTMETA, {91}},
    {KEY_RIGHTMETA, {92}},
};

/// Where the place isn't told.
constexpr NamedKey kKeysBySign[] = {
    {Qt::Key_Shift, {16}},       {Qt::Key_Control, {162, kControl}},
    {Qt::Key_Alt, {164, kAlt}},  {Qt::Key_AltGr, {165, kAlt}},
    {Qt::Key_Super_L, {91}},     {Qt::Key_Meta, {91}},
    {Qt::Key_Super_R, {92}},     {Qt::Key_Semicolon, {186}},
    {Qt::Key_Colon, {186}},      {Qt::Key_Equal, {187}},
    {Qt::Key_Plus, {187}},       {Qt::Key_Comma, {188}},
    {Qt::Key_Less, {188}},       {Qt::Key_Minus, {189}},
    {Qt::Key_Underscore, {189}}, {Qt::Key_Period, {190}},
    {Qt::Key_Greater, {190}},    {Qt::Key_Slash, {191}},
    {Qt::Key_Question, {191}},   {Qt::Key_QuoteLeft, {192}},
    {Qt::Key_AsciiTilde, {192}}, {Qt::Key_BracketLeft, {219}},
    {Qt::Key_BraceLeft, {219}},  {Qt::Key_Backslash, {220}},
    {Qt::Key_Bar, {220}},        {Qt::Key_BracketRight, {221}},
    {Qt::Key_BraceRight, {221}}, {Qt::Key_Apostrophe, {222}},
    {Qt::Key_QuoteDbl, {222}},
};
constexpr NamedKey kPadSigns[] = {{Qt::Key_Asterisk, {106}}, {Qt::Key_Plus, {107}},  {Qt::Key_Minus, {109}},
                                  {Qt::Key_Period, {110}},   {Qt::Key_Comma, {110}}, {Qt::Key_Slash, {111}}};

template <std::size_t kCount>
const VirtualKey* FindKey(const NamedKey (&rows)[kCount], int key) {
    for (const NamedKey& row : rows) {
        if (row.key == key) return &row.virtualKey;
    }
    return nullptr;
}

const VirtualKey* FindPlace(std::uint32_t scanCode) {
    constexpr std::uint32_t kScanOffset = 8;
    for (const PlacedKey& row : kPlacedKeys) {
        if (std::uint32_t(row.place) + kScanOffset == scanCode) return &row.virtualKey;
    }
    return nullptr;
}

}  // namespace

VirtualKey VirtualKeyOf(std::uint32_t scanCode, int key, bool keypad) {
    if (const VirtualKey* const named = FindKey(kNamedKeys, key)) return *named;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return {112 + (key - Qt::Key_F1)};
    if (keypad && key >= Qt::Key_0 && key <= Qt::Key_9) return {kPadDigit + (key - Qt::Key_0)};
    if (keypad) {
        if (const VirtualKey* const sign = FindKey(kPadSigns, key)) return *sign;
    }
    if (const VirtualKey* const placed = FindPlace(scanCode)) return *placed;
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) return {key};
    if (const VirtualKey* const sign = FindKey(kKeysBySign, key)) return *sign;
    return {};
}

}  // namespace tavrik_studio

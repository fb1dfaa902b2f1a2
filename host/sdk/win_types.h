#pragma once
/// The few names of the window system that the host's classes are written in. Widths are those of Windows: a ULONG has 32 bits.

#include <cstdint>

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using USHORT = std::uint16_t;
using DWORD = std::uint32_t;
using ULONG = std::uint32_t;
using LONG = std::int32_t;
using UINT = std::uint32_t;
using COLORREF = std::uint32_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using INT_PTR = std::intptr_t;
using LRESULT = std::intptr_t;
using LPVOID = void*;

namespace tavrik_host {
class PanelWindow;
class LoadedLibrary;
}  // namespace tavrik_host

/// A page of the command panel, or one control on it.
using HWND = tavrik_host::PanelWindow*;
/// A loaded plug-in library.
using HINSTANCE = tavrik_host::LoadedLibrary*;

using DLGPROC = INT_PTR (*)(HWND, UINT, WPARAM, LPARAM);

#define TRUE 1
#define FALSE 0

constexpr UINT WM_DESTROY = 2, WM_INITDIALOG = 272, WM_COMMAND = 273;
constexpr UINT CC_SPINNER_BUTTONUP = 1626;  // high word of the first parameter: whether the value was taken
constexpr WORD CBN_SELCHANGE = 1, BN_CLICKED = 0;
constexpr UINT CB_ADDSTRING = 0x143, CB_GETCURSEL = 0x147, CB_RESETCONTENT = 0x14B, CB_SETCURSEL = 0x14E;
constexpr int GWLP_USERDATA = -21;

constexpr WORD LOWORD(std::uintptr_t value) { return WORD(value & 0xffff); }
constexpr WORD HIWORD(std::uintptr_t value) { return WORD((value >> 16) & 0xffff); }
constexpr WPARAM MAKEWPARAM(WORD low, WORD high) { return WPARAM(low) | WPARAM(high) << 16; }

/// A resource's number in the place of its name.
// NOLINTNEXTLINE(performance-no-int-to-ptr): a number is what it is.
inline const wchar_t* MAKEINTRESOURCEW(int id) { return reinterpret_cast<const wchar_t*>(std::uintptr_t(WORD(id))); }

// What plug-ins do with the controls of their pages. Where a library keeps to itself what its templates hold, a page makes a
// control when it is first asked for.
HWND GetDlgItem(HWND page, int control);
BOOL EnableWindow(HWND window, BOOL enable);
BOOL IsWindowEnabled(HWND window);
BOOL SetWindowTextW(HWND window, const wchar_t* text);
std::intptr_t SetWindowLongPtrW(HWND window, int index, std::intptr_t value);
std::intptr_t GetWindowLongPtrW(HWND window, int index);
LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

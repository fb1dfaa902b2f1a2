#pragma once
/// How pages come to the command panel and leave it: what the host's own interface and the parameter blocks call.

#include "host/sdk/dialog_template.h"
#include "host/sdk/panels.h"

namespace tavrik_host {

// The bodies of the calls of the same kind in `Interface`.
HWND AddPage(HINSTANCE instance, const MCHAR* dlgTemplate, DLGPROC proc, const MCHAR* title, LPARAM param, DWORD rollUpFlags,
             int category);
void DeletePage(HWND page);
void RegisterPage(HWND page);
/// @return whether it was registered
int UnregisterPage(HWND page);

/// Opens a page for each rollout that the table of `block` declares, in its order.
void OpenMapPages(IParamBlock2& block);
/// Closes them, if they are open; their procedures end.
void CloseMapPages(IParamBlock2& block);
/// Puts `proc` (or none) on the open page of a block with this table, and lets it set the page up. Without such a page nothing
/// happens.
void SetPageProc(const ParamBlockDesc2& desc, MapID map, ParamMap2UserDlgProc* proc);
/// @return null unless its page is open
IParamMap2* OpenMap(const IParamBlock2& block, MapID map);

/// Finds the text of a library's string table entry in the place of the library's own answer; null brings that back. Titles
/// from string tables stay empty where a library keeps its strings to itself.
using LibraryString = std::wstring (*)(HINSTANCE, int);
void SetLibraryString(LibraryString find);

// Resources of a loaded library. Null where it has none, or no such one.
const MCHAR* FindResourceString(HINSTANCE library, int id);
const DialogTemplate* FindResourceDialog(HINSTANCE library, int number);

/// Something changed that a panel may show.
void PanelChanged();
/// Lets a pick button of a page wait for a node for its parameter, or ends that.
void TogglePicking(PanelWindow& page, PanelWindow& button, ParamID id);
/// Ends the pick mode of a page that is about to go.
void EndPicking(const PanelWindow& page);
/// @return null where the page is closed
IParamBlock2* BlockOfPage(const PanelWindow& page);

/// How often blocks with this table asked for a fresh look at their values, since the start of the process.
int InvalidateCount(const ParamBlockDesc2& desc);
void CountInvalidate(const ParamBlockDesc2& desc);

/// Spinners that somebody got and has not released.
int HeldSpinners();
/// Buttons likewise.
int HeldButtons();

}  // namespace tavrik_host

#pragma once
/// The command panel as data: the pages that the selected object has opened, and their controls. Whoever shows it, or presses
/// its buttons, works on this.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/sdk/iparamm2.h"
#include "host/sdk/max.h"

namespace tavrik_host {

struct DialogTemplate;

/// A page, or a control on one.
class PanelWindow {
 public:
    std::wstring text;  // title of a page
    bool enabled = true;
    int id = 0;                       // of a control
    PanelWindow* page = nullptr;      // of a control: where it stands
    std::vector<std::wstring> items;  // of a combo box
    int selected = -1;                // likewise
    std::intptr_t userData = 0;
    bool isCheckButton = false, checked = false;  // of a button
    COLORREF highlight = 0;                       // of a check button that is pressed

    // Of a page.
    int dialog = 0;                                        // template
    const DialogTemplate* layout = nullptr;                // what the template holds, where its library tells
    int titleString = 0;                                   // the title's entry in the library's string table
    int category = ROLLUP_CAT_STANDARD;                    // lower ones stand further down
    IParamMap2* map = nullptr;                             // null for a page without parameters
    DLGPROC proc = nullptr;                                // of such a page
    ParamMap2UserDlgProc* userProc = nullptr;              // of a page with parameters
    bool registered = false;                               // with the host's message loop
    std::map<int, std::unique_ptr<PanelWindow>> controls;  // of the layout; without one, those that somebody asked for
};

/// Selects a node and opens the pages of its object, as a click on it does. Another node's pages close first.
void OpenPanel(INode& node);
void ClosePanel();
/// Whose pages are open, or null.
INode* PanelNode();
/// The open pages from top to bottom.
std::vector<PanelWindow*> Pages();
/// The page of a map of the open object's block. @return null when there is none
PanelWindow* PageOf(MapID map);
/// Presses a button on a page: its procedure gets the command. A parameter that the button shows is the caller's to set, and
/// before this: procedures read it. A disabled control can't be used.
void PressControl(PanelWindow& page, int control);
/// Chooses an item of a combo box: its page's procedure gets the command.
void ChooseItem(PanelWindow& page, int control, int item);

/// Picks a node for a parameter as its pick button does: a validator may refuse it.
/// @param node  null clears the parameter
/// @return whether it was taken
bool PickNode(IParamBlock2& block, ParamID id, INode* node);

}  // namespace tavrik_host

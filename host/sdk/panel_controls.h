#pragma once
/// The controls of the open pages with their values, for whoever draws the command panel or works it by hand. Read it, draw it,
/// and read it again when `PanelRevision` has moved on.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/sdk/dialog_template.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/panels.h"

namespace tavrik_host {

struct PanelRadio {
    int id;
    std::wstring label;
    bool enabled;
};

/// A control as it shows now. What doesn't belong to its kind stays as it is here.
struct PanelControl {
    ControlKind kind = ControlKind::StaticText;
    int id = 0;                       // its number on the page: of a spinner the spinner's, of radio buttons the first one's
    int edit = 0, labelId = 0;        // numbers of a spinner's edit field and of the label; 0: none
    std::wstring label, text, group;  // beside it, on it, and of the box around it. A picked node's or map's name is on it
    // Greyed where false. Label and edit field are told apart because procedures grey them one by one.
    bool enabled = true, labelEnabled = true, editEnabled = true;

    // The parameter that it shows. Buttons that procedures answer have none.
    std::optional<ParamID> param;
    int entry = 0;
    std::wstring paramName;
    bool isAnimated = false;  // it has keys: typing sets one at the current time

    /// At the current time and as the parameter keeps it. Spinner: the number; check box: 0 or 1; radio buttons and combo box:
    /// the place of what is chosen, -1 for nothing.
    double value = 0.0;

    // Of a spinner.
    double low = 0.0, high = 0.0;  // what can be typed or spun; a value may be beyond, where none has touched it
    float scale = SPIN_AUTOSCALE;  // of one click
    EditSpinnerType editType = EDITTYPE_FLOAT;
    UnitKind unit = UnitKind::Plain;

    std::vector<PanelRadio> buttons;  // of a radio group
    std::vector<std::wstring> items;  // of a combo box
    INode* node = nullptr;            // of a pick button
    Texmap* map = nullptr;            // of a map button
    bool checked = false;             // of a check button; of a pick button while it waits for a click on a node
    COLORREF highlight = 0;           // of a pressed check button
};

struct PanelPage {
    PanelWindow* window = nullptr;
    std::wstring title;
    std::vector<PanelControl> controls;  // from top to bottom
};

/// The open pages from top to bottom with all their controls.
std::vector<PanelPage> ReadPanel();
std::vector<PanelControl> ReadControls(PanelWindow& page);
/// The control that `control` is, or is a part of: edit field, label, single radio button. @return none for another number
std::optional<PanelControl> ReadControl(PanelWindow& page, int control);

// What a user does. Each answers false, with nothing changed, where the page is closed, the control isn't there, is greyed or
// can't do that. Procedures hear of everything, and may close the page.

/// Types a number, checks a box (0, 1), chooses a radio button or an item of a combo box by its place. A number comes to lie
/// within the limits, and of a whole number's spinner the nearest whole one counts; what isn't a number is refused. A spinner
/// that is greyed may have an edit field that isn't: it is set by that one's number.
bool SetControl(PanelWindow& page, int control, double value);
/// Clicks a spinner's upper arrow so often, or the lower one where `clicks` is negative.
bool SpinControl(PanelWindow& page, int control, int clicks);
/// Clicks a button, a check box, or one of several radio buttons by its own number. A pick button then waits for `ClickNode`
/// (see picking.h), or stops waiting.
bool ClickControl(PanelWindow& page, int control);
/// Gives a pick button its node without the mouse. False also where its validator refuses.
/// @param node  null clears it
bool PickForControl(PanelWindow& page, int control, INode* node);
/// Gives a map button its map. @param map  null clears it
bool SetControlMap(PanelWindow& page, int control, Texmap* map);

/// The lengths of one click of a spinner that finds its own scale.
double ClickOf(const PanelControl& spinner);

/// Moves on with everything that may make a panel look different: pages, controls, parameters, time, units, names.
unsigned long PanelRevision();
/// Called after each such step, from wherever it was made: to be noted, and acted upon later. Null: nobody.
void SetPanelListener(std::function<void()> listener);

/// Opens the pages of a node's controller in the place of its object's. @return false where it has none, with nothing changed
bool OpenMotionPanel(INode& node);

/// A dialog of any loaded library, such as one that is a window of its own. @return null for an unknown one
const DialogTemplate* FindDialogTemplate(int number);

}  // namespace tavrik_host

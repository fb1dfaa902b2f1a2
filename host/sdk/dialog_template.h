#pragma once
/// What a plug-in library carries along beside its code: the texts of its string table, and what its dialogs hold. Windows
/// keeps both in the library's file; here the library hands them out itself.

#include <vector>

#include "maxtypes.h"

namespace tavrik_host {

enum class ControlKind {
    StaticText,
    EditField,  // without a spinner
    Spinner,    // with its edit field
    CheckBox,
    RadioGroup,
    Button,
    CheckButton,  // a button that may stay pressed
    PickButton,   // shows a node, and picks another
    MapButton,    // shows a map
    ComboBox,
    Frame,   // a place that is drawn into
    Bitmap,  // a picture from the library; its number is the resource's
};

/// What a number stands for.
enum class UnitKind {
    Plain,
    Length,  // scene units
    Time,    // ticks
    Angle,   // degrees
};

/// One of several buttons of which one is chosen.
struct DialogRadio {
    int id;
    const MCHAR* label;
};

/// A control with what belongs to it. A line break in a text is a line break on the dialog. Numbers are 0 where there is none.
struct DialogControl {
    ControlKind kind = ControlKind::StaticText;
    int id = 0;                        // of a spinner: the spinner's; of radio buttons: the first one's
    const MCHAR* label = L"";          // beside it
    const MCHAR* text = L"";           // on it: of a button, a static text
    const MCHAR* group = L"";          // title of the box that it stands in
    int edit = 0;                      // of a spinner: its edit field
    int labelId = 0;                   // of the label
    UnitKind unit = UnitKind::Plain;   // of a number
    std::vector<DialogRadio> buttons;  // in the order of their values
};

struct DialogTemplate {
    int number = 0;
    const MCHAR* title = L"";             // of a window of its own; pages have theirs from elsewhere
    int width = 0, height = 0;            // of such a window, dialog units
    std::vector<DialogControl> controls;  // from top to bottom
};

/// What a library's `LibResources` answers. All that these hand out stays as long as the library.
struct LibraryResources {
    /// @return null for an entry that isn't there
    const MCHAR* (*FindString)(int id);
    /// @return null for a template that isn't there
    const DialogTemplate* (*FindDialog)(int number);
};

/// Of the function `LibResources`, which a library may export. It is called once, before any other: it tells the library its
/// own handle.
using LibResourcesCall = const LibraryResources*(HINSTANCE module);

}  // namespace tavrik_host

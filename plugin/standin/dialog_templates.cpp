#include "plugin/standin/dialog_templates.h"

#include <algorithm>

#include "drive/controller_setup.h"
#include "drive/damper_stand.h"
#include "plugin/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

using tavrik::ParamControl;
using tavrik::ParamRow;
using tavrik::ParamTable;
using tavrik_host::ControlKind;
using tavrik_host::DialogControl;
using tavrik_host::DialogTemplate;
using tavrik_host::UnitKind;

using Dialogs = std::vector<DialogTemplate>;

DialogControl Labelled(ControlKind kind, int id, std::string_view label) {
    DialogControl control;
    control.kind = kind;
    control.id = id;
    control.label = WideText(label);
    return control;
}

/// A button or a static text, which say what they are themselves.
DialogControl Inscribed(ControlKind kind, int id, std::string_view text) {
    DialogControl control;
    control.kind = kind;
    control.id = id;
    control.text = WideText(text);
    return control;
}
DialogControl Button(int id, std::string_view text) { return Inscribed(ControlKind::Button, id, text); }

// ------------------------------------------------------------------------------------------------------ pages of parameters

void AddSpinners(DialogTemplate& dialog, const ParamRow& row) {
    const ParamControl& c = row.control;
    for (std::int32_t entry = 0; entry < row.entries; ++entry) {
        // Several spinners have names of their own in a box with the parameter's.
        const bool isPart = c.partLabelCount > 0;
        DialogControl spinner = Labelled(ControlKind::Spinner, c.ids[2 * entry + 1], isPart ? c.partLabels[entry] : c.label);
        spinner.edit = c.ids[2 * entry];
        spinner.labelId = c.labelId;
        if (isPart) spinner.group = WideText(c.label);
        dialog.controls.push_back(spinner);
    }
}

void AddRadio(DialogTemplate& dialog, const ParamRow& row) {
    const ParamControl& c = row.control;
    DialogControl group = Labelled(ControlKind::RadioGroup, c.ids[0], c.label);
    for (std::int32_t i = 0; i < c.idCount; ++i) group.buttons.push_back({c.ids[i], WideText(c.partLabels[i])});
    dialog.controls.push_back(group);
}

void AddRow(DialogTemplate& dialog, const ParamRow& row) {
    const ParamControl& c = row.control;
    switch (c.kind) {
        case tavrik::ControlKind::None:
            return;
        case tavrik::ControlKind::Spinner:
            return AddSpinners(dialog, row);
        case tavrik::ControlKind::Radio:
            return AddRadio(dialog, row);
        case tavrik::ControlKind::CheckBox:
            dialog.controls.push_back(Labelled(ControlKind::CheckBox, c.ids[0], c.label));
            return;
        case tavrik::ControlKind::PickButton:
            dialog.controls.push_back(Labelled(ControlKind::PickButton, c.ids[0], c.label));
            return;
        case tavrik::ControlKind::MapButton:
            dialog.controls.push_back(Labelled(ControlKind::MapButton, c.ids[0], c.label));
            return;
    }
}

/// The controls of the parameters in the order in which the host lists those.
void AddPages(Dialogs& dialogs, const ParamTable& table) {
    for (std::size_t map = 0; map < table.rollouts.size(); ++map) {
        DialogTemplate dialog;
        dialog.number = table.rollouts[map].dialog;
        for (const ParamRow& row : table.rows) {
            if (row.rollout == std::int32_t(map)) AddRow(dialog, row);
        }
        dialogs.push_back(std::move(dialog));
    }
}

DialogTemplate& DialogOf(Dialogs& dialogs, int number) { return *std::ranges::find(dialogs, number, &DialogTemplate::number); }

/// Puts `control` below the one with the number `above`, or on top where that is 0.
void Insert(DialogTemplate& dialog, int above, const DialogControl& control) {
    auto& controls = dialog.controls;
    const auto at = std::ranges::find(controls, above, &DialogControl::id);
    controls.insert(above == 0 || at == controls.end() ? controls.begin() : at + 1, control);
}

/// What shows no parameter: procedures answer it.
void AddButtons(Dialogs& dialogs) {
    DialogTemplate& setup = DialogOf(dialogs, 130);
    setup.controls.push_back(Button(1102, "Update (Lock Components)"));
    setup.controls.push_back(Button(1103, "Reset (Unlock Components)"));
    Insert(DialogOf(dialogs, 131), 1022, Button(1023, "Update Surface"));
    DialogOf(dialogs, 132).controls.push_back(Button(1107, "Reset Animation"));
    DialogOf(dialogs, 124).controls.push_back(Button(1015, "Drive"));

    DialogTemplate& suspension = DialogOf(dialogs, 126);
    Insert(suspension, 1104, Labelled(ControlKind::ComboBox, 1110, "Presets:"));
    Insert(suspension, 1040, Button(1013, "Additional Damper Settings"));

    DialogControl master = Button(1116, "Setup (Lock Components)");  // until its procedure writes the car's name on it
    master.label = WideText("Tavrik Object:");
    Insert(DialogOf(dialogs, 134), 0, master);
    DialogOf(dialogs, 116).controls.push_back(Inscribed(ControlKind::StaticText, 0, "Tavrik Controller"));
}

/// Numbers that are more than their spinners tell.
void SetUnits(Dialogs& dialogs) {
    for (DialogControl& control : DialogOf(dialogs, 124).controls) {
        if (control.id == 1081) control.unit = UnitKind::Angle;
    }
}

// ----------------------------------------------------------------------------------------------------------- the other dialogs

void AddBindings(DialogTemplate& dialog, std::span<const tavrik::BindingRow> rows, std::string_view group) {
    for (const tavrik::BindingRow& row : rows) {
        DialogControl button = Labelled(ControlKind::Button, row.control, row.label);
        button.group = WideText(group);
        dialog.controls.push_back(button);
    }
}

void FillControllerSetup(DialogTemplate& dialog) {
    AddBindings(dialog, tavrik::KeyboardBindings(), tavrik::kKeyboardTitle);
    for (const tavrik::ChoiceRow& row : tavrik::ControlChoices()) {
        DialogControl combo = Labelled(ControlKind::ComboBox, row.control, row.label);
        combo.labelId = row.labelId;
        combo.group = WideText(tavrik::kGamepadTitle);
        dialog.controls.push_back(combo);
    }
    AddBindings(dialog, tavrik::GamepadBindings(), tavrik::kGamepadTitle);
    dialog.controls.push_back(Button(tavrik::kSaveControl, tavrik::kSaveText));
    dialog.controls.push_back(Button(tavrik::kResetControl, tavrik::kResetText));
}

DialogTemplate About() {
    DialogTemplate dialog;
    dialog.number = 115;
    dialog.controls.push_back(Inscribed(ControlKind::StaticText, 1108, ""));
    return dialog;
}

DialogTemplate DamperStandDialog() {
    DialogTemplate dialog;
    dialog.number = tavrik::kStandDialog;
    dialog.title = WideText(tavrik::kStandTitle);
    dialog.width = 436;
    dialog.height = 268;
    dialog.controls.push_back(Inscribed(ControlKind::Frame, tavrik::kStandFrameControl, ""));
    for (const tavrik::StandRow& row : tavrik::StandRows()) {
        DialogControl spinner = Labelled(ControlKind::Spinner, row.spinner, row.label);
        spinner.edit = row.edit;
        spinner.group = WideText(row.group);
        dialog.controls.push_back(spinner);
    }
    dialog.controls.push_back(Inscribed(ControlKind::Bitmap, tavrik::kStandBitmap, ""));
    dialog.controls.push_back(Button(tavrik::kStandSetupControl, tavrik::kStandSetupText));
    dialog.controls.push_back(Button(tavrik::kStandCancelControl, tavrik::kStandCancelText));
    return dialog;
}

/// A window that is painted all over.
DialogTemplate PaintedWindow(int number, int width, int height) {
    DialogTemplate dialog;
    dialog.number = number;
    dialog.width = width;
    dialog.height = height;
    return dialog;
}

Dialogs MakeDialogs() {
    Dialogs dialogs;
    for (const ParamTable& table : tavrik::ParamTables()) AddPages(dialogs, table);
    AddButtons(dialogs);
    SetUnits(dialogs);
    FillControllerSetup(DialogOf(dialogs, 142));
    dialogs.push_back(About());
    dialogs.push_back(DamperStandDialog());
    dialogs.push_back(PaintedWindow(123, 200, 70));  // of a drive
    dialogs.push_back(PaintedWindow(140, 150, 25));  // that asks for a key
    return dialogs;
}

}  // namespace

const DialogTemplate* FindDialog(int number) {
    static const Dialogs& dialogs = *new Dialogs(MakeDialogs());  // never freed: the host's pages may outlive our statics
    const auto found = std::ranges::find(dialogs, number, &DialogTemplate::number);
    return found == dialogs.end() ? nullptr : &*found;
}

}  // namespace tavrik_plugin

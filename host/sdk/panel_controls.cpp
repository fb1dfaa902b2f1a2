#include "host/sdk/panel_controls.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "host/sdk/imtl.h"
#include "host/sdk/panel_pages.h"
#include "host/sdk/param_block.h"
#include "host/sdk/param_types.h"

namespace tavrik_host {
namespace {

// ------------------------------------------------------------------------------------------------------ what a page should
// hold

ControlKind KindOf(const ParamControlDef& ui) {
    switch (ui.type) {
        case TYPE_RADIO:
            return ControlKind::RadioGroup;
        case TYPE_SINGLECHEKBOX:
            return ControlKind::CheckBox;
        case TYPE_PICKNODEBUTTON:
            return ControlKind::PickButton;
        case TYPE_TEXMAPBUTTON:
            return ControlKind::MapButton;
        default:
            return ControlKind::Spinner;
    }
}

/// What a page holds as far as parameters tell, under their own names.
std::vector<DialogControl> ControlsOfTable(const ParamBlockDesc2& desc, MapID map) {
    std::vector<DialogControl> controls;
    for (int i = 0; i < desc.Count(); ++i) {
        const ParamDef& def = desc.ParamAt(i);
        if (def.ui.type == 0 || def.ui.map != map || def.ui.ids.empty()) continue;
        const bool isSpinner = def.ui.type == TYPE_SPINNER;
        const std::size_t step = isSpinner ? 2 : def.ui.ids.size();
        for (std::size_t at = 0; at + step <= def.ui.ids.size(); at += step) {
            DialogControl control;
            control.kind = KindOf(def.ui);
            control.id = def.ui.ids[at + (isSpinner ? 1 : 0)];
            control.edit = isSpinner ? def.ui.ids[at] : 0;
            control.label = def.int_name;
            if (def.ui.type == TYPE_RADIO) {
                for (const int id : def.ui.ids) control.buttons.push_back({id, L""});
            }
            controls.push_back(std::move(control));
        }
    }
    return controls;
}

const ParamDef* FindBound(const ParamBlockDesc2& desc, MapID map, int control) {
    for (int i = 0; i < desc.Count(); ++i) {
        const ParamDef& def = desc.ParamAt(i);
        if (def.ui.type != 0 && def.ui.map == map && std::ranges::find(def.ui.ids, control) != def.ui.ids.end()) return &def;
    }
    return nullptr;
}

// ------------------------------------------------------------------------------------------------------------ what it shows
// now

bool IsEnabled(PanelWindow& page, int control) { return control == 0 || IsWindowEnabled(GetDlgItem(&page, control)) != FALSE; }

void ReadNumber(IParamBlock2& block, const ParamDef& def, PanelControl& control) {
    const TimeValue now = GetCOREInterface()->GetTime();
    if (IsFloatType(EntryType(def))) {
        control.value = double(block.GetFloat(def.ID, now, control.entry));
        const auto* const keyed = dynamic_cast<ParamBlock*>(&block);
        control.isAnimated = keyed != nullptr && !keyed->Keys(def.ID, control.entry).empty();
    } else {
        control.value = double(block.GetInt(def.ID, now, control.entry));
    }
}

void ReadSpinner(const ParamDef& def, PanelControl& control) {
    control.editType = EditSpinnerType(def.ui.edit);
    control.scale = def.ui.scale;
    if (control.unit == UnitKind::Plain && def.ui.edit == EDITTYPE_UNIVERSE) control.unit = UnitKind::Length;
    if (control.unit == UnitKind::Plain && def.ui.edit == EDITTYPE_TIME) control.unit = UnitKind::Time;
    const bool isFloat = IsFloatType(EntryType(def));
    control.low = isFloat ? double(std::numeric_limits<float>::lowest()) : double(std::numeric_limits<int>::min());
    control.high = isFloat ? double(std::numeric_limits<float>::max()) : double(std::numeric_limits<int>::max());
    if (!def.hasRange) return;
    control.low = isFloat ? double(def.rangeLow.f) : double(def.rangeLow.i);
    control.high = isFloat ? double(def.rangeHigh.f) : double(def.rangeHigh.i);
}

/// Maps go by their kind until somebody names them.
std::wstring NameOf(Texmap& map) {
    MSTR name = map.GetName();
    if (*name.data() == 0) map.GetClassName(name);
    return name.data();
}

void ReadParameter(IParamBlock2& block, const ParamDef& def, PanelControl& control) {
    control.param = def.ID;
    control.paramName = def.int_name;
    const TimeValue now = GetCOREInterface()->GetTime();
    Interval valid = FOREVER;
    switch (control.kind) {
        case ControlKind::Spinner: {
            const auto at = std::ranges::find(def.ui.ids, control.id) - def.ui.ids.begin();
            control.entry = int(at / 2);
            ReadSpinner(def, control);
            ReadNumber(block, def, control);
            break;
        }
        case ControlKind::CheckBox:
        case ControlKind::RadioGroup:
            ReadNumber(block, def, control);
            if (control.kind == ControlKind::CheckBox) control.value = control.value != 0.0 ? 1.0 : 0.0;
            break;
        case ControlKind::PickButton:
            block.GetValue(def.ID, now, control.node, valid);
            control.text = control.node == nullptr ? L"None" : control.node->GetName();
            break;
        case ControlKind::MapButton:
            block.GetValue(def.ID, now, control.map, valid);
            control.text = control.map == nullptr ? L"None" : NameOf(*control.map);
            break;
        default:
            break;
    }
}

/// What procedures did to the control itself.
void ReadWindow(const PanelWindow& window, PanelControl& control) {
    control.enabled = window.enabled;
    control.text = window.text;
    control.items = window.items;
    control.checked = window.checked;
    control.highlight = window.highlight;
    if (control.kind == ControlKind::ComboBox) control.value = double(window.selected);
    if (control.kind == ControlKind::Button && window.isCheckButton) control.kind = ControlKind::CheckButton;
}

PanelControl Read(PanelWindow& page, const DialogControl& wanted) {
    PanelControl control;
    control.kind = wanted.kind;
    control.id = wanted.id;
    control.edit = wanted.edit;
    control.labelId = wanted.labelId;
    control.label = wanted.label;
    control.text = wanted.text;
    control.group = wanted.group;
    control.unit = wanted.unit;
    if (const HWND window = wanted.id == 0 ? nullptr : GetDlgItem(&page, wanted.id)) ReadWindow(*window, control);
    control.labelEnabled = IsEnabled(page, wanted.labelId);
    control.editEnabled = IsEnabled(page, wanted.edit);
    for (const DialogRadio& button : wanted.buttons) {
        control.buttons.push_back({button.id, button.label, IsEnabled(page, button.id)});
    }
    if (!control.buttons.empty()) {
        control.text.clear();
        control.enabled = std::ranges::any_of(control.buttons, &PanelRadio::enabled);
    }
    IParamBlock2* const block = BlockOfPage(page);
    const ParamDef* const def = block == nullptr ? nullptr : FindBound(*block->GetDesc(), page.map->GetMapID(), wanted.id);
    if (def != nullptr) ReadParameter(*block, *def, control);
    return control;
}

bool IsPart(const PanelControl& control, int id) {
    return id != 0 && (control.id == id || control.edit == id || control.labelId == id ||
                       std::ranges::any_of(control.buttons, [id](const PanelRadio& button) { return button.id == id; }));
}

// ----------------------------------------------------------------------------------------------------------- what a user does

/// Where a parameter has keys, a typed number becomes one of them, at the current time.
bool StoreFloat(IParamBlock2& block, const PanelControl& control, float value) {
    const TimeValue now = GetCOREInterface()->GetTime();
    auto* const keyed = dynamic_cast<ParamBlock*>(&block);
    if (!control.isAnimated || keyed == nullptr) return block.SetValue(*control.param, now, value, control.entry) != FALSE;
    FloatKeys keys = keyed->Keys(*control.param, control.entry);
    const auto at = std::ranges::lower_bound(keys, now, {}, &FloatKeys::value_type::first);
    if (at != keys.end() && at->first == now) {
        at->second = value;
    } else {
        keys.insert(at, {now, value});
    }
    return keyed->SetKeys(*control.param, std::move(keys), control.entry);
}

bool Store(PanelWindow& page, const PanelControl& control, double value) {
    IParamBlock2* const block = BlockOfPage(page);
    const ParamDef* const def = block == nullptr || !control.param ? nullptr : block->GetDesc()->FindParam(*control.param);
    if (def == nullptr) return false;
    if (IsFloatType(EntryType(*def))) return StoreFloat(*block, control, float(value));
    return block->SetValue(def->ID, GetCOREInterface()->GetTime(), int(value), control.entry) != FALSE;
}

bool IsWhole(PanelWindow& page, const PanelControl& spinner) {
    if (spinner.editType == EDITTYPE_INT) return true;
    IParamBlock2* const block = BlockOfPage(page);
    const ParamDef* const def = block == nullptr ? nullptr : block->GetDesc()->FindParam(*spinner.param);
    return def != nullptr && !IsFloatType(EntryType(*def));
}

bool TypeNumber(PanelWindow& page, const PanelControl& spinner, double value) {
    if (!spinner.param || std::isnan(value)) return false;
    const double typed = IsWhole(page, spinner) ? std::round(value) : value;
    if (!Store(page, spinner, std::clamp(typed, spinner.low, spinner.high))) return false;
    const HWND window = GetDlgItem(&page, spinner.id);
    ISpinnerControl* const handle = GetISpinner(window);
    SendMessageW(&page, CC_SPINNER_BUTTONUP, MAKEWPARAM(WORD(spinner.id), TRUE), reinterpret_cast<LPARAM>(handle));
    ReleaseISpinner(handle);
    return true;
}

/// What a button stands for is set before its procedure hears of it.
bool Choose(PanelWindow& page, const PanelControl& control, int button, double value) {
    if (!IsEnabled(page, button) || !Store(page, control, value)) return false;
    PressControl(page, button);
    return true;
}

bool ChooseRadio(PanelWindow& page, const PanelControl& group, double value) {
    if (!(value >= 0.0 && value < double(group.buttons.size())) || value != std::floor(value)) return false;
    return Choose(page, group, group.buttons[std::size_t(value)].id, value);
}

bool ChooseInCombo(PanelWindow& page, const PanelControl& combo, double value) {
    if (!(value >= 0.0 && value < double(combo.items.size())) || value != std::floor(value)) return false;
    ChooseItem(page, combo.id, int(value));
    return true;
}

/// The enabled control that `id` is or is a part of, by that part.
std::optional<PanelControl> Usable(PanelWindow& page, int id) {
    std::optional<PanelControl> control = ReadControl(page, id);
    if (control && (id == control->labelId || !IsEnabled(page, id))) return std::nullopt;
    return control;
}

bool IsOpenPage(const PanelWindow& page) {
    const std::vector<PanelWindow*> pages = Pages();
    return std::ranges::find(pages, &page) != pages.end();
}

}  // namespace

std::vector<PanelControl> ReadControls(PanelWindow& page) {
    std::vector<PanelControl> controls;
    if (!IsOpenPage(page)) return controls;
    if (page.layout != nullptr) {
        for (const DialogControl& wanted : page.layout->controls) controls.push_back(Read(page, wanted));
    } else if (IParamBlock2* const block = BlockOfPage(page)) {
        for (const DialogControl& wanted : ControlsOfTable(*block->GetDesc(), page.map->GetMapID())) {
            controls.push_back(Read(page, wanted));
        }
    }
    return controls;
}

std::vector<PanelPage> ReadPanel() {
    std::vector<PanelPage> panel;
    for (PanelWindow* page : Pages()) panel.push_back({page, page->text, ReadControls(*page)});
    return panel;
}

std::optional<PanelControl> ReadControl(PanelWindow& page, int control) {
    for (PanelControl& found : ReadControls(page)) {
        if (IsPart(found, control)) return std::move(found);
    }
    return std::nullopt;
}

bool SetControl(PanelWindow& page, int control, double value) {
    const std::optional<PanelControl> found = Usable(page, control);
    if (!found) return false;
    switch (found->kind) {
        case ControlKind::Spinner:
            return TypeNumber(page, *found, value);
        case ControlKind::CheckBox:
            return (value == 0.0 || value == 1.0) && Choose(page, *found, found->id, value);
        case ControlKind::RadioGroup:
            return ChooseRadio(page, *found, value);
        case ControlKind::ComboBox:
            return ChooseInCombo(page, *found, value);
        default:
            return false;
    }
}

double ClickOf(const PanelControl& spinner) {
    if (spinner.scale > 0.0f) return double(spinner.scale);
    if (spinner.editType == EDITTYPE_INT) return 1.0;
    if (spinner.editType == EDITTYPE_TIME) return double(GetTicksPerFrame());
    // A tenth of the first digit's place, so that small and large numbers are as quick to spin.
    constexpr double kSmallest = 0.1;
    return std::pow(10.0, std::floor(std::log10(std::max(std::abs(spinner.value), kSmallest))) - 1.0);
}

bool SpinControl(PanelWindow& page, int control, int clicks) {
    const std::optional<PanelControl> found = Usable(page, control);
    if (!found || found->kind != ControlKind::Spinner || control == found->edit) return false;
    return TypeNumber(page, *found, found->value + clicks * ClickOf(*found));
}

bool ClickControl(PanelWindow& page, int control) {
    const std::optional<PanelControl> found = Usable(page, control);
    if (!found) return false;
    switch (found->kind) {
        case ControlKind::Button:
        case ControlKind::CheckButton:
            PressControl(page, control);
            return true;
        case ControlKind::CheckBox:
            return Choose(page, *found, control, found->value == 0.0 ? 1.0 : 0.0);
        case ControlKind::RadioGroup: {
            const auto at = std::ranges::find(found->buttons, control, &PanelRadio::id);
            return Choose(page, *found, control, double(at - found->buttons.begin()));
        }
        case ControlKind::PickButton:
            if (found->param) TogglePicking(page, *GetDlgItem(&page, control), *found->param);
            return found->param.has_value();
        default:
            return false;
    }
}

bool PickForControl(PanelWindow& page, int control, INode* node) {
    const std::optional<PanelControl> found = Usable(page, control);
    if (!found || found->kind != ControlKind::PickButton || !found->param) return false;
    return PickNode(*BlockOfPage(page), *found->param, node);
}

bool SetControlMap(PanelWindow& page, int control, Texmap* map) {
    const std::optional<PanelControl> found = Usable(page, control);
    if (!found || found->kind != ControlKind::MapButton || !found->param) return false;
    return BlockOfPage(page)->SetValue(*found->param, GetCOREInterface()->GetTime(), map) != FALSE;
}

}  // namespace tavrik_host

#include "plugin/param_blocks.h"

#include "plugin/validators.h"
#include "plugin/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

using tavrik::ControlKind;
using tavrik::ParamControl;
using tavrik::ParamRow;
using tavrik::ParamTable;
using tavrik::ParamType;

// The host reads these lists without types: floats go as doubles, which is what becomes of them on the way, numbers of all
// kinds as ints.

bool IsFloat(ParamType type) { return type == ParamType::Float || type == ParamType::World || type == ParamType::WorldTable; }

int HostType(ParamType type) { return int(type); }

void AddRow(ParamBlockDesc2& desc, const ParamRow& row) {
    const ParamID id = ParamID(row.id);
    const MCHAR* const name = WideText(row.name);
    const int type = HostType(row.type), flags = int(row.flags);
    if (row.type == ParamType::WorldTable) {
        desc.AddParam(id, name, type, int(row.entries), flags, 0, p_default, row.defaultValue, p_range, row.low, row.high,
                      p_end);
    } else if (!row.hasDefault) {
        desc.AddParam(id, name, type, flags, 0, p_end);
    } else if (IsFloat(row.type)) {
        desc.AddParam(id, name, type, flags, 0, p_default, row.defaultValue, p_range, row.low, row.high, p_end);
    } else if (row.hasRange) {
        desc.AddParam(id, name, type, flags, 0, p_default, int(row.defaultValue), p_range, int(row.low), int(row.high), p_end);
    } else {
        desc.AddParam(id, name, type, flags, 0, p_default, int(row.defaultValue), p_end);
    }
}

/// Hands `p_ui` and its values to the host, with the rollout in front where there are several.
template <typename... Values>
void Attach(ParamBlockDesc2& desc, const ParamTable& table, const ParamRow& row, Values... values) {
    const ParamID id = ParamID(row.id);
    if (table.flags == tavrik::kBlockFlagsSeveralRollouts) {
        desc.ParamOption(id, p_ui, int(row.rollout), values..., p_end);
    } else {
        desc.ParamOption(id, p_ui, values..., p_end);
    }
}

void AttachSpinner(ParamBlockDesc2& desc, const ParamTable& table, const ParamRow& row) {
    const ParamControl& c = row.control;
    const int edit = int(c.edit);
    const double scale = double(c.scale);
    if (row.entries == 1) {
        Attach(desc, table, row, int(TYPE_SPINNER), edit, int(c.ids[0]), int(c.ids[1]), scale);
    } else {
        Attach(desc, table, row, int(TYPE_SPINNER), edit, int(c.ids[0]), int(c.ids[1]), int(c.ids[2]), int(c.ids[3]),
               int(c.ids[4]), int(c.ids[5]), scale);
    }
}

void AttachRadio(ParamBlockDesc2& desc, const ParamTable& table, const ParamRow& row) {
    const ParamControl& c = row.control;
    if (c.idCount == 2) {
        Attach(desc, table, row, int(TYPE_RADIO), 2, int(c.ids[0]), int(c.ids[1]));
    } else {
        Attach(desc, table, row, int(TYPE_RADIO), 4, int(c.ids[0]), int(c.ids[1]), int(c.ids[2]), int(c.ids[3]));
    }
}

void AttachControl(ParamBlockDesc2& desc, const ParamTable& table, const ParamRow& row) {
    switch (row.control.kind) {
        case ControlKind::None:
            return;
        case ControlKind::Spinner:
            return AttachSpinner(desc, table, row);
        case ControlKind::Radio:
            return AttachRadio(desc, table, row);
        case ControlKind::CheckBox:
            return Attach(desc, table, row, int(TYPE_SINGLECHEKBOX), int(row.control.ids[0]));
        case ControlKind::PickButton:
            return Attach(desc, table, row, int(TYPE_PICKNODEBUTTON), int(row.control.ids[0]));
        case ControlKind::MapButton:
            return Attach(desc, table, row, int(TYPE_TEXMAPBUTTON), int(row.control.ids[0]));
    }
}

void AttachControls(ParamBlockDesc2* desc, std::string_view objectClass) {
    if (desc == nullptr) return;
    const ParamTable& table = *tavrik::FindParamTable(objectClass);
    for (const std::int32_t id : table.attachOrder) AttachControl(*desc, table, *tavrik::FindParam(table, id));
}

std::unique_ptr<ParamBlockDesc2> MakeEmptyDesc(const ParamTable& table, ClassDesc2& owner) {
    constexpr ParamMap2UserDlgProc* kNoProc = nullptr;  // procedures are attached while a rollout is open
    const USHORT flags = USHORT(table.flags);
    const MCHAR* const name = WideText(tavrik::kBlockName);
    const int reference = tavrik::kBlockReference;
    const auto dialog = [&](std::size_t map) { return int(table.rollouts[map].dialog); };
    const auto title = [&](std::size_t map) { return int(table.rollouts[map].title); };
    if (table.flags != tavrik::kBlockFlagsSeveralRollouts) {
        return std::make_unique<ParamBlockDesc2>(BlockID(tavrik::kBlockId), name, 0, &owner, flags, reference, dialog(0),
                                                 title(0), 0, 0, kNoProc, p_end);
    }
    static_assert(tavrik::kBlockFlagsSeveralRollouts == (P_AUTO_CONSTRUCT | P_AUTO_UI | P_MULTIMAP));
    return std::make_unique<ParamBlockDesc2>(BlockID(tavrik::kBlockId), name, 0, &owner, flags, reference, 5,  //
                                             0, dialog(0), title(0), 0, 0, kNoProc,                            //
                                             1, dialog(1), title(1), 0, 0, kNoProc,                            //
                                             2, dialog(2), title(2), 0, 0, kNoProc,                            //
                                             3, dialog(3), title(3), 0, 0, kNoProc,                            //
                                             4, dialog(4), title(4), 0, 0, kNoProc, p_end);
}

}  // namespace

std::unique_ptr<ParamBlockDesc2> MakeBlockDesc(std::string_view objectClass, ClassDesc2& owner) {
    const ParamTable& table = *tavrik::FindParamTable(objectClass);
    std::unique_ptr<ParamBlockDesc2> desc = MakeEmptyDesc(table, owner);
    for (const ParamRow& row : table.rows) {
        AddRow(*desc, row);
        if (table.attachOrder.empty()) AttachControl(*desc, table, row);
        if (PBValidator* const validator = ValidatorFor(row.control.validator)) {
            desc->ParamOption(ParamID(row.id), p_validator, validator, p_end);
        }
    }
    return desc;
}

}  // namespace tavrik_plugin

void SetupTavrik_param_blk(ParamBlockDesc2* desc) { tavrik_plugin::AttachControls(desc, "Tavrik"); }
void SetupChassisObject_param_blk(ParamBlockDesc2* desc) { tavrik_plugin::AttachControls(desc, "ChassisObject"); }
void SetupSuspension_param_blk(ParamBlockDesc2* desc) { tavrik_plugin::AttachControls(desc, "SuspensionObject"); }
void SetupWheel_param_blk(ParamBlockDesc2* desc) { tavrik_plugin::AttachControls(desc, "WheelObject"); }

#include "plugin/suspension_object.h"

#include <cmath>
#include <iterator>

#include "plugin/block_values.h"
#include "plugin/convert.h"
#include "plugin/desktop.h"
#include "plugin/param_blocks.h"
#include "rig/gizmos/suspension_lines.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

constexpr const char* kClass = "SuspensionObject";
ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::SuspensionParam;

constexpr int kPresetCombo = 1110, kStandButton = 1013;

/// A damper off the shelf. Lengths and stops are the car's own.
struct DamperPreset {
    const MCHAR* name;
    float factor, ruggedness, damping, bufferRuggedness;
};
constexpr DamperPreset kPresets[] = {
    {_M("Sport Car Damper"), 2.0f, 50000.0f, 5000.0f, 100000.0f},
    {_M("General Car Damper"), 1.0f, 50000.0f, 5000.0f, 100000.0f},
    {_M("Off-road Car Damper"), 0.5f, 50000.0f, 5000.0f, 100000.0f},
    {_M("Heavy Track Damper"), 2.0f, 50000.0f, 5000.0f, 150000.0f},
};

void FillPresets(HWND combo) {
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (const DamperPreset& preset : kPresets) SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(preset.name));
}

void ApplyPreset(IParamBlock2* block, LRESULT index) {
    if (index < 0 || index >= LRESULT(std::size(kPresets))) return;
    const DamperPreset& preset = kPresets[index];
    SetFloat(block, Param::Ruggedness_Factor, preset.factor);
    SetFloat(block, Param::Ruggedness, preset.ruggedness);
    SetFloat(block, Param::Damping, preset.damping);
    SetFloat(block, Param::Buffer_Ruggedness, preset.bufferRuggedness);
}

SuspensionObject* OwnerOf(IParamMap2* map) {
    IParamBlock2* const block = map != nullptr ? map->GetParamBlock() : nullptr;
    ReferenceMaker* const owner = block != nullptr ? block->GetOwner() : nullptr;
    return owner != nullptr && owner->ClassID() == ClassNamed(kClass).ClassID() ? static_cast<SuspensionObject*>(owner)
                                                                                : nullptr;
}

/// The presets, and the button for what they set.
class SuspensionDlgProc final : public ParamMap2UserDlgProc {
 public:
    INT_PTR DlgProc(TimeValue, IParamMap2* map, HWND hWnd, UINT msg, WPARAM wParam, LPARAM) override {
        if (msg == WM_INITDIALOG) {
            FillPresets(GetDlgItem(hWnd, kPresetCombo));
        } else if (msg == WM_COMMAND && LOWORD(wParam) == kPresetCombo && HIWORD(wParam) == CBN_SELCHANGE && map != nullptr) {
            ApplyPreset(map->GetParamBlock(), SendMessageW(GetDlgItem(hWnd, kPresetCombo), CB_GETCURSEL, 0, 0));
        } else if (msg == WM_COMMAND && LOWORD(wParam) == kStandButton) {
            if (SuspensionObject* const suspension = OwnerOf(map)) suspension->OpenStand();
        }
        return 0;
    }
    void DeleteThis() override {}  // one serves all suspensions
};

SuspensionDlgProc dialogProc;

}  // namespace

SuspensionObject::SuspensionObject() : RigHelper(kClass, statics), stand_(GetMasterScale) {
    SetupSuspension_param_blk(&BlockDescOf(kClass));
    MakeBlock();
}

ParamMap2UserDlgProc* SuspensionObject::DialogProc() { return &dialogProc; }

void SuspensionObject::OpenStand() {
    if (tavrik::StandLayer* const windows = StandWindows()) stand_.OpenStand(params_, *windows);
}

void SuspensionObject::ReadValues(TimeValue) {
    type = IntOf(pblock_, Param::Suspension_Type);
    length = FloatOf(pblock_, Param::Length);
    wheelShift = FloatOf(pblock_, Param::Wheel_Shift);
    ruggedness = FloatOf(pblock_, Param::Ruggedness);
    damping = FloatOf(pblock_, Param::Damping);
    bufferRuggedness = FloatOf(pblock_, Param::Buffer_Ruggedness);
    // Springs scale by the factor, the damper by its root: the ride gets harder, but keeps its character.
    const float factor = FloatOf(pblock_, Param::Ruggedness_Factor);
    ruggedness *= factor;
    bufferRuggedness *= factor;
    damping *= std::sqrt(factor);
    topStop = FloatOf(pblock_, Param::Top_Stop);
    bottomStop = FloatOf(pblock_, Param::Bottom_Stop);
    shift = FloatOf(pblock_, Param::Shift);
    steering = IntOf(pblock_, Param::Steering);
    drive = IntOf(pblock_, Param::Drive);
    handbrake = IntOf(pblock_, Param::Handbrake);
}

std::vector<Point3> SuspensionObject::Extent() const {
    std::vector<Point3> points = BoxCorners(Point3(-length - wheelShift, -length, -length),  //
                                            Point3(length - wheelShift, length, length));
    points.emplace_back(0.0f, 0.0f, 0.2f * length - wheelShift);
    points.emplace_back(0.0f, 0.0f, 0.2f * length);
    return points;
}

/// The piece that stays with the object.
tavrik::GizmoLines SuspensionObject::Lines() const { return tavrik::HubCarrierLines(length); }

/// The other piece follows the body where there is a recording. Without one it is black, so that the two tell apart.
void SuspensionObject::Draw(GraphicsWindow& gw, TimeValue t, INode& node) const {
    const std::optional<Point3> attachment = LiveAttachment(node, t);
    gw.setColor(LINE_COLOR, LineColor(node));
    DrawLines(gw, Lines());
    tavrik::SuspensionReach reach = tavrik::IdleReach(type, length);
    if (attachment) {
        reach = tavrik::LiveReach(FromHost(*attachment * Inverse(gw.getTransform())));
    } else if (node.Selected() == 0) {
        gw.setColor(LINE_COLOR, 0.0f, 0.0f, 0.0f);
    }
    DrawLines(gw, tavrik::MovingPartLines(type, length, reach));
}

bool SuspensionObject::Drag(const Point3& d) {
    const float size = std::abs(d.x);
    SetFloat(pblock_, Param::Length, size);
    SetFloat(pblock_, Param::Top_Stop, 0.2f * size);
    SetFloat(pblock_, Param::Bottom_Stop, -0.2f * size);
    SetFloat(pblock_, Param::Shift, 0.1f * size);
    return d.x != 0.0f;
}

}  // namespace tavrik_plugin

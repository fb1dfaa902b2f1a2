#include "plugin/push_object.h"

#include <custcont.h>

#include <cmath>

#include "plugin/block_values.h"
#include "plugin/scene_view.h"
#include "rig/gizmos/gizmos.h"
#include "rig/parameter_tables.h"
#include "solver/random_stream.h"

namespace tavrik_plugin {
namespace {

ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::PushParam;

constexpr int kSingle = 0, kAnimatable = 1;  // of `Push_Type`
constexpr int kSingleButton = 1122, kAnimatableButton = 1123;

/// A spinner and the label beside it.
struct LabelledSpinner {
    int spinner, label;
};
constexpr LabelledSpinner kStartControls = {1131, 1132}, kLengthControls = {1100, 1133}, kMultControls = {1102, 1135};

void Enable(HWND page, const LabelledSpinner& controls, bool enable) {
    if (ISpinnerControl* const spinner = GetISpinner(GetDlgItem(page, controls.spinner))) {
        spinner->Enable(enable ? TRUE : FALSE);
        ReleaseISpinner(spinner);
    }
    EnableWindow(GetDlgItem(page, controls.label), enable ? TRUE : FALSE);
}

/// Shows which parameters count for the kind of push that is chosen.
class PushDlgProc final : public ParamMap2UserDlgProc {
 public:
    INT_PTR DlgProc(TimeValue, IParamMap2* map, HWND hWnd, UINT msg, WPARAM wParam, LPARAM) override {
        const bool chosen = msg == WM_COMMAND && (LOWORD(wParam) == kSingleButton || LOWORD(wParam) == kAnimatableButton);
        if ((msg != WM_INITDIALOG && !chosen) || map == nullptr) return 0;
        const int type = IntOf(map->GetParamBlock(), Param::Push_Type);
        Enable(hWnd, kStartControls, type == kSingle);
        Enable(hWnd, kLengthControls, type == kSingle);
        Enable(hWnd, kMultControls, type == kAnimatable);
        return 0;
    }
    void DeleteThis() override {}  // one serves all pushes
};

PushDlgProc dialogProc;

}  // namespace

PushObject::PushObject() : RigHelper("PushObject", statics) { MakeBlock(); }

ParamMap2UserDlgProc* PushObject::DialogProc() { return &dialogProc; }

void PushObject::UpdatePushCache(TimeValue) {
    dummySize = FloatOf(pblock_, Param::Dummy_Size);
    tavrik::UpdatePushCache(values, ObjectView(this));
}

float PushObject::PushMagnitude(TimeValue tick) const {
    const float animMult = values.pushType != kSingle ? FloatOf(pblock_, Param::Push_Anim_Mult, tick) : 0.0f;
    return tavrik::PushMagnitude(values, tick, animMult);
}

INode* PushObject::TavrikNode() const { return NodeOf(pblock_, Param::Tavrik); }

std::vector<Point3> PushObject::Extent() const { return BoxCorners(3.0f * dummySize, 7.0f * dummySize, 3.0f * dummySize); }

tavrik::GizmoLines PushObject::Lines() const {
    tavrik::RandomStream random(tavrik::kBurstSeed);
    return tavrik::PushLines(dummySize, [&] { return random.Rand01(); });
}

bool PushObject::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Dummy_Size, std::abs(d.y));
    return d.y != 0.0f;
}

}  // namespace tavrik_plugin

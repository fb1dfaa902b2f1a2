#include "plugin/track_texture.h"

#include <max.h>

#include <algorithm>
#include <atomic>
#include <cstring>

#include "plugin/block_values.h"
#include "plugin/classes.h"
#include "plugin/convert.h"
#include "plugin/master.h"
#include "plugin/pick_master.h"
#include "plugin/scene_view.h"
#include "plugin/wheel_object.h"
#include "plugin/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

constexpr const char* kClass = "TavrikTrackTex";
constexpr int kPickButton = 1116;
constexpr COLORREF kPressedColor = 0xC0FF80;

using Param = tavrik::TrackTexParam;

RigClassDesc& TheClass() { return ClassNamed(kClass); }

/// The tread of the wheel with a handle. Nodes come and go after a run: one that is no wheel (any more) has none.
tavrik::SharedTread TreadOf(std::uint32_t handle) {
    INode* const node = GetCOREInterface()->GetINodeByHandle(handle);
    Object* const object = node != nullptr ? node->GetObjectRef() : nullptr;
    return ClassOf(object) == tavrik::ObjectClass::Wheel ? static_cast<WheelObject*>(object)->Tread() : nullptr;
}

TavrikTrackTex* MapOf(IParamMap2* map) {
    IParamBlock2* const block = map != nullptr ? map->GetParamBlock() : nullptr;
    ReferenceMaker* const owner = block != nullptr ? block->GetOwner() : nullptr;
    return owner != nullptr && owner->ClassID() == TheClass().ClassID() ? static_cast<TavrikTrackTex*>(owner) : nullptr;
}

/// One for all pages: which map a page shows, its block tells.
class TavrikTrackTexDlgProc final : public ParamMap2UserDlgProc {
 public:
    INT_PTR DlgProc(TimeValue, IParamMap2* map, HWND hWnd, UINT msg, WPARAM wParam, LPARAM) override {
        TavrikTrackTex* const texture = MapOf(map);
        if (texture == nullptr) return 0;
        if (msg == WM_INITDIALOG) texture->OpenPage(hWnd);
        if (msg == WM_DESTROY) texture->ClosePage();
        if (msg == WM_COMMAND && LOWORD(wParam) == kPickButton) texture->StartPicking();
        return 0;
    }
    void DeleteThis() override {}
};

std::uint64_t NextPainting() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

}  // namespace

struct TavrikTrackTex::Mark {
    float value = 1.0f;
    tavrik::Point3 bump{0, 0, 0};
};

/// A render asks each point for its colour and then for its bump, which is one question to the trail. So each thread keeps its
/// last answer.
TavrikTrackTex::Mark TavrikTrackTex::MarkAt(ShadeContext& sc) const {
    struct Answer {
        std::uint64_t painting = 0;
        TimeValue t = 0;
        tavrik::Point3 p{0, 0, 0};
        Mark mark;
    };
    thread_local Answer last;
    const TimeValue t = sc.CurTime();
    const tavrik::Point3 p = FromHost(sc.PointTo(sc.P(), REF_WORLD));
    if (last.painting == painting_ && last.t == t && std::memcmp(&last.p, &p, sizeof p) == 0) return last.mark;
    last.painting = painting_;
    last.t = t;
    last.p = p;
    painted_.Query(last.mark.value, last.mark.bump, p, t, params_);
    return last.mark;
}

TavrikTrackTex::TavrikTrackTex() { TheClass().MakeAutoParamBlocks(this); }

TavrikTrackTex::~TavrikTrackTex() {
    ForgetPicker(*this);
    ClosePage();
    DeleteAllRefsFromMe();
}

// ---------------------------------------------------------------------------------------------------------------------
// painting

void TavrikTrackTex::Update(TimeValue t, Interval& valid) {
    valid.SetInstant(t);  // each frame shows other tracks
    painted_ = {};
    painting_ = NextPainting();
    INode* const node = MasterNode();
    Object* const object = node != nullptr ? node->GetObjectRef() : nullptr;
    if (ClassOf(object) != tavrik::ObjectClass::Tavrik) return;
    painted_ = tavrik::ResolvePatterns(static_cast<Tavrik*>(object)->Trail(), TreadOf);
    params_.generalIntensity = FloatOf(pblock_, Param::General_Intensity);
    params_.brakeIntensity = FloatOf(pblock_, Param::Brake_Intensity);
    // A program can store what no control lets through; none at all would divide by zero, and too many never end.
    params_.samples = std::clamp(IntOf(pblock_, Param::Samples), 1, 200);
    params_.baseBump = FloatOf(pblock_, Param::Base_Bump);
    params_.patternBump = FloatOf(pblock_, Param::Pattern_Bump);
}

Interval TavrikTrackTex::Validity(TimeValue t) {
    Interval valid = FOREVER;
    Update(t, valid);
    return valid;
}

AColor TavrikTrackTex::EvalColor(ShadeContext& sc) {
    if (!painted_.CanPaint()) return AColor(1.0f, 1.0f, 1.0f, 1.0f);
    const float value = MarkAt(sc).value;
    return AColor(value, value, value, 1.0f);
}

float TavrikTrackTex::EvalMono(ShadeContext& sc) {
    const AColor color = EvalColor(sc);
    return (color.r + color.g + color.b) / 3.0f;
}

Point3 TavrikTrackTex::EvalNormalPerturb(ShadeContext& sc) {
    if (!painted_.CanPaint()) return Point3(0.0f, 0.0f, 0.0f);
    const Point3 bump = sc.VectorFromNoScale(ToHost(MarkAt(sc).bump), REF_WORLD);
    // Along the two directions in which the surface's coordinates run, as every bump is told.
    Point3 dP[3];
    sc.DPdUVW(dP, 0);
    return sc.VectorFromNoScale(Point3(DotProd(bump, dP[0]), DotProd(bump, dP[1]), 0.0f), REF_OBJECT);
}

// ------------------------------------------------------------------------------------------------------------------- its page

INode* TavrikTrackTex::MasterNode() const {
    return GetCOREInterface()->GetINodeByHandle(ULONG(IntOf(pblock_, Param::Frame_Step)));
}

ParamDlg* TavrikTrackTex::CreateParamDlg(HWND hwMtlEdit, IMtlParams* imp) {
    static auto& proc = *new TavrikTrackTexDlgProc;  // never freed: the scene may outlive the library's statics
    ParamDlg* const dialog = TheClass().CreateParamDlgs(hwMtlEdit, imp, this);
    BlockDescOf(kClass).SetUserDlgProc(&proc);
    return dialog;
}

void TavrikTrackTex::OpenPage(HWND page) {
    ClosePage();
    rollout_ = page;
    pickButton_ = GetICustButton(GetDlgItem(page, kPickButton));
    if (pickButton_ == nullptr) return;
    pickButton_->SetType(CBT_CHECK);
    pickButton_->SetHighlightColor(kPressedColor);
    ShowMasterName();
}

void TavrikTrackTex::ClosePage() {
    if (pickButton_ != nullptr) ReleaseICustButton(pickButton_);
    pickButton_ = nullptr;
    rollout_ = nullptr;
}

void TavrikTrackTex::StartPicking() { PickMasterFor(*this); }

void TavrikTrackTex::TakeMaster(INode& node) {
    SetInt(pblock_, Param::Frame_Step, int(node.GetHandle()));
    ShowMasterName();
}

void TavrikTrackTex::CheckPickButton(bool checked) {
    if (pickButton_ != nullptr) pickButton_->SetCheck(checked ? TRUE : FALSE);
}

void TavrikTrackTex::ShowMasterName() {
    if (pickButton_ == nullptr) return;
    INode* const node = MasterNode();
    pickButton_->SetText(node != nullptr ? node->GetName() : _M("None"));
}

// ---------------------------------------------------------------------------------------------------------- the host's
// questions

void TavrikTrackTex::Reset() { TheClass().MakeAutoParamBlocks(this); }

void TavrikTrackTex::TAVRIK_GET_CLASS_NAME(s) { s = WideText(TheClass().Identity().className); }

Class_ID TavrikTrackTex::ClassID() { return TheClass().ClassID(); }

MSTR TavrikTrackTex::TAVRIK_SUB_ANIM_NAME { return StringOf(tavrik::kParametersString); }

IParamBlock2* TavrikTrackTex::GetParamBlockByID(BlockID id) {
    return pblock_ != nullptr && pblock_->ID() == id ? pblock_ : nullptr;
}

RefResult TavrikTrackTex::NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) {
    if (message == REFMSG_TARGET_DELETED && hTarget == pblock_) pblock_ = nullptr;
    return REF_SUCCEED;
}

RefTargetHandle TavrikTrackTex::Clone(RemapDir& remap) {
    auto* const copy = new TavrikTrackTex;
    *static_cast<MtlBase*>(copy) = *static_cast<MtlBase*>(this);
    copy->ReplaceReference(0, remap.CloneRef(pblock_));
    BaseClone(this, copy, remap);
    return copy;
}

}  // namespace tavrik_plugin

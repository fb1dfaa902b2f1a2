#include "plugin/master.h"

#include <cmath>
#include <new>
#include <utility>

#include "plugin/convert.h"
#include "plugin/desktop.h"
#include "plugin/master_panels.h"
#include "plugin/param_blocks.h"
#include "plugin/scene_view.h"
#include "plugin/surface_capture.h"
#include "rig/parameter_tables.h"
#include "rig/scene_walk.h"

namespace tavrik_plugin {
namespace {

constexpr const char* kClass = "Tavrik";
ClassStatics& statics = *new ClassStatics;  // never freed: the scene may outlive the library's statics

using Param = tavrik::MasterParam;

std::vector<Tavrik*>& Masters() {
    static auto& masters = *new std::vector<Tavrik*>;
    return masters;
}

}  // namespace

Tavrik::Tavrik() : RigHelper(kClass, statics), session_(drive_, HostClock(), Windows(), Pads()) {
    SetupTavrik_param_blk(&BlockDescOf(kClass));
    MakeBlock();
    ObjectValidity(0);
    rig_.master = this;
    Masters().push_back(this);
}

/// Other cars may be hitched to this one, and a run may be driving it: none of them may find it any more.
Tavrik::~Tavrik() {
    ForgetMaster(*this);
    StopRuns();
    rig_.ResetMotion();
    LeaveWorld();
    session_.CloseDrive();
    std::erase(Masters(), this);
    for (Tavrik* const other : Masters()) {
        for (tavrik::HitchSlot& slot : other->rig_.hitches) {
            if (slot.partner != nullptr && slot.partner->ownerRig == &rig_) slot.partner = nullptr;
        }
    }
}

const std::vector<Tavrik*>& Tavrik::All() { return Masters(); }

// ------------------------------------------------------------------------------------------------------------- the buttons

bool Tavrik::SetupCar(std::string& problem) {
    ReadValues(0);
    StopRuns();
    // A recording that moves the parts would hide where they stand. It comes back if the rig is refused as it is.
    tavrik::RecordedMotion before = std::exchange(rig_.motion, {});
    if (before.valid) TellDependents();

    SceneView view;
    tavrik::SceneNode* const master = tavrik::FindMasterNode(view.Root(), rig_);
    tavrik::SceneNode* const start = view.Of(NodeOf(pblock_, Param::Start_Node));
    tavrik::AssemblyResult result = tavrik::AssemblyResult::NoChassis;
    if (master != nullptr) {
        result = tavrik::Assemble(rig_, view.Root(), *master, FromHost(dummySize_), start, problem);
    } else {
        problem = tavrik::kNoChassisText;  // a master that is in no scene has no parts around it
    }
    const bool refused = result == tavrik::AssemblyResult::TooMany || result == tavrik::AssemblyResult::Flattened;
    if (refused) rig_.motion = std::move(before);
    TellDependents();
    RebuildTrail();
    return result == tavrik::AssemblyResult::Locked;
}

void Tavrik::ResetCar() {
    StopRuns();
    rig_.ResetMotion();
    TellDependents();
    RebuildTrail();
}

void Tavrik::UpdateSurface() { CaptureSurface(NodeOf(pblock_, Param::Surface_Node), surface_); }

void Tavrik::Drive() {
    TheWorld().random.Seed(RunSeed());
    session_.OpenDrive();
}

void Tavrik::RebuildTrail() {
    std::string notice;
    trail_.reset();
    try {
        auto built = std::make_shared<tavrik::TrackTrail>();
        built->Build(rig_, notice);
        if (built->built != 0) trail_ = std::move(built);
    } catch (const std::bad_alloc&) {
        notice = "There is not enough memory for the tyre tracks of a recording of this length; drive a shorter one.";
    }
    if (!notice.empty()) Complain(notice);
}

void Tavrik::Reattach() {
    SceneView view;
    tavrik::SceneNode* const master = tavrik::FindMasterNode(view.Root(), rig_);
    if (master == nullptr || !tavrik::Reattach(rig_, view.Root(), *master)) return;
    RebuildTrail();
    NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
}

void Tavrik::TellDependents() {
    NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    if (statics.ip != nullptr) statics.ip->RedrawViews(statics.ip->GetTime(), REDRAW_NORMAL);
}

void Tavrik::StopRuns() {
    if (!WorldHolds(rig_)) return;
    for (Tavrik* const master : Masters()) master->session_.StopDrive();
}

void Tavrik::LeaveWorld() {
    if (!WorldHolds(rig_)) return;
    EmptyWorld();
    for (Tavrik* const master : Masters()) master->session_.CloseDrive();
}

// ---------------------------------------------------------------------------------------------------------------------- object

void Tavrik::ReadValues(TimeValue t) {
    for (int i = 0; i < 3; ++i) dummySize_[i] = FloatOf(pblock_, Param::Dummy_Size, t, i);
}

std::vector<Point3> Tavrik::Extent() const { return BoxCorners(dummySize_.x, dummySize_.y, dummySize_.z); }

tavrik::GizmoLines Tavrik::Lines() const {
    tavrik::GizmoLines lines;
    tavrik::DrawBox(lines, dummySize_.x, dummySize_.y, dummySize_.z);
    return lines;
}

Color Tavrik::LineColor(INode& node) const { return node.Selected() != 0 ? Color(1.0f, 1.0f, 1.0f) : Color(0.0f, 1.0f, 0.0f); }

int Tavrik::HitTest(TimeValue, INode*, int type, int crossing, int, IPoint2* p, ViewExp*, ModContext*) {
    HitRegion region;
    MakeHitRegion(region, type, crossing, kPickPixels, p);
    return 0;
}

/// The drag goes from the middle of the box to a corner; it gets as high as it is wide.
bool Tavrik::Drag(const Point3& d) {
    SetFloat(pblock_, Param::Dummy_Size, std::abs(d.y), 1);
    SetFloat(pblock_, Param::Dummy_Size, std::abs(d.x), 0);
    SetFloat(pblock_, Param::Dummy_Size, std::abs(d.x), 2);
    return d.x != 0.0f && d.y != 0.0f;
}

void Tavrik::BeginEditParams(IObjParam* ip, ULONG flags, Animatable* prev) {
    statics.ip = ip;
    TheClass().BeginEditParams(ip, this, flags, prev);
    AttachPanels(*this);
    about_ = OpenAboutPage(*ip, *this);
}

void Tavrik::EndEditParams(IObjParam* ip, ULONG flags, Animatable* next) {
    session_.CloseDrive();
    EndPanels(*this);
    statics.ip = nullptr;
    TheClass().EndEditParams(ip, this, flags, next);
    if (about_ == nullptr) return;
    ip->UnRegisterDlgWnd(about_);
    ip->DeleteRollupPage(about_);
    about_ = nullptr;
}

Object* Tavrik::ConvertToType(TimeValue t, Class_ID id) {
    if (id != triObjectClassID) return nullptr;
    TriObject* const mesh = CreateNewTriObject();
    mesh->SetChannelValidity(TOPO_CHAN_NUM, ObjectValidity(t));
    mesh->SetChannelValidity(GEOM_CHAN_NUM, ObjectValidity(t));
    return mesh;
}

}  // namespace tavrik_plugin

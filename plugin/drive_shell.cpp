#include "plugin/drive_shell.h"

#include <algorithm>
#include <string>

#include "drive/finite_check.h"
#include "plugin/convert.h"
#include "plugin/desktop.h"
#include "plugin/master.h"
#include "plugin/node_walk.h"
#include "plugin/push_object.h"
#include "plugin/scene_view.h"
#include "rig/hitch_links.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

class HostDrive final : public tavrik::DriveHost {
 public:
    TimeValue GetTime() const override { return GetCOREInterface()->GetTime(); }
    void SetTime(TimeValue tick, bool redraw) override { GetCOREInterface()->SetTime(tick, redraw ? TRUE : FALSE); }
    tavrik::TimeRange GetAnimRange() const override {
        const Interval range = GetCOREInterface()->GetAnimRange();
        return {range.Start(), range.End()};
    }
    std::int32_t GetTicksPerFrame() const override { return ::GetTicksPerFrame(); }
    double GetMasterScale(std::int32_t unit) const override { return ::GetMasterScale(unit); }
    void RedrawViews(TimeValue tick) override { GetCOREInterface()->RedrawViews(tick, REDRAW_NORMAL); }
    void NotifyMasters() override {
        WalkNodes([](INode& node) {
            Object* const object = node.GetObjectRef();
            if (ClassOf(object) == tavrik::ObjectClass::Tavrik) object->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
        });
    }
};

PushObject* PushOf(INode* node) {
    Object* const object = node != nullptr ? node->GetObjectRef() : nullptr;
    return ClassOf(object) == tavrik::ObjectClass::Push ? static_cast<PushObject*>(object) : nullptr;
}

/// A push of the present world. It remembers its node by handle alone, so that an artist may delete the node in mid-run: what
/// is gone doesn't push.
class NodePush final : public tavrik::PushSource {
 public:
    void Take(INode& node) { handle_ = node.GetHandle(); }

    tavrik::Matrix3 GetObjectTM(TimeValue tick) const override {
        INode* const node = Node();
        return node != nullptr ? FromHost(node->GetObjectTM(tick)) : tavrik::IdentityMatrix3();
    }
    float PushMagnitude(TimeValue tick) const override {
        const PushObject* const push = PushOf(Node());
        return push != nullptr ? push->PushMagnitude(tick) : 0.0f;
    }

 private:
    INode* Node() const { return GetCOREInterface()->GetINodeByHandle(handle_); }

    ULONG handle_ = 0;
};

NodePush pushSources[tavrik::kMaxPushes];  // beside the world's pushes

class HostScene final : public tavrik::WorldScene {
 public:
    void LinkHitches() override {
        SceneView view;
        tavrik::LinkHitches(view.Root());
    }

    bool CollectPushes(tavrik::CarRig& rig, tavrik::PushForce (&pushes)[tavrik::kMaxPushes], std::int32_t& pushCount) override {
        bool fits = true;
        WalkNodes([&](INode& node) {
            PushObject* const push = PushOf(&node);
            INode* const master = push != nullptr ? push->TavrikNode() : nullptr;
            if (master == nullptr || RigOf(master->GetObjectRef()) != &rig) return;
            fits = fits && pushCount < tavrik::kMaxPushes;
            if (!fits) return;
            NodePush& source = pushSources[pushCount];
            source.Take(node);
            pushes[pushCount++] = {&source, &rig.chassisBody};
            push->UpdatePushCache();
        });
        return fits;
    }
};

}  // namespace

tavrik::DriveHost& HostClock() {
    static auto& host = *new HostDrive;  // never freed: sessions in a scene may outlive the library's statics
    return host;
}

tavrik::CarWorld& TheWorld() {
    static tavrik::CarWorld world;  // starts zeroed, and takes no memory until it is used
    return world;
}

bool WorldHolds(const tavrik::CarRig& rig) {
    tavrik::CarWorld& world = TheWorld();
    tavrik::CarRig** const end = world.rigs + world.carCount;
    return std::find(world.rigs, end, &rig) != end;
}

void EmptyWorld() {
    tavrik::CarWorld& world = TheWorld();
    world.carCount = 0;
    world.jointCount = 0;
    world.pushCount = 0;
}

tavrik::CarRig& MasterDrive::Rig() { return *master_.Rig(); }
const tavrik::ParamBlock& MasterDrive::Params() const { return master_.Params(); }
const tavrik::SurfaceTree& MasterDrive::Surface() const { return master_.Surface(); }
void MasterDrive::UpdateSurface() { master_.UpdateSurface(); }
tavrik::TargetDriver* MasterDrive::Target() { return Driver() != nullptr ? Driver() : &path_; }

/// Of every car that took part in the run.
void MasterDrive::RebuildTrails() {
    const tavrik::CarWorld& world = TheWorld();
    for (std::int32_t i = 0; i < world.carCount; ++i) static_cast<Tavrik*>(world.rigs[i]->master)->RebuildTrail();
}

tavrik::WorldScene* MasterDrive::Scene() {
    static HostScene scene;
    return &scene;
}

void MasterDrive::FrameDriven() {
    if (!StopsAtBadNumbers()) return;
    const std::int32_t samples = std::max(1, Params().GetInt(tavrik::MasterParam::Frame_Step));
    const std::int32_t steps = std::max(1, Params().GetInt(tavrik::MasterParam::Sample_Step));
    const double dt = double(::GetTicksPerFrame()) / samples / steps / tavrik::kTicksPerSecond;
    std::string problem;
    if (tavrik::KeepFiniteSamples(TheWorld(), samples, 0, dt, problem)) return;
    Complain(problem);
    master_.Session().StopDrive();
}

}  // namespace tavrik_plugin

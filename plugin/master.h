#pragma once
/// The object that stands for a whole vehicle in the scene: it owns the car, its recording and its drive.

#include <memory>
#include <string>
#include <vector>

#include "drive/drive_session.h"
#include "plugin/block_values.h"
#include "plugin/drive_shell.h"
#include "plugin/helper_object.h"
#include "rig/assembly.h"
#include "rig/car_rig.h"
#include "surface/surface_tree.h"
#include "tracks/track_trail.h"

namespace tavrik_plugin {

class Tavrik final : public RigHelper {
 public:
    Tavrik();
    ~Tavrik() override;

    /// Every one that there is.
    static const std::vector<Tavrik*>& All();

    // ----------------------------------------------------------------------------------------------------- what the buttons do

    /// Makes a car of the parts in the box, with a fresh recording of its pose. Locks the parts, or wipes a recording.
    /// @param problem  one sentence for the user if there is no car now; else empty
    bool SetupCar(std::string& problem);
    /// Drops the recording: the parts follow their own controllers again.
    void ResetCar();
    /// Builds the ground from the node that the artist picked, where there is one.
    void UpdateSurface();
    /// Opens the drive window.
    void Drive();

    tavrik::CarRig* Rig() override { return &rig_; }
    tavrik::DriveSession& Session() { return session_; }
    const tavrik::SurfaceTree& Surface() const { return surface_; }
    tavrik::ParamBlock& Params() { return params_; }

    /// Brings the tyre tracks up to date with the recording. They stay as they are until the next call, whatever is edited.
    void RebuildTrail();
    /// The tyre tracks; null while there are none. Renders keep theirs alive when there are newer ones.
    const std::shared_ptr<const tavrik::TrackTrail>& Trail() const { return trail_; }

    /// After a load, once everything that the file tells is in place.
    void Reattach();

    // ---------------------------------------------------------------------------------------------------- the host's questions

    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    using RigHelper::HitTest;
    /// Beneath a modifier there is nothing of it to hit.
    int HitTest(TimeValue t, INode* inode, int type, int crossing, int flags, IPoint2* p, ViewExp* vpt,
                ModContext* mc) override;
    bool Drag(const Point3& d) override;
    void BeginEditParams(IObjParam* ip, ULONG flags, Animatable* prev) override;
    void EndEditParams(IObjParam* ip, ULONG flags, Animatable* next) override;
    /// Makes an empty mesh of it for whoever insists, although `CanConvertToType` says no to everybody.
    Object* ConvertToType(TimeValue t, Class_ID id) override;
    IOResult Save(ISave* isave) override;
    IOResult Load(ILoad* iload) override;

 protected:
    /// Green, so that the box of a car stands out from its parts. It is never locked itself.
    Color LineColor(INode& node) const override;

 private:
    void TellDependents();
    /// Stops whatever run drives the car: a frame needs its recording.
    void StopRuns();
    /// Takes the car out of the world and closes the windows that drive it: it is about to be another one, or none.
    void LeaveWorld();

    std::shared_ptr<const tavrik::TrackTrail> trail_;  // outlives the session, whose last run may still rebuild it
    MasterDrive drive_{*this};
    BlockParams params_{pblock_};
    tavrik::DriveSession session_;
    tavrik::SurfaceTree surface_;
    tavrik::CarRig rig_;
    Point3 dummySize_{100.0f, 100.0f, 100.0f};  // half sizes of the box
    HWND about_ = nullptr;
};

}  // namespace tavrik_plugin

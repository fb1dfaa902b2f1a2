#pragma once
/// The host and a master object as a drive session sees them.

#include "drive/drive_host.h"
#include "plugin/path_driver.h"

namespace tavrik_plugin {

class Tavrik;

/// The host's clock, timeline and views.
tavrik::DriveHost& HostClock();

/// All cars that are driven together. There is one, as there is one scene.
tavrik::CarWorld& TheWorld();

bool WorldHolds(const tavrik::CarRig& rig);
/// Takes everything out of the world.
void EmptyWorld();

/// What a session asks of its master.
class MasterDrive final : public tavrik::SessionMaster {
 public:
    explicit MasterDrive(Tavrik& master) : master_(master), path_(master) {}
    tavrik::CarRig& Rig() override;
    const tavrik::ParamBlock& Params() const override;
    const tavrik::SurfaceTree& Surface() const override;
    void UpdateSurface() override;
    tavrik::CarWorld& World() override { return TheWorld(); }
    tavrik::WorldScene* Scene() override;
    void RebuildTrails() override;
    /// Whoever took the wheel for this process, else the master's own driver.
    tavrik::TargetDriver* Target() override;
    void FrameDriven() override;

 private:
    Tavrik& master_;
    PathDriver path_;
};

}  // namespace tavrik_plugin

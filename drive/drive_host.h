#pragma once
/// What a drive session needs of the host and of its master object.

#include <cstdint>

#include "drive/param_block.h"
#include "rig/car_rig.h"
#include "rig/ticks.h"
#include "solver/car_world.h"
#include "solver/world_building.h"
#include "surface/surface_tree.h"

namespace tavrik {

constexpr std::int32_t kKilometres = 6;  // number of a unit for GetMasterScale

struct TimeRange {
    TimeValue start, end;
};

/// The host's clock, its timeline and its views.
class DriveHost {
 public:
    virtual ~DriveHost() = default;
    virtual TimeValue GetTime() const = 0;
    virtual void SetTime(TimeValue tick, bool redraw) = 0;
    virtual TimeRange GetAnimRange() const = 0;
    virtual std::int32_t GetTicksPerFrame() const = 0;
    /// How much of a unit, by its number, one scene unit is.
    virtual double GetMasterScale(std::int32_t unit) const = 0;
    virtual void RedrawViews(TimeValue tick) = 0;
    /// Tells each master object's dependents, depth first from the scene's root, that they have to look again.
    virtual void NotifyMasters() = 0;
};

class DriveSession;

/// Drives instead of hands: towards the target node, or along it where it is a spline.
class TargetDriver {
 public:
    virtual ~TargetDriver() = default;
    /// Takes over what the artist set, as the session does: as a window opens and at each start.
    virtual void ReadSettings() {}
    virtual bool HasTarget() const = 0;
    /// Whether the target's object at time 0 can become a shape.
    virtual bool TargetIsShape() const = 0;
    virtual void BuildPath() = 0;
    /// Fill the session's `input` for its present tick.
    virtual void DriveToTarget(DriveSession& session) = 0;
    virtual void DriveAlongPath(DriveSession& session) = 0;
};

/// The master object that owns a session.
class SessionMaster {
 public:
    virtual ~SessionMaster() = default;
    virtual CarRig& Rig() = 0;
    virtual const ParamBlock& Params() const = 0;
    virtual const SurfaceTree& Surface() const = 0;
    /// Builds the ground from the node that the artist picked, where there is one.
    virtual void UpdateSurface() = 0;
    virtual CarWorld& World() = 0;
    /// Null where the car is all there is to the scene.
    virtual WorldScene* Scene() = 0;
    /// Brings the tyre tracks of every car in the world up to date.
    virtual void RebuildTrails() = 0;
    /// Null where nothing can drive in the hands' place.
    virtual TargetDriver* Target() = 0;
    /// A frame was driven and recorded. May stop the run.
    virtual void FrameDriven() {}
};

}  // namespace tavrik

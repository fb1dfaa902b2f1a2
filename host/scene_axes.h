#pragma once
/// Between a scene's axes and unit and those of glTF: metres, Y up. A scene's (x, y, z) is a file's (x, z, -y); that is a
/// rotation, so quaternions follow it with their vector part alone, and no mirroring comes in.

#include "host/drive_scene.h"
#include "host/sdk/max.h"
#include "host/sdk/prs_control.h"
#include "solver/double_maths.h"

namespace tavrik_host {

/// A place as glTF has it, still in the scene's axes and unit.
struct Placement {
    tavrik::DPoint3 position{0, 0, 0};
    tavrik::Turn rotation{0, 0, 0, 1};
    tavrik::DPoint3 scale{1, 1, 1};  // along the node's own axes; negative for a mirrored one
};

tavrik::DPoint3 ToFileAxes(const tavrik::DPoint3& p);
tavrik::DPoint3 FromFileAxes(const tavrik::DPoint3& p);
/// The same for three numbers that belong to axes without a direction, as a scale's do.
tavrik::DPoint3 SwapYAndZ(const tavrik::DPoint3& p);

tavrik::DMatrix3 ToDouble(const Matrix3& m);
Matrix3 ToSingle(const tavrik::DMatrix3& m);
bool IsFinite(const Matrix3& m);

/// The nearest placement to a frame: glTF knows no shear. Every finite frame has one, flat ones too.
Placement PlacementOf(const tavrik::DMatrix3& frame);
tavrik::DMatrix3 FrameOf(const Placement& placement);

}  // namespace tavrik_host

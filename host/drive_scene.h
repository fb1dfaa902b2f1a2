#pragma once
/// A recorded drive as a scene that other 3-D programs open and play.

#include <string>
#include <vector>

#include "rig/car_rig.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

/// Which moments get a key. Between keys a turn goes the short way round, so a wheel that is keyed 30 times a second seems to
/// roll backwards above some 110 km/h; every sample is the rule.
enum class KeyChoice { EverySample, EveryFrame };

struct DriveSceneOptions {
    KeyChoice keys = KeyChoice::EverySample;
    int ticksPerFrame = 160;
    int frames = 0;                   // of the animation range, for `extras`
    double kilometresPerUnit = 1e-5;  // of the scene's unit
};

/// Builds a binary glTF with the nodes `ground`, `body` and `wheel_...`, in metres and Y up. Body and wheels carry translation
/// and rotation at the recorded ticks' true times, seconds since the first driven sample. Frame rate and range stand in the
/// scene's `extras`.
///
/// @param rig      locked; its recording holds at least one driven sample
/// @param ground   scene units, Z up; triangles may be none
/// @param problem  on false: what can't be written, without a file's name
bool MakeDriveScene(const CarRig& rig, const TriangleMesh& ground, const DriveSceneOptions& options, std::string& glb,
                    std::string& problem);

/// Builds a binary glTF of a ground alone. Arguments as above.
bool MakeGroundScene(const TriangleMesh& ground, double kilometresPerUnit, std::string& glb, std::string& problem);

/// A quaternion: x, y, z, w.
struct Turn {
    double x, y, z, w;
};

/// The rotation nearest to rows 0..2 of `frame`, which integration leaves a little off square. A left-handed frame, seen as a
/// mirrored Z axis behind a rotation, gives that rotation.
/// @return false when the rows span no space
bool NearestTurn(const DMatrix3& frame, Turn& turn);

}  // namespace tavrik

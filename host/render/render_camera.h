#pragma once
/// Where a picture is taken from. A camera at a tick depends on the scene at that tick alone, never on the frame before, so
/// that any machine may make any frame.

#include <optional>
#include <string>

#include "host/render/ray_scene.h"
#include "host/scene_file.h"

namespace tavrik_host {

struct RenderCamera {
    Point3 eye{0, 0, 0}, right{1, 0, 0}, up{0, 0, 1}, ahead{0, 1, 0};  // the three axes are of length 1
    float halfHeight = 0.4f;                                           // of the picture a unit ahead; of a flat view, in units
    float aspect = 16.0f / 9.0f;                                       // width through height
    bool isFlat = false;                                               // no perspective

    /// @param x, y  across and down the picture, 0..1
    Ray Through(float x, float y) const;
};

/// What the user asked for.
struct CameraWish {
    enum class Kind { Follow, Top, Node };
    Kind kind = Kind::Follow;
    std::string node;                 // of Node
    std::optional<Point3> eye, look;  // of Follow: metres from the chassis, to the right, ahead and up
    float lens = 40.0f;               // of Follow: degrees, from top to bottom
    float span = 25.0f;               // of Top: metres from top to bottom
};

/// The camera of a render: what it follows is looked up once.
class CameraMan {
 public:
    /// @param master   whose car to follow; null: there is none, and the whole scene is looked at
    /// @param problem  on false: one sentence without the file's name
    bool Prepare(const SceneDocument& document, const CameraWish& wish, INode* master, float aspect, std::string& problem);
    RenderCamera At(TimeValue tick, const RayFrame& frame, const RenderModel& model) const;

 private:
    bool PrepareNode(const SceneDocument& document, std::string& problem);
    RenderCamera FollowAt(TimeValue tick, const RayFrame& frame) const;
    RenderCamera TopAt(TimeValue tick, const RayFrame& frame, const RenderModel& model) const;

    CameraWish wish_;
    INode* chassis_ = nullptr;
    INode* node_ = nullptr;
    RenderCamera lens_;  // with the field of view and the aspect that were asked for
    float carRadius_ = 200.0f;
    float unitsPerMetre_ = 100.0f;
};

/// The chassis that a master drives, or the one nearest to it while nothing is locked. Null where there is none.
INode* ChassisOf(INode& master);

}  // namespace tavrik_host

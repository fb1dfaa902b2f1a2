#pragma once
/// Who is hit by a ray: the model's shapes, each built once, and the nodes that carry them at the places of one frame.

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/render/render_model.h"

namespace tavrik_host {

/// A point of a surface that a ray met, in the world.
struct RayHit {
    float distance = 0.0f;  // in lengths of the ray's direction
    Point3 point{0, 0, 0};
    Point3 flat{0, 0, 1};       // across the triangle, length 1, on the side where the ray came from
    Point3 normal{0, 0, 1};     // as the mesh is shaded, likewise
    Point2 spot{0, 0};          // place in the material's picture
    float spotsPerUnit = 0.0f;  // how fast that place moves along the surface
    const RenderPart* part = nullptr;
    std::size_t thing = 0;  // in the model's list
};

struct Ray {
    Point3 origin, direction;
    float near = 0.0f, far = 1e30f;  // in lengths of the direction
};

/// The model's shapes, sorted for rays. Built on one thread: what many would build together need not come out the same twice.
class RayShapes {
 public:
    /// @param model  is looked at by every frame and every hit, and not owned
    explicit RayShapes(const RenderModel& model);
    ~RayShapes();
    RayShapes(const RayShapes&) = delete;
    RayShapes& operator=(const RayShapes&) = delete;

    const RenderModel& Model() const { return model_; }

 private:
    friend class RayFrame;
    struct Device;
    const RenderModel& model_;
    std::unique_ptr<Device> device_;
};

/// The nodes as they stand at one tick. Any number of threads may ask at once; the scene itself isn't asked any more.
class RayFrame {
 public:
    RayFrame(const RayShapes& shapes, TimeValue tick);
    ~RayFrame();
    RayFrame(const RayFrame&) = delete;
    RayFrame& operator=(const RayFrame&) = delete;

    /// @return false where the ray meets nothing
    bool Meets(const Ray& ray, RayHit& hit) const;
    /// Whether something that light doesn't pass stands in the way.
    bool IsBlocked(const Ray& ray) const;

    /// The frame of a thing's object, in the world.
    const Matrix3& PlaceOf(std::size_t thing) const { return places_[thing]; }

 private:
    struct Top;
    const RayShapes& shapes_;
    std::vector<Matrix3> places_;
    std::unique_ptr<Top> top_;
};

}  // namespace tavrik_host

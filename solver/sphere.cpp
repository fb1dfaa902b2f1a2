#include "solver/sphere.h"

#include <cmath>

#include "surface/surface_neighbourhood.h"

namespace tavrik {
namespace {

// The vertices of an icosahedron, to the six digits that every recording so far was made with.
constexpr DPoint3 kIcosahedron[kSphereRays] = {
    {0, 0, 1},
    {0.894427, 0, 0.447214},
    {0.276393, 0.850651, 0.447214},
    {-0.723607, 0.525731, 0.447214},
    {-0.723607, -0.525731, 0.447214},
    {0.276393, -0.850651, 0.447214},
    {0.723607, 0.525731, -0.447214},
    {-0.276393, 0.850651, -0.447214},
    {-0.894427, 0, -0.447214},
    {-0.276393, -0.850651, -0.447214},
    {0.723607, -0.525731, -0.447214},
    {0, 0, -1},
};

// Rays are this many radii long at most. They are longer than one when the two vectors that a frame is made of were drawn
// equal: the second one may then be no more than a copy of the first, and a ray that goes along both gets (0.723607 + 0.525731)
// of it.
constexpr double kLongestRay = 1.2494;

/// A point uniform over a shell: points of a cube, kept when they lie in it.
DPoint3 RandomShellPoint(RandomStream& random) {
    for (;;) {
        DPoint3 v;
        v.x = 2.0 * random.Rand01() - 1.0;
        v.y = 2.0 * random.Rand01() - 1.0;
        v.z = 2.0 * random.Rand01() - 1.0;
        const double squared = Dot(v, v);
        if (squared >= 0.5 && squared <= 1.0) return v;
    }
}

/// A unit vector, uniform over the sphere.
DPoint3 RandomDirection(RandomStream& random) {
    const DPoint3 v = RandomShellPoint(random);
    return v / Length(v);
}

/// Draws what RandomFrame would draw.
void SkipRandomFrame(RandomStream& random) {
    RandomShellPoint(random);
    RandomShellPoint(random);
}

}  // namespace

DMatrix3 RandomFrame(RandomStream& random) {
    const DPoint3 v = RandomDirection(random);
    DPoint3 u = RandomDirection(random);
    for (int i = 0; i < 2; ++i) {  // the second time takes away what rounding left when both are nearly parallel
        u -= v * Dot(v, u);
        u = Normalize(u);
    }
    return {{v, u, Cross(v, u), {0.0, 0.0, 0.0}}};
}

int SphereRayCast(const CollisionSphere& sphere, const SurfaceTree& surface, const RigidBody& chassisBody, RandomStream& random,
                  std::span<ContactPoint, kSphereRays> contacts) {
    const Point3 centre = ToPoint3(Compose(sphere.frame, chassisBody.frame).row[3]);
    const float reach = float(std::abs(sphere.Radius) * kLongestRay);
    if (SurfaceNeighbourhood(surface, centre, reach).ClearReach(centre) > reach) {
        SkipRandomFrame(random);  // the numbers of later draws must not depend on what is near
        for (ContactPoint& contact : contacts) contact.hit = 0;
        return 0;
    }

    const DMatrix3 turn = RandomFrame(random);
    int hits = 0;
    for (std::size_t k = 0; k < kSphereRays; ++k) {
        ContactPoint& contact = contacts[k];
        contact.hit = 0;
        SurfaceRay ray;
        ray.Set(centre, ToPoint3(TransformPoint(kIcosahedron[k], turn) * sphere.Radius), 0.0f, 1.0f);
        if (!surface.Intersect(ray)) continue;

        const float t = ray.tmax;
        contact.hit = 1;
        ++hits;
        contact.direction = FromPoint3(Normalize(ray.dir));
        contact.point = FromPoint3(ray.org + ray.dir * t);
        contact.depth = double(1.0f - t) * sphere.Radius;
    }
    return hits;
}

}  // namespace tavrik

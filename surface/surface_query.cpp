// The one question to the ground: SurfaceTree::Intersect.

#include <cassert>
#include <cstddef>
#include <limits>

#include "surface/float4.h"
#include "surface/surface_tree.h"

namespace tavrik {
namespace {

// No wall is looked for beyond this parameter.
constexpr float kFarthest = 1e30f;

// A ray as the lanes see it: the three axes side by side, zeros in the fourth lane.
struct RayLanes {
    explicit RayLanes(const SurfaceRay& ray)
        : dir(Float4From(ray.dir.x, ray.dir.y, ray.dir.z, 0.0f)),
          org(Float4From(ray.org.x, ray.org.y, ray.org.z, 0.0f)),
          forward(dir > Broadcast(0.0f)),
          sideways(dir == Broadcast(0.0f)) {}

    Float4 dir, org;
    Mask4 forward;   // axes on which the ray goes up
    Mask4 sideways;  // axes on which it stands still, and so leaves no box
};

// The way from a ray's start to the wall ahead on each axis.
Float4 WayOut(const RayLanes& ray, Float4 pmin, Float4 pmax) { return Select(ray.forward, pmax, pmin) - ray.org; }

// Whether dir * 1 ends before every wall ahead, so that each way / dir is above 1, without dividing. Where way and dir differ
// at all, their quotient is further from 1 than half the step to the next float, so no rounding takes it back to 1.
bool EndsBeforeWalls(const RayLanes& ray, Float4 way) {
    const Mask4 further = Select(ray.forward, way > ray.dir, ray.dir > way) | ray.sideways;
    return (Bits(further) & 7) == 7;
}

// Where a ray leaves a box: on each axis the parameter of the wall ahead, a NaN where there is none.
struct WallsAhead {
    WallsAhead(const RayLanes& ray, Float4 way) {
        const Float4 u = Select(ray.sideways, Broadcast(std::numeric_limits<float>::quiet_NaN()), way / ray.dir);
        x = Lane<0>(u), y = Lane<1>(u), z = Lane<2>(u);
        nearest = x < kFarthest ? x : kFarthest;
        nearest = y < nearest ? y : nearest;
        nearest = z < nearest ? z : nearest;
    }

    float x, y, z;
    float nearest;
};

// The face behind which a walk goes on. Of walls at the same parameter X comes before Y and Y before Z; with no wall in reach
// it is the first face.
std::size_t FaceAhead(const WallsAhead& walls, unsigned forward) {
    if (!(walls.nearest < kFarthest)) return 0;
    if (walls.x == walls.nearest) return forward & 1;
    if (walls.y == walls.nearest) return 2 + (forward >> 1 & 1);
    return 4 + (forward >> 2 & 1);
}

// Cuts a ray to a box. False when nothing of it is left; a ray that only grazes the box has nothing left.
bool ClipToBox(const Box3& box, const RayLanes& lanes, SurfaceRay& ray) {
    const Float4 pmin = Float4From(box.pmin.x, box.pmin.y, box.pmin.z, 0.0f);
    const Float4 pmax = Float4From(box.pmax.x, box.pmax.y, box.pmax.z, 0.0f);
    if (Bits((lanes.org >= pmin) & (lanes.org <= pmax)) == 15) {
        const Float4 way = WayOut(lanes, pmin, pmax);
        if (!(ray.tmax == 1.0f && EndsBeforeWalls(lanes, way))) {
            const WallsAhead walls(lanes, way);
            if (ray.tmax > walls.nearest) ray.tmax = walls.nearest;
        }
        return ray.tmax > ray.tmin;
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const float dir = ray.dir[axis], org = ray.org[axis], low = box.pmin[axis], high = box.pmax[axis];
        if (dir == 0.0f) {
            if (low > org || org > high) return false;
        } else if (dir > 0.0f || dir < 0.0f) {
            const float enter = ((dir > 0.0f ? low : high) - org) / dir;
            const float leave = ((dir > 0.0f ? high : low) - org) / dir;
            if (enter > ray.tmin) ray.tmin = enter;
            if (ray.tmax > leave) ray.tmax = leave;
        }
    }
    return ray.tmax > ray.tmin;
}

// Where height / d is surely below 0 or above 1, or d is 0, without dividing. The quotient's magnitude is above 1 just where
// the height's is above d's; where it is at least 2^-100 it doesn't round to a zero that would pass for "not below 0".
Mask4 MissesUnitRange(Float4 height, Float4 d) {
    const Float4 length = Abs(height), reach = Abs(d);
    return (d == Broadcast(0.0f)) | (length > reach) | (SignsDiffer(height, d) & (length > reach * Broadcast(0x1p-100f)));
}

// Finds out when a walk goes in circles. Only a ray so short that its walls lie beyond kFarthest can: it steps through the
// first face whatever its direction, and may come back. All that such a step leaves behind is the leaf's index, so a second
// step from the same leaf means that there is no end. After Richard P. Brent, "An improved Monte Carlo factorization
// algorithm", 1980: the leaf to meet again is chosen anew after 1, 2, 4, ... steps.
class CircleWatch {
 public:
    bool MetAgain(std::uint32_t leaf) {
        if (leaf == leaf_) return true;
        if (++steps_ == period_) {
            steps_ = 0;
            period_ *= 2;
            leaf_ = leaf;
        }
        return false;
    }

 private:
    std::uint32_t leaf_ = std::numeric_limits<std::uint32_t>::max();
    std::uint32_t steps_ = 0, period_ = 1;
};

}  // namespace

bool SurfaceTree::Intersect(SurfaceRay& ray) const {
    assert(built());
    const RayLanes lanes(ray);
    if (!ClipToBox(bound_, lanes, ray)) return false;

    const unsigned forward = Bits(lanes.forward);
    const Float4 dirX = Broadcast(ray.dir.x), dirY = Broadcast(ray.dir.y), dirZ = Broadcast(ray.dir.z);
    const Float4 orgX = Broadcast(ray.org.x), orgY = Broadcast(ray.org.y), orgZ = Broadcast(ray.org.z);
    CircleWatch circles;
    Float4 p = lanes.dir * Broadcast(ray.tmin) + lanes.org;
    SurfaceLink cube = grid_.CubeAbove(p);
    for (;;) {
        while (!cube.endsDescent()) {
            const SurfaceNode& node = nodes_[cube.index()];
            cube = node.child[Bits(p > Load(&node.centre.x))];
        }
        if (cube.isNone()) return false;
        const SurfaceBlock* block = &blocks_[cube.index()];
        const SurfaceLeaf& leaf = block->leaf;
        const Float4 pmin = Load(&leaf.pmin.x), pmax = Load(&leaf.pmax.x);

        // Every triangle of the list is asked: a later one may be nearer. Each hit shortens the ray for those behind it.
        bool hit = false;
        const bool unit = ray.tmin >= 0.0f && ray.tmax <= 1.0f;
        const std::uint32_t groups = leaf.groups();
        for (std::uint32_t group = 0; group != groups; ++group) {
            //   t = (planeD - org . n) / (dir . n)     q = dir t + org
            const SurfacePlanes& planes = block[1 + group].planes;
            const Float4 nx = Load(planes.nx), ny = Load(planes.ny), nz = Load(planes.nz);
            const Float4 d = dirX * nx + dirY * ny + dirZ * nz;
            const Float4 height = Load(planes.planeD) - (orgX * nx + orgY * ny + orgZ * nz);
            if (unit && Bits(MissesUnitRange(height, d)) == 15) continue;
            const Float4 t = height / d;
            const Float4 qx = dirX * t + orgX, qy = dirY * t + orgY, qz = dirZ * t + orgZ;
            const Mask4 missed = (d == Broadcast(0.0f)) | (Broadcast(ray.tmin) > t) | (t > Broadcast(ray.tmax));
            const Mask4 held = (qx >= BroadcastLane<0>(pmin)) & (qx <= BroadcastLane<0>(pmax)) &
                               (qy >= BroadcastLane<1>(pmin)) & (qy <= BroadcastLane<1>(pmax)) &
                               (qz >= BroadcastLane<2>(pmin)) & (qz <= BroadcastLane<2>(pmax));
            unsigned left = Bits(AndNot(missed, held));
            if (left == 0) continue;
            alignas(16) float ts[4], q[3][4];
            Store(t, ts);
            Store(qx, q[0]), Store(qy, q[1]), Store(qz, q[2]);
            for (std::size_t i = 0; left != 0; ++i, left >>= 1) {
                if ((left & 1) == 0 || ts[i] > ray.tmax) continue;
                const SurfaceTriangle& triangle = triangles_[faces_[leaf.firstFaces + group].face[i]];
                if (!HoldsPointOfPlane(triangle, q[triangle.axisU][i], q[triangle.axisV][i])) continue;
                ray.tmax = ts[i];
                hit = true;
            }
        }
        // Leaves are met in the ray's order, so the first hit is the nearest.
        if (hit) return true;

        const Float4 way = WayOut(lanes, pmin, pmax);
        if (ray.tmax == 1.0f && EndsBeforeWalls(lanes, way)) return false;
        const WallsAhead walls(lanes, way);
        ray.tmin = walls.nearest;
        if (ray.tmin > ray.tmax) return false;
        if (walls.nearest == kFarthest && circles.MetAgain(cube.index())) return false;
        cube = leaf.neighbour[FaceAhead(walls, forward)];
        p = lanes.dir * Broadcast(ray.tmin) + lanes.org;
    }
}

}  // namespace tavrik

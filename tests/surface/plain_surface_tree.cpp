#include "tests/surface/plain_surface_tree.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace tavrik::test {
namespace {

// Cuts a closed polygon in place: first puts a point on every edge that crosses the plane, then drops what lies beyond it.
void Cut(std::vector<Point3>& closed, std::size_t axis, float c, bool keepAbove) {
    std::size_t n = closed.size() - 1;
    for (std::size_t i = 0; i < n;) {
        const float a = closed[i][axis], b = closed[i + 1][axis];
        if ((a < c && b > c) || (a > c && b < c)) {
            const float t = (c - a) / (b - a);
            Point3 p = closed[i] + (closed[i + 1] - closed[i]) * t;
            p[axis] = c;
            closed.insert(closed.begin() + std::ptrdiff_t(i) + 1, p);
            ++n;
            i += 2;
        } else {
            ++i;
        }
    }
    closed.pop_back();
    std::erase_if(closed, [&](const Point3& p) { return !(keepAbove ? p[axis] >= c : p[axis] <= c); });
    if (!closed.empty()) closed.push_back(closed.front());
}

void Fill(PlainNode& node, const std::vector<PlainTriangle>& triangles, const Box3& box, std::vector<int> list, int childIndex,
          int depth) {
    node.box = box;
    node.centre = (box.pmin + box.pmax) * 0.5f;
    node.depth = depth;
    node.childIndex = childIndex;
    node.list = std::move(list);
    if (!(int(node.list.size()) > depth && depth < 16)) return;
    for (int i = 0; i < 8; ++i) {
        const Box3 childBox = PlainChildBox(box, i);
        std::vector<int> passing;
        for (const int triangle : node.list) {
            if (PlainTouches(triangles[std::size_t(triangle)].corner, childBox)) passing.push_back(triangle);
        }
        node.child[i] = std::make_unique<PlainNode>();
        Fill(*node.child[i], triangles, childBox, std::move(passing), i, depth + 1);
        node.child[i]->parent = &node;
    }
    node.list.clear();
}

int ChildTowards(const PlainNode& node, const Point3& p) {
    return (p.x > node.centre.x ? 1 : 0) + (p.y > node.centre.y ? 2 : 0) + (p.z > node.centre.z ? 4 : 0);
}

void Link(PlainNode& node) {
    if (node.parent != nullptr) {
        const Box3& box = node.box;
        const Point3& c = node.centre;
        const Point3 probe[6] = {{box.pmin.x, c.y, c.z}, {box.pmax.x, c.y, c.z}, {c.x, box.pmin.y, c.z},
                                 {c.x, box.pmax.y, c.z}, {c.x, c.y, box.pmin.z}, {c.x, c.y, box.pmax.z}};
        for (int s = 0; s < 6; ++s) {
            PlainNode* other = node.parent->neighbour[s];
            while (other != nullptr && other->depth < node.depth && !other->isLeaf()) {
                other = other->child[ChildTowards(*other, probe[s])].get();
            }
            node.neighbour[s] = other;
        }
        for (int axis = 0; axis < 3; ++axis) {
            const bool upper = (node.childIndex >> axis & 1) != 0;
            node.neighbour[2 * axis + (upper ? 0 : 1)] = node.parent->child[node.childIndex ^ (1 << axis)].get();
        }
    }
    if (node.isLeaf()) return;
    for (auto& child : node.child) Link(*child);
}

int ExitFace(const SurfaceRay& ray, const Box3& box, float& t) {
    t = 1e30f;
    int face = 0;
    for (int axis = 0; axis < 3; ++axis) {
        const std::size_t a = std::size_t(axis);
        if (ray.dir[a] > 0) {
            const float u = (box.pmax[a] - ray.org[a]) / ray.dir[a];
            if (t > u) t = u, face = 2 * axis + 1;
        } else if (ray.dir[a] < 0) {
            const float u = (box.pmin[a] - ray.org[a]) / ray.dir[a];
            if (t > u) t = u, face = 2 * axis;
        }
    }
    return face;
}

bool ClipToRoot(const Box3& box, SurfaceRay& ray) {
    if (box.Contains(ray.org)) {
        float t = 0;
        ExitFace(ray, box, t);
        if (ray.tmax > t) ray.tmax = t;
        return ray.tmax > ray.tmin;
    }
    for (std::size_t a = 0; a < 3; ++a) {
        if (ray.dir[a] > 0) {
            const float in = (box.pmin[a] - ray.org[a]) / ray.dir[a];
            if (in > ray.tmin) ray.tmin = in;
            const float out = (box.pmax[a] - ray.org[a]) / ray.dir[a];
            if (ray.tmax > out) ray.tmax = out;
        } else if (ray.dir[a] < 0) {
            const float in = (box.pmax[a] - ray.org[a]) / ray.dir[a];
            if (in > ray.tmin) ray.tmin = in;
            const float out = (box.pmin[a] - ray.org[a]) / ray.dir[a];
            if (ray.tmax > out) ray.tmax = out;
        } else if (ray.dir[a] == 0) {
            if (box.pmin[a] > ray.org[a] || ray.org[a] > box.pmax[a]) return false;
        }
    }
    return ray.tmax > ray.tmin;
}

}  // namespace

bool PlainTriangle::SetUp() {
    const Point3 &p0 = corner[0], &p1 = corner[1], &p2 = corner[2];
    const Point3 product = Cross(p1 - p0, p2 - p0);
    const float length = Length(product);
    if (!(length > 0)) return false;
    normal = product * (1.0f / length);
    const Point3 centroid = (p0 + p1 + p2) * (1.0f / 3.0f);
    planeD = Dot(centroid, normal);
    const float x = std::fabs(normal.x), y = std::fabs(normal.y), z = std::fabs(normal.z);
    if (z > x && z > y) {
        axisU = 0, axisV = 1;
    } else if (x > y) {
        axisU = 1, axisV = 2;
    } else {
        axisU = 2, axisV = 0;
    }
    const std::size_t u = std::size_t(axisU), v = std::size_t(axisV);
    baseU = p0[u], baseV = p0[v];
    m[0] = p1[u] - baseU, m[1] = p1[v] - baseV, m[2] = p2[u] - baseU, m[3] = p2[v] - baseV;
    const float det = m[0] * m[3] - m[2] * m[1];
    for (float& element : m) element /= det;
    return true;
}

bool PlainTriangle::Intersect(SurfaceRay& ray, const Box3* box) const {
    const float d = Dot(ray.dir, normal);
    if (d == 0) return false;
    const float t = (planeD - Dot(ray.org, normal)) / d;
    if (ray.tmin > t || t > ray.tmax) return false;
    const Point3 q = ray.dir * t + ray.org;
    if (box != nullptr && !box->Contains(q)) return false;
    const float du = q[std::size_t(axisU)] - baseU, dv = q[std::size_t(axisV)] - baseV;
    const float a = m[3] * du - m[2] * dv, b = m[0] * dv - m[1] * du;
    if (0 > a || 0 > b || a + b > 1) return false;
    ray.tmax = t;
    return true;
}

PlainSurfaceTree::PlainSurfaceTree(const TriangleMesh& mesh) {
    Box3 box = EmptyBox3();
    for (const Point3& p : mesh.verts) box.Include(p);
    const Point3 side = box.Width();
    bound = MakeCube(box.Center(), std::max({side.x, side.y, side.z}));
    Point3 width = bound.pmax - bound.pmin;
    bound.pmin = bound.pmin - width * 0.012545679f;
    width = bound.pmax - bound.pmin;
    bound.pmax = bound.pmax + width * 0.012345679f;

    std::vector<int> list;
    for (const MeshFace& face : mesh.faces) {
        PlainTriangle triangle{{mesh.verts[face.v[0]], mesh.verts[face.v[1]], mesh.verts[face.v[2]]}};
        triangle.SetUp();
        list.push_back(int(triangles.size()));
        triangles.push_back(triangle);
    }
    root = std::make_unique<PlainNode>();
    Fill(*root, triangles, bound, std::move(list), 0, 0);
    Link(*root);
}

bool PlainSurfaceTree::Intersect(SurfaceRay& ray, int* steps) const {
    int count = 0;
    int& step = steps != nullptr ? *steps : count;
    step = 0;
    if (!ClipToRoot(bound, ray)) return false;
    const PlainNode* node = root.get();
    while (node != nullptr) {
        if (++step > kMostSteps) return false;
        const Point3 p = ray.dir * ray.tmin + ray.org;
        while (!node->isLeaf()) node = node->child[ChildTowards(*node, p)].get();
        bool hit = false;
        for (const int triangle : node->list) {
            if (triangles[std::size_t(triangle)].Intersect(ray, &node->box)) hit = true;
        }
        if (hit) return true;
        node = node->neighbour[ExitFace(ray, node->box, ray.tmin)];
        if (ray.tmin > ray.tmax) return false;
    }
    return false;
}

bool PlainSurfaceTree::IntersectEveryTriangle(SurfaceRay& ray) const {
    bool hit = false;
    for (const PlainTriangle& triangle : triangles) {
        if (triangle.Intersect(ray, nullptr)) hit = true;
    }
    return hit;
}

Box3 PlainChildBox(const Box3& parent, int i) {
    const Point3 half = (parent.pmax - parent.pmin) * 0.5f;
    Box3 box;
    box.pmin = {parent.pmin.x + float(i & 1) * half.x, parent.pmin.y + float(i >> 1 & 1) * half.y,
                parent.pmin.z + float(i >> 2 & 1) * half.z};
    box.pmax = box.pmin + half;
    return box;
}

bool PlainTouches(const Point3 (&corner)[3], const Box3& box, int* mostPlaces) {
    Box3 own = EmptyBox3();
    for (const Point3& p : corner) own.Include(p);
    if (box.Contains(own)) return true;
    if (!box.Intersects(own)) return false;
    std::vector<Point3> closed = {corner[0], corner[1], corner[2], corner[0]};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const bool keepAbove : {true, false}) {
            if (closed.empty()) return false;
            // The cut holds the polygon, the points put on its edges and the closing copy before it drops anything.
            int crossings = 0;
            const float c = keepAbove ? box.pmin[axis] : box.pmax[axis];
            for (std::size_t i = 0; i + 1 < closed.size(); ++i) {
                const float a = closed[i][axis], b = closed[i + 1][axis];
                crossings += (a < c && b > c) || (a > c && b < c);
            }
            if (mostPlaces != nullptr) *mostPlaces = std::max(*mostPlaces, int(closed.size()) + crossings);
            Cut(closed, axis, c, keepAbove);
        }
    }
    return !closed.empty();
}

}  // namespace tavrik::test

#include "surface/path_field.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "surface/box_clip.h"

namespace tavrik {
namespace {

using Pieces = std::vector<PathSegment>;

/// A cube is seen as a lump from three of its half widths on.
constexpr double kLumpDistanceSquared = 9.0;

/// The root is uneven about the path, so that a path with a symmetry, as most test tracks have one, doesn't run along the
/// walls between cubes, where pieces are lost.
constexpr float kUpperMargin = 1.1f, kLowerMargin = 1.05f;

/// Pieces that a tree may hold at a time while it is built. The leaf rule alone ends any tree at a depth of ln(pieces), but
/// where a great many pieces run through the same cubes all the way (a path that goes to and fro ten thousand times on one
/// line), the copies would fill any memory before. A cube that would be split beyond the bound stays a leaf: its field is then
/// exact instead of lumped, and slow to ask. A road of a million pieces, cut at the walls as roads are, stays far below.
std::size_t MostPieces(std::size_t given) { return 4'000'000 + 4 * given; }

/// The more pieces a leaf may hold the deeper it is: a node at depth d is split while it has more than e^d.
bool IsLeaf(std::size_t count, int depth) { return !(std::log(float(count)) > float(depth)); }

Pieces PiecesOf(const PolyShape& shape) {
    Pieces pieces;
    for (const PolyLine& line : shape.lines) {
        const std::vector<Point3>& points = line.points;
        if (points.empty()) continue;
        for (std::size_t i = 0; i + 1 < points.size(); ++i) pieces.push_back(MakePathSegment(points[i], points[i + 1]));
        if (line.closed) pieces.push_back(MakePathSegment(points.back(), points.front()));
    }
    return pieces;
}

Box3 RootBox(const Pieces& pieces) {
    Box3 box = EmptyBox3();
    for (const PathSegment& piece : pieces) {
        box.Include(piece.a);
        box.Include(piece.b);
    }
    if (box.pmin.x > box.pmax.x) return {{-1, -1, -1}, {1, 1, 1}};
    const Point3 half = box.Width() * 0.5f, centre = box.Center();
    const float m = std::max(std::max(half.x, half.y), half.z);
    const float up = m * kUpperMargin, down = m * kLowerMargin;
    return {centre - Point3{down, down, down}, centre + Point3{up, up, up}};
}

/// A node whose pieces haven't been given to its children yet, or been stored.
struct OpenNode {
    PathFieldNode* node;
    Pieces pieces;
};

OpenNode OpenAt(PathFieldNode& node, const Box3& box, Pieces pieces) {
    node.box = box;
    for (const PathSegment& piece : pieces) node.totalLength += piece.length;
    node.centre = box.Center();
    const float radius = (box.pmax.x - box.pmin.x) * 0.5f;
    node.radiusSquared = radius * radius;
    return {&node, std::move(pieces)};
}

void CloseAsLeaf(OpenNode& open) {
    PathFieldNode& node = *open.node;
    node.count = std::int32_t(open.pieces.size());
    node.segments = std::make_unique_for_overwrite<PathSegment[]>(open.pieces.size());
    std::copy(open.pieces.begin(), open.pieces.end(), node.segments.get());
}

/// @return pieces that the children have together
std::size_t Split(const OpenNode& open, std::vector<OpenNode>& children) {
    PathFieldNode& node = *open.node;
    node.child = std::make_unique<PathFieldNode[]>(8);
    const ChildWalls walls = WallsOfChildren(node.box);
    std::size_t count = 0;
    for (unsigned i = 0; i < 8; ++i) {
        const Box3 box = ChildBox(walls, i);
        Pieces pieces;
        PathSegment part;
        for (const PathSegment& piece : open.pieces) {
            if (ClipSegment(piece, box, part)) pieces.push_back(part);
        }
        count += pieces.size();
        children.push_back(OpenAt(node.child[i], box, std::move(pieces)));
    }
    return count;
}

/// Level by level, so that all parts of a path get equally fine before a bound is met.
void BuildTree(OpenNode root) {
    std::size_t held = root.pieces.size();
    const std::size_t most = MostPieces(held);
    std::vector<OpenNode> level;
    level.push_back(std::move(root));
    for (int depth = 0; !level.empty(); ++depth) {
        std::vector<OpenNode> below;
        for (OpenNode& open : level) {
            if (IsLeaf(open.pieces.size(), depth) || held > most) {
                CloseAsLeaf(open);
            } else {
                held += Split(open, below) - open.pieces.size();
            }
            open.pieces = {};
        }
        level = std::move(below);
    }
}

double FieldOf(const PathFieldNode& node, const Point3& point) {
    if (node.isLeaf()) return FieldOfSegments(node.segments.get(), std::size_t(node.count), point);
    const double x = double(point.x) - double(node.centre.x), y = double(point.y) - double(node.centre.y),
                 z = double(point.z) - double(node.centre.z);
    const double rr = x * x + y * y + z * z;
    if (rr > double(node.radiusSquared) * kLumpDistanceSquared) {
        const double inverse = 1.0 / std::sqrt(rr);
        return inverse * inverse * inverse * double(node.totalLength);
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < 8; ++i) sum += FieldOf(node.child[i], point);
    return sum;
}

}  // namespace

bool PathField::Build(PathSource* source) {
    Release();
    PolyShape shape;
    if (source == nullptr || !source->MakePolyShape(shape)) return false;
    BuildFromPolyShape(shape);
    return true;
}

void PathField::BuildFromPolyShape(const PolyShape& shape) {
    Pieces pieces = PiecesOf(shape);
    const Box3 box = RootBox(pieces);
    auto root = std::make_unique<PathFieldNode>();
    BuildTree(OpenAt(*root, box, std::move(pieces)));
    root_ = std::move(root);
}

void PathField::Release() { root_.reset(); }

double PathField::FieldAt(const Point3& point) const { return built() ? FieldOf(*root_, point) : 0.0; }

}  // namespace tavrik

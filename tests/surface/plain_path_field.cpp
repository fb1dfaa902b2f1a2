#include "tests/surface/plain_path_field.h"

#include <algorithm>
#include <cmath>

#include "solver/double_maths.h"

namespace tavrik::test {
namespace {

PlainPiece Piece(const Point3& a, const Point3& b) {
    PlainPiece piece{a, b, b - a, 0};
    piece.length = Length(piece.dir);
    piece.dir = piece.dir * (1.0f / piece.length);
    return piece;
}

bool Clip(const PlainPiece& piece, const Box3& box, PlainPiece& result) {
    float t[2];
    int kept = 0;
    const auto look = [&](float plane, float a, float dir, std::size_t u, std::size_t v) {
        if (kept == 2) return;
        const float at = (plane - a) / dir;
        const Point3 q = piece.dir * at + piece.a;
        if (q[u] > box.pmin[u] && q[u] < box.pmax[u] && q[v] > box.pmin[v] && q[v] < box.pmax[v]) t[kept++] = at;
    };
    if (piece.dir.x != 0) {
        look(box.pmin.x, piece.a.x, piece.dir.x, 1, 2);
        look(box.pmax.x, piece.a.x, piece.dir.x, 1, 2);
    }
    if (piece.dir.y != 0) {
        look(box.pmin.y, piece.a.y, piece.dir.y, 0, 2);
        look(box.pmax.y, piece.a.y, piece.dir.y, 0, 2);
    }
    if (piece.dir.z != 0) {
        look(box.pmin.z, piece.a.z, piece.dir.z, 0, 1);
        look(box.pmax.z, piece.a.z, piece.dir.z, 0, 1);
    }
    if (kept < 2) return false;
    if (t[0] > t[1]) std::swap(t[0], t[1]);
    if (t[0] > piece.length || 0 > t[1]) return false;
    const Point3 start = 0 > t[0] ? piece.a : piece.a + piece.dir * t[0];
    const Point3 end = t[1] > piece.length ? piece.b : piece.a + piece.dir * t[1];
    result = Piece(start, end);
    return true;
}

double Field(const PlainPiece& piece, const Point3& point) {
    const Point3 p = point - piece.a;
    const float s = Dot(p, piece.dir);
    const Point3 h = p - piece.dir * s;
    const float dd = Dot(h, h);
    const double e = double(piece.length) - double(s);
    return (e / std::sqrt(e * e + double(dd)) + double(s) / std::sqrt(double(s) * double(s) + double(dd))) / double(dd);
}

void BuildNode(PlainPathNode& node, const Box3& box, std::vector<PlainPiece> pieces, int depth) {
    node.box = box;
    for (const PlainPiece& piece : pieces) node.totalLength += piece.length;
    node.centre = (box.pmin + box.pmax) * 0.5f;
    const float radius = (box.pmax.x - box.pmin.x) * 0.5f;
    node.radiusSquared = radius * radius;
    const float logarithm = std::log(float(pieces.size()));
    if (!(logarithm > float(depth))) {
        node.segments = std::move(pieces);
        return;
    }
    const Point3 half = (box.pmax - box.pmin) * 0.5f;
    for (int i = 0; i < 8; ++i) {
        const Point3 pmin =
            box.pmin + Point3{float(i & 1) * half.x, float((i >> 1) & 1) * half.y, float((i >> 2) & 1) * half.z};
        const Box3 part{pmin, pmin + half};
        std::vector<PlainPiece> kept;
        PlainPiece clipped;
        for (const PlainPiece& piece : pieces) {
            if (Clip(piece, part, clipped)) kept.push_back(clipped);
        }
        node.child[i] = std::make_unique<PlainPathNode>();
        BuildNode(*node.child[i], part, std::move(kept), depth + 1);
    }
}

double FieldOfNode(const PlainPathNode& node, const Point3& point) {
    double sum = 0;
    if (node.isLeaf()) {
        for (const PlainPiece& piece : node.segments) sum += Field(piece, point);
        return sum;
    }
    const DPoint3 offset = FromPoint3(point) - FromPoint3(node.centre);
    const double rr = Dot(offset, offset);
    if (rr > double(node.radiusSquared) * 9.0) {
        const double inverse = 1.0 / std::sqrt(rr);
        return inverse * inverse * inverse * double(node.totalLength);
    }
    for (const auto& child : node.child) sum += FieldOfNode(*child, point);
    return sum;
}

int DepthOf(const PlainPathNode& node) {
    int depth = 0;
    for (const auto& child : node.child) {
        if (child != nullptr) depth = std::max(depth, 1 + DepthOf(*child));
    }
    return depth;
}

}  // namespace

PlainPathField::PlainPathField(const PolyShape& shape) {
    for (const PolyLine& line : shape.lines) {
        for (std::size_t i = 0; i + 1 < line.points.size(); ++i) pieces.push_back(Piece(line.points[i], line.points[i + 1]));
        if (line.closed && !line.points.empty()) pieces.push_back(Piece(line.points.back(), line.points.front()));
    }
    Box3 box = EmptyBox3();
    for (const PlainPiece& piece : pieces) {
        box.Include(piece.a);
        box.Include(piece.b);
    }
    if (pieces.empty()) {
        box = {{-1, -1, -1}, {1, 1, 1}};
    } else {
        const Point3 half = (box.pmax - box.pmin) * 0.5f, centre = (box.pmin + box.pmax) * 0.5f;
        const float m = std::max({half.x, half.y, half.z});
        box = {centre - Point3{1, 1, 1} * (m * 1.05f), centre + Point3{1, 1, 1} * (m * 1.1f)};
    }
    BuildNode(root, box, pieces, 0);
}

double PlainPathField::FieldAt(const Point3& point) const { return FieldOfNode(root, point); }

double PlainPathField::OpenedSum(const Point3& point) const {
    double sum = 0;
    for (const PlainPiece& piece : pieces) sum += Field(piece, point);
    return sum;
}

int PlainPathField::Depth() const { return DepthOf(root); }

double FieldByQuadrature(const Point3& a, const Point3& b, const Point3& point, int steps) {
    const DPoint3 from = FromPoint3(a), along = FromPoint3(b) - from;
    const double h = 1.0 / steps;
    double sum = 0;
    for (int i = 0; i <= steps; ++i) {
        const DPoint3 r = FromPoint3(point) - (from + along * (i * h));
        const double weight = i == 0 || i == steps ? 1 : i % 2 == 1 ? 4 : 2;
        sum += weight / std::pow(Dot(r, r), 1.5);
    }
    return sum * h / 3.0 * std::sqrt(Dot(along, along));
}

}  // namespace tavrik::test

#include "surface/path_piece.h"

#include <cmath>
#include <utility>

#include "surface/float4.h"

namespace tavrik {
namespace {

/// The parameters along a piece at which its line passes through a box's faces; two are all that a line can have.
class Crossings {
 public:
    Crossings(const PathSegment& piece, const Box3& box) : piece_(piece), box_(box) {}

    void TryAxis(std::size_t axis) {
        if (piece_.dir[axis] == 0.0f) return;
        Try(axis, box_.pmin[axis]);
        Try(axis, box_.pmax[axis]);
    }
    bool Passes() const { return count_ == 2; }
    float Near() const { return t_[0] > t_[1] ? t_[1] : t_[0]; }
    float Far() const { return t_[0] > t_[1] ? t_[0] : t_[1]; }

 private:
    void Try(std::size_t axis, float plane) {
        if (count_ == 2) return;
        const float t = (plane - piece_.a[axis]) / piece_.dir[axis];
        const Point3 q = piece_.dir * t + piece_.a;
        const std::size_t u = axis == 0 ? 1 : 0, v = axis == 2 ? 1 : 2;
        const bool inside = q[u] > box_.pmin[u] && q[u] < box_.pmax[u] && q[v] > box_.pmin[v] && q[v] < box_.pmax[v];
        if (inside) t_[count_++] = t;
    }

    const PathSegment& piece_;
    const Box3& box_;
    float t_[2] = {};
    int count_ = 0;
};

#if TAVRIK_SSE2

/// Two doubles at a time; each lane does what one double would.
__m128d FieldOfTwo(__m128d s, __m128d length, __m128d dd) {
    const __m128d e = _mm_sub_pd(length, s);
    const __m128d rest = _mm_div_pd(e, _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(e, e), dd)));
    const __m128d part = _mm_div_pd(s, _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(s, s), dd)));
    return _mm_div_pd(_mm_add_pd(rest, part), dd);
}

constexpr std::size_t kFloats = 10;  // in a piece: a, b, dir, length
static_assert(sizeof(PathSegment) == kFloats * sizeof(float) && offsetof(PathSegment, dir) == 6 * sizeof(float));

/// Four pieces side by side.
void FieldOfFour(const PathSegment* pieces, const Point3& point, double (&fields)[4]) {
    const auto* const from = reinterpret_cast<const float*>(pieces);
    const auto load = [&](std::size_t piece, std::size_t first) { return _mm_loadu_ps(from + piece * kFloats + first); };
    __m128 ax = load(0, 0), ay = load(1, 0), az = load(2, 0), bx = load(3, 0);
    _MM_TRANSPOSE4_PS(ax, ay, az, bx);
    __m128 dx = load(0, 6), dy = load(1, 6), dz = load(2, 6), length = load(3, 6);
    _MM_TRANSPOSE4_PS(dx, dy, dz, length);
    const Float4 px = Broadcast(point.x) - Float4{ax}, py = Broadcast(point.y) - Float4{ay},
                 pz = Broadcast(point.z) - Float4{az};
    const Float4 s = px * Float4{dx} + py * Float4{dy} + pz * Float4{dz};
    const Float4 hx = px - Float4{dx} * s, hy = py - Float4{dy} * s, hz = pz - Float4{dz} * s;
    const Float4 dd = hx * hx + hy * hy + hz * hz;
    const auto upper = [](__m128 v) { return _mm_cvtps_pd(_mm_movehl_ps(v, v)); };
    _mm_storeu_pd(fields, FieldOfTwo(_mm_cvtps_pd(s.lanes), _mm_cvtps_pd(length), _mm_cvtps_pd(dd.lanes)));
    _mm_storeu_pd(fields + 2, FieldOfTwo(upper(s.lanes), upper(length), upper(dd.lanes)));
}

#else

void FieldOfFour(const PathSegment* pieces, const Point3& point, double (&fields)[4]) {
    for (std::size_t i = 0; i < 4; ++i) fields[i] = FieldOfSegment(pieces[i], point);
}

#endif

}  // namespace

PathSegment MakePathSegment(const Point3& a, const Point3& b) {
    PathSegment piece{a, b, b - a, 0.0f};
    piece.length = Length(piece.dir);
    piece.dir = piece.dir * (1.0f / piece.length);
    return piece;
}

bool ClipSegment(const PathSegment& piece, const Box3& box, PathSegment& result) {
    Crossings crossings(piece, box);
    for (std::size_t axis = 0; axis < 3; ++axis) crossings.TryAxis(axis);
    if (!crossings.Passes()) return false;
    const float t0 = crossings.Near(), t1 = crossings.Far();
    if (t0 > piece.length || 0.0f > t1) return false;
    const Point3 start = 0.0f > t0 ? piece.a : piece.a + piece.dir * t0;
    const Point3 end = t1 > piece.length ? piece.b : piece.a + piece.dir * t1;
    result = MakePathSegment(start, end);
    return true;
}

double FieldOfSegment(const PathSegment& piece, const Point3& point) {
    //   s  how far along the line the foot of `point` is,   h  the perpendicular from there,   e  what is left behind the foot
    //   field = (e / sqrt(e^2 + h^2) + s / sqrt(s^2 + h^2)) / h^2
    const Point3 p = point - piece.a;
    const float foot = Dot(p, piece.dir);
    const Point3 h = p - piece.dir * foot;
    const double dd = double(Dot(h, h)), s = double(foot);
    const double e = double(piece.length) - s;
    return (e / std::sqrt(e * e + dd) + s / std::sqrt(s * s + dd)) / dd;
}

double FieldOfSegments(const PathSegment* pieces, std::size_t count, const Point3& point) {
    double sum = 0.0;
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        double fields[4];
        FieldOfFour(pieces + i, point, fields);
        for (const double field : fields) sum += field;
    }
    for (; i < count; ++i) sum += FieldOfSegment(pieces[i], point);
    return sum;
}

}  // namespace tavrik

#include "tests/tracks/plain_tracks.h"

#include <cmath>

namespace tavrik::test {
namespace {

Matrix3 Mix(const Matrix3& a, const Matrix3& b, float f) {
    Matrix3 m;
    for (int r = 0; r < 4; ++r) {
        for (std::size_t c = 0; c < 3; ++c) m.row[r][c] = a.row[r][c] * (1.0f - f) + b.row[r][c] * f;
    }
    return m;
}

Matrix3 At(const std::vector<Matrix3>& frames, int steps, float u) {
    const float x = u * float(steps);
    const int i = int(x);
    return Mix(frames[std::size_t(i)], frames[std::size_t(i) + 1], x - float(i));
}

void PlainSample(const float* map, float u, float v, float& value, Point3& gradient) {
    if (u >= 1.0f) u -= float(int(u));
    if (u < 0.0f) u = u + 1.0f - float(int(u));
    if (v >= 1.0f) v -= float(int(v));
    if (v < 0.0f) v = v + 1.0f - float(int(v));
    u *= 511.0f;
    v *= 2047.0f;
    const int iu = int(u), iv = int(v);
    const float fu = u - float(iu), fv = v - float(iv);
    const auto at = [&](int i, int j) { return map[(j * 512 + i) % (512 * 2048)]; };
    const float a = at(iu, iv), b = at(iu + 1, iv), c = at(iu, iv + 1), d = at(iu + 1, iv + 1);
    gradient = {b + d - a - c, c + d - a - b, 0.0f};
    value = a * (1.0f - fu) + b * (1.0f - fv) + (c * (1.0f - fu) + d * fu) * fv;
}

bool PlainContact(const Point3& local, const TrackSample& s, const float* map, float& weight, Point3& normal,
                  Point3& gradient) {
    const float r = s.radius, w = s.width, x = local.x, y = local.y, z = local.z;
    if (std::fabs(z) > w) return false;
    const float q = x * x + y * y;
    if (q > r * r) return false;
    const float rho = std::sqrt(q);
    Point3 radial = {x / rho, y / rho, 0.0f};
    if (rho == 0.0f) radial = {0, 0, 0};
    const float e = rho - (r - w);
    weight = 1.0f - (e * e * e * e + z * z * z * z) / (w * w * w * w);
    if (weight < 0.0f) return false;
    const float nx = e * e * e, ny = z * z * z, length = std::sqrt(nx * nx + ny * ny);
    const float n1 = length > 0.0f ? nx / length : nx, n2 = length > 0.0f ? ny / length : ny;
    normal = {0.0f * n2 + radial.x * n1, 0.0f * n2 + radial.y * n1, 1.0f * n2 + radial.z * n1};
    if (map == nullptr) return true;
    float across = std::atan2(z, e) / 3.141592f + 0.5f, around = std::atan2(x, y) / 3.141592f * 0.5f + 0.5f;
    float scale = 0.5f / r * w;
    if (s.sideFlag == 0) {
        around = 1.0f - around;
        scale = -scale;
    }
    Point3 grad{};
    PlainSample(map, across, around, weight, grad);
    const Point3 tangent = {0.0f * n1 - radial.x * n2, 0.0f * n1 - radial.y * n2, 1.0f * n1 - radial.z * n2};
    const Point3 spin = {radial.y, -radial.x, 0.0f};
    gradient = (tangent * grad.x + spin * grad.y * scale) * weight;
    return true;
}

void PlainAccumulate(const PlainSegment& segment, const Point3& point, TimeValue tick, const TrackParams& params,
                     const float* map, PlainAnswer& sum) {
    const TrackSample& s = segment.sample;
    if (tick < s.toTick) return;
    const float d = Length(s.to.row[3] - s.from.row[3]);
    const int n = int(d / s.radius * float(params.samples) + 1.0f);
    Point3 gradient = {0, 0, 0};
    for (int i = 0; i < n; ++i) {
        const float u = float(i) / float(n);
        const Point3 local = TransformPoint(point, At(segment.inverse, segment.steps, u));
        float weight = 0.0f;
        Point3 normal{};
        if (PlainContact(local, s, map, weight, normal, gradient)) {
            ++sum.touches;
            sum.value += weight * params.generalIntensity / float(params.samples);
            Matrix3 m = At(segment.forward, segment.steps, (float(i) + 0.1f) / float(n));
            Point3 slip = TransformPoint(local, m) - point;
            m.row[3] = {0, 0, 0};
            const Point3 nw = TransformVector(normal, m);
            const float along = slip.x * nw.x + slip.y * nw.y + slip.z * nw.z;
            slip = slip - nw * along;
            sum.value += weight * params.brakeIntensity * Length(slip) / s.radius * 10.0f;
            const Point3 push = TransformVector(gradient, m) * params.patternBump - nw * params.baseBump;
            sum.bump = sum.bump + push * (1.0f / float(params.samples));
        }
        if (float(s.fromTick) * (1.0f - u) + float(s.toTick) * u > float(tick)) break;
    }
}

}  // namespace

std::vector<PlainSegment> PlainSegments(const CarRig& rig) {
    std::vector<TrackSample> samples(std::size_t(rig.TrackSampleCount()));
    samples.resize(std::size_t(rig.FillTrackSamples(samples)));
    std::vector<PlainSegment> segments;
    for (const TrackSample& s : samples) {
        PlainSegment segment;
        segment.sample = s;
        segment.steps = int(Length(s.to.row[3] - s.from.row[3]) / s.radius * 40.0f + 1.0f);
        for (int i = 0; i <= segment.steps; ++i) {
            Matrix3 m = Mix(s.from, s.to, float(i) / float(segment.steps));
            for (int r = 0; r < 3; ++r) m.row[r] = Normalize(m.row[r]);
            segment.forward.push_back(m);
            segment.inverse.push_back(Inverse(m));
        }
        segments.push_back(std::move(segment));
    }
    return segments;
}

PlainAnswer PlainQuery(const std::vector<PlainSegment>& segments, const Point3& point, TimeValue tick,
                       const TrackParams& params, const float* tread) {
    PlainAnswer answer;
    for (const PlainSegment& segment : segments) PlainAccumulate(segment, point, tick, params, tread, answer);
    answer.value = std::exp(-answer.value);
    return answer;
}

}  // namespace tavrik::test

#include "studio/view/eye_frame.h"

#include <algorithm>
#include <cmath>

namespace tavrik_studio {
namespace {

using tavrik_host::CameraOf;
using tavrik_host::ViewCamera;
using tavrik_host::ViewState;

constexpr float kNearOfDistance = 0.02f, kNearOfFar = 1e-5f;  // the depth buffer has no more digits than that

void SetDepths(EyeFrame& frame, const ViewCamera& camera, const ViewState& state, std::span<const Point3> seen) {
    float nearest = state.distance, farthest = state.distance;
    for (const Point3& p : seen) {
        const float depth = DepthOf(camera, p);
        nearest = std::min(nearest, depth);
        farthest = std::max(farthest, depth);
    }
    const float room = std::max(0.02f * (farthest - nearest), 0.01f * state.distance);
    frame.far = farthest + room;
    frame.near = camera.perspective ? std::max(kNearOfDistance * state.distance, kNearOfFar * frame.far) : nearest - room;
}

}  // namespace

EyeFrame EyeFrameOf(const ViewState& state, std::span<const Point3> seen) {
    const ViewCamera camera = CameraOf(state);
    EyeFrame frame;
    SetDepths(frame, camera, state, seen);
    frame.perspective = camera.perspective;
    const Point3 eye = camera.frame.GetTrans(), right = camera.frame.GetRow(0), up = camera.frame.GetRow(1),
                 back = camera.frame.GetRow(2);
    frame.eye = camera.perspective ? eye : back;
    // x = right . (p - eye), y = up . (p - eye), depth = -back . (p - eye). A pixel is centre + scale * x / w, where w is the
    // depth, or 1 in a flat view.
    const float w = 0.5f * float(std::max(1, state.width)), h = 0.5f * float(std::max(1, state.height));
    const float sx = camera.scale / w, sy = camera.scale / h;
    const float ox = float(camera.centre.x) / w - 1.0f, oy = 1.0f - float(camera.centre.y) / h;
    const float n = frame.near, f = frame.far;
    const float za = camera.perspective ? (f + n) / (f - n) : 2.0f / (f - n);
    const float zb = camera.perspective ? -2.0f * f * n / (f - n) : -(f + n) / (f - n);
    const auto column = [&](int i, float ofX, float ofY, float ofDepth, float constant) {
        const Point3 d = right * ofX + up * ofY - back * ofDepth;
        frame.clip[i] = d.x;
        frame.clip[4 + i] = d.y;
        frame.clip[8 + i] = d.z;
        frame.clip[12 + i] = constant - DotProd(d, eye);
    };
    const float p = camera.perspective ? 1.0f : 0.0f;
    column(0, sx, 0.0f, ox * p, ox * (1.0f - p));
    column(1, 0.0f, sy, oy * p, oy * (1.0f - p));
    column(2, 0.0f, 0.0f, za, zb);
    column(3, 0.0f, 0.0f, p, 1.0f - p);
    return frame;
}

bool EyeFrame::MaySee(const Box3& box, const Matrix3& place) const {
    if (box.IsEmpty() != 0) return false;
    int outside[5] = {};
    for (int i = 0; i < 8; ++i) {
        const Point3 p = Point3((i & 1) != 0 ? box.pmax.x : box.pmin.x, (i & 2) != 0 ? box.pmax.y : box.pmin.y,
                                (i & 4) != 0 ? box.pmax.z : box.pmin.z) *
                         place;
        float c[4];
        for (int k = 0; k < 4; ++k) c[k] = p.x * clip[k] + p.y * clip[4 + k] + p.z * clip[8 + k] + clip[12 + k];
        outside[0] += c[0] < -c[3];
        outside[1] += c[0] > c[3];
        outside[2] += c[1] < -c[3];
        outside[3] += c[1] > c[3];
        outside[4] += c[2] < -c[3];
    }
    return std::ranges::none_of(outside, [](int count) { return count == 8; });
}

}  // namespace tavrik_studio

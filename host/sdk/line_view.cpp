#include "host/sdk/line_view.h"

#include <algorithm>
#include <cmath>

#include "host/sdk/standin.h"
#include "host/sdk/view_region.h"

namespace tavrik_host {
namespace {

constexpr float kNearest = 1e-3f;  // in perspective, nothing nearer to the eye is seen, scene units

/// Cuts off what lies behind the eye. @return false if nothing is left
bool CutBehindEye(Point3& a, Point3& b) {
    const float da = -a.z - kNearest, db = -b.z - kNearest;
    if (da < 0.0f && db < 0.0f) return false;
    if (da >= 0.0f && db >= 0.0f) return true;
    const Point3 cut = a + (b - a) * (da / (da - db));
    (da < 0.0f ? a : b) = cut;
    return true;
}

Pixel ToPixel(const ViewCamera& camera, const Point3& eye) {
    const float scale = camera.perspective ? camera.scale / -eye.z : camera.scale;
    return {float(camera.centre.x) + eye.x * scale, float(camera.centre.y) - eye.y * scale};
}

/// Depths in sixteenths of a unit, with room for what an orthographic eye has behind it.
DWORD ToDistance(float depth) {
    const double value = double(depth) * 16.0 + 0x1p31;
    return value > 0.0 ? DWORD(std::min(value, 0x1p32 - 1.0)) : 0;
}

}  // namespace

// --------------------------------------------------------------------------------------------------------------------- window

LineWindow::LineWindow(const ViewCamera& camera) : camera_(camera), toEye_(Inverse(camera.frame)) {}

void LineWindow::setColor(ColorType type, float r, float g, float b) {
    if (type == LINE_COLOR) color_ = Color(r, g, b);
}

void LineWindow::segment(Point3* xyz, int vis) {
    if (vis != 0) Draw(xyz[0], xyz[1]);
}

void LineWindow::polyline(int ct, Point3* xyz, Point3*, Point3*, int closed, int*) {
    for (int i = 0; i + 1 < ct; ++i) Draw(xyz[i], xyz[i + 1]);
    if (closed != 0 && ct > 2) Draw(xyz[ct - 1], xyz[0]);
}

void LineWindow::Draw(const Point3& from, const Point3& to) {
    if (!open_) return;
    const Point3 a = from * transform_, b = to * transform_;
    if ((limits_ & GW_PICK) != 0) {
        Try(a, b);
    } else {
        lines_.push_back({a, b, color_});
    }
}

void LineWindow::Try(const Point3& from, const Point3& to) {
    if (!region_) return;
    Point3 a = from * toEye_, b = to * toEye_;
    if (camera_.perspective && !CutBehindEye(a, b)) {
        outside_ = true;
        return;
    }
    const RegionAnswer answer = TryRegion(*region_, ToPixel(camera_, a), ToPixel(camera_, b));
    outside_ = outside_ || !answer.inside;
    if (!answer.touched) return;
    const DWORD distance = ToDistance(std::min(-a.z, -b.z));
    distance_ = touched_ ? std::min(distance_, distance) : distance;
    touched_ = true;
}

void LineWindow::setHitRegion(HitRegion* region) {
    region_.reset();
    if (region != nullptr) region_ = *region;
}

void LineWindow::clearHitCode() {
    touched_ = outside_ = false;
    distance_ = 0;
}

BOOL LineWindow::checkHitCode() {
    const bool whole = region_ && region_->type != POINT_RGN && region_->crossing == 0;
    return touched_ && !(whole && outside_) ? TRUE : FALSE;
}

// ----------------------------------------------------------------------------------------------------------------------- view

void LineView::DrawScene(TimeValue t) {
    for (INode* const node : AllNodes()) {
        if (Object* const object = node->GetObjectRef()) object->Display(t, node, this, 0);
    }
}

std::vector<INode*> LineView::HitScene(TimeValue t, int type, int crossing, IPoint2* p) {
    hits_.clear();
    for (INode* const node : AllNodes()) {
        if (Object* const object = node->GetObjectRef()) object->HitTest(t, node, type, crossing, 0, p, this);
    }
    std::stable_sort(hits_.begin(), hits_.end(),
                     [](const LoggedHit& a, const LoggedHit& b) { return a.distance < b.distance; });
    std::vector<INode*> nodes;
    for (const LoggedHit& hit : hits_) nodes.push_back(hit.node);
    return nodes;
}

INode* LineView::GetClosestHit() {
    const auto nearest = std::min_element(hits_.begin(), hits_.end(),
                                          [](const LoggedHit& a, const LoggedHit& b) { return a.distance < b.distance; });
    return nearest != hits_.end() ? nearest->node : nullptr;
}

Point3 LineView::SnapPoint(const IPoint2& in, IPoint2& out, Matrix3*, DWORD) {
    out = in;
    const float x = float(in.x - camera_.centre.x), y = float(camera_.centre.y - in.y);
    // How far in front of the eye the plane through the origin is.
    const float depth = DotProd(camera_.frame.GetTrans(), camera_.frame.GetRow(2));
    const float unit = camera_.perspective ? depth / camera_.scale : 1.0f / camera_.scale;
    return Point3(x * unit, y * unit, -depth) * camera_.frame;
}

}  // namespace tavrik_host

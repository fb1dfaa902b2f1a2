#include "host/sdk/line_view.h"

#include <algorithm>
#include <cmath>

#include "host/sdk/panels.h"
#include "host/sdk/standin.h"
#include "host/sdk/view_region.h"

namespace tavrik_host {
namespace {

/// A point in the eye's axes.
struct EyePoint {
    double x, y, z;
};

EyePoint InEye(const Point3& world, const Matrix3& toEye) {
    const Point3 eye = world * toEye;
    return {double(eye.x), double(eye.y), double(eye.z)};
}

/// Cuts off what lies behind the eye. @return false if nothing is left
bool CutBehindEye(EyePoint& a, EyePoint& b) {
    const double da = -a.z - double(kNearest), db = -b.z - double(kNearest);
    if (da < 0.0 && db < 0.0) return false;
    if (da >= 0.0 && db >= 0.0) return true;
    const double t = da / (da - db);
    (da < 0.0 ? a : b) = {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, -double(kNearest)};
    return true;
}

RegionPoint ToRegion(const ViewCamera& camera, const EyePoint& eye) {
    const double scale = camera.perspective ? double(camera.scale) / -eye.z : double(camera.scale);
    return {camera.centre.x + eye.x * scale, camera.centre.y - eye.y * scale};
}

/// How far away a line is at a place that is `along` of it in the picture: what is farther away is drawn closer together.
double DepthAt(const ViewCamera& camera, const EyePoint& a, const EyePoint& b, double along) {
    if (!camera.perspective) return -a.z + (a.z - b.z) * along;
    return 1.0 / ((1.0 - along) / -a.z + along / -b.z);
}

EyePoint operator-(const EyePoint& a, const EyePoint& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double Dot(const EyePoint& a, const EyePoint& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
EyePoint Cross(const EyePoint& a, const EyePoint& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Whether a triangle is seen at a place, whichever side shows. @param depth  out, on true
bool Covers(const ViewCamera& camera, const RegionPoint& place, const EyePoint (&corners)[3], double& depth) {
    const double x = (place.x - camera.centre.x) / double(camera.scale), y = (camera.centre.y - place.y) / double(camera.scale);
    const EyePoint origin = camera.perspective ? EyePoint{0, 0, 0} : EyePoint{x, y, 0};
    const EyePoint ahead = camera.perspective ? EyePoint{x, y, -1} : EyePoint{0, 0, -1};
    //   origin + ahead * depth = a + (b - a) * v + (c - a) * w     solved by Cramer's rule
    const EyePoint b = corners[1] - corners[0], c = corners[2] - corners[0], off = origin - corners[0];
    const EyePoint p = Cross(ahead, c), q = Cross(off, b);
    const double volume = Dot(b, p);
    if (volume == 0.0 || !std::isfinite(volume)) return false;  // seen from its edge
    const double v = Dot(off, p) / volume, w = Dot(ahead, q) / volume;
    depth = Dot(c, q) / volume;
    return v >= 0.0 && w >= 0.0 && v + w <= 1.0 && (!camera.perspective || depth >= double(kNearest));
}

/// Depths in sixteenths of a unit, with room for what an orthographic eye has behind it.
DWORD ToDistance(double depth) {
    const double value = depth * 16.0 + 0x1p31;
    return value > 0.0 ? DWORD(std::min(value, 0x1p32 - 1.0)) : 0;
}

}  // namespace

// --------------------------------------------------------------------------------------------------------------------- window

LineWindow::LineWindow(const ViewCamera& camera) { SetCamera(camera); }

void LineWindow::SetCamera(const ViewCamera& camera) {
    camera_ = camera;
    toEye_ = Inverse(camera.frame);
}

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
        if (region_) outside_ = !TryLine(a, b) || outside_;
    } else {
        lines_.push_back({a, b, color_});
    }
}

bool LineWindow::TryLine(const Point3& from, const Point3& to) {
    EyePoint a = InEye(from, toEye_), b = InEye(to, toEye_);
    const bool isWhole = !camera_.perspective || (-a.z >= double(kNearest) && -b.z >= double(kNearest));
    if (!isWhole && !CutBehindEye(a, b)) return false;
    const RegionAnswer answer = TryRegion(*region_, ToRegion(camera_, a), ToRegion(camera_, b));
    if (answer.touched) TakeHit(DepthAt(camera_, a, b, answer.along));
    return answer.inside && isWhole;
}

void LineWindow::triangle(Point3* xyz, Point3*) {
    if (!open_ || (limits_ & GW_PICK) == 0 || !region_) return;
    const Point3 world[] = {xyz[0] * transform_, xyz[1] * transform_, xyz[2] * transform_};
    const EyePoint corners[] = {InEye(world[0], toEye_), InEye(world[1], toEye_), InEye(world[2], toEye_)};
    double depth = 0.0;
    const bool covers = region_->type != FENCE_RGN && Covers(camera_, PointOf(*region_), corners, depth);
    if (covers) TakeHit(depth);
    // A mouse is on what covers its pixel: no surface needs a margin as a line does.
    if (region_->type == POINT_RGN) return;
    for (int i = 0; i < 3; ++i) outside_ = !TryLine(world[i], world[(i + 1) % 3]) || outside_;
}

void LineWindow::TakeHit(double depth) {
    const DWORD distance = ToDistance(depth);
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

namespace {

/// All that there are. A view's window is known by it for as long as the view lives.
std::vector<LineView*>& Views() {
    static std::vector<LineView*> views;
    return views;
}

bool IsNearer(const LoggedHit& a, const LoggedHit& b) { return a.distance < b.distance; }

}  // namespace

LineView::LineView(const ViewCamera& camera) : camera_(camera), window_(camera), handle_(std::make_unique<PanelWindow>()) {
    Views().push_back(this);
}

LineView::LineView(const ViewState& state) : LineView(CameraOf(state)) { plane_ = GridPlaneOf(state); }

LineView::~LineView() { std::erase(Views(), this); }

LineView* ViewOf(HWND window) {
    const auto found = std::ranges::find_if(Views(), [window](LineView* view) { return view->GetHWnd() == window; });
    return found == Views().end() ? nullptr : *found;
}

HWND LineView::GetHWnd() { return handle_.get(); }

void LineView::SetState(const ViewState& state) {
    camera_ = CameraOf(state);
    plane_ = GridPlaneOf(state);
    window_.SetCamera(camera_);
}

void LineView::DrawScene(TimeValue t) {
    for (INode* const node : AllNodes()) DrawNode(t, *node);
}

void LineView::DrawNode(TimeValue t, INode& node) {
    if (Object* const object = node.GetObjectRef()) object->Display(t, &node, this, 0);
}

std::vector<INode*> LineView::HitScene(TimeValue t, int type, int crossing, IPoint2* p, const Filter& filter) {
    hits_.clear();
    for (INode* const node : AllNodes()) {
        Object* const object = node->GetObjectRef();
        if (object != nullptr && (!filter || filter(*node))) object->HitTest(t, node, type, crossing, 0, p, this);
    }
    std::stable_sort(hits_.begin(), hits_.end(), IsNearer);
    std::vector<INode*> nodes;
    for (const LoggedHit& hit : hits_) {
        if (std::ranges::find(nodes, hit.node) == nodes.end()) nodes.push_back(hit.node);
    }
    return nodes;
}

INode* LineView::GetClosestHit() {
    const auto nearest = std::min_element(hits_.begin(), hits_.end(), IsNearer);
    return nearest != hits_.end() ? nearest->node : nullptr;
}

Point3 LineView::SnapPoint(const IPoint2& in, IPoint2& out, Matrix3* plane2d, DWORD) {
    const Matrix3& plane = plane2d != nullptr ? *plane2d : plane_;
    Point3 at = OnPlane(camera_, {float(in.x), float(in.y)}, plane);
    const IPoint2 mouse = in;  // callers hand over one point as both
    out = mouse;
    if (!(grid_ > 0.0f)) return at;
    at = Point3(std::round(at.x / grid_) * grid_, std::round(at.y / grid_) * grid_, 0.0f);
    Pixel seen{};
    if (Project(camera_, at * plane, seen)) out = IPoint2(int(std::lround(seen.x)), int(std::lround(seen.y)));
    return at;
}

void LineView::SnapPreview(const IPoint2& in, IPoint2& out, Matrix3* plane2d, DWORD flags) {
    preview_ = SnapPoint(in, out, plane2d, flags) * (plane2d != nullptr ? *plane2d : plane_);
}

}  // namespace tavrik_host

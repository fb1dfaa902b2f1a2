#pragma once
/// A view of the scene that gathers what objects draw, and finds what lies under a mouse.

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "host/sdk/max.h"
#include "host/sdk/view_state.h"

namespace tavrik_host {

/// One line of a picture.
struct ViewLine {
    Point3 from, to;  // world space
    Color color;
};

/// A line window without a screen: it knows where lines would be, and keeps them.
class LineWindow final : public GraphicsWindow {
 public:
    explicit LineWindow(const ViewCamera& camera);
    void SetCamera(const ViewCamera& camera);

    /// What has been drawn so far, in order.
    const std::vector<ViewLine>& Lines() const { return lines_; }
    void Clear() { lines_.clear(); }

    void setTransform(const Matrix3& m) override { transform_ = m; }
    Matrix3 getTransform() override { return transform_; }
    void setColor(ColorType type, float r, float g, float b) override;
    /// A line outside of this and the other is dropped.
    void startSegments() override { open_ = true; }
    void segment(Point3* xyz, int vis) override;
    void endSegments() override { open_ = false; }
    void polyline(int ct, Point3* xyz, Point3* rgb, Point3* uvw, int closed, int* es) override;
    // Surfaces are somebody else's to show; here a mouse only finds them.
    void startTriangles() override { open_ = true; }
    void triangle(Point3* xyz, Point3* rgb) override;
    void endTriangles() override { open_ = false; }
    DWORD getRndLimits() override { return limits_; }
    void setRndLimits(DWORD limits) override { limits_ = limits; }
    void setHitRegion(HitRegion* region) override;
    void clearHitCode() override;
    BOOL checkHitCode() override;
    DWORD getHitDistance() override { return distance_; }

 private:
    void Draw(const Point3& from, const Point3& to);
    /// @return whether the line is seen as a whole in the region
    bool TryLine(const Point3& from, const Point3& to);
    void TakeHit(double depth);

    ViewCamera camera_;
    Matrix3 toEye_;
    Matrix3 transform_{TRUE};
    Color color_{1.0f, 1.0f, 1.0f};
    bool open_ = false;
    std::vector<ViewLine> lines_;
    DWORD limits_ = GW_ILLUM;
    std::optional<HitRegion> region_;         // a copy, since callers forget theirs
    bool touched_ = false, outside_ = false;  // by lines since the hit code was cleared
    DWORD distance_ = 0;
};

/// A hit that an object has reported.
struct LoggedHit {
    INode* node;
    DWORD distance;
};

/// Such a view, in a window of its own. Other views and what is selected are no business of its.
class LineView final : public ViewExp {
 public:
    /// Which nodes are asked at all; none: all of them.
    using Filter = std::function<bool(INode&)>;

    /// A mouse makes things on the ground plane.
    explicit LineView(const ViewCamera& camera);
    /// A mouse makes things on the view's grid plane.
    explicit LineView(const ViewState& state);
    ~LineView() override;
    LineView(const LineView&) = delete;
    LineView& operator=(const LineView&) = delete;

    /// Turns or moves it. What has been drawn stays: lines are kept in the world.
    void SetState(const ViewState& state);
    const ViewCamera& Camera() const { return camera_; }
    const Matrix3& Plane() const { return plane_; }
    void SetPlane(const Matrix3& plane) { plane_ = plane; }
    /// New things snap to a grid of this width, in units; 0: to none.
    void SetGrid(float width) { grid_ = width; }

    LineWindow& Window() { return window_; }
    /// Has all objects of the scene draw themselves.
    void DrawScene(TimeValue t);
    void DrawNode(TimeValue t, INode& node);
    /// Asks all objects of the scene whether a mouse is on them.
    /// @param p         as `MakeHitRegion` takes them, and `type` and `crossing` too
    /// @return nodes that were hit, the nearest first
    std::vector<INode*> HitScene(TimeValue t, int type, int crossing, IPoint2* p, const Filter& filter = {});
    const std::vector<LoggedHit>& Hits() const { return hits_; }
    void ClearHits() { hits_.clear(); }

    /// In the view's plane, as `OnPlane` has it.
    /// @param out  where that is seen: next to the mouse, if there is a grid
    Point3 SnapPoint(const IPoint2& in, IPoint2& out, Matrix3* plane2d = nullptr, DWORD flags = 0) override;
    void SnapPreview(const IPoint2& in, IPoint2& out, Matrix3* plane2d = nullptr, DWORD flags = 0) override;
    /// Where a mouse that makes nothing yet would snap to, in the world; nothing before it has moved.
    const std::optional<Point3>& Preview() const { return preview_; }
    bool IsAlive() const override { return true; }
    INode* GetClosestHit() override;
    GraphicsWindow* getGW() override { return &window_; }
    HWND GetHWnd() override;
    void LogHit(INode* node, ModContext*, DWORD dist, ULONG, HitData*) override { hits_.push_back({node, dist}); }

 private:
    ViewCamera camera_;
    Matrix3 plane_{TRUE};
    float grid_ = 0.0f;
    LineWindow window_;
    std::vector<LoggedHit> hits_;
    std::optional<Point3> preview_;
    std::unique_ptr<PanelWindow> handle_;
};

/// The view in a window; null for a window without one.
LineView* ViewOf(HWND window);

}  // namespace tavrik_host

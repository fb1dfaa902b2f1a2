#pragma once
/// A view of the scene that gathers what objects draw, and finds what lies under a mouse.

#include <optional>
#include <vector>

#include "host/sdk/max.h"

namespace tavrik_host {

/// One line of a picture.
struct ViewLine {
    Point3 from, to;  // world space
    Color color;
};

/// From where a view is seen. Pixels count from the top left corner.
struct ViewCamera {
    Matrix3 frame{TRUE};  // of the eye in the world: it looks along its -Z, and Y is up
    float scale = 1.0f;   // pixels to a unit; in perspective at a distance of one unit
    bool perspective = false;
    IPoint2 centre{0, 0};  // the pixel in the middle
};

/// A line window without a screen: it knows where lines would be, and keeps them.
class LineWindow final : public GraphicsWindow {
 public:
    explicit LineWindow(const ViewCamera& camera);

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
    DWORD getRndLimits() override { return limits_; }
    void setRndLimits(DWORD limits) override { limits_ = limits; }
    void setHitRegion(HitRegion* region) override;
    void clearHitCode() override;
    BOOL checkHitCode() override;
    DWORD getHitDistance() override { return distance_; }

 private:
    void Draw(const Point3& from, const Point3& to);
    void Try(const Point3& from, const Point3& to);

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

/// Such a view. A mouse snaps to the pixel's place in the plane through the world's origin that faces the eye.
class LineView final : public ViewExp {
 public:
    explicit LineView(const ViewCamera& camera) : camera_(camera), window_(camera) {}

    LineWindow& Window() { return window_; }
    /// Has all objects of the scene draw themselves.
    void DrawScene(TimeValue t);
    /// Asks all objects of the scene whether a mouse is on them.
    /// @param p         as `MakeHitRegion` takes them, and `type` and `crossing` too
    /// @return nodes that were hit, the nearest first
    std::vector<INode*> HitScene(TimeValue t, int type, int crossing, IPoint2* p);
    const std::vector<LoggedHit>& Hits() const { return hits_; }
    void ClearHits() { hits_.clear(); }

    Point3 SnapPoint(const IPoint2& in, IPoint2& out, Matrix3* plane2d = nullptr, DWORD flags = 0) override;
    void SnapPreview(const IPoint2&, IPoint2&, Matrix3*, DWORD) override {}
    bool IsAlive() const override { return true; }
    INode* GetClosestHit() override;
    GraphicsWindow* getGW() override { return &window_; }
    void LogHit(INode* node, ModContext*, DWORD dist, ULONG, HitData*) override { hits_.push_back({node, dist}); }

 private:
    ViewCamera camera_;
    LineWindow window_;
    std::vector<LoggedHit> hits_;
};

}  // namespace tavrik_host

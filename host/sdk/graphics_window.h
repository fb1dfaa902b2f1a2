#pragma once
/// What objects draw themselves into, as lines, and what finds out whether a mouse is on one of them.

#include "color.h"
#include "matrix3.h"

constexpr DWORD GW_ILLUM = 2, GW_PICK = 0x1000;
constexpr int POINT_RGN = 1, RECT_RGN = 2, CIRCLE_RGN = 4, FENCE_RGN = 8;
constexpr int HITTYPE_POINT = POINT_RGN, HITTYPE_RECT = RECT_RGN, HITTYPE_CIRCLE = CIRCLE_RGN, HITTYPE_FENCE = FENCE_RGN;

enum ColorType { LINE_COLOR, FILL_COLOR, TEXT_COLOR };

/// Pixels, all four sides included.
class Rect {
 public:
    int left, top, right, bottom;
};

struct HitCircle {
    int x, y, r;
};

/// The part of a view in which a mouse looks for things, in pixels.
struct HitRegion {
    int type;      // one of ..._RGN
    int dir;       // in a rectangle: whether the mouse was drawn from left to right
    int crossing;  // flag: touching it is enough, a thing needn't lie inside as a whole
    int epsilon;   // how far off the point a hit may be
    union {
        IPoint2 pt;
        Rect rect;
        HitCircle circle;
        IPoint2* pts;  // of a fence
    };
    HitRegion() : type(0), dir(0), crossing(0), epsilon(0), rect{0, 0, 0, 0} {}
};

/// @param p  the point; two corners of a rectangle; middle and rim of a circle; a fence's corners
void MakeHitRegion(HitRegion& hr, int type, int crossing, int epsi, IPoint2* p);

class GraphicsWindow {
 public:
    virtual ~GraphicsWindow() = default;
    /// Of what is drawn next, into the world.
    virtual void setTransform(const Matrix3& m) = 0;
    virtual Matrix3 getTransform() = 0;
    virtual void setColor(ColorType type, float r, float g, float b) = 0;
    void setColor(ColorType type, const Point3& c) { setColor(type, c.x, c.y, c.z); }
    void setColor(ColorType type, const Color& c) { setColor(type, c.r, c.g, c.b); }
    /// Lines come between these two.
    virtual void startSegments() = 0;
    virtual void segment(Point3* xyz, int vis) = 0;
    virtual void endSegments() = 0;
    /// Lines through `ct` points; back to the first one if `closed`.
    virtual void polyline(int ct, Point3* xyz, Point3* rgb, Point3* uvw, int closed, int* es) = 0;
    /// Triangles come between these two.
    virtual void startTriangles() = 0;
    virtual void triangle(Point3* xyz, Point3* rgb) = 0;
    virtual void endTriangles() = 0;

    /// Of GW_... With GW_PICK lines and triangles are tried against the region and leave no trace in the picture.
    virtual DWORD getRndLimits() = 0;
    virtual void setRndLimits(DWORD limits) = 0;
    /// @param region  stays the caller's until the last line is tried against it
    virtual void setHitRegion(HitRegion* region) = 0;
    virtual void clearHitCode() = 0;
    virtual BOOL checkHitCode() = 0;
    /// Of the nearest line or triangle that was hit; greater is farther from the eye.
    virtual DWORD getHitDistance() = 0;
};

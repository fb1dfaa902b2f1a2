#pragma once
/// How objects are made by dragging in a view.

#include "matrix3.h"

class GraphicsWindow;
class HitData;
class INode;
class ModContext;

constexpr int MOUSE_ABORT = 0, MOUSE_POINT = 1, MOUSE_MOVE = 2, MOUSE_DBLCLICK = 3, MOUSE_INIT = 4, MOUSE_UNINIT = 5,
              MOUSE_FREEMOVE = 6;
constexpr int CREATE_CONTINUE = 1, CREATE_STOP = 0, CREATE_ABORT = -1;
constexpr DWORD SNAP_IN_PLANE = 4, SNAP_IN_3D = 8;

/// A view of the scene.
class ViewExp {
 public:
    virtual ~ViewExp() = default;
    virtual Point3 SnapPoint(const IPoint2& in, IPoint2& out, Matrix3* plane2d = nullptr, DWORD flags = 0) = 0;
    virtual void SnapPreview(const IPoint2& in, IPoint2& out, Matrix3* plane2d = nullptr, DWORD flags = 0) = 0;
    virtual bool IsAlive() const = 0;
    /// The node nearest to the eye that was hit last, or null.
    virtual INode* GetClosestHit() { return nullptr; }
    /// What to draw into; null where nothing can be drawn.
    virtual GraphicsWindow* getGW() { return nullptr; }
    /// Null where there is no window.
    virtual HWND GetHWnd() { return nullptr; }
    /// Takes note that the mouse is on a node. @param dist  from the eye
    virtual void LogHit(INode*, ModContext*, DWORD /*dist*/, ULONG /*info*/, HitData* = nullptr) {}
};

class CreateMouseCallBack {
 public:
    virtual ~CreateMouseCallBack() = default;
    /// Called for every move and click while an object is being made.
    /// @param point  0 until the first click, then counting on
    /// @param mat    of the new node
    virtual int proc(ViewExp* vpt, int msg, int point, int flags, IPoint2 m, Matrix3& mat) = 0;
};

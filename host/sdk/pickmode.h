#pragma once
/// Picking a node in a view with the mouse.

#include "maxapi.h"
#include "mouseman.h"

/// Which nodes may be picked.
class PickNodeCallback {
 public:
    virtual ~PickNodeCallback() = default;
    virtual BOOL Filter(INode* node) = 0;
};

/// What a click means while a pick mode is on.
class PickModeCallback {
 public:
    virtual ~PickModeCallback() = default;
    /// Whether something that may be picked lies under the mouse.
    virtual BOOL HitTest(IObjParam* ip, HWND hWnd, ViewExp* vpt, IPoint2 m, int flags) = 0;
    /// Takes what was hit. TRUE ends the mode.
    virtual BOOL Pick(IObjParam* ip, ViewExp* vpt) = 0;
    virtual void EnterMode(IObjParam*) {}
    virtual void ExitMode(IObjParam*) {}
    /// TRUE ends the mode.
    virtual BOOL RightClick(IObjParam*, ViewExp*) { return FALSE; }
    virtual PickNodeCallback* GetFilter() { return nullptr; }
};

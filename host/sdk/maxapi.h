#pragma once
/// The host itself, as plug-ins see it.

#include "inode.h"

constexpr DWORD REDRAW_NORMAL = 0;
constexpr int ROLLUP_CAT_STANDARD = 5000;

class PickModeCallback;
class PickNodeCallback;
class IPoint2;

class Interface {
 public:
    virtual ~Interface() = default;
    virtual INode* GetRootNode() = 0;
    virtual INode* GetINodeByHandle(ULONG handle) = 0;
    virtual TimeValue GetTime() = 0;
    virtual void SetTime(TimeValue t, BOOL redraw = TRUE) = 0;
    virtual Interval GetAnimRange() = 0;
    virtual void SetAnimRange(Interval range) = 0;
    virtual void RedrawViews(TimeValue t, DWORD vpFlags = REDRAW_NORMAL, ReferenceTarget* change = nullptr) = 0;
    virtual void* CreateInstance(SClass_ID sclass, Class_ID id) = 0;
    /// Puts a new node with `object` under the root, named after the object's stem and a number, in its class's colour.
    virtual INode* CreateObjectNode(Object* object) = 0;
    /// Takes a node out of the scene; its children go to its parent. Everyone who held it lets go.
    virtual void DeleteNode(INode* node, BOOL redraw = TRUE, BOOL overrideSlaves = FALSE) = 0;
    virtual int GetSelNodeCount() = 0;
    virtual INode* GetSelNode(int i) = 0;
    virtual void SelectNode(INode* node, int clearSel = 1) = 0;
    virtual void ClearNodeSelection(BOOL redraw = TRUE) = 0;
    virtual HWND AddRollupPage(HINSTANCE instance, const MCHAR* dlgTemplate, DLGPROC proc, const MCHAR* title, LPARAM param = 0,
                               DWORD rollUpFlags = 0, int category = ROLLUP_CAT_STANDARD) = 0;
    virtual void DeleteRollupPage(HWND page) = 0;
    virtual void RegisterDlgWnd(HWND window) = 0;
    virtual int UnRegisterDlgWnd(HWND window) = 0;
    /// Gives the mouse to a mode; the one before it ends.
    virtual void SetPickMode(PickModeCallback* mode) = 0;
    virtual void ClearPickMode() = 0;
    virtual PickModeCallback* GetCurPickMode() = 0;
    /// The node at a place of a view, or null where there is none that `filt` lets through.
    virtual INode* PickNode(HWND window, IPoint2 m, PickNodeCallback* filt = nullptr) = 0;
};

Interface* GetCOREInterface();
void* CreateInstance(SClass_ID sclass, Class_ID id);

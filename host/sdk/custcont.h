#pragma once
/// The host's own controls on a page.

#include "maxtypes.h"

class ICustomControl {
 public:
    virtual ~ICustomControl() = default;
    virtual HWND GetHwnd() = 0;
    virtual void Enable(BOOL enable = 1) = 0;
    virtual void Disable() = 0;
    virtual BOOL IsEnabled() = 0;
};

class ISpinnerControl : public ICustomControl {};

enum CustButType { CBT_PUSH, CBT_CHECK };

/// A button, which may stay pressed.
class ICustButton : public ICustomControl {
 public:
    virtual void SetText(const MCHAR* text) = 0;
    virtual void SetType(CustButType type) = 0;
    virtual void SetCheck(BOOL checked) = 0;
    virtual BOOL IsChecked() = 0;
    virtual void SetHighlightColor(COLORREF color) = 0;
};

ICustButton* GetICustButton(HWND control);
void ReleaseICustButton(ICustButton* button);

ISpinnerControl* GetISpinner(HWND control);
void ReleaseISpinner(ISpinnerControl* spinner);

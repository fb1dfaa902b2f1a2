#pragma once
/// The host's own controls on a page.

#include "win_types.h"

class ICustomControl {
 public:
    virtual ~ICustomControl() = default;
    virtual HWND GetHwnd() = 0;
    virtual void Enable(BOOL enable = 1) = 0;
    virtual void Disable() = 0;
    virtual BOOL IsEnabled() = 0;
};

class ISpinnerControl : public ICustomControl {};

ISpinnerControl* GetISpinner(HWND control);
void ReleaseISpinner(ISpinnerControl* spinner);

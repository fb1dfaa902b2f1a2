#pragma once
/// Rollouts of parameter blocks.

#include "iparamb2.h"

/// An open rollout.
class IParamMap2 {
 public:
    virtual ~IParamMap2() = default;
    virtual HWND GetHWnd() const = 0;
    virtual IParamBlock2* GetParamBlock() const = 0;
    virtual MapID GetMapID() const = 0;
};

/// Answers the messages of a rollout before the map itself does.
class ParamMap2UserDlgProc {
 public:
    virtual ~ParamMap2UserDlgProc() = default;
    virtual INT_PTR DlgProc(TimeValue t, IParamMap2* map, HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam) = 0;
    virtual void DeleteThis() = 0;
};

#pragma once
/// What a plug-in library tells of its classes.

#include "ref.h"

class ClassDesc : public InterfaceServer {
 public:
    virtual int IsPublic() = 0;
    virtual void* Create(BOOL loading = FALSE) = 0;
    virtual const MCHAR* ClassName() = 0;
    virtual SClass_ID SuperClassID() = 0;
    virtual Class_ID ClassID() = 0;
    virtual const MCHAR* Category() = 0;
    virtual const MCHAR* InternalName() { return nullptr; }
    virtual HINSTANCE HInstance() { return nullptr; }
};

constexpr int MAX_RELEASE = 22000, MAX_API_NUM = 55, MAX_SDK_REV = 0;
constexpr ULONG VERSION_3DSMAX = ULONG(MAX_RELEASE) << 16 | ULONG(MAX_API_NUM) << 8 | ULONG(MAX_SDK_REV);

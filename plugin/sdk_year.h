#pragma once
/// What differs between the host's SDK years. Everything else here is written for release 2020 and compiles with later ones.

#include <max.h>

// Release 2022 asks classes for their names in two languages. Ours have one.
#if MAX_RELEASE >= 24000
#define TAVRIK_GET_CLASS_NAME(s) GetClassName(MSTR& s, bool) const
#define TAVRIK_GET_OBJECT_NAME GetObjectName(bool) const
#define TAVRIK_SUB_ANIM_NAME SubAnimName(int, bool)
#define TAVRIK_NON_LOCALIZED_CLASS_NAME \
    const MCHAR* NonLocalizedClassName() override { return ClassName(); }
#else
#define TAVRIK_GET_CLASS_NAME(s) GetClassName(MSTR& s)
#define TAVRIK_GET_OBJECT_NAME GetObjectName()
#define TAVRIK_SUB_ANIM_NAME SubAnimName(int)
#define TAVRIK_NON_LOCALIZED_CLASS_NAME
#endif

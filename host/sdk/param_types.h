#pragma once
/// Which values go by which type of parameter. Types here are those of one entry: without TYPE_TAB.

#include "host/sdk/iparamb2.h"

namespace tavrik_host {

inline int EntryType(const ParamDef& def) { return def.type & ~TYPE_TAB; }
inline bool IsFloatType(int type) { return type == TYPE_FLOAT || type == TYPE_WORLD; }
inline bool IsIntType(int type) { return type == TYPE_INT || type == TYPE_BOOL; }
inline bool IsTargetType(int type) { return type == TYPE_TEXMAP || type == TYPE_INODE || type == TYPE_REFTARG; }

}  // namespace tavrik_host

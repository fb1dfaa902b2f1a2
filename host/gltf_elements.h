#pragma once
/// Whether the elements of a glTF file's accessors lie where the file says.

#include "host/scene_json.h"

namespace tavrik_host {

/// Checks that the elements of every accessor, sparse ones included, lie within their buffer views. Refuses (`SceneFault`) any
/// that don't. The views must lie within the file's data already.
void CheckAccessors(const Json& json);

}  // namespace tavrik_host

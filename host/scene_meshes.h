#pragma once

#include <string>

#include "host/glb_writer.h"
#include "host/sdk/max.h"

namespace tavrik_host {

/// Writes a mesh that no file has drawn yet, without material.
/// @return its number in "meshes", or -1 for one without triangles. Refuses (`SceneFault`) vertices that are not finite
int WriteMesh(tavrik::GlbWriter& glb, const Mesh& mesh, const std::string& name, double metresPerUnit);

}  // namespace tavrik_host

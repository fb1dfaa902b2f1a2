#pragma once

#include <string>

#include "host/glb_writer.h"
#include "host/sdk/line_shape.h"

namespace tavrik_host {

/// Writes a spline that no file has drawn yet: its lines as line strips, closed ones as line loops. Lines of fewer than two
/// points draw nothing and aren't written.
/// @return its number in "meshes", or -1 for one without lines. Refuses (`SceneFault`) points that are not finite
int WriteShape(tavrik::GlbWriter& glb, const LineShape& shape, const std::string& name, double metresPerUnit);

}  // namespace tavrik_host

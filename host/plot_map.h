#pragma once

#include <string>

#include "host/run_samples.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

/// A rectangle of a drawing, px, y down.
struct PlotBox {
    double x, y, width, height;
};

/// Draws the path from above into `box`, north (+Y) up, both axes to one scale, with contours of the ground, marks of time and
/// direction, a bar of length and a scale of speed.
void AppendMap(std::string& svg, const PlotBox& box, const RunSamples& run, const TriangleMesh& ground,
               double kilometresPerUnit);

}  // namespace tavrik

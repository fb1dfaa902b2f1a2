#pragma once

#include <string>

#include "host/run_samples.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

struct RunPlot {
    const RunSamples* run = nullptr;       // at least one reading; not owned
    const CarRig* rig = nullptr;           // for the stops of its suspensions; not owned
    const TriangleMesh* ground = nullptr;  // its contours lie below the path; not owned
    double kilometresPerUnit = 1e-5;
    std::string title;  // such as the name of the ground's file
};

/// Draws a run as SVG: the path from above over the ground's contours with its speed as colour, speed over time, and the travel
/// of each suspension over time between its stops.
std::string RunPlotSvg(const RunPlot& plot);

}  // namespace tavrik

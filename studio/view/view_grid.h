#pragma once
/// The grid of a view and the axes through the origin, as lines.

#include <vector>

#include "host/sdk/max.h"
#include "studio/view/view_picture.h"

namespace tavrik_studio {

struct GridLine {
    Point3 from, to;
    Color color;
    float alpha = 1.0f;
};

struct ViewGrid {
    std::vector<GridLine> fine, coarse;  // these fade nearer to the middle, and farther off it
    Point3 middle{0, 0, 0};
    float fineReach = 0.0f, coarseReach = 0.0f;  // 0: they don't fade
};

ViewGrid GridOf(const ViewPicture& picture);

/// Red, green and blue for X, Y and Z.
Color AxisColor(int axis);

}  // namespace tavrik_studio

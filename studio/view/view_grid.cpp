#include "studio/view/view_grid.h"

#include <algorithm>
#include <cmath>

namespace tavrik_studio {
namespace {

using tavrik_host::ViewState;

constexpr float kLeastPixels = 14.0f;  // between two lines, at the target
constexpr int kReach = 40;             // lines to each side of the middle, in perspective
constexpr int kCoarseReach = 8;        // times that

float UnitsPerPixelOf(const ViewState& state) { return UnitsPerPixel(CameraOf(state), state.distance); }

/// The world's axis along which a direction lies most.
int MainAxis(const Point3& d) {
    const float x = std::abs(d.x), y = std::abs(d.y), z = std::abs(d.z);
    return x >= y && x >= z ? 0 : y >= z ? 1 : 2;
}

struct Ruler {
    Matrix3 plane;
    float width;          // from line to line
    long from[2], to[2];  // numbers of lines across both directions
};

void AddLines(const Ruler& ruler, int step, float alpha, const Color& color, std::vector<GridLine>& lines) {
    for (int d = 0; d < 2; ++d) {
        const int e = 1 - d;
        const float low = float(ruler.from[e]) * ruler.width, high = float(ruler.to[e]) * ruler.width;
        for (long i = ruler.from[d]; i <= ruler.to[d]; ++i) {
            if (step == 1 && i % 10 == 0) continue;  // a coarse one lies there
            if (i % step != 0) continue;
            const float at = float(i) * ruler.width;
            Point3 a(0, 0, 0), b(0, 0, 0);
            a[d] = b[d] = at;
            a[e] = low;
            b[e] = high;
            const bool isAxis = i == 0;
            lines.push_back({a * ruler.plane, b * ruler.plane, isAxis ? AxisColor(MainAxis(ruler.plane.GetRow(e))) : color,
                             isAxis ? 0.9f : alpha});
        }
    }
}

}  // namespace

Color AxisColor(int axis) {
    return axis == 0 ? Color(0.87f, 0.22f, 0.20f) : axis == 1 ? Color(0.22f, 0.66f, 0.20f) : Color(0.20f, 0.44f, 0.92f);
}

bool IsFromTheSide(const ViewState& state) { return !state.perspective && std::abs(state.pitch) < 45.0f; }

float GridWidthFor(const ViewState& state) {
    const float least = kLeastPixels * UnitsPerPixelOf(state);
    return std::pow(10.0f, std::ceil(std::log10(std::max(least, 1e-6f))));
}

ViewGrid GridOf(const ViewPicture& picture) {
    const ViewState& state = picture.state;
    const float unit = UnitsPerPixelOf(state);
    const bool isGiven = picture.gridWidth >= 0.4f * kLeastPixels * unit;
    Ruler fine;
    fine.width = isGiven ? picture.gridWidth : GridWidthFor(state);
    fine.plane = GridPlaneOf(state);
    const Point3 target = state.target * Inverse(fine.plane);
    const int across = int(std::max(state.width, state.height));
    const long reach = state.perspective ? kReach : long(0.75f * float(across) * unit / fine.width) + 11;
    for (int d = 0; d < 2; ++d) {
        const long middle = std::lround(target[d] / fine.width);
        fine.from[d] = middle - reach;
        fine.to[d] = middle + reach;
    }
    Ruler coarse = fine;
    const long far = state.perspective ? kCoarseReach * reach : reach;
    for (int d = 0; d < 2; ++d) {
        const long middle = std::lround(target[d] / fine.width);
        coarse.from[d] = middle - far;
        coarse.to[d] = middle + far;
    }
    ViewGrid grid;
    const Color color(picture.colors.grid.x, picture.colors.grid.y, picture.colors.grid.z);
    AddLines(fine, 1, 0.22f, color, grid.fine);
    AddLines(coarse, 10, 0.5f, color, grid.coarse);
    grid.middle = Point3(target.x, target.y, 0.0f) * fine.plane;
    if (state.perspective) {
        grid.fineReach = float(reach) * fine.width;
        grid.coarseReach = float(far) * fine.width;
    }
    return grid;
}

}  // namespace tavrik_studio

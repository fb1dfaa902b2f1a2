#pragma once
/// What a picture of a view consists of besides the scene, as plain data.

#include <cstdint>
#include <memory>

#include "host/rgb_image.h"
#include "host/sdk/view_state.h"

namespace tavrik_studio {

/// Colours as screens have them, 0..1.
struct ViewColors {
    Point3 plain{0.59f, 0.61f, 0.64f};
    Point3 zenith{0.48f, 0.65f, 0.86f}, horizon{0.86f, 0.91f, 0.95f}, haze{0.79f, 0.83f, 0.86f};
    Point3 grid{0.25f, 0.26f, 0.27f};
    Point3 outline{1.0f, 1.0f, 1.0f};
    float light = 1.0f;  // how bright the day is
};

/// Tyre tracks as they lie on the ground, seen straight from above.
struct TrackPicture {
    tavrik::RgbImage image;  // what the ground's colour is multiplied by; its upper edge is at the greatest y
    Point2 low{0, 0};        // the corner with the least x and y, scene units
    float side = 1.0f;       // of the square, scene units
};

struct ViewPicture {
    tavrik_host::ViewState state;  // its size in the widget's own pixels
    float pixelRatio = 1.0f;       // how many of the screen's pixels each of them is wide
    ViewColors colors;
    bool hasSky = true;  // in perspective; a flat view is plain
    bool hasGrid = true;
    float gridWidth = 0.0f;                      // units; 0: as it suits the picture
    std::shared_ptr<const TrackPicture> tracks;  // null: none
};

/// How much work goes into a picture.
struct DrawEffort {
    int coarse = 1;      // a drawn pixel is that many wide and high
    int samples = 1;     // of a drawn pixel
    bool boxes = false;  // big meshes show as the boxes around them
};

/// Whether a flat view looks across the ground rather than down on it.
bool IsFromTheSide(const tavrik_host::ViewState& state);

/// The width of the grid that suits a picture: 1, 10, 100 ... units, so that lines don't crowd.
float GridWidthFor(const tavrik_host::ViewState& state);

}  // namespace tavrik_studio

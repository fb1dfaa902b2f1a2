#pragma once
/// Tyre tracks of what has been driven, as a picture that a view lays on the ground.

#include <optional>

#include "host/rgb_image.h"
#include "host/sdk/max.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

struct TrackPicturePlace {
    tavrik::RgbImage image;
    Point2 low{0, 0};
    float side = 1.0f;  // scene units
};

/// Paints the tracks of all cars up to the end of their recordings. Takes up to a second or so.
/// @return none where nothing was driven, or cars stand on no mesh
std::optional<TrackPicturePlace> PaintTracks(Editor& editor);

}  // namespace tavrik_studio

#pragma once
/// The picture of the running-in stand: a grid, the road in red, the mass's trace in green, and the damper with its spring.

#include <cstdint>

#include "drive/canvas.h"
#include "drive/damper_model.h"

namespace tavrik {

/// What the picture is laid out for, in pixels. On a canvas of another size it keeps its place.
constexpr std::int32_t kStandPictureWidth = 645, kStandPictureHeight = 300;

/// Draws the whole picture and shows it. What was selected into `canvas` before is selected again in the end.
///
/// A height that isn't finite is drawn at the largest coordinates, one that isn't a number at 0: the canvas has to clip.
void DrawStand(const DamperModel& model, OffScreenCanvas& canvas);

}  // namespace tavrik

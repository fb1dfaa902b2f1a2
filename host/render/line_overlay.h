#pragma once
/// Lines over a picture of surfaces, with what is behind a surface drawn faintly: so that one sees where a thing is, and all of
/// it.

#include <span>
#include <vector>

#include "host/render/ray_scene.h"
#include "host/render/render_camera.h"
#include "host/rgb_image.h"
#include "host/sdk/line_view.h"

namespace tavrik_host {

/// How far in front of the eye the surfaces of a picture are, along the way it looks.
struct DepthPicture {
    int width = 0, height = 0;
    std::vector<float> depths;  // [height][width], in the middles of the pixels; infinite where there is no surface
};
DepthPicture TakeDepths(const RayFrame& frame, const RenderCamera& camera, int width, int height, int threads);

struct LineLook {
    float width = 1.6f;    // pixels
    float behind = 0.42f;  // how much of a line shows through a surface, 0..1
    float sunk = 0.0f;     // a line this far behind a surface still lies on it, units
};

/// Draws lines in their colours, each with a rim that sets it off from whatever is under it. Lines of one colour that follow
/// each other are one drawing: where they meet or cross they are no stronger.
void PaintLines(tavrik::RgbImage& image, const DepthPicture& depths, const RenderCamera& camera,
                std::span<const ViewLine> lines, const LineLook& look);

}  // namespace tavrik_host

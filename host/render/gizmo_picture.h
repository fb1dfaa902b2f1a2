#pragma once
/// A picture of a rig: its objects' lines over the surfaces of the scene, from several sides at once.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/canvas_fonts.h"
#include "host/render/render_model.h"
#include "host/rgb_image.h"
#include "host/sdk/view_state.h"

namespace tavrik_host {

/// From where a rig is looked at. Sides are the car's: Front shows its nose, Side its right side with the nose to the right.
enum class RigView { Front, Side, Top, Perspective };
/// As it is typed and as captions have it. @return no view for another word
std::optional<RigView> RigViewNamed(std::string_view name);
/// All names, with commas.
std::string RigViewNames();

struct GizmoWish {
    std::vector<RigView> views{RigView::Front, RigView::Side, RigView::Top, RigView::Perspective};
    int width = 1280, height = 960;  // of the whole picture
    int threads = 0;                 // 0: as many as there are cores
    std::vector<INode*> nodes;       // what to draw and to look at; none: every object of every car
};

/// Takes the picture. Views fill it row by row, each framed so that the car is seen as a whole.
/// @param fonts  of the captions
tavrik::RgbImage TakeGizmoPicture(const RenderModel& model, TimeValue tick, const GizmoWish& wish,
                                  const tavrik::CanvasFonts& fonts);

}  // namespace tavrik_host

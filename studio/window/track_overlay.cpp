#include "studio/window/track_overlay.h"

#include <algorithm>
#include <string>

#include "host/render/render_sequence.h"
#include "host/render/track_bake.h"
#include "host/rig_objects.h"
#include "host/scene_file.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"

namespace tavrik_studio {
namespace {

constexpr float kFinestPixel = 0.03f;  // metres: a tyre is a few of them wide
constexpr int kMostPixels = 3072, kFewestPixels = 256;

/// The square around all that wheels have rolled over.
std::optional<tavrik_host::GroundSquare> DrivenSquare(const std::vector<TimeValue>& ticks) {
    Box3 bound;
    const auto frame = TimeValue(GetTicksPerFrame());
    for (INode* const wheel : tavrik_host::NodesOf(tavrik::ObjectClass::Wheel)) {
        if (!tavrik_host::HasTavrikControl(*wheel)) continue;
        const float reach = 2.0f * tavrik_host::FloatParam(*wheel, tavrik::WheelParam::Radius);
        for (TimeValue tick = ticks.front(); tick <= ticks.back(); tick += frame) {
            const Point3 at = wheel->GetNodeTM(tick).GetTrans();
            bound += at - Point3(reach, reach, 0.0f);
            bound += at + Point3(reach, reach, 0.0f);
        }
    }
    if (bound.IsEmpty()) return std::nullopt;
    const float side = std::max(bound.Width().x, bound.Width().y);
    return tavrik_host::GroundSquare{Point2(bound.Center().x - 0.5f * side, bound.Center().y - 0.5f * side), side};
}

}  // namespace

std::optional<TrackPicturePlace> PaintTracks(Editor& editor) {
    const std::vector<TimeValue> ticks = tavrik_host::RecordedTicks();
    const std::vector<INode*> masters = tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik);
    const std::vector<INode*> grounds = tavrik_host::TrackGrounds();
    if (ticks.empty() || masters.empty() || grounds.empty()) return std::nullopt;
    const std::optional<tavrik_host::GroundSquare> square = DrivenSquare(ticks);
    if (!square) return std::nullopt;
    tavrik_host::RenderModel model = TakeRenderModel(editor.Document(), grounds);
    std::erase_if(model.things, [](const tavrik_host::RenderThing& thing) { return !thing.takesTracks; });
    const tavrik_host::RayShapes shapes(model);
    const tavrik_host::RayFrame frame(shapes, ticks.back());
    const float metres = float(tavrik_host::MetresPerUnit()) * square->side;
    const int size = std::clamp(int(metres / kFinestPixel), kFewestPixels, kMostPixels);
    tavrik_host::TrackLayout layout;
    std::string problem;
    if (!layout.Build(model, frame, size, problem, &*square)) return std::nullopt;
    tavrik_host::BeginRender();
    TrackPicturePlace place;
    {
        tavrik_host::TrackPainter painter(masters, {});
        painter.Update(ticks.back());
        place.image = layout.Bake(painter, ticks.back(), /*withBump=*/false, 0, {}).color;
    }
    tavrik_host::EndRender();
    place.low = square->low;
    place.side = square->side;
    return place;
}

}  // namespace tavrik_studio

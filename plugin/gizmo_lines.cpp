#include "plugin/gizmo_lines.h"

#include "plugin/convert.h"
#include "plugin/scene_view.h"
#include "rig/playback_rule.h"

namespace tavrik_plugin {

void DrawLines(GraphicsWindow& gw, std::span<const tavrik::GizmoLine> lines) {
    gw.startSegments();
    for (const tavrik::GizmoLine& line : lines) {
        Point3 ends[2] = {ToHost(line.from), ToHost(line.to)};
        gw.polyline(2, ends, nullptr, nullptr, FALSE, nullptr);
    }
    gw.endSegments();
}

bool IsLocked(INode& node) {
    SceneView view;
    return tavrik::IsLocked(*view.Of(&node));
}

std::optional<Point3> LiveAttachment(INode& node, TimeValue t) {
    SceneView view;
    const NodeView& locked = *view.Of(&node);
    if (!tavrik::IsLocked(locked)) return std::nullopt;
    const tavrik::ControlValues control = locked.GetControl();
    const auto kind = std::int32_t(tavrik::ComponentType::UnitFrame);
    return ToHost(tavrik::AnswerTM(*control.Tavrik_Node->Rig(), kind, control.Axle_Num, t).row[3]);
}

}  // namespace tavrik_plugin

#pragma once
/// Vehicles put onto a ground of the open scene.

#include <QString>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/car_placement.h"
#include "host/ground_node.h"
#include "host/rig_scene.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

/// What is to be put into the scene.
struct CarOrder {
    QString what;                           // as the way back names it
    const tavrik::CarPlan* plan = nullptr;  // of the first vehicle
    int vehicles = 1;
    std::optional<tavrik::CarSpot> spot;  // of the first vehicle, where nothing stands there; none: the middle of the ground
    /// Adds the vehicles with the first chassis at `frame`. Nothing is answered where that can't be; `problem` then tells why,
    /// without a full stop.
    std::function<std::vector<tavrik_host::RigNodes>(const tavrik::DMatrix3& frame, INode& ground,
                                                     const tavrik::SurfaceTree& surface, std::string& problem)>
        fill;
};

/// Puts vehicles into the scene as one step, beside the cars that stand there, and selects the first master. The timeline of a
/// scene without cars becomes at least twenty seconds long.
///
/// @param ground   null: a sample ground is added
/// @param problem  on false: one sentence; the scene stays as it was
bool PutCar(Editor& editor, const CarOrder& order, INode* ground, QString& problem);

}  // namespace tavrik_studio

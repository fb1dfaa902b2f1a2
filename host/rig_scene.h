#pragma once
/// A planned car as helper objects in the scene.

#include <string>
#include <vector>

#include "drive/drive_settings.h"
#include "host/scene_file.h"
#include "host/sdk/max.h"
#include "host/shape.h"
#include "rig/car_plan.h"

namespace tavrik_host {

/// A mesh of a car with a name of its own.
struct DressPiece {
    std::string name;
    int wheel = -1;                         // unit of the plan whose wheel it turns with; -1: it sits on the chassis
    std::vector<tavrik::ShapePart> shapes;  // in the space of what it hangs under
};

/// What a car in the scene looks like, and how it drives.
struct CarDress {
    std::string name = "Car";  // of its master object
    tavrik::DriveSettings settings;
    std::vector<tavrik::ShapePart> body;  // in chassis space
    /// Beside the plan's units, each in its wheel's space.
    std::vector<std::vector<tavrik::ShapePart>> wheels;
    std::vector<DressPiece> pieces = {};  // besides
    /// Beside the plan's units, such as "front left": what their wheels and suspensions are called by. Empty: by numbers.
    std::vector<std::string> labels = {};
};

/// The nodes of one car.
struct RigNodes {
    INode* master = nullptr;
    INode* chassis = nullptr;
    INode* start = nullptr;
    std::vector<INode*> wheels, suspensions;  // beside the plan's units
    std::vector<INode*> spheres;
    std::vector<INode*> couplings;  // beside the plan's; hitches are connected to nothing yet
};

/// Puts a car's helper objects into the scene, its meshes under them: a master with a box around all of it, a start position,
/// the surface set. Nothing is locked.
///
/// @param frame    of the chassis, world
/// @param surface  null: no ground is set
RigNodes AddPlannedCar(SceneDocument& document, const tavrik::CarPlan& plan, const CarDress& dress,
                       const tavrik::DMatrix3& frame, INode* surface);

/// The stock car's looks and settings.
CarDress StockCarDress();

}  // namespace tavrik_host

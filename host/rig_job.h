#pragma once
/// From somebody's car model to vehicles that can be put into a scene, one or several that hang together.

#include <filesystem>
#include <string>
#include <vector>

#include "host/car_looks.h"
#include "host/car_model_reader.h"
#include "host/placed_parts.h"
#include "host/train.h"
#include "wizard/wizard.h"

namespace tavrik_host {

/// What has been made up about one vehicle.
struct PlannedVehicle {
    tavrik::VehicleWish wish;
    tavrik::WizardResult result;
};

struct RigJob {
    std::filesystem::path file;  // of the model, for messages
    tavrik::CarModel model;
    tavrik::CarLooks looks;
    std::vector<PlannedVehicle> vehicles;  // the driven one first
};

/// What a user asks for.
struct RigWish {
    std::filesystem::path model;
    std::filesystem::path places;  // a file of places; empty: none
    tavrik::CarImport import;
    tavrik::WizardOptions options;  // directions and places in the axes of the model's file
    std::string name;               // of the master object; empty: the model's
};

/// Reads the model and what is wished of each vehicle. @param problem  on false: one sentence that names file and fault
bool ReadRigJob(const RigWish& wish, RigJob& job, std::string& problem);

/// Plans every vehicle. Those that hang together are measured by one unit of length and one of mass.
bool PlanRigJob(RigJob& job, std::string& problem);

/// The planned vehicles in the model's own meshes.
bool DressRigJob(const RigJob& job, std::vector<DressedCar>& cars, std::string& problem);

}  // namespace tavrik_host

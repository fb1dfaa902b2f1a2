#pragma once
/// Somebody's car model as a car in the scene.

#include <string>

#include "host/car_looks.h"
#include "host/train.h"
#include "wizard/wizard.h"

namespace tavrik_host {

/// The planned car in the model's own meshes: each part is a mesh of its own, called as in the model, under the chassis or
/// under the wheel that it turns with; parts that hold several wheels are taken apart. Scene units are centimetres.
///
/// @param name     of the master object
/// @param car      out
/// @param problem  on false: a mesh doesn't fit into the scene's numbers; one sentence without a file's name
bool DressPlan(const tavrik::CarModel& model, const tavrik::CarLooks& looks, const tavrik::WizardResult& result,
               const tavrik::WizardOptions& options, const std::string& name, DressedCar& car, std::string& problem);

}  // namespace tavrik_host

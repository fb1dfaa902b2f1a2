#pragma once
/// The parts of a model that are looked at, each where it stands.

#include <string>
#include <vector>

#include "wizard/wizard.h"

namespace tavrik {

/// Checks the model and the options, and lists the parts that are in play with role `Body`; all others are left out. With
/// places the list holds copies of the parts that they name, with what hangs below these, and nothing else.
///
/// @param problem  on false: one sentence
bool PlaceModel(const CarModel& model, const WizardOptions& options, std::vector<RiggedPart>& parts, std::string& problem);

/// A part's name in quotes, or its number where it has none.
std::string PartTitle(const CarModel& model, int part);

/// The determinant of the turn and scale of a frame: below zero for a mirrored one.
double Handedness(const DMatrix3& frame);

}  // namespace tavrik

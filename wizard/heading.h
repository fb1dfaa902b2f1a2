#pragma once

#include "wizard/body_mesh.h"

namespace tavrik {

/// Which way a car looks, from its wheels' axles and whatever tells front from back.
struct Heading {
    DPoint3 forward{}, right{};  // level, of length 1
    double confidence = 0.0;     // 0.5: might as well be the other way round; 1: certain
    bool isBike = false;
};

/// @param body  in the model's space
bool FindHeading(const CarModel& model, const WizardOptions& options, const std::vector<RiggedPart>& parts,
                 const std::vector<FoundWheel>& wheels, const BodyMesh& body, Heading& heading,
                 std::vector<Decision>& decisions, std::string& problem);

}  // namespace tavrik

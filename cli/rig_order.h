#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "host/car_model_reader.h"
#include "host/car_placement.h"
#include "host/mesh_import.h"
#include "wizard/wizard.h"

namespace tavrik {

/// `tavrik rig`
struct RigOrder {
    std::filesystem::path model, ground, out;  // no ground: the sample; no `out`: nothing is written
    std::filesystem::path places;              // a file of places; empty: none
    CarImport carImport;
    GroundImport groundImport;
    WizardOptions options;  // directions and places in the axes of the model's file
    std::string name;       // of the master object; empty: the model's
    std::optional<CarSpot> start;
    double seconds = 20.0;  // of the timeline
    std::int32_t ticksPerFrame = 160;
};

/// Carries it out as the other orders are. @return the exit status
int RunRig(const RigOrder& order);

}  // namespace tavrik

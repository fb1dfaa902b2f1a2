#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "host/car_placement.h"
#include "host/mesh_import.h"
#include "host/rig_job.h"

namespace tavrik {

/// `tavrik rig`
struct RigOrder {
    tavrik_host::RigWish wish;
    std::filesystem::path ground, out;  // no ground: the sample; no `out`: nothing is written
    GroundImport groundImport;
    std::optional<CarSpot> start;
    double seconds = 20.0;  // of the timeline
    std::int32_t ticksPerFrame = 160;
};

/// Carries it out as the other orders are. @return the exit status
int RunRig(const RigOrder& order);

}  // namespace tavrik

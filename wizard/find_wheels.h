#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "wizard/disc_fit.h"
#include "wizard/part_names.h"
#include "wizard/wizard.h"

namespace tavrik {

/// A part, or some of its faces, that turns with a wheel.
struct WheelPiece {
    int rigged = 0;                    // index into the rigged parts
    std::vector<std::uint32_t> faces;  // of the part; empty for all of them
    DiscFit fit;
    bool told = false;  // a name, an animation or an option says that it is a wheel
    NameHints hints;
};

/// Tyre, rim and whatever else turns about one axle.
struct FoundWheel {
    std::vector<WheelPiece> pieces;  // the largest first
    DPoint3 centre{}, axle{};        // model space; which way `axle` points means nothing yet
    double radius = 0.0, halfWidth = 0.0;
    bool told = false;
    int end = 0, side = 0;  // what its names say, as in `NameHints`
    std::string title;      // for messages
};

/// Finds the wheels among the parts in play: by name, animation or option where those tell of discs, else by shape alone.
///
/// @param problem  on false: one sentence
bool FindWheels(const CarModel& model, const WizardOptions& options, const std::vector<RiggedPart>& parts,
                std::vector<FoundWheel>& wheels, std::vector<Decision>& decisions, std::string& problem);

}  // namespace tavrik

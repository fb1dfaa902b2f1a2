#pragma once
/// Where wheels, axles and the centre of mass lie, and how large all of it is.

#include "wizard/heading.h"

namespace tavrik {

struct Layout {
    std::vector<FoundWheel> wheels;  // axles from the front, each from left to right
    std::vector<int> axleOf;         // of each wheel, from 0
    std::vector<DPoint3> hubs;       // of each wheel's centre, chassis space, scene units
    int axleCount = 0;
    DMatrix3 frame = IdentityDMatrix3();  // of the chassis in the model's space
    double scale = 1.0;                   // metres to one model unit
    double unitScale = 100.0;             // scene units to one model unit
    BodyMesh body;                        // chassis space, scene units
    DBox box;                             // of `body`
    double ground = 0.0;                  // height under the wheels, chassis space
    bool isBike = false;
};

/// @param body  model space, not empty
/// @param problem  on false: one sentence
bool LayOut(const CarModel& model, const WizardOptions& options, std::vector<FoundWheel> wheels, const BodyMesh& body,
            const Heading& heading, Layout& layout, std::vector<Decision>& decisions, std::string& problem);

/// Shares the load 1 among wheels so that it balances about the origin, as evenly as that allows.
std::vector<double> ShareLoad(const std::vector<DPoint3>& hubs);

}  // namespace tavrik

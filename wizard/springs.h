#pragma once
/// Masses, wheels, suspensions and tyres of a car that has been laid out.

#include "wizard/layout.h"

namespace tavrik {

/// Fills chassis, units and standing height of the plan, the wheels and the advice, in that order. `result.scale` and `frame`
/// are set already.
void PlanSprings(const WizardOptions& options, const Layout& layout, WizardResult& result);

}  // namespace tavrik

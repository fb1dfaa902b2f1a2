#pragma once
/// Simple bodies to look at for the garage's vehicles, in the chassis space of their plans. Wheels come from `WheelShape`.

#include "host/shape.h"

namespace tavrik {

Shape TrailerShape();        // of `TrailerPlan` and `LeadingTrailerPlan`
Shape SecondTrailerShape();  // of `SecondTrailerPlan`
Shape MotorcycleShape();     // of `MotorcyclePlan`, its rider included
Shape SixWheelerShape();     // of `SixWheelerPlan`

}  // namespace tavrik

#pragma once
/// The vehicles of the garage besides the stock car, all in centimetres and kilograms, and how trains of them hang together.

#include "rig/car_plan.h"

namespace tavrik {

/// The stock car with a hitch at its back.
CarPlan TowCarPlan();

/// A box trailer with one axle, 400 kg, whose drawbar reaches the hitch of the tow car.
CarPlan TrailerPlan();

/// The same with a hitch at its back, for a second trailer.
CarPlan LeadingTrailerPlan();

/// A small flat trailer with one axle, 220 kg, for the hitch of the leading one.
CarPlan SecondTrailerPlan();

/// A motorcycle with its rider, 230 kg: a fork that is raked and steered in front, driven and hand-braked behind. It stands on
/// rounded tyres and falls over at rest; driven, it wants `Bike_Drive`. Units come front, back.
CarPlan MotorcyclePlan();

/// A lorry of five and a half tons on six wheels: the front axle is steered, the two behind are driven. Units come front left,
/// front right, then the same of the middle and of the back axle.
CarPlan SixWheelerPlan();

/// The hitch (or the tongue) of a plan, in chassis space. The plan must have one (asserted).
DPoint3 CouplingPlace(const CarPlan& plan, bool isHitch);

/// Where a vehicle stands whose tongue is on the hitch of the one in front, both pointing the same way.
///
/// @param frontFrame  of the chassis in front
DMatrix3 FrameBehind(const CarPlan& front, const DMatrix3& frontFrame, const CarPlan& behind);

}  // namespace tavrik

#pragma once

#include "rig/car_plan.h"

namespace tavrik {

/// The stock car, a middle-class car in centimetres and kilograms. About 450 long; wheels 32 in radius; wishbones in front,
/// telescopic struts behind; steered in front, driven and hand-braked at the back; eight collision spheres, near the corners of
/// the body and on the roof. Units come front left, front right, back left, back right.
CarPlan StockCarPlan();

/// Fills `rig` with the stock car, standing at rest with its chassis at `frame`, and locks it.
///
/// @param frame  of the chassis: X across (right is positive), Y to the front, Z up, row 3 its centre of mass
void MakeStockCar(CarRig& rig, const DMatrix3& frame);

/// How high the stock car's centre of mass stands above a level ground at rest, scene units.
double StockCarStandingHeight();

}  // namespace tavrik

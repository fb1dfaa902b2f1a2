#include "rig/car_plan.h"

#include <cassert>

namespace tavrik {

void MakePlannedCar(const CarPlan& plan, const DMatrix3& frame, CarRig& rig) {
    assert(plan.units.size() <= kMaxComponents && plan.spheres.size() <= kMaxComponents);
    assert(plan.couplings.size() <= kMaxComponents);
    rig.ResetMotion();
    rig.chassisParams = MakeChassisParams(plan.chassis);
    rig.unitCount = rig.hitchCount = rig.sphereCount = 0;
    for (const PlannedUnit& unit : plan.units) {
        const std::int32_t i = rig.unitCount++;
        rig.units[i] = MakeUnit(unit.wheel, unit.suspension, unit.frame, std::uint32_t(i));
    }
    for (const PlannedSphere& sphere : plan.spheres) {
        DMatrix3 place = IdentityDMatrix3();
        place.row[3] = sphere.centre;
        rig.spheres[rig.sphereCount++] = MakeSphere(sphere.values, place);
    }
    for (const PlannedCoupling& coupling : plan.couplings) {
        DMatrix3 place = IdentityDMatrix3();
        place.row[3] = coupling.place;
        rig.hitches[rig.hitchCount++].frame = place;
    }
    ResetBody(rig.chassisBody, frame);
    for (std::int32_t i = 0; i < rig.unitCount; ++i) {
        PlaceWheel(rig.units[i], rig.chassisBody, rig.wheelBodies[i], rig.bufferPosition[i]);
    }
    rig.steerValue = rig.steerSpare = 0.0;
    rig.InitMotion();
}

DMatrix3 RestFrame(const PlannedUnit& unit) {
    DMatrix3 frame = unit.frame;
    frame.row[3] += frame.row[2] * RestReach(MakeUnit(unit.wheel, unit.suspension, unit.frame, 0));
    return frame;
}

}  // namespace tavrik

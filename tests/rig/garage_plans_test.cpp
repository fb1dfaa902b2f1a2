/// The garage's vehicles before anybody drives them: that they stand as drawn, on wheels that touch, and hang together.

#include "rig/garage_plans.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "solver/world_building.h"
#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace tavrik::test {
namespace {

struct NamedPlan {
    const char* name;
    CarPlan (*make)();
};
std::ostream& operator<<(std::ostream& out, const NamedPlan& plan) { return out << plan.name; }

class GaragePlan : public testing::TestWithParam<NamedPlan> {
 protected:
    const CarPlan plan = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(Garage, GaragePlan,
                         testing::Values(NamedPlan{"TowCar", TowCarPlan}, NamedPlan{"Trailer", TrailerPlan},
                                         NamedPlan{"LeadingTrailer", LeadingTrailerPlan},
                                         NamedPlan{"SecondTrailer", SecondTrailerPlan}, NamedPlan{"Motorcycle", MotorcyclePlan},
                                         NamedPlan{"SixWheeler", SixWheelerPlan}),
                         [](const auto& named) { return std::string(named.param.name); });

TEST_P(GaragePlan, WheelsTouchLevelGroundAtTheDrawnHeight) {
    for (const PlannedUnit& unit : plan.units) {
        const double lowest = plan.standingHeight + RestFrame(unit).row[3].z - double(unit.wheel.Radius);
        EXPECT_LT(lowest, 0.0);
        EXPECT_GT(lowest, -2.0);  // a tyre sinks in by no more
    }
}

TEST_P(GaragePlan, SpheresAreClearOfTheGround) {
    ASSERT_FALSE(plan.spheres.empty());
    for (const PlannedSphere& sphere : plan.spheres) {
        EXPECT_GT(plan.standingHeight + sphere.centre.z - double(sphere.values.Radius), 15.0);
    }
}

TEST_P(GaragePlan, CouplingsAreAllAtOneHeight) {
    for (const PlannedCoupling& coupling : plan.couplings) EXPECT_DOUBLE_EQ(plan.standingHeight + coupling.place.z, 42.0);
}

TEST_P(GaragePlan, EveryStiffnessSuitsTheStep) {
    // A spring k between masses of which m is the lighter stays far within its step as long as sqrt(k / m) dt is well below 1.
    const auto expectSoft = [](double k, double m) { EXPECT_LT(std::sqrt(k / m) * kDt, 0.1) << k << " on " << m; };
    for (const PlannedUnit& unit : plan.units) {
        const double mass = double(unit.wheel.Mass);
        expectSoft(double(unit.wheel.Ruggedness), mass);
        expectSoft(double(plan.chassis.Solidity), mass);
        expectSoft(double(unit.suspension.Buffer_Ruggedness) + double(unit.suspension.Ruggedness), mass);
    }
    for (const PlannedSphere& sphere : plan.spheres) expectSoft(double(sphere.values.Ruggedness), double(plan.chassis.Mass));
    for (const PlannedCoupling& coupling : plan.couplings) {
        if (coupling.isHitch) expectSoft(double(coupling.Ruggedness), double(SecondTrailerPlan().chassis.Mass));
    }
}

TEST_P(GaragePlan, SpringsCarryTheBodyWithoutTravel) {
    double carried = 0.0;
    for (const PlannedUnit& unit : plan.units) {
        const double upright = -unit.frame.row[0].z;
        carried += double(unit.suspension.Shift) * double(unit.suspension.Ruggedness) / upright;
    }
    const double share = carried / (double(plan.chassis.Mass) * kGravity);
    EXPECT_LE(share, 1.03);
    EXPECT_GE(share, 0.91);  // a trailer rests a little on the hitch
}

/// Vehicles hitched in a row, in the one world of the program.
struct Train {
    explicit Train(const std::vector<CarPlan>& plans) {
        DMatrix3 frame = FrameAt({0, 0, plans.front().standingHeight});
        for (std::size_t i = 0; i < plans.size(); ++i) {
            if (i > 0) frame = FrameBehind(plans[i - 1], frame, plans[i]);
            rigs.push_back(std::make_unique<CarRig>());
            MakePlannedCar(plans[i], frame, *rigs.back());
            if (i > 0) Hitch(plans[i - 1], *rigs[i - 1], plans[i], *rigs[i]);
        }
        BuildWorld(world, *rigs.front());
    }
    static HitchSlot& SlotOf(const CarPlan& plan, CarRig& rig, bool isHitch) {
        const auto found = std::find_if(plan.couplings.begin(), plan.couplings.end(),
                                        [&](const PlannedCoupling& coupling) { return coupling.isHitch == isHitch; });
        HitchSlot& slot = rig.hitches[found - plan.couplings.begin()];
        slot.ownerRig = &rig;
        slot.Ruggedness = double(found->Ruggedness);
        return slot;
    }
    static void Hitch(const CarPlan& front, CarRig& frontRig, const CarPlan& behind, CarRig& behindRig) {
        HitchSlot& hitch = SlotOf(front, frontRig, true);
        HitchSlot& tongue = SlotOf(behind, behindRig, false);
        hitch.partner = &tongue;
        tongue.partner = &hitch;
    }
    void Rest(double seconds) {
        const int steps = int(std::lround(seconds / kDt));
        for (int i = 0; i < steps; ++i) WorldStep(world, i * kDt, kDt, FlatGround(), kGravity, StockInput());
    }

    CarWorld& world = EmptyWorld();
    std::vector<std::unique_ptr<CarRig>> rigs;
};

void ExpectStanding(const CarRig& rig, const CarPlan& plan) {
    EXPECT_NEAR(rig.chassisBody.frame.row[3].z, plan.standingHeight, 1.2) << plan.chassis.Mass;  // measured up to 0.8
    EXPECT_GT(rig.chassisBody.frame.row[2].z, 0.999);
}

TEST(GarageTrain, StandsAtRestAtItsDrawnHeight) {
    const std::vector<CarPlan> plans = {TowCarPlan(), LeadingTrailerPlan(), SecondTrailerPlan()};
    Train train(plans);
    ASSERT_EQ(train.world.jointCount, 2);
    train.Rest(3.0);
    for (std::size_t i = 0; i < plans.size(); ++i) ExpectStanding(*train.rigs[i], plans[i]);
}

TEST(GarageTrain, ShortOneStandsAtRestToo) {
    const std::vector<CarPlan> plans = {TowCarPlan(), TrailerPlan()};
    Train train(plans);
    train.Rest(3.0);
    for (std::size_t i = 0; i < plans.size(); ++i) ExpectStanding(*train.rigs[i], plans[i]);
}

TEST(GarageSixWheeler, StandsAtRestAtItsDrawnHeight) {
    Train alone({SixWheelerPlan()});
    alone.Rest(3.0);
    ExpectStanding(*alone.rigs.front(), SixWheelerPlan());
}

TEST(GarageMotorcycle, StandsAtItsDrawnHeightForAMoment) {
    Train alone({MotorcyclePlan()});
    alone.Rest(0.5);
    ExpectStanding(*alone.rigs.front(), MotorcyclePlan());
}

TEST(GarageMotorcycle, FallsOverWhenNobodyRidesOff) {
    Train alone({MotorcyclePlan()});
    alone.Rest(6.0);
    EXPECT_LT(alone.rigs.front()->chassisBody.frame.row[2].z, 0.5);
}

TEST(GarageSixWheeler, SteersInFrontAndDrivesBehind) {
    const CarPlan plan = SixWheelerPlan();
    ASSERT_EQ(plan.units.size(), 6u);
    for (const PlannedUnit& unit : plan.units) {
        const bool isFront = unit.frame.row[3].y > 0.0;
        EXPECT_EQ(unit.suspension.Steering != 0, isFront);
        EXPECT_EQ(unit.suspension.Drive != 0, !isFront);
    }
}

TEST(GarageCouplings, JointPointsCoincideWhereverTheFrontStands) {
    DMatrix3 frame = FrameAt({310, -55, 90});
    RotateX(frame, 0.2);
    RotateZ(frame, 1.1);
    const CarPlan plans[] = {TowCarPlan(), LeadingTrailerPlan(), SecondTrailerPlan()};
    for (int i = 0; i < 2; ++i) {
        const DMatrix3 behind = FrameBehind(plans[i], frame, plans[i + 1]);
        const DPoint3 hitch = TransformPoint(CouplingPlace(plans[i], true), frame);
        const DPoint3 tongue = TransformPoint(CouplingPlace(plans[i + 1], false), behind);
        EXPECT_LT(Length(hitch - tongue), 1e-9);
        frame = behind;
    }
}

}  // namespace
}  // namespace tavrik::test

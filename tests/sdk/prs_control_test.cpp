#include <gtest/gtest.h>

#include <cmath>

#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"
#include "tests/sdk/test_target.h"

namespace tavrik_host::test {
namespace {

class PrsControls : public ::testing::Test {
 protected:
    void TearDown() override { control->DeleteMe(); }
    Matrix3 Value(TimeValue t, const Matrix3& parent = Matrix3(TRUE)) {
        Matrix3 frame = parent;
        Interval valid = FOREVER;
        control->GetValue(t, &frame, valid, CTRL_RELATIVE);
        return frame;
    }
    PrsControl* control = new PrsControl;
    static constexpr float kHalf = 0.70710678f;
};

Matrix3 OddFrame() {
    Matrix3 m;
    m.SetRow(0, Point3(0.1f, -0.0f, 3e-39f));
    m.SetRow(1, Point3(-0.0f, 1.0000001f, 0));
    m.SetRow(2, Point3(7, 0.3f, -0.0f));
    m.SetRow(3, Point3(-0.0f, 1e30f, 0.2f));
    return m;
}

TEST_F(PrsControls, FrameWithoutAParentIsHeldToTheBit) {
    control->SetLocal(OddFrame());
    EXPECT_TRUE(SameBits(Value(0), OddFrame()));
    EXPECT_TRUE(SameBits(Value(99999), OddFrame()));

    SetXFormPacket packet(OddFrame(), Matrix3(TRUE));
    control->SetLocal(Matrix3(TRUE));
    control->SetValue(0, &packet);
    EXPECT_TRUE(SameBits(control->Local(), OddFrame()));
}

TEST_F(PrsControls, RelativeValueComesAfterTheParentAndAbsoluteInItsPlace) {
    Matrix3 local(TRUE), parent(TRUE);
    local.SetTrans(Point3(1, 0, 0));
    parent.RotateY(0.5f);
    control->SetLocal(local);
    EXPECT_TRUE(SameBits(Value(0, parent), local * parent));

    Matrix3 frame = parent;
    Interval valid = FOREVER;
    control->GetValue(0, &frame, valid, CTRL_ABSOLUTE);
    EXPECT_TRUE(SameBits(frame, local));
}

TEST_F(PrsControls, FrameWithoutKeysHoldsForEverAndOneWithKeysForAnInstant) {
    Matrix3 frame(TRUE);
    Interval valid = FOREVER;
    control->GetValue(5, &frame, valid, CTRL_RELATIVE);
    EXPECT_EQ(valid, FOREVER);
    control->scale.keys = {{0, Point3(1, 1, 1)}};
    control->GetValue(5, &frame, valid, CTRL_RELATIVE);
    EXPECT_EQ(valid, Interval(5, 5));
}

TEST_F(PrsControls, PositionMovesInALineBetweenKeysAndRestsOutside) {
    control->position.keys = {{100, Point3(0, 0, 0)}, {200, Point3(10, 20, -30)}};
    EXPECT_EQ(Value(125).GetTrans(), Point3(2.5f, 5, -7.5f));
    EXPECT_EQ(Value(99).GetTrans(), Point3(0, 0, 0));
    EXPECT_EQ(Value(200).GetTrans(), Point3(10, 20, -30));
    EXPECT_EQ(Value(TIME_PosInfinity).GetTrans(), Point3(10, 20, -30));
}

TEST_F(PrsControls, StepsHoldTheKeyBefore) {
    control->position.curve = KeyCurve::Step;
    control->position.keys = {{100, Point3(0, 0, 0)}, {200, Point3(10, 20, -30)}};
    EXPECT_EQ(Value(199).GetTrans(), Point3(0, 0, 0));
    EXPECT_EQ(Value(200).GetTrans(), Point3(10, 20, -30));
}

TEST_F(PrsControls, KeysAtBothEndsOfTimeAreBlendedWithoutOverflow) {
    control->position.keys = {{TIME_NegInfinity, Point3(0, 0, 0)}, {TIME_PosInfinity, Point3(2, 0, 0)}};
    EXPECT_NEAR(Value(0).GetTrans().x, 1.0f, 1e-6f);
}

TEST_F(PrsControls, QuarterTurnAboutZTakesXToY) {
    control->rotation.keys = {{0, {0, 0, kHalf, kHalf}}};
    EXPECT_NEAR(Value(0).GetRow(0).y, 1.0f, 1e-6f);
    EXPECT_NEAR(Value(0).GetRow(1).x, -1.0f, 1e-6f);
    EXPECT_NEAR(Value(0).GetRow(2).z, 1.0f, 1e-6f);
}

TEST_F(PrsControls, HalfWayOfAQuarterTurnIsAnEighth) {
    control->rotation.keys = {{0, {0, 0, 0, 1}}, {100, {0, 0, kHalf, kHalf}}};
    EXPECT_NEAR(Value(50).GetRow(0).x, kHalf, 1e-6f);
    EXPECT_NEAR(Value(50).GetRow(0).y, kHalf, 1e-6f);
}

TEST_F(PrsControls, RotationGoesTheShortWayRoundWhateverTheSigns) {
    // The same quarter turn with the other sign: the long way would pass through minus 135 degrees.
    control->rotation.keys = {{0, {0, 0, 0, 1}}, {100, {0, 0, -kHalf, -kHalf}}};
    EXPECT_NEAR(Value(50).GetRow(0).x, kHalf, 1e-6f);
    EXPECT_NEAR(Value(50).GetRow(0).y, kHalf, 1e-6f);
}

TEST_F(PrsControls, RotationKeepsASteadyPace) {
    const double full = 2.6;  // radians
    control->rotation.keys = {{0, {0, 0, 0, 1}}, {100, {0, 0, float(std::sin(full / 2)), float(std::cos(full / 2))}}};
    for (int t = 0; t <= 100; t += 10) {
        EXPECT_NEAR(std::atan2(double(Value(t).GetRow(0).y), double(Value(t).GetRow(0).x)), full * t / 100.0, 1e-6);
    }
}

TEST_F(PrsControls, RotationOfAnyLengthTurnsWithoutScaling) {
    control->rotation.keys = {{0, {0, 0, 5, 5}}};
    EXPECT_NEAR(Length(Value(0).GetRow(0)), 1.0f, 1e-6f);
    control->rotation.keys = {{0, {0, 0, 0, 0}}};
    EXPECT_TRUE(Value(0) == Matrix3(TRUE));
}

TEST_F(PrsControls, ScaleGoesAlongTheNodesOwnAxes) {
    control->restScale = Point3(2, 3, 4);
    control->rotation.keys = {{0, {0, 0, kHalf, kHalf}}};
    EXPECT_NEAR(Value(0).GetRow(0).y, 2.0f, 1e-6f);
    EXPECT_NEAR(Value(0).GetRow(1).x, -3.0f, 1e-6f);
    EXPECT_NEAR(Value(0).GetRow(2).z, 4.0f, 1e-6f);
}

TEST_F(PrsControls, TrackWithoutKeysRests) {
    control->restPosition = Point3(7, 8, 9);
    control->scale.keys = {{0, Point3(1, 1, 1)}};
    EXPECT_EQ(Value(33).GetTrans(), Point3(7, 8, 9));
}

TEST_F(PrsControls, KeysAreNotOverwrittenByAFrame) {
    control->position.keys = {{0, Point3(1, 1, 1)}};
    SetXFormPacket packet(OddFrame(), Matrix3(TRUE));
    control->SetValue(0, &packet);
    EXPECT_EQ(Value(0).GetTrans(), Point3(1, 1, 1));
}

TEST_F(PrsControls, CopyHoldsFrameAndKeysOfTheOther) {
    auto* const other = new PrsControl;
    other->SetLocal(OddFrame());
    other->position.keys = {{0, Point3(4, 0, 0)}};
    control->Copy(other);
    EXPECT_EQ(Value(0).GetTrans(), Point3(4, 0, 0));
    EXPECT_TRUE(SameBits(control->Local(), OddFrame()));
    other->DeleteMe();
}

TEST_F(PrsControls, CloneIsAnotherWithTheSameFrame) {
    control->SetLocal(OddFrame());
    DefaultRemapDir remap;
    auto* const clone = static_cast<PrsControl*>(remap.CloneRef(control));
    ASSERT_NE(clone, control);
    EXPECT_TRUE(SameBits(clone->Local(), OddFrame()));
    EXPECT_EQ(remap.FindMapping(control), clone);
    clone->DeleteMe();
}

}  // namespace
}  // namespace tavrik_host::test

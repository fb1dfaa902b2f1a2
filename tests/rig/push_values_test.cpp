#include "rig/push_values.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <stdexcept>

#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

constexpr TimeValue kFirstTick = std::numeric_limits<TimeValue>::min(), kLastTick = std::numeric_limits<TimeValue>::max();

/// A push object that has parameters and nothing else; new ones have their defaults.
class PushNode : public SceneNode {
 public:
    std::map<std::int32_t, double> values;

    PushNode() {
        for (const ParamRow& row : FindParamTable("PushObject")->rows) {
            if (row.hasDefault) values[row.id] = row.defaultValue;
        }
    }
    ObjectClass Class() const override { return ObjectClass::Push; }
    float GetFloat(std::int32_t param, std::int32_t /*entry*/) const override { return float(values.at(param)); }
    std::int32_t GetInt(std::int32_t param) const override { return std::int32_t(values.at(param)); }
    SceneNode* GetNode(std::int32_t /*param*/) const override { return nullptr; }
    CarRig* Rig() const override { return nullptr; }
    Matrix3 GetObjectTM() const override { return IdentityMatrix3(); }
    std::int32_t NumberOfChildren() const override { return 0; }
    SceneNode& GetChildNode(std::int32_t /*i*/) const override { throw std::out_of_range("no child"); }
    std::uint32_t GetHandle() const override { return 0; }
    bool HasControl() const override { return false; }
    ControlValues GetControl() const override { return {}; }
    void InstallControl() override {}
    void SetControl(const ControlValues& /*control*/) override {}
    void ClearControlMaster() override {}
};

PushValues ValuesOf(const PushNode& node) {
    PushValues values;
    UpdatePushCache(values, node);
    return values;
}

TEST(UpdatePushCache, ANewPushIsTimedAndHasItsDefaults) {
    const PushValues values = ValuesOf(PushNode());
    EXPECT_EQ(values.pushType, 0);
    EXPECT_EQ(values.force, 1e7f);
    EXPECT_EQ(values.startTick, 4000);
    EXPECT_EQ(values.lengthTicks, 4800.0f);
}

TEST(UpdatePushCache, ForceIsTypedInMillionsAndScaledInSinglePrecision) {
    PushNode node;
    node.values[PushParam::Push_Force] = 10.0;
    EXPECT_EQ(ValuesOf(node).force, 1e7f);
    node.values[PushParam::Push_Force] = double(0.12345678f);
    EXPECT_EQ(ValuesOf(node).force, 0.12345678f * 1e6f);
    node.values[PushParam::Push_Length] = double(0.3f);
    EXPECT_EQ(ValuesOf(node).lengthTicks, 0.3f * 4800.0f);
}

TEST(UpdatePushCache, APushThatBecomesAnimatedKeepsItsOldStartAndLength) {
    PushNode node;
    PushValues values = ValuesOf(node);
    node.values[PushParam::Push_Type] = 1;
    node.values[PushParam::Push_Force] = 3.0;
    node.values[PushParam::Start_Time] = 100;
    node.values[PushParam::Push_Length] = 7.0;

    UpdatePushCache(values, node);

    EXPECT_EQ(values.pushType, 1);
    EXPECT_EQ(values.force, 3e6f);
    EXPECT_EQ(values.startTick, 4000);
    EXPECT_EQ(values.lengthTicks, 4800.0f);

    node.values[PushParam::Push_Type] = 0;
    UpdatePushCache(values, node);
    EXPECT_EQ(values.startTick, 100);
    EXPECT_EQ(values.lengthTicks, 7.0f * 4800.0f);
}

TEST(UpdatePushCache, LooksAtNoPercentage) {
    PushNode node;
    node.values.erase(PushParam::Push_Anim_Mult);  // asking for it would throw
    node.values[PushParam::Push_Type] = 1;
    EXPECT_EQ(ValuesOf(node).pushType, 1);
}

TEST(PushMagnitude, ATimedPushActsFromItsStartToItsEndBothIncluded) {
    const PushValues values = {.pushType = 0, .force = 1e7f, .startTick = 4000, .lengthTicks = 4800.0f};
    EXPECT_EQ(PushMagnitude(values, 3999, 0.0f), 0.0f);
    EXPECT_EQ(PushMagnitude(values, 4000, 0.0f), 1e7f);
    EXPECT_EQ(PushMagnitude(values, 8800, 0.0f), 1e7f);
    EXPECT_EQ(PushMagnitude(values, 8801, 0.0f), 0.0f);
    EXPECT_EQ(PushMagnitude(values, kFirstTick, 0.0f), 0.0f);
    EXPECT_EQ(PushMagnitude(values, kLastTick, 0.0f), 0.0f);
}

TEST(PushMagnitude, ATimedPushLooksAtNoPercentage) {
    const PushValues values = {.pushType = 0, .force = 5.0f, .startTick = 0, .lengthTicks = 10.0f};
    EXPECT_EQ(PushMagnitude(values, 5, 30.0f), 5.0f);
}

TEST(PushMagnitude, ANegativeForcePulls) {
    const PushValues values = {.pushType = 0, .force = -2e6f, .startTick = 0, .lengthTicks = 10.0f};
    EXPECT_EQ(PushMagnitude(values, 0, 0.0f), -2e6f);
}

TEST(PushMagnitude, APushOfNoLengthActsInOneTickAndOneOfNegativeLengthInNone) {
    PushValues values = {.pushType = 0, .force = 1.0f, .startTick = 7, .lengthTicks = 0.0f};
    EXPECT_EQ(PushMagnitude(values, 7, 0.0f), 1.0f);
    EXPECT_EQ(PushMagnitude(values, 8, 0.0f), 0.0f);
    values.lengthTicks = -1.0f;
    EXPECT_EQ(PushMagnitude(values, 7, 0.0f), 0.0f);
}

TEST(PushMagnitude, TicksSinceTheStartAreRoundedToSinglePrecision) {
    // 16777217 ticks, which single precision can't hold, round to the even number below.
    const PushValues values = {.pushType = 0, .force = 1.0f, .startTick = 0, .lengthTicks = 16777216.0f};
    EXPECT_EQ(PushMagnitude(values, 16777217, 0.0f), 1.0f);
    EXPECT_EQ(PushMagnitude(values, 16777218, 0.0f), 0.0f);
}

TEST(PushMagnitude, TicksSinceTheStartWrapInThirtyTwoBits) {
    const PushValues values = {.pushType = 0, .force = 1.0f, .startTick = kFirstTick, .lengthTicks = 100.0f};
    EXPECT_EQ(PushMagnitude(values, kFirstTick + 100, 0.0f), 1.0f);
    EXPECT_EQ(PushMagnitude(values, -1, 0.0f), 0.0f);         // 2^31 - 1 ticks
    EXPECT_EQ(PushMagnitude(values, 0, 0.0f), 1.0f);          // -2^31 of them
    EXPECT_EQ(PushMagnitude(values, kLastTick, 0.0f), 1.0f);  // -1
}

TEST(PushMagnitude, ALengthThatIsNoNumberNeverEnds) {
    const PushValues values = {
        .pushType = 0, .force = 1.0f, .startTick = 0, .lengthTicks = std::numeric_limits<float>::quiet_NaN()};
    EXPECT_EQ(PushMagnitude(values, 0, 0.0f), 1.0f);
    EXPECT_EQ(PushMagnitude(values, 1'000'000, 0.0f), 1.0f);
    EXPECT_EQ(PushMagnitude(values, -1, 0.0f), 0.0f);
}

TEST(PushMagnitude, AnAnimatedPushTakesAPercentageOfItsForceAtAnyTick) {
    for (const std::int32_t type : {1, 2, -1}) {
        const PushValues values = {.pushType = type, .force = 1e7f, .startTick = 4000, .lengthTicks = 4800.0f};
        for (const TimeValue tick : {kFirstTick, 0, 4000, kLastTick}) {
            EXPECT_EQ(PushMagnitude(values, tick, 100.0f), 1e7f);
            EXPECT_EQ(PushMagnitude(values, tick, 0.0f), 0.0f);
            EXPECT_EQ(PushMagnitude(values, tick, -50.0f), -5e6f);
        }
    }
}

TEST(PushMagnitude, ThePercentageIsTakenLastAndInSinglePrecision) {
    const PushValues values = {.pushType = 1, .force = 1234567.0f};
    EXPECT_EQ(PushMagnitude(values, 0, 33.3f), (33.3f * 1234567.0f) * 0.01f);
    EXPECT_NE((33.3f * 1234567.0f) * 0.01f, 33.3f * (1234567.0f * 0.01f));  // an input that tells the orders apart
    EXPECT_NE((33.3f * 1234567.0f) * 0.01f, float(double(33.3f) * 1234567.0 / 100.0));
}

}  // namespace
}  // namespace tavrik

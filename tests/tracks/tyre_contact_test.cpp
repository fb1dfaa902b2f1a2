#include "tracks/tyre_contact.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/tracks/rolled_wheel.h"

namespace tavrik {
namespace {

constexpr TyreShape kTyre = {30.0f, 10.0f, 0, nullptr};

TEST(TyreContact, APointBesideTheTyreIsOutside) {
    TyreTouch touch;
    EXPECT_FALSE(TyreContact({0.0f, 20.0f, 10.01f}, kTyre, touch));
    EXPECT_FALSE(TyreContact({0.0f, 20.0f, -10.01f}, kTyre, touch));
}

TEST(TyreContact, APointBeyondTheRadiusIsOutside) {
    TyreTouch touch;
    EXPECT_FALSE(TyreContact({0.0f, 30.01f, 0.0f}, kTyre, touch));
    EXPECT_TRUE(TyreContact({0.0f, 29.99f, 0.0f}, kTyre, touch));
}

TEST(TyreContact, TheCornersOfTheSectionAreRoundedOff) {
    TyreTouch touch;
    EXPECT_FALSE(TyreContact({0.0f, 29.0f, 9.0f}, kTyre, touch));  // in the square, but 0.9^4 + 0.9^4 > 1
    EXPECT_TRUE(TyreContact({0.0f, 28.0f, 8.0f}, kTyre, touch));
}

TEST(TyreContact, WeighsOneAtTheMiddleOfTheSectionAndNothingAtTheSkin) {
    TyreTouch touch;
    ASSERT_TRUE(TyreContact({0.0f, 20.0f, 0.0f}, kTyre, touch));
    EXPECT_EQ(touch.weight, 1.0f);
    ASSERT_TRUE(TyreContact({0.0f, 30.0f, 0.0f}, kTyre, touch));
    EXPECT_EQ(touch.weight, 0.0f);
}

TEST(TyreContact, NormalPointsOutOfTheSection) {
    TyreTouch touch;
    ASSERT_TRUE(TyreContact({0.0f, -29.0f, 0.0f}, kTyre, touch));
    EXPECT_EQ(touch.normal.y, -1.0f);
    ASSERT_TRUE(TyreContact({0.0f, 20.0f, -9.0f}, kTyre, touch));
    EXPECT_EQ(touch.normal.z, -1.0f);
    ASSERT_TRUE(TyreContact({12.0f, 0.0f, 0.0f}, kTyre, touch));  // inside of the ring, towards the axle
    EXPECT_EQ(touch.normal.x, -1.0f);
}

TEST(TyreContact, APointOnTheAxleIsOutsideATyreWithAHole) {
    TyreTouch touch;
    EXPECT_FALSE(TyreContact({0.0f, 0.0f, 0.0f}, kTyre, touch));
}

TEST(TyreContact, APointOnTheAxleIsInsideATyreWhoseRadiusIsItsWidth) {
    const TyreShape ball = {10.0f, 10.0f, 0, test::LuggedTread()->data()};
    TyreTouch touch;
    ASSERT_TRUE(TyreContact({0.0f, 0.0f, 5.0f}, ball, touch));
    EXPECT_TRUE(std::isfinite(touch.weight));
    EXPECT_EQ(touch.normal.z, 1.0f);
    EXPECT_EQ(touch.normal.x, 0.0f);
    EXPECT_TRUE(std::isfinite(touch.gradient.x) && std::isfinite(touch.gradient.y) && std::isfinite(touch.gradient.z));
}

TEST(TyreContact, OnTheAxleNothingIsEverNoNumber) {
    // A tyre thicker than half its radius closes around the axle.
    const TyreShape thick = {15.0f, 10.0f, 0, nullptr};
    TyreTouch touch;
    ASSERT_TRUE(TyreContact({0.0f, 0.0f, 0.0f}, thick, touch));
    EXPECT_EQ(touch.weight, 1.0f - 625.0f / 10000.0f);
    EXPECT_TRUE(std::isfinite(touch.normal.x) && std::isfinite(touch.normal.y) && std::isfinite(touch.normal.z));
}

TEST(TyreContact, WithoutATreadTheGradientStaysAsItWas) {
    TyreTouch touch;
    touch.gradient = {1.0f, 2.0f, 3.0f};
    ASSERT_TRUE(TyreContact({0.0f, 25.0f, 1.0f}, kTyre, touch));
    EXPECT_EQ(touch.gradient.y, 2.0f);
}

TEST(TyreContact, TheTreadTakesThePlaceOfTheWeight) {
    const SharedTread half = MakeTread([](float, float) { return 0.25f; });
    const TyreShape tyre = {30.0f, 10.0f, 0, half->data()};
    TyreTouch touch;
    ASSERT_TRUE(TyreContact({3.0f, 29.0f, 2.0f}, tyre, touch));
    EXPECT_GE(touch.weight, 0.25f);  // between one and two times the entry
    EXPECT_LE(touch.weight, 0.5f);
    EXPECT_EQ(touch.gradient.x, 0.0f);
    EXPECT_EQ(touch.gradient.z, 0.0f);
}

TEST(TyreContact, AnEvenTreadHasNoGradient) {
    const TyreShape tyre = {30.0f, 10.0f, 1, EvenTread()->data()};
    TyreTouch touch;
    ASSERT_TRUE(TyreContact({3.0f, 29.0f, 2.0f}, tyre, touch));
    EXPECT_EQ(LengthSquared(touch.gradient), 0.0f);
    EXPECT_GT(touch.weight, 0.99f);
    EXPECT_LT(touch.weight, 2.01f);
}

TEST(TyreContact, AWheelTheOtherWayRoundHasItsTreadMirrored) {
    // A tread that rises around the tyre.
    const SharedTread rising = MakeTread([](float, float v) { return v; });
    const TyreShape left = {30.0f, 10.0f, 0, rising->data()}, right = {30.0f, 10.0f, 1, rising->data()};
    TyreTouch a, b;
    ASSERT_TRUE(TyreContact({12.0f, 25.0f, 0.0f}, left, a));
    ASSERT_TRUE(TyreContact({-12.0f, 25.0f, 0.0f}, right, b));
    EXPECT_LT(std::abs(a.weight - b.weight), 1e-3f);
    EXPECT_LT(std::abs(a.gradient.x + b.gradient.x), 1e-5f);
    EXPECT_LT(std::abs(a.gradient.y - b.gradient.y), 1e-5f);
}

}  // namespace
}  // namespace tavrik

#include "solver/random_stream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

namespace tavrik {
namespace {

std::vector<double> Draw(RandomStream& random, int count) {
    std::vector<double> values;
    for (int i = 0; i < count; ++i) values.push_back(random.Rand01());
    return values;
}

TEST(RandomStream, SameSeedAndTickDrawTheSameNumbers) {
    RandomStream a(5), b(99);
    a.BeginTick(320);
    b.Seed(5);
    Draw(b, 17);
    b.BeginTick(320);
    EXPECT_EQ(Draw(a, 100), Draw(b, 100));
}

TEST(RandomStream, EachTickAndEachSeedHasAStreamOfItsOwn) {
    std::set<std::vector<double>> streams;
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        RandomStream random(seed);
        for (std::int32_t tick = -800; tick <= 800; tick += 160) {
            random.BeginTick(tick);
            streams.insert(Draw(random, 3));
        }
    }
    EXPECT_EQ(streams.size(), 20u * 11u);
}

TEST(RandomStream, SeedingBeginsTheStreamOfTickZero) {
    RandomStream a(12), b(12);
    b.BeginTick(0);
    EXPECT_EQ(Draw(a, 10), Draw(b, 10));
    EXPECT_EQ(a.CurrentSeed(), 12u);
}

TEST(RandomStream, NumbersAreExactInSinglePrecisionAndBelowOne) {
    RandomStream random(3);
    for (int i = 0; i < 100'000; ++i) {
        const double value = random.Rand01();
        ASSERT_GE(value, 0.0);
        ASSERT_LT(value, 1.0);
        ASSERT_EQ(double(float(value)), value);
    }
}

TEST(RandomStream, NumbersAreUniform) {
    RandomStream random(8);
    int counts[16] = {};
    const int draws = 160'000;
    for (int i = 0; i < draws; ++i) ++counts[int(random.Rand01() * 16.0)];
    double chiSquared = 0.0;
    for (const int count : counts) chiSquared += (count - draws / 16.0) * (count - draws / 16.0) / (draws / 16.0);
    EXPECT_LT(chiSquared, 37.7);  // 15 degrees of freedom pass this once in a thousand seeds; measured 14.6
}

TEST(RandomStream, FedNumbersComeInTurnAndAgainFromTheFront) {
    const std::vector<double> known = {0.25, 0.5, 0.75};
    RandomStream random(1);
    random.Feed(known);
    EXPECT_EQ(Draw(random, 7), (std::vector<double>{0.25, 0.5, 0.75, 0.25, 0.5, 0.75, 0.25}));
}

TEST(RandomStream, AnEmptySequenceGivesTheGeneratorBackWhereItStood) {
    const std::vector<double> known = {0.25};
    RandomStream random(1), untouched(1);
    Draw(random, 2);
    random.Feed(known);
    Draw(random, 5);
    random.Feed({});
    Draw(untouched, 2);
    EXPECT_EQ(Draw(random, 10), Draw(untouched, 10));
}

}  // namespace
}  // namespace tavrik

#include "tracks/tread_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/test_random.h"

namespace tavrik {
namespace {

TEST(Tread, WithoutAMapAllEntriesAreOne) {
    const SharedTread tread = EvenTread();
    ASSERT_EQ(tread->size(), 1048576u);
    for (const float entry : *tread) ASSERT_EQ(entry, 1.0f);
}

TEST(Tread, AllTyresWithoutAMapShareOneTable) { EXPECT_EQ(EvenTread().get(), EvenTread().get()); }

TEST(Tread, OfAConstantMapHasThatValueEverywhere) {
    const SharedTread tread = MakeTread([](float, float) { return 0.5f; });
    ASSERT_EQ(tread->size(), 1048576u);
    for (const float entry : *tread) ASSERT_EQ(entry, 0.5f);
}

TEST(Tread, CornersOfTheMapHaveEntriesOfTheirOwn) {
    const SharedTread tread = MakeTread([](float u, float v) { return u * 2.0f + v * 10.0f; });
    EXPECT_EQ((*tread)[0], 0.0f);
    EXPECT_EQ((*tread)[511], 2.0f);
    EXPECT_EQ((*tread)[512 * 2047], 10.0f);
    EXPECT_EQ((*tread)[512 * 2047 + 511], 12.0f);
}

TEST(Tread, IsAskedColumnByColumn) {
    std::vector<Point3> asked;
    MakeTread([&](float u, float v) {
        if (asked.size() < 2050) asked.push_back({u, v, 0.0f});
        return 0.0f;
    });
    EXPECT_EQ(asked[1].x, 0.0f);
    EXPECT_EQ(asked[1].y, 1.0f / 2047.0f);
    EXPECT_EQ(asked[2047].y, 1.0f);
    EXPECT_EQ(asked[2048].x, 1.0f / 511.0f);
    EXPECT_EQ(asked[2048].y, 0.0f);
}

/// A table that lies in a field of NaNs, so that whoever reads beside it shows it.
class FencedTable {
 public:
    FencedTable() : memory_(kTreadEntries + 2 * kFence, std::numeric_limits<float>::quiet_NaN()) {
        for (std::size_t k = 0; k < kTreadEntries; ++k) memory_[kFence + k] = float(k % 997) * 0.001f;
    }
    const float* Map() const { return memory_.data() + kFence; }

 private:
    static constexpr std::size_t kFence = 4096;
    std::vector<float> memory_;
};

TEST(SampleTread, OnesReadTwoLessThePlaceBetweenTwoColumns) {
    const float* const ones = EvenTread()->data();
    test::TestRandom random(test::TestSeed(601));
    for (int i = 0; i < test::TestRounds(10'000); ++i) {
        const float u = random.Between(0.0f, 1.0f), v = random.Between(0.0f, 1.0f);
        const float x = u * 511.0f, y = v * 2047.0f, fu = x - std::trunc(x), fv = y - std::trunc(y);
        const TreadSample sample = SampleTread(ones, u, v);
        ASSERT_EQ(sample.value, (1.0f - fu) + (1.0f - fv) + ((1.0f - fu) + fu) * fv) << test::Digits(u) << test::Digits(v);
        ASSERT_LT(std::abs(sample.value - (2.0f - fu)), 1e-6f);  // measured 2.4e-7
        ASSERT_EQ(sample.gradient.x, 0.0f);
        ASSERT_EQ(sample.gradient.y, 0.0f);
    }
}

TEST(SampleTread, WeighsTheFourEntriesAroundAPlace) {
    std::vector<float> map(kTreadEntries);
    map[3 * 512 + 7] = 0.1f;
    map[3 * 512 + 8] = 0.2f;
    map[4 * 512 + 7] = 0.4f;
    map[4 * 512 + 8] = 0.8f;
    const float u = 7.25f / 511.0f, v = 3.75f / 2047.0f, fu = u * 511.0f - 7.0f, fv = v * 2047.0f - 3.0f;
    const TreadSample sample = SampleTread(map.data(), u, v);
    EXPECT_EQ(sample.value, 0.1f * (1.0f - fu) + 0.2f * (1.0f - fv) + (0.4f * (1.0f - fu) + 0.8f * fu) * fv);
    EXPECT_EQ(sample.gradient.x, 0.2f + 0.8f - 0.1f - 0.4f);
    EXPECT_EQ(sample.gradient.y, 0.4f + 0.8f - 0.1f - 0.2f);
    EXPECT_EQ(sample.gradient.z, 0.0f);
}

TEST(SampleTread, ComesRoundAgainOutsideOfTheMap) {
    const FencedTable table;
    for (const float whole : {-3.0f, -2.0f, -1.0f, 1.0f, 2.0f, 5.0f}) {
        const TreadSample inside = SampleTread(table.Map(), 0.375f, 0.625f);
        const TreadSample outside = SampleTread(table.Map(), 0.375f + whole, 0.625f + whole);
        EXPECT_EQ(outside.value, inside.value) << whole;
        EXPECT_EQ(outside.gradient.x, inside.gradient.x) << whole;
        EXPECT_EQ(outside.gradient.y, inside.gradient.y) << whole;
    }
}

TEST(SampleTread, JustBelowZeroIsTheFirstColumn) {
    // One turn on, such a place rounds to 1, which is 0.
    std::vector<float> map(kTreadEntries);
    map[10 * 512] = 1.0f;
    map[10 * 512 + 1] = 4.0f;
    for (const float place : {-1e-9f, -2.98e-8f, -1.0f}) {
        EXPECT_EQ(SampleTread(map.data(), place, 10.0f / 2047.0f).gradient.x, 4.0f - 1.0f) << place;
    }
}

TEST(SampleTread, TheLargestPlaceStillHasANeighbour) {
    std::vector<float> map(kTreadEntries);
    map[2046 * 512 + 510] = 1.0f;
    map[2047 * 512 + 511] = 7.0f;
    const TreadSample sample = SampleTread(map.data(), 0.99999994f, 0.99999994f);
    EXPECT_EQ(sample.gradient.x, 7.0f - 1.0f);
}

TEST(SampleTread, NeverReadsBesideTheTable) {
    const FencedTable table;
    const float edges[] = {0.0f,  -0.0f, 1.0f,          -1.0f, -1e-9f, 0.99999994f, 1.0000001f,
                           -0.5f, 1.5f,  2147483648.0f, -3e9f, 1e30f,  -1e30f};
    for (const float u : edges) {
        for (const float v : edges) {
            const TreadSample sample = SampleTread(table.Map(), u, v);
            EXPECT_TRUE(std::isfinite(sample.value) && std::isfinite(sample.gradient.x) && std::isfinite(sample.gradient.y))
                << u << ' ' << v;
        }
    }
}

TEST(SampleTread, PlacesThatAreNoNumbersStayInTheTable) {
    const FencedTable table;
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const float bad : {nan, inf, -inf}) {
        EXPECT_TRUE(std::isfinite(SampleTread(table.Map(), bad, 0.5f).gradient.y));  // of entries in the table
        EXPECT_TRUE(std::isfinite(SampleTread(table.Map(), 0.5f, bad).gradient.x));
    }
}

}  // namespace
}  // namespace tavrik

#include "host/line_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "host/road_laying.h"
#include "host/road_progress.h"
#include "samples/sample_ground.h"

namespace tavrik::test {
namespace {

RoadLine Read(const std::string& text, const LineWishes& wishes = {}) {
    RoadLine line;
    std::string problem;
    EXPECT_TRUE(ReadLineText("a.csv", text, wishes, line, problem)) << problem;
    return line;
}

std::string Refused(const std::string& text, const LineWishes& wishes = {}) {
    RoadLine line{{{1, 2}, {3, 4}}, true};
    std::string problem;
    EXPECT_FALSE(ReadLineText("a.csv", text, wishes, line, problem)) << text;
    EXPECT_EQ(line.points.size(), 2u);
    EXPECT_EQ(problem.find('\n'), std::string::npos);
    return problem;
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(LineFile, TakesEverySeparator) {
    for (const char* text : {"1,2\n3,4\n", "1;2\n3;4", "1 2\n3\t 4\n", " 1 , 2 ,\n 3 , 4 , 7, x\n", "x,y\r\n1,2\r\n3,4\r\n",
                             "# a line\n\n1,2 # first\n3,4\n", "\xEF\xBB\xBFx y z\n1 2 0\n3 4 0\n"}) {
        const RoadLine line = Read(text);
        ASSERT_EQ(line.points.size(), 2u) << text;
        EXPECT_EQ(line.points[1].x, 3.0);
        EXPECT_EQ(line.points[1].y, 4.0);
        EXPECT_FALSE(line.closed);
    }
}

TEST(LineFile, ClosesALineWhoseEndsAreClose) {
    EXPECT_TRUE(Read("0,0\n10,0\n10,10\n0,10\n").closed);
    EXPECT_FALSE(Read("0,0\n10,0\n20,0\n30,0\n").closed);
    EXPECT_FALSE(Read("0,0\n10,0\n10,10\n0,10\n", {.closed = false}).closed);
    EXPECT_TRUE(Read("0,0\n10,0\n20,0\n30,5\n", {.closed = true}).closed);
}

TEST(LineFile, ARepeatedFirstPointClosesTheLineAndGoes) {
    const RoadLine line = Read("0,0\n10,0\n10,10\n0,10\n0,0\n");
    EXPECT_TRUE(line.closed);
    EXPECT_EQ(line.points.size(), 4u);
}

TEST(LineFile, RepeatedPointsAreOne) { EXPECT_EQ(Read("0,0\n0,0\n10,0\n10,0\n20,5\n").points.size(), 3u); }

TEST(LineFile, ScalesAndMoves) {
    const RoadLine line = Read("100,200\n200,200\n", {.at = RoadPoint{5, 6}, .scale = 0.1});
    EXPECT_NEAR(line.points[0].x, 5.0, 1e-12);
    EXPECT_NEAR(line.points[1].x, 15.0, 1e-12);
    EXPECT_NEAR(line.points[1].y, 6.0, 1e-12);
}

TEST(LineFile, KnotsBecomeACurve) {
    const RoadLine line = Read("2 9\n0 0 0 0 0 0 10 0 0\n20 10 0 10 10 0 20 10 0\n");
    EXPECT_GT(line.points.size(), 10u);
    EXPECT_EQ(line.points.front().x, 0.0);
    EXPECT_NEAR(line.points.back().x, 20.0, 1e-12);
    EXPECT_NEAR(line.points.back().y, 10.0, 1e-12);
    EXPECT_NEAR(HeadingAtStart(line), 90.0, 5.0);
    EXPECT_FALSE(line.closed);
}

TEST(LineFile, TellsWhatIsWrongAndWhere) {
    EXPECT_TRUE(Has(Refused(""), "holds no point"));
    EXPECT_TRUE(Has(Refused("# nothing\nx,y\n"), "holds no point"));
    EXPECT_TRUE(Has(Refused("1,2\n"), "one point only"));
    EXPECT_TRUE(Has(Refused("1,2\n1,2\n"), "one spot"));
    EXPECT_TRUE(Has(Refused("1,2\n3\n"), "line 2: it has one number"));
    EXPECT_TRUE(Has(Refused("1,2\n3,nan\n"), "line 2: y is \"nan\""));
    EXPECT_TRUE(Has(Refused("nan,2\n3,4\n"), "line 1: x is \"nan\""));
    EXPECT_TRUE(Has(Refused("1,2\ninf,4\n"), "line 2: x is \"inf\""));
    EXPECT_TRUE(Has(Refused("1,2\n1e300,4\n"), "line 2: x is"));
    EXPECT_TRUE(Has(Refused("1,2\n,4\n"), "line 2: x is empty"));
    EXPECT_TRUE(Has(Refused("1,5;2,5\n3;4\n"), "line 1: x is \"1,5\""));
    EXPECT_TRUE(Has(Refused("3 9\n0 0 0 0 0 0 1 0 0\n5 0 0 4 0 0 6 0 0\n"), "announces 3 knots, but 2 follow"));
    EXPECT_TRUE(Has(Refused("2 9\n0 0 0 0 0 0 1 0 0\n5 0 0 4 0 0 6 0\n"), "line 3: a knot is nine numbers"));
    EXPECT_TRUE(Has(Refused("0,0\n0,50000\n"), "--at"));
    EXPECT_TRUE(Has(Refused("0,0\n5,0\n", {.closed = true}), "closed line takes three"));
    EXPECT_TRUE(Has(Refused("0,0\n5,0\n0,0\n", {.closed = true}), "closed line takes three"));
}

TEST(RoadLaying, LiesOnTheGroundEverywhere) {
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(MakeSampleGround({SampleGroundKind::Hills, 300.0, 20'000, 1})));
    const RoadLine line{{{-120, -120}, {120, -120}, {120, 120}, {-120, 120}}, true};
    std::vector<Point3> points;
    std::string problem;
    ASSERT_TRUE(LayOnGround(surface, line, 0.01, points, problem)) << problem;
    EXPECT_GT(points.size(), 100u);
    EXPECT_LT(points.size(), 960u);  // fewer than one to a metre
    double worst = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point3 &a = points[i], &b = points[(i + 1) % points.size()];
        for (const float t : {0.0f, 0.25f, 0.5f, 0.75f}) {
            const Point3 p = a + (b - a) * t;
            SurfaceRay ray;
            ray.Set({p.x, p.y, 5000.0f}, {0.0f, 0.0f, -10000.0f}, 0.0f, 1.0f);
            ASSERT_TRUE(surface.Intersect(ray));
            worst = std::max(worst, std::abs(5000.0 - 10000.0 * double(ray.tmax) - double(p.z)));
        }
    }
    EXPECT_LT(worst, 15.0);  // cm, between two looks a metre apart; measured below 10
}

TEST(RoadLaying, TellsWhereALineLeavesTheGround) {
    SurfaceTree surface;
    ASSERT_TRUE(surface.Build(MakeSampleGround({SampleGroundKind::Plane, 100.0, 200, 1})));
    std::vector<Point3> points;
    std::string problem;
    EXPECT_FALSE(LayOnGround(surface, {{{0, 0}, {80, 0}}, false}, 0.01, points, problem));
    EXPECT_TRUE(Has(problem, "x 51.0 m, y 0.0 m") || Has(problem, "x 50.0 m, y 0.0 m")) << problem;
    EXPECT_TRUE(points.empty());
}

FollowedLine Square(bool closed) { return {{{0, 0, 0}, {1000, 0, 0}, {1000, 1000, 0}, {0, 1000, 0}}, closed}; }

TEST(RoadProgress, CountsTheLapsOfAClosedLine) {
    RoadProgress progress(Square(true), 0.01);
    // From the middle of the first side, one metre outside.
    for (int i = 0; i <= 1200; ++i) {
        const double way = std::fmod(500.0 + i * 10.0, 4000.0), side = way / 1000.0, t = way - 1000.0 * std::floor(side);
        const DPoint3 places[] = {{t, -100, 0}, {1100, t, 0}, {1000 - t, 1100, 0}, {-100, 1000 - t, 0}};
        progress.Add(places[int(side)], i * 0.1);
    }
    ASSERT_EQ(progress.passed().size(), 3u);
    EXPECT_NEAR(progress.passed()[0], 40.0, 0.2);
    EXPECT_NEAR(progress.largest(), 100.0, 45.0);
    EXPECT_NEAR(progress.mean(), 100.0, 2.0);
    EXPECT_NEAR(progress.length(), 4000.0, 1e-9);
}

TEST(RoadProgress, GoingBackTakesWayOff) {
    RoadProgress progress(Square(true), 0.01);
    for (int i = 0; i <= 100; ++i) progress.Add({i * 10.0, 0, 0}, i);
    for (int i = 100; i >= 0; --i) progress.Add({i * 10.0, 0, 0}, i);
    for (int i = 0; i < 100; ++i) progress.Add({0, i * 10.0, 0}, i);
    EXPECT_TRUE(progress.passed().empty());
}

TEST(RoadProgress, AnOpenLineIsPassedAtItsEnd) {
    RoadProgress progress(Square(false), 0.01);
    for (int i = 0; i <= 99; ++i) progress.Add({i * 10.0, 50, 0}, i);
    for (int i = 0; i <= 99; ++i) progress.Add({1000, i * 10.0, 0}, 100 + i);
    EXPECT_TRUE(progress.passed().empty());
    for (int i = 0; i <= 110; ++i) progress.Add({1000 - i * 10.0, 1000, 0}, 200 + i);
    ASSERT_EQ(progress.passed().size(), 1u);
    EXPECT_EQ(progress.passed()[0], 300.0);
}

TEST(RoadProgress, StaysOnItsOwnPartOfALineThatComesBack) {
    // Two straights 4 m apart; the car drives on the first one, 3 m off, which is nearer to the second.
    RoadProgress progress({{{0, 0, 0}, {20'000, 0, 0}, {20'000, 400, 0}, {0, 400, 0}}, false}, 0.01);
    progress.Add({5'000, 0, 0}, 0);
    for (int i = 0; i < 500; ++i) progress.Add({5'000 + i * 20.0, 300, 0}, i);
    EXPECT_NEAR(progress.largest(), 300.0, 1e-9);
}

}  // namespace
}  // namespace tavrik::test

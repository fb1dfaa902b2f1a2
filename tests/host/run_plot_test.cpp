#include "host/run_plot.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "host/height_map.h"
#include "host/svg.h"
#include "tests/host/driven_car.h"

namespace tavrik::test {
namespace {

std::string Plot(const RunSamples& run, const std::string& title = "Drive") {
    return RunPlotSvg({&run, &DrivenCar(), &DrivenGround(), 1e-5, title});
}

std::size_t Count(const std::string& text, std::string_view what) {
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
    return count;
}

TEST(RunPlot, DrawsSpeedAndOneCurveForEachWheel) { EXPECT_EQ(Count(Plot(TakeRunSamples(DrivenCar())), "class=\"line\""), 5u); }

TEST(RunPlot, DrawsTheStopsDashed) { EXPECT_GE(Count(Plot(TakeRunSamples(DrivenCar())), "class=\"stop\""), 2u); }

TEST(RunPlot, HoldsNoNumberThatIsNotFinite) {
    const std::string svg = Plot(TakeRunSamples(DrivenCar()));
    EXPECT_EQ(svg.find("nan"), std::string::npos);
    EXPECT_EQ(svg.find("inf"), std::string::npos);
}

TEST(RunPlot, DrawsARunOfOneSampleAtRest) {
    RunSamples run = TakeRunSamples(DrivenCar());
    run.readings.resize(1);
    run.wheels.resize(run.wheelNames.size());
    const std::string svg = Plot(run);
    EXPECT_EQ(svg.find("nan"), std::string::npos);
    EXPECT_TRUE(svg.ends_with("</svg>\n"));
}

TEST(RunPlot, WritesTitlesThatXmlWouldTakeForItsOwn) {
    EXPECT_NE(Plot(TakeRunSamples(DrivenCar()), "a<b>&\"c").find("a&lt;b&gt;&amp;&quot;c"), std::string::npos);
}

TEST(NiceTicks, StandAtRoundNumbersWithinTheRange) {
    EXPECT_EQ(NiceTicks(0, 50, 5), (std::vector<double>{0, 10, 20, 30, 40, 50}));
    EXPECT_EQ(NiceTicks(-10.5, 9.5, 5), (std::vector<double>{-10, -5, 0, 5}));
}

TEST(TickLabel, HasAsManyDigitsAsTheStep) {
    EXPECT_EQ(TickLabel(0.5, 0.5), "0.5");
    EXPECT_EQ(TickLabel(20, 10), "20");
    EXPECT_EQ(TickLabel(-0.0, 0.1), "0.0");
    EXPECT_EQ(TickLabel(-5, 5), "\u22125");
}

TEST(HeightMap, SeesTheTopmostGroundAndHoles) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 1}, {10, 0, 1}, {0, 10, 1}, {0, 0, 5}, {10, 0, 5}, {0, 10, 5}};
    mesh.faces = {{{0, 1, 2}}, {{3, 5, 4}}};
    HeightMap map{0, 0, 1, 11, 11, {}};
    FillHeightMap(mesh, map);
    EXPECT_EQ(map.At(2, 2), 5.0);
    EXPECT_TRUE(std::isnan(map.At(9, 9)));
}

TEST(Contour, RunsWhereTheGroundHasItsHeight) {
    TriangleMesh mesh;  // height is x
    mesh.verts = {{0, 0, 0}, {10, 0, 10}, {10, 10, 10}, {0, 10, 0}};
    mesh.faces = {{{0, 1, 2}}, {{0, 2, 3}}};
    HeightMap map{0, 0, 1, 11, 11, {}};
    FillHeightMap(mesh, map);
    const std::vector<ContourPiece> pieces = Contour(map, 3.5);
    ASSERT_EQ(pieces.size(), 10u);
    for (const ContourPiece& piece : pieces) {
        EXPECT_NEAR(piece.x0, 3.5, 1e-6);
        EXPECT_NEAR(piece.x1, 3.5, 1e-6);
    }
}

}  // namespace
}  // namespace tavrik::test

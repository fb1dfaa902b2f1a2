// The field over a road: asking it beside the road and far from it, and building it.

#include <benchmark/benchmark.h>

#include <cmath>
#include <map>
#include <vector>

#include "surface/path_field.h"
#include "tests/support/test_random.h"

namespace tavrik {
namespace {

constexpr double kTurn = 6.283185307179586;

/// A closed road with bends and hills, about 600 m across.
PolyShape Road(std::int64_t pieces) {
    PolyLine line;
    line.closed = true;
    for (std::int64_t i = 0; i < pieces; ++i) {
        const double angle = kTurn * double(i) / double(pieces), r = 30000.0 * (1.0 + 0.2 * std::sin(7.0 * angle));
        line.points.push_back({float(r * std::cos(angle)), float(r * std::sin(angle)), 500.0f * float(std::sin(3.0 * angle))});
    }
    return {{line}};
}

const PathField& FieldOver(std::int64_t pieces) {
    static std::map<std::int64_t, PathField> fields;
    PathField& field = fields[pieces];
    if (!field.built()) field.BuildFromPolyShape(Road(pieces));
    return field;
}

void AskAll(benchmark::State& state, const PathField& field, const std::vector<Point3>& points) {
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(field.FieldAt(points[i]));
        if (++i == points.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_FieldAt_BesideRoad(benchmark::State& state) {
    test::TestRandom random(3);
    const std::vector<Point3> road = Road(state.range(0)).lines[0].points;
    std::vector<Point3> points;
    const Box3 beside{{-500, -500, 20}, {500, 500, 80}};
    for (int i = 0; i < 4096; ++i) points.push_back(road[std::size_t(i * 7) % road.size()] + random.PointIn(beside));
    AskAll(state, FieldOver(state.range(0)), points);
}
BENCHMARK(BM_FieldAt_BesideRoad)->Arg(200)->Arg(2'000)->Arg(20'000)->Arg(100'000);

void BM_FieldAt_AnywhereInTheBox(benchmark::State& state) {
    test::TestRandom random(4);
    const PathField& field = FieldOver(state.range(0));
    std::vector<Point3> points;
    for (int i = 0; i < 4096; ++i) points.push_back(random.PointIn(field.root()->box));
    AskAll(state, field, points);
}
BENCHMARK(BM_FieldAt_AnywhereInTheBox)->Arg(2'000)->Arg(100'000);

void BM_BuildFromPolyShape_Road(benchmark::State& state) {
    const PolyShape road = Road(state.range(0));
    for (auto _ : state) {
        PathField field;
        field.BuildFromPolyShape(road);
        benchmark::DoNotOptimize(field.root());
    }
}
BENCHMARK(BM_BuildFromPolyShape_Road)->Arg(2'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tavrik

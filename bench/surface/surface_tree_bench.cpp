// The ground under wheels: short segments as a rolling wheel asks them, long ones across the whole ground, and the build.

#include <benchmark/benchmark.h>

#include <cmath>
#include <map>
#include <vector>

#include "surface/surface_tree.h"
#include "tests/support/ground_meshes.h"
#include "tests/support/test_random.h"

namespace tavrik {
namespace {

constexpr float kWidth = 20000.0f;  // 200 m
constexpr float kWheelRadius = 10.0f;
constexpr std::size_t kSegments = 8192;

const SurfaceTree& HillTree(std::size_t faces) {
    static std::map<std::size_t, SurfaceTree> trees;
    SurfaceTree& tree = trees[faces];
    if (!tree.built()) tree.Build(test::HillMesh(faces, kWidth));
    return tree;
}

SurfaceRay Segment(const Point3& from, const Point3& dir) {
    SurfaceRay ray;
    ray.Set(from, dir, 0.0f, 1.0f);
    return ray;
}

// A wheel's fan of spokes, its axle about a radius above the ground.
void AddFan(std::vector<SurfaceRay>& segments, float x, float y, double heading, float axleHeight) {
    constexpr int kSpokes = 16;
    for (int i = 0; i < kSpokes; ++i) {
        const double angle = 6.283185307179586 * i / kSpokes;
        const float forward = kWheelRadius * float(std::cos(angle)), down = kWheelRadius * float(std::sin(angle));
        segments.push_back(Segment({x, y, test::HillHeight(x, y) + axleHeight},
                                   {forward * float(std::cos(heading)), forward * float(std::sin(heading)), down}));
    }
}

// A wheel that rolls a few centimetres from fan to fan.
std::vector<SurfaceRay> RollingWheel() {
    test::TestRandom random(7);
    std::vector<SurfaceRay> segments;
    double x = -5000, y = 2000, heading = 0.4;
    while (segments.size() < kSegments) {
        AddFan(segments, float(x), float(y), heading, random.Between(0.7f, 1.1f) * kWheelRadius);
        heading += random.Between(-0.02, 0.02);
        x += 3 * std::cos(heading);
        y += 3 * std::sin(heading);
    }
    return segments;
}

// Wheels all over the ground, so that hardly anything a query reads is still in a near cache.
std::vector<SurfaceRay> ScatteredSegments() {
    test::TestRandom random(8);
    std::vector<SurfaceRay> segments;
    while (segments.size() < 8 * kSegments) {
        const float x = random.Between(-0.49f, 0.49f) * kWidth, y = random.Between(-0.49f, 0.49f) * kWidth;
        const double angle = random.Between(0.0, 6.283), heading = random.Between(0.0, 6.283);
        const float forward = kWheelRadius * float(std::cos(angle)), down = kWheelRadius * float(std::sin(angle));
        segments.push_back(Segment({x, y, test::HillHeight(x, y) + random.Between(0.7f, 1.1f) * kWheelRadius},
                                   {forward * float(std::cos(heading)), forward * float(std::sin(heading)), down}));
    }
    return segments;
}

std::vector<SurfaceRay> LongSegments(const Box3& bound) {
    test::TestRandom random(9);
    std::vector<SurfaceRay> segments;
    while (segments.size() < kSegments) {
        const Point3 from = random.PointIn(bound);
        segments.push_back(Segment(from, random.PointIn(bound) - from));
    }
    return segments;
}

void AskAll(benchmark::State& state, const SurfaceTree& tree, const std::vector<SurfaceRay>& segments) {
    std::size_t hits = 0, i = 0;
    for (auto _ : state) {
        SurfaceRay ray = segments[i];
        hits += tree.Intersect(ray);
        benchmark::DoNotOptimize(ray.tmax);
        if (++i == segments.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["hits"] = benchmark::Counter(double(hits), benchmark::Counter::kAvgIterations);
}

void Sizes(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(2'000)->Arg(20'000)->Arg(200'000)->Arg(2'000'000); }

void BM_Intersect_WheelSegmentOnHills(benchmark::State& state) {
    AskAll(state, HillTree(std::size_t(state.range(0))), RollingWheel());
}
BENCHMARK(BM_Intersect_WheelSegmentOnHills)->Apply(Sizes);

void BM_Intersect_ScatteredSegmentOnHills(benchmark::State& state) {
    AskAll(state, HillTree(std::size_t(state.range(0))), ScatteredSegments());
}
BENCHMARK(BM_Intersect_ScatteredSegmentOnHills)->Apply(Sizes);

void BM_Intersect_LongSegmentOnHills(benchmark::State& state) {
    const SurfaceTree& tree = HillTree(std::size_t(state.range(0)));
    AskAll(state, tree, LongSegments(tree.bound()));
}
BENCHMARK(BM_Intersect_LongSegmentOnHills)->Apply(Sizes);

void BuildHills(benchmark::State& state, unsigned threads) {
    const TriangleMesh mesh = test::HillMesh(std::size_t(state.range(0)), kWidth);
    SurfaceTree tree;
    std::string problem;
    for (auto _ : state) {
        tree.Release();
        if (!tree.Build(mesh, {.memoryBytes = 0, .threads = threads}, problem)) state.SkipWithError(problem.c_str());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["bytes/face"] = double(tree.bytes()) / double(mesh.faces.size());
    state.counters["nodes"] = double(tree.nodes().size());
}

void BM_SurfaceBuild_HillsOneThread(benchmark::State& state) { BuildHills(state, 1); }
BENCHMARK(BM_SurfaceBuild_HillsOneThread)->Apply(Sizes)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SurfaceBuild_Hills(benchmark::State& state) { BuildHills(state, 0); }
BENCHMARK(BM_SurfaceBuild_Hills)->Apply(Sizes)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace tavrik

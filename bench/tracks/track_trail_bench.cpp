#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "rig/stock_car.h"
#include "tracks/painted_trail.h"

namespace tavrik {
namespace {

constexpr TimeValue kSampleTicks = 32;
constexpr double kSamplesASecond = 150.0, kUnitsASecond = 100'000.0 / 36.0;  // 100 km/h in centimetres

/// The stock car's four wheels after so many seconds at 100 km/h, around wide bends: two kilometres across, no place twice.
std::unique_ptr<CarRig> DrivenCar(int seconds) {
    auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, IdentityDMatrix3());
    for (std::int32_t u = 0; u < rig->unitCount; ++u) rig->units[u].wheelHandle = std::uint32_t(u + 1);
    const double radius = rig->units[0].Radius, step = kUnitsASecond / kSamplesASecond;
    double heading = 0.0, rolled = 0.0;
    DPoint3 middle{};
    std::vector<DPoint3> offsets;
    for (std::int32_t u = 0; u < rig->unitCount; ++u) offsets.push_back(rig->wheelBodies[u].frame.row[3]);
    const int samples = int(seconds * kSamplesASecond);
    for (int f = 0; f < samples; ++f) {
        heading = std::sin(double(f) * step / 30'000.0) * 0.8 + double(f) * step / 4e6;
        const DPoint3 ahead = {-std::sin(heading), std::cos(heading), 0.0}, side = {std::cos(heading), std::sin(heading), 0.0};
        const DPoint3 up = {0.0, 0.0, 1.0};
        middle += ahead * step;
        rolled += step / radius;
        for (std::int32_t u = 0; u < rig->unitCount; ++u) {
            const DPoint3& offset = offsets[std::size_t(u)];
            DMatrix3& frame = rig->wheelBodies[u].frame;
            frame.row[0] = ahead * std::cos(rolled) - up * std::sin(rolled);
            frame.row[1] = ahead * std::sin(rolled) + up * std::cos(rolled);
            frame.row[2] = side;
            frame.row[3] = middle + side * offset.x + ahead * offset.y + up * radius;
        }
        rig->Store(f * kSampleTicks);
    }
    return rig;
}

TrackParams Params() { return {1.0f, 1.0f, 20, 1.0f, 2.0f}; }
constexpr TimeValue kLater = 0x7fffffff;

struct Scene {
    std::unique_ptr<CarRig> rig;
    TrackTrail trail;
    std::vector<SharedTread> treads;

    explicit Scene(int seconds, std::size_t storedBytes = TrackTrail::kStoredFrameBytes) : rig(DrivenCar(seconds)) {
        std::string notice;
        trail.Build(*rig, notice, storedBytes);
        treads.assign(trail.wheels.size(), EvenTread());
    }
    /// The ground around the way of a wheel, `beside` it.
    std::vector<Point3> Points(float beside) const {
        std::vector<Point3> points;
        std::uint32_t state = 2026;
        for (int i = 0; i < 4096; ++i) {
            state = state * 1664525u + 1013904223u;
            const TrackSegment& segment = trail.segments[(state >> 4) % std::uint32_t(trail.count)];
            points.push_back(segment.startFrame.row[3] + segment.startFrame.row[2] * beside);
            points.back().z = 0.5f;  // the tyre sinks in so far
        }
        return points;
    }
};

void AskAll(benchmark::State& state, const Scene& scene, const std::vector<Point3>& points) {
    const TrackParams params = Params();
    float value = 0.0f;
    Point3 bump{};
    std::size_t i = 0;
    for ([[maybe_unused]] auto _ : state) {
        scene.trail.Query(value, bump, points[i++ % points.size()], kLater, params, scene.treads);
        benchmark::DoNotOptimize(value);
        benchmark::DoNotOptimize(bump);
    }
}

/// Ground all around the drive, of which tracks are a thousandth part.
void BM_Query_GroundOutsideAnyTrack(benchmark::State& state) {
    const Scene scene(int(state.range(0)));
    std::vector<Point3> points;
    std::uint32_t seed = 2026;
    const auto next = [&] {
        seed = seed * 1664525u + 1013904223u;
        return float(seed >> 8) * 0x1p-24f;
    };
    for (int i = 0; i < 4096; ++i) {
        const Point3 size = scene.trail.cube.Width(), low = scene.trail.cube.pmin;
        points.push_back({low.x + size.x * next(), low.y + size.y * next(), 0.5f});
    }
    AskAll(state, scene, points);
}
BENCHMARK(BM_Query_GroundOutsideAnyTrack)->ArgName("seconds")->Arg(60)->Arg(3600);

void BM_Query_GroundBetweenTheWheels(benchmark::State& state) {
    const Scene scene(60);
    AskAll(state, scene, scene.Points(75.0f));
}
BENCHMARK(BM_Query_GroundBetweenTheWheels);

/// In the leaves of a track, a hand's breadth beside it.
void BM_Query_GroundRightBesideATrack(benchmark::State& state) {
    const Scene scene(60);
    AskAll(state, scene, scene.Points(25.0f));
}
BENCHMARK(BM_Query_GroundRightBesideATrack);

void BM_Query_GroundInATrack(benchmark::State& state) {
    const Scene scene(60);
    AskAll(state, scene, scene.Points(2.0f));
}
BENCHMARK(BM_Query_GroundInATrack);

void BM_Query_GroundInATrackWithoutStoredFrames(benchmark::State& state) {
    const Scene scene(60, 0);
    AskAll(state, scene, scene.Points(2.0f));
}
BENCHMARK(BM_Query_GroundInATrackWithoutStoredFrames);

void BM_Build(benchmark::State& state) {
    const int seconds = int(state.range(0));
    const auto rig = DrivenCar(seconds);
    std::size_t bytes = 0, count = 0;
    for ([[maybe_unused]] auto _ : state) {
        TrackTrail trail;
        std::string notice;
        trail.Build(*rig, notice);
        bytes = trail.Bytes();
        count = std::size_t(trail.count);
    }
    const double wheelKilometres = seconds * kUnitsASecond * 1e-5 * rig->unitCount;
    state.counters["segments"] = double(count);
    state.counters["MB"] = double(bytes) * 1e-6;
    state.counters["kB per km and wheel"] = double(bytes) * 1e-3 / wheelKilometres;
}
BENCHMARK(BM_Build)->ArgName("seconds")->Arg(60)->Arg(3600)->Unit(benchmark::kMillisecond);

void BM_MakeTread(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(MakeTread([](float u, float v) { return u * v; }));
    }
}
BENCHMARK(BM_MakeTread)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tavrik

#include "tests/drive/drive_on_hills.h"

#include <cmath>
#include <cstring>

namespace tavrik::test {
namespace {

/// A ground of 100 x 100 m made of whole numbers alone, so that no C library has a say in its bits.
TriangleMesh HillMesh() {
    constexpr int kCells = 100;
    constexpr float kSpacing = 100.0f;
    TriangleMesh mesh;
    for (int j = 0; j <= kCells; ++j) {
        for (int i = 0; i <= kCells; ++i) {
            // Two crossing rows of parabolic waves, flattened around the middle.
            const int wave = (i % 20) * (20 - i % 20) + (j % 25) * (25 - j % 25);
            const int away = (i - 50) * (i - 50) + (j - 50) * (j - 50);
            const float z = float(away < 64 ? 0 : wave) * 0.4f;
            mesh.verts.push_back({float(i - kCells / 2) * kSpacing, float(j - kCells / 2) * kSpacing, z});
        }
    }
    for (std::uint32_t j = 0; j < kCells; ++j) {
        for (std::uint32_t i = 0; i < kCells; ++i) {
            const std::uint32_t a = j * (kCells + 1) + i, b = a + 1, c = a + kCells + 1, d = c + 1;
            mesh.faces.push_back({{a, b, d}});
            mesh.faces.push_back({{a, d, c}});
        }
    }
    return mesh;
}

void HashBytes(std::uint64_t& hash, const void* bytes, std::size_t count) {
    // FNV-1a: Glenn Fowler, Landon Curt Noll, Kiem-Phong Vo, 1991.
    for (std::size_t i = 0; i < count; ++i) {
        hash = (hash ^ static_cast<const unsigned char*>(bytes)[i]) * 0x100000001B3u;
    }
}

template <typename T>
void HashAll(std::uint64_t& hash, const FrameArray<T>& values) {
    HashBytes(hash, values.data(), values.size() * sizeof(T));
}

}  // namespace

CarWorld& SharedWorld() {
    static CarWorld world;
    return world;
}

const SurfaceTree& Hills() {
    static const SurfaceTree tree = [] {
        SurfaceTree built;
        built.Build(HillMesh());
        return built;
    }();
    return tree;
}

DriverScript EveryPedal() {
    DriverScript script;
    script.rows = {{.seconds = 0.0, .throttle = 1.0f},
                   {.seconds = 1.5, .steering = 0.7f, .throttle = 0.8f},
                   {.seconds = 2.5, .steering = -1.0f, .throttle = 0.3f},
                   {.seconds = 3.5, .brake = 0.6f},
                   {.seconds = 4.2, .steering = 0.4f, .throttle = 1.0f, .reverse = true},
                   {.seconds = 5.2, .steering = 0.4f, .handBrake = true}};
    return script;
}

ScriptedRun HillRun(CarRig& rig) {
    DMatrix3 frame = IdentityDMatrix3();
    frame.row[3].z = StockCarStandingHeight();
    MakeStockCar(rig, frame);
    BuildWorld(SharedWorld(), rig);
    ScriptedRun run;
    run.world = &SharedWorld();
    run.rig = &rig;
    run.surface = &Hills();
    run.settings = StockCarSettings();
    run.script = EveryPedal();
    run.seed = 7;
    return run;
}

std::uint64_t HashRecording(const RecordedMotion& motion) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    HashAll(hash, motion.times);
    HashAll(hash, motion.steer);
    HashAll(hash, motion.chassis);
    for (std::int32_t u = 0; u < motion.unitCount; ++u) {
        HashAll(hash, motion.wheels[u]);
        HashAll(hash, motion.buffers[u]);
    }
    return hash;
}

}  // namespace tavrik::test

#include "tests/tracks/rolled_wheel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace tavrik::test {

std::unique_ptr<CarRig> LockedWheels(int wheels) {
    auto rig = std::make_unique<CarRig>();
    rig->unitCount = wheels;
    for (int u = 0; u < wheels; ++u) {
        rig->units[u].Radius = double(kTestRadius);
        rig->units[u].Width = double(kTestWidth);
        rig->units[u].wheelHandle = std::uint32_t(100 + u);
        rig->wheelBodies[u].frame = RolledTo({0, 0, 0}, 0.0);
    }
    rig->InitMotion();
    return rig;
}

DMatrix3 RolledTo(const DPoint3& middle, double turn) {
    const double c = std::cos(turn), s = std::sin(turn);
    return {{{0, c, -s}, {0, s, c}, {1, 0, 0}, middle}};
}

void Roll(CarRig& rig, int samples, double step, bool rolls, TimeValue firstTick) {
    for (int f = 0; f < samples; ++f) {
        for (int u = 0; u < rig.unitCount; ++u) {
            const DPoint3 middle = rig.wheelBodies[u].frame.row[3] + DPoint3{0.0, step, 0.0};
            rig.wheelBodies[u].frame = RolledTo(middle, rolls ? middle.y / double(kTestRadius) : 0.0);
        }
        rig.Store(firstTick + f * 32);
    }
}

std::shared_ptr<TrackTrail> TrailOf(const CarRig& rig, std::size_t storedBytes) {
    auto trail = std::make_shared<TrackTrail>();
    std::string notice;
    trail->Build(rig, notice, storedBytes);
    EXPECT_EQ(notice, "");
    return trail;
}

TrackAnswer Ask(const TrackTrail& trail, const Point3& point, TimeValue tick, const TrackParams& params,
                std::span<const SharedTread> treads) {
    TrackAnswer answer;
    trail.Query(answer.value, answer.bump, point, tick, params, treads);
    return answer;
}

bool SameBits(const TrackAnswer& a, const TrackAnswer& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

SharedTread LuggedTread() {
    static const SharedTread tread = MakeTread([](float u, float v) {
        const int lug = int(u * 5.0f) * 7 + int(v * 60.0f) * 3;
        return float(lug % 4) * 0.25f + u * 0.1f + v * 0.05f;
    });
    return tread;
}

}  // namespace tavrik::test

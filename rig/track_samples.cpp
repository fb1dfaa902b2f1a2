#include <cassert>
#include <cstddef>

#include "rig/car_rig.h"

namespace tavrik {

std::int32_t CarRig::TrackSampleCount() const {
    return !motion.valid || motion.frames < 2 ? 0 : (motion.frames - 1) * motion.unitCount;
}

std::int32_t CarRig::FillTrackSamples(std::span<TrackSample> out) const {
    if (!motion.valid || motion.frames < 2) return 0;
    assert(out.size() >= std::size_t(TrackSampleCount()));

    std::size_t written = 0;
    for (std::int32_t u = 0; u < motion.unitCount; ++u) {
        const SuspensionUnit& unit = units[u];
        const float r = float(unit.Radius), w = float(unit.Width);
        const float threshold = (r * 0.5f) * (r * 0.5f);
        const Box3 box = {{-r, -r, -w}, {r, r, w}};
        const std::int32_t sideFlag = unit.frame.row[2].y < 0.0 ? 1 : 0;

        Matrix3 previous = ToMatrix3(motion.wheels[u][0].frame);
        for (std::int32_t f = 1; f < motion.frames; ++f) {
            const std::size_t at = std::size_t(f);
            const Matrix3 current = ToMatrix3(motion.wheels[u][at].frame);
            // One corner of the wheel's box stands for the wheel, another from frame to frame; a wheel that has neither rolled
            // nor turned enough to move it half a radius leaves no new mark yet.
            const Point3 corner = box.Corner(unsigned(f));
            const Point3 way = TransformPoint(corner, current) - TransformPoint(corner, previous);
            if (LengthSquared(way) > threshold) {
                out[written++] = {previous, current, r, w, sideFlag, motion.times[at - 1], motion.times[at], unit.wheelHandle};
                previous = current;
            }
        }
    }
    return std::int32_t(written);
}

}  // namespace tavrik

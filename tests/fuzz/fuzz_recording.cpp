#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "rig/car_rig.h"
#include "rig/recording_bytes.h"

// What is accepted comes back byte for byte, and can be looked up, stored into and rewound; what is refused changes nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static tavrik::CarRig rig;
    rig.unitCount = 1;
    rig.InitMotion();
    tavrik::RecordedMotion& motion = rig.motion;
    const std::string_view image(reinterpret_cast<const char*>(data), size);
    std::string problem;
    if (!tavrik::LoadRecording(image, motion, problem)) {
        if (problem.empty() || !motion.valid || motion.frames != 1 || motion.capacity != 500 || motion.unitCount != 1)
            std::abort();
        return 0;
    }
    if (!problem.empty() || tavrik::SaveRecording(motion) != image) std::abort();
    if (!motion.valid) return 0;

    const std::int32_t frames = motion.frames;
    for (const tavrik::TimeValue tick : motion.times) {
        if (motion.times[std::size_t(motion.FindFrame(tick))] != tick) std::abort();
    }
    if (rig.Store(0) != frames + 1 || motion.capacity < motion.frames) std::abort();
    if (rig.Rewind(tavrik::kBeforeAllTime) < 1 || motion.times[0] != tavrik::kBeforeAllTime) std::abort();
    return 0;
}

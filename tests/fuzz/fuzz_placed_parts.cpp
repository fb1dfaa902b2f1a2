#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "host/placed_parts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<tavrik::VehicleWish> wishes;
    std::string problem;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool read = tavrik::ReadPlacesText(text, {}, wishes, problem);
    if (read == !problem.empty() || read == wishes.empty() || problem.find('\n') != std::string::npos) std::abort();
    for (std::size_t i = 0; i < wishes.size(); ++i) {
        const tavrik::WizardOptions& options = wishes[i].options;
        if (options.places.empty() || (i > 0 && !options.tongue)) std::abort();
        for (const tavrik::PartPlace& place : options.places) {
            if (place.name.empty() || !std::isfinite(place.x + place.y + place.z + place.yaw)) std::abort();
        }
    }
    return 0;
}

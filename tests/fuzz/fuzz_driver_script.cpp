#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/driver_script_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavrik::DriverScript script;
    std::string problem;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool read = tavrik::ReadDriverScriptText("a.csv", text, script, problem);
    if (read == !problem.empty() || read == script.rows.empty()) std::abort();
    double before = -1.0;
    for (const tavrik::DriverRow& row : script.rows) {
        if (!(row.seconds > before) || !(std::abs(row.steering) <= 1.0f) || !(row.throttle >= 0.0f && row.throttle <= 1.0f) ||
            !(row.brake >= 0.0f && row.brake <= 1.0f)) {
            std::abort();
        }
        before = row.seconds;
    }
    return 0;
}

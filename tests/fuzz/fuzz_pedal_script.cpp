#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/pedal_script_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr tavrik::PedalBindings kBindings{.throttle = 'W', .brake = 'S', .handBrake = 32};
    tavrik::PedalScript script;
    std::string problem;
    const bool read =
        tavrik::ReadPedalScriptText("a.txt", {reinterpret_cast<const char*>(data), size}, kBindings, script, problem);
    if (read == !problem.empty() || read == script.rows.empty()) std::abort();
    double before[2] = {0.0, 0.0};
    for (const tavrik::PedalRow& row : script.rows) {
        if (!(row.at >= before[row.byMetres])) std::abort();
        before[row.byMetres] = row.at;
    }
    return 0;
}

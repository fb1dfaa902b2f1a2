#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/event_script_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavrik::EventScript script;
    std::string problem;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    tavrik::LooksLikeEvents(text);
    const bool read = tavrik::ReadEventScriptText("a.txt", text, script, problem);
    if (read == !problem.empty() || read == script.events.empty()) std::abort();
    double before = 0.0;
    for (const tavrik::DriverEvent& event : script.events) {
        if (!(event.seconds >= before)) std::abort();
        before = event.seconds;
    }
    return 0;
}

#include "cli/hands.h"

#include "host/driver_script_file.h"
#include "host/event_script_file.h"
#include "host/read_file.h"

namespace tavrik {

bool ReadHands(const std::filesystem::path& input, Hands& hands, std::string& problem) {
    if (input.empty()) {
        hands.rows.rows = {{.throttle = 0.5f}};
        return true;
    }
    std::string text;
    if (!ReadWholeFile(input, text, problem)) return false;
    const std::string name = input.string();
    return LooksLikeEvents(text) ? ReadEventScriptText(name, text, hands.events, problem)
                                 : ReadDriverScriptText(name, text, hands.rows, problem);
}

}  // namespace tavrik

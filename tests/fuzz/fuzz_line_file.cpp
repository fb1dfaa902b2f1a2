#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/line_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavrik::RoadLine line;
    std::string problem;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool read = tavrik::ReadLineText("a.csv", text, {}, line, problem);
    if (read == !problem.empty() || read != (line.Pieces() > 0) || problem.find('\n') != std::string::npos) std::abort();
    for (std::size_t i = 0; i < line.Pieces(); ++i) {
        if (!(Distance(line.points[i], line.EndOf(i)) > 0.0)) std::abort();
    }
    const double length = LengthOf(line);
    if (!(length >= 0.0 && length <= tavrik::kLongestLine)) std::abort();
    return 0;
}

#include "host/telemetry.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>

namespace tavrik {

std::string TelemetryCsv(const RunSamples& run, double kilometresPerUnit) {
    const double centimetres = kilometresPerUnit * 1e5;
    const double kilometresPerHour = kilometresPerUnit * 3600.0;
    std::string csv = "seconds,x_cm,y_cm,z_cm,heading_deg,pitch_deg,roll_deg,speed_kmh,steering_deg";
    for (const std::string& name : run.wheelNames) csv += ",travel_" + name + "_cm";
    for (const std::string& name : run.wheelNames) csv += ",spin_" + name + "_rad_s";
    csv += '\n';
    const auto end = std::back_inserter(csv);
    for (std::size_t i = 0; i < run.readings.size(); ++i) {
        const RunReading& r = run.readings[i];
        const DPoint3 p = r.position * centimetres;
        fmt::format_to(end, "{},{},{},{},{},{},{},{},{}", r.seconds, p.x, p.y, p.z, r.heading, r.pitch, r.roll,
                       r.speed * kilometresPerHour, r.steering);
        for (std::size_t w = 0; w < run.wheelNames.size(); ++w)
            fmt::format_to(end, ",{}", run.Wheel(i, w).travel * centimetres);
        for (std::size_t w = 0; w < run.wheelNames.size(); ++w) fmt::format_to(end, ",{}", run.Wheel(i, w).spin);
        csv += '\n';
    }
    return csv;
}

}  // namespace tavrik

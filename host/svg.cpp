#include "host/svg.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tavrik {

std::string XmlText(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += static_cast<unsigned char>(c) < 32 ? ' ' : c;
        }
    }
    return result;
}

double NiceStep(double range, int count) {
    const double raw = range / count;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (raw <= factor * power * 1.0001) return factor * power;
    }
    return 10.0 * power;
}

std::vector<double> NiceTicks(double low, double high, int count) {
    const double step = NiceStep(high - low, count);
    std::vector<double> ticks;
    const double first = std::ceil(low / step - 1e-9);
    for (double i = first; i * step <= high + step * 1e-9; ++i) ticks.push_back(i * step);
    return ticks;
}

std::string TickLabel(double value, double step) {
    const int digits = std::max(0, int(-std::floor(std::log10(step) + 1e-9)));
    std::string label = fmt::format("{:.{}f}", std::abs(value) < step * 1e-6 ? 0.0 : value, digits);
    return label.front() == '-' ? "\u2212" + label.substr(1) : label;
}

Rgb SpeedColour(double t) {
    constexpr Rgb kStops[] = {{68, 1, 84}, {62, 74, 137}, {38, 130, 142}, {53, 183, 121}, {160, 210, 60}, {248, 205, 36}};
    constexpr int kLast = int(std::size(kStops)) - 1;
    const double place = std::clamp(t, 0.0, 1.0) * kLast;
    const int i = std::min(int(place), kLast - 1);
    const double part = place - i;
    const auto mix = [&](int a, int b) { return int(std::lround(a + (b - a) * part)); };
    return {mix(kStops[i].red, kStops[i + 1].red), mix(kStops[i].green, kStops[i + 1].green),
            mix(kStops[i].blue, kStops[i + 1].blue)};
}

std::string Hex(const Rgb& colour) { return fmt::format("#{:02x}{:02x}{:02x}", colour.red, colour.green, colour.blue); }

}  // namespace tavrik

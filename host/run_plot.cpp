#include "host/run_plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <set>
#include <span>
#include <string_view>

#include "host/plot_map.h"
#include "host/svg.h"

namespace tavrik {
namespace {

constexpr double kWidth = 1320, kHeight = 800;
constexpr PlotBox kMapBox = {28, 96, 588, 624};
constexpr PlotBox kSpeedBox = {700, 112, 592, 256};
constexpr PlotBox kTravelBox = {700, 464, 592, 256};

/// Kept apart also by the colour-blind (Okabe and Ito, "Color Universal Design", 2008).
constexpr std::string_view kWheelColours[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7", "#e69f00", "#56b4e9"};

constexpr std::string_view kStyle =
    "text{font-family:'Inter','Helvetica Neue',Arial,'Liberation Sans','DejaVu Sans',sans-serif;fill:#222}"
    ".title{font-size:22px;font-weight:600}.facts{font-size:14px;fill:#555}"
    ".head{font-size:14px;font-weight:600}.tick{font-size:12px;fill:#666}.small{font-size:12px;fill:#444}"
    ".grid{stroke:#e4e4e4;stroke-width:1;fill:none}.axis{stroke:#999;stroke-width:1;fill:none}"
    ".line{fill:none;stroke-width:1.2;stroke-opacity:.88;stroke-linejoin:round;stroke-linecap:round}"
    ".stop{stroke:#888;stroke-width:1;stroke-dasharray:5 4;fill:none}";

/// A quantity over time, in the unit of its axis.
struct Curve {
    std::vector<double> values;
    std::string colour;
    std::string name;
};

/// No screen shows more than some points to a pixel. Of each stretch that falls on one, the least and the largest stay, so that
/// no peak is lost.
std::string CurvePath(const RunSamples& run, const std::vector<double>& values, const Axis& x, const Axis& y) {
    std::string path;
    const auto point = [&](std::size_t i) {
        fmt::format_to(std::back_inserter(path), "{}{:.1f} {:.1f}", path.empty() ? "M" : "L", x.At(run.readings[i].seconds),
                       y.At(values[i]));
    };
    const std::size_t stride = std::max<std::size_t>(1, values.size() / std::size_t(2.0 * (x.to - x.from)));
    for (std::size_t begin = 0; begin < values.size(); begin += stride) {
        const auto first = values.begin() + std::ptrdiff_t(begin);
        const auto last = values.begin() + std::ptrdiff_t(std::min(begin + stride, values.size()));
        const auto [least, largest] = std::minmax_element(first, last);
        const std::size_t a = std::size_t(std::min(least, largest) - values.begin());
        const std::size_t b = std::size_t(std::max(least, largest) - values.begin());
        point(a);
        if (b != a) point(b);
    }
    return path;
}

void AppendText(std::string& svg, double x, double y, std::string_view style, std::string_view anchor, std::string_view text) {
    fmt::format_to(std::back_inserter(svg), "<text x=\"{:.1f}\" y=\"{:.1f}\" class=\"{}\" text-anchor=\"{}\">{}</text>\n", x, y,
                   style, anchor, XmlText(text));
}

/// Grid, numbers and heading of one chart.
void AppendFrame(std::string& svg, const PlotBox& box, const Axis& x, const Axis& y, std::string_view heading) {
    const auto end = std::back_inserter(svg);
    AppendText(svg, box.x, box.y - 14, "head", "start", heading);
    const double stepY = NiceStep(y.high - y.low, 5);
    for (const double value : NiceTicks(y.low, y.high, 5)) {
        fmt::format_to(end, "<path d=\"M{:.1f} {:.1f}H{:.1f}\" class=\"{}\"/>\n", x.from, y.At(value), x.to,
                       std::abs(value) < stepY * 1e-6 ? "axis" : "grid");
        AppendText(svg, box.x - 8, y.At(value) + 4, "tick", "end", TickLabel(value, stepY));
    }
    const double stepX = NiceStep(x.high - x.low, 8);
    for (const double value : NiceTicks(x.low, x.high, 8)) {
        fmt::format_to(end, "<path d=\"M{0:.1f} {1:.1f}V{2:.1f}\" class=\"grid\"/>\n", x.At(value), y.to, y.from);
        AppendText(svg, x.At(value), y.from + 18, "tick", "middle", TickLabel(value, stepX));
    }
    fmt::format_to(end, "<path d=\"M{:.1f} {:.1f}V{:.1f}H{:.1f}\" class=\"axis\"/>\n", x.from, y.to, y.from, x.to);
    AppendText(svg, x.to, y.from + 36, "tick", "end", "seconds");
}

void AppendCurves(std::string& svg, const RunSamples& run, const Axis& x, const Axis& y, std::span<const Curve> curves) {
    for (const Curve& curve : curves) {
        fmt::format_to(std::back_inserter(svg), "<path d=\"{}\" class=\"line\" stroke=\"{}\"/>\n",
                       CurvePath(run, curve.values, x, y), curve.colour);
    }
}

/// An axis from `box`'s bottom to its top that shows all of `low`..`high` and some air, and is never without height.
Axis UpAxisOf(const PlotBox& box, double low, double high) {
    const double air = 0.07 * std::max(high - low, 1.0);
    return {low - air, high + air, box.y + box.height, box.y};
}

void AppendSpeed(std::string& svg, const RunPlot& plot, const Axis& x) {
    const double kilometresPerHour = plot.kilometresPerUnit * 3600.0;
    Curve speed{{}, "#2f4b7c", "speed"};
    for (const RunReading& reading : plot.run->readings) speed.values.push_back(reading.speed * kilometresPerHour);
    const auto [least, largest] = std::minmax_element(speed.values.begin(), speed.values.end());
    Axis y = UpAxisOf(kSpeedBox, std::min(*least, 0.0), std::max(*largest, 1.0));
    if (*least > -0.5) y.low = 0.0;  // a shiver at rest is no driving backwards
    AppendFrame(svg, kSpeedBox, x, y, "Speed, km/h");
    AppendCurves(svg, *plot.run, x, y, {&speed, 1});
}

std::string Readable(std::string name) {
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

void AppendLegend(std::string& svg, const PlotBox& box, std::span<const Curve> curves) {
    // From the right end of the heading's line, a fixed place for each: letter widths are not known here.
    constexpr double kPlace = 96;
    double x = box.x + box.width - kPlace * double(curves.size());
    for (const Curve& curve : curves) {
        fmt::format_to(std::back_inserter(svg), "<path d=\"M{:.1f} {:.1f}h16\" stroke=\"{}\" stroke-width=\"3\"/>\n", x + 4,
                       box.y - 18, curve.colour);
        AppendText(svg, x + 25, box.y - 14, "small", "start", Readable(curve.name));
        x += kPlace;
    }
}

void AppendTravel(std::string& svg, const RunPlot& plot, const Axis& x) {
    const double centimetres = plot.kilometresPerUnit * 1e5;
    std::vector<Curve> curves;
    std::set<double> stops;
    double low = 0.0, high = 0.0;
    for (std::size_t w = 0; w < plot.run->wheelNames.size(); ++w) {
        Curve curve{{}, std::string(kWheelColours[w % std::size(kWheelColours)]), plot.run->wheelNames[w]};
        for (std::size_t i = 0; i < plot.run->readings.size(); ++i) {
            curve.values.push_back(plot.run->Wheel(i, w).travel * centimetres);
            low = std::min(low, curve.values.back());
            high = std::max(high, curve.values.back());
        }
        curves.push_back(std::move(curve));
        stops.insert(plot.rig->units[w].Bottom_Stop * centimetres);
        stops.insert(plot.rig->units[w].Top_Stop * centimetres);
    }
    // Stops far beyond anything that happened would only flatten the curves.
    for (const double stop : stops) {
        if (std::abs(stop) > 100.0) continue;
        low = std::min(low, stop);
        high = std::max(high, stop);
    }
    const Axis y = UpAxisOf(kTravelBox, low, high);
    AppendFrame(svg, kTravelBox, x, y, "Suspension travel, cm");
    for (const double stop : stops) {
        if (stop < y.low || stop > y.high) continue;
        fmt::format_to(std::back_inserter(svg), "<path d=\"M{:.1f} {:.1f}H{:.1f}\" class=\"stop\"/>\n", x.from, y.At(stop),
                       x.to);
        AppendText(svg, x.to - 4, y.At(stop) + (stop > (y.low + y.high) / 2 ? 15 : -5), "tick", "end", "stop");
    }
    AppendCurves(svg, *plot.run, x, y, curves);
    if (curves.size() <= 4) AppendLegend(svg, kTravelBox, curves);
}

}  // namespace

std::string RunPlotSvg(const RunPlot& plot) {
    const RunSamples& run = *plot.run;
    std::string svg = fmt::format(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.0f}\" height=\"{1:.0f}\" viewBox=\"0 0 {0:.0f} {1:.0f}\">\n"
        "<style>{2}</style>\n<rect width=\"{0:.0f}\" height=\"{1:.0f}\" fill=\"#fff\"/>\n",
        kWidth, kHeight, kStyle);
    AppendText(svg, kMapBox.x, 44, "title", "start", plot.title);
    const double seconds = run.readings.back().seconds;
    AppendText(svg, kMapBox.x, 68, "facts", "start",
               fmt::format("{:.1f} s \u00b7 {:.0f} m \u00b7 top speed {:.1f} km/h", seconds,
                           DistanceInMetres(run, plot.kilometresPerUnit), TopSpeed(run, plot.kilometresPerUnit)));
    AppendMap(svg, kMapBox, run, *plot.ground, plot.kilometresPerUnit);
    const Axis x = {0.0, std::max(seconds, 1e-3), kSpeedBox.x, kSpeedBox.x + kSpeedBox.width};
    AppendSpeed(svg, plot, x);
    AppendTravel(svg, plot, x);
    svg += "</svg>\n";
    return svg;
}

}  // namespace tavrik

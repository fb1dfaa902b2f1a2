#include "host/plot_map.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <vector>

#include "host/height_map.h"
#include "host/svg.h"

namespace tavrik {
namespace {

/// Which part of the world a map shows, and where on the drawing.
struct MapView {
    double west, south;    // scene units
    double pixelsPerUnit;  // the same both ways
    PlotBox box;

    double X(double x) const { return box.x + (x - west) * pixelsPerUnit; }
    double Y(double y) const { return box.y + box.height - (y - south) * pixelsPerUnit; }
};

MapView ViewOf(const PlotBox& box, const RunSamples& run, double metresPerUnit) {
    double west = run.readings[0].position.x, east = west, south = run.readings[0].position.y, north = south;
    for (const RunReading& reading : run.readings) {
        west = std::min(west, reading.position.x);
        east = std::max(east, reading.position.x);
        south = std::min(south, reading.position.y);
        north = std::max(north, reading.position.y);
    }
    // A car that hardly moved still gets a view of some car lengths.
    constexpr double kLeastMetres = 24.0;
    const double least = kLeastMetres / metresPerUnit;
    const double width = std::max((east - west) * 1.16, least), height = std::max((north - south) * 1.16, least);
    const double scale = std::min(box.width / width, box.height / height);
    return {(west + east) / 2 - box.width / scale / 2, (south + north) / 2 - box.height / scale / 2, scale, box};
}

void AppendLabel(std::string& svg, double x, double y, std::string_view anchor, std::string_view text) {
    // A white rim keeps words readable on top of lines.
    fmt::format_to(std::back_inserter(svg),
                   "<text x=\"{:.1f}\" y=\"{:.1f}\" class=\"small\" text-anchor=\"{}\" stroke=\"#fff\" stroke-width=\"3\" "
                   "stroke-linejoin=\"round\" paint-order=\"stroke\">{}</text>\n",
                   x, y, anchor, XmlText(text));
}

/// A grey veil where there is no ground, in one piece along each row.
void AppendVoid(std::string& svg, const MapView& view, const HeightMap& map) {
    const double size = map.step * view.pixelsPerUnit;
    std::string path;
    for (int row = 0; row < map.rows; ++row) {
        for (int column = 0; column < map.columns; ++column) {
            int end = column;
            while (end < map.columns && std::isnan(map.At(end, row))) ++end;
            if (end == column) continue;
            fmt::format_to(std::back_inserter(path), "M{:.1f} {:.1f}h{:.1f}v{:.1f}h{:.1f}z",
                           view.X(map.west + (column - 0.5) * map.step), view.Y(map.south + (row + 0.5) * map.step),
                           size * (end - column), size, -size * (end - column));
            column = end;
        }
    }
    if (!path.empty()) fmt::format_to(std::back_inserter(svg), "<path d=\"{}\" fill=\"#e6e6e6\"/>\n", path);
}

/// Lines of equal height under the path. @return the metres between two of them, 0 on level ground
double AppendContours(std::string& svg, const MapView& view, const TriangleMesh& ground, double metresPerUnit) {
    constexpr double kPixels = 5.0;  // between points of the grid
    HeightMap map;
    map.west = view.west;
    map.south = view.south;
    map.step = kPixels / view.pixelsPerUnit;
    map.columns = int(view.box.width / kPixels) + 2;
    map.rows = int(view.box.height / kPixels) + 2;
    FillHeightMap(ground, map);
    AppendVoid(svg, view, map);
    double low = 1e300, high = -1e300;
    for (const double height : map.heights) {
        if (!std::isfinite(height)) continue;
        low = std::min(low, height * metresPerUnit);
        high = std::max(high, height * metresPerUnit);
    }
    if (!(high - low > 0.02)) return 0.0;
    const double step = NiceStep(high - low, 12);
    for (double i = std::floor(low / step); (i + 0.5) * step < high; ++i) {
        // Half a step off the round heights: level ground mostly lies at one of those, and would be one blot of lines.
        const double level = (i + 0.5) * step;
        const bool isFifth = std::remainder(i, 5.0) == 0.0;
        std::string path;
        for (const ContourPiece& piece : Contour(map, level / metresPerUnit)) {
            fmt::format_to(std::back_inserter(path), "M{:.1f} {:.1f}L{:.1f} {:.1f}", view.X(piece.x0), view.Y(piece.y0),
                           view.X(piece.x1), view.Y(piece.y1));
        }
        if (path.empty()) continue;
        fmt::format_to(std::back_inserter(svg), "<path d=\"{}\" fill=\"none\" stroke=\"{}\" stroke-width=\"{}\"/>\n", path,
                       isFifth ? "#bfb7a8" : "#dcd6ca", isFifth ? 1.2 : 0.8);
    }
    return step;
}

/// The path in stretches of one colour each.
void AppendPath(std::string& svg, const MapView& view, const RunSamples& run, double topSpeed) {
    constexpr int kColours = 24;
    const auto colourOf = [&](std::size_t i) {
        return std::min(int(std::abs(run.readings[i].speed) / topSpeed * kColours), kColours - 1);
    };
    const auto append = [&](const std::string& path, int colour) {
        fmt::format_to(std::back_inserter(svg),
                       "<path d=\"{}\" fill=\"none\" stroke=\"{}\" stroke-width=\"4\" stroke-linejoin=\"round\" "
                       "stroke-linecap=\"round\"/>\n",
                       path, Hex(SpeedColour((colour + 0.5) / kColours)));
    };
    std::string path;
    int colour = colourOf(0);
    double lastX = 0, lastY = 0;
    for (std::size_t i = 0; i < run.readings.size(); ++i) {
        const double x = view.X(run.readings[i].position.x), y = view.Y(run.readings[i].position.y);
        const bool isLast = i + 1 == run.readings.size();
        // Half a pixel is all that can be seen.
        if (!path.empty() && !isLast && std::hypot(x - lastX, y - lastY) < 0.5) continue;
        fmt::format_to(std::back_inserter(path), "{}{:.1f} {:.1f}", path.empty() ? "M" : "L", x, y);
        lastX = x;
        lastY = y;
        const int next = colourOf(i);
        if (next == colour && !isLast) continue;
        append(path, colour);
        path = fmt::format("M{:.1f} {:.1f}", x, y);
        colour = next;
    }
}

/// An arrow head on the path, and the second beside it, at round times.
void AppendTimes(std::string& svg, const MapView& view, const RunSamples& run) {
    const double end = run.readings.back().seconds;
    const double step = NiceStep(std::max(end, 0.1), 8);
    std::size_t i = 0;
    double lastX = view.X(run.readings[0].position.x), lastY = view.Y(run.readings[0].position.y);
    for (double second = step; second < end - step * 0.25; second += step) {
        while (i + 1 < run.readings.size() && run.readings[i].seconds < second) ++i;
        const RunReading& reading = run.readings[i];
        const double x = view.X(reading.position.x), y = view.Y(reading.position.y);
        if (std::hypot(x - lastX, y - lastY) < 26) continue;  // no room for another
        lastX = x;
        lastY = y;
        fmt::format_to(std::back_inserter(svg),
                       "<path d=\"M0 -8L5.5 6L0 3L-5.5 6Z\" fill=\"#fff\" stroke=\"#222\" stroke-width=\"1.2\" "
                       "transform=\"translate({:.1f} {:.1f}) rotate({:.1f})\"/>\n",
                       x, y, reading.heading);
        // To the right of the car as it goes, where the path is not.
        const double across = reading.heading * 3.14159265358979 / 180.0;
        const double labelX = x + 16 * std::cos(across), labelY = y + 16 * std::sin(across) + 4;
        AppendLabel(svg, labelX, labelY,
                    std::cos(across) < -0.3  ? "end"
                    : std::cos(across) > 0.3 ? "start"
                                             : "middle",
                    TickLabel(second, step) + " s");
    }
}

void AppendEnds(std::string& svg, const MapView& view, const RunSamples& run) {
    const auto& first = run.readings.front().position;
    const auto& last = run.readings.back().position;
    fmt::format_to(std::back_inserter(svg),
                   "<circle cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"6\" fill=\"#222\"/>\n"
                   "<circle cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"6\" fill=\"#fff\" stroke=\"#222\" stroke-width=\"2.5\"/>\n",
                   view.X(first.x), view.Y(first.y), view.X(last.x), view.Y(last.y));
    const double nearEnds = std::hypot(view.X(first.x) - view.X(last.x), view.Y(first.y) - view.Y(last.y));
    AppendLabel(svg, view.X(first.x) + 11, view.Y(first.y) + 4, "start", "start");
    if (nearEnds > 30) AppendLabel(svg, view.X(last.x) + 11, view.Y(last.y) + 4, "start", "end");
}

/// Bar of length and note about contours on the left below the map, scale of speed on the right.
void AppendKey(std::string& svg, const MapView& view, double topKilometresPerHour, double contourMetres, double metresPerUnit) {
    const auto end = std::back_inserter(svg);
    const PlotBox& box = view.box;
    const double top = box.y + box.height + 22;
    const double pixelsPerMetre = view.pixelsPerUnit / metresPerUnit;
    const double metres = NiceStep(box.width / pixelsPerMetre / 10, 1);
    fmt::format_to(end, "<path d=\"M{0:.1f} {1:.1f}v8h{2:.1f}v-8\" fill=\"none\" stroke=\"#222\" stroke-width=\"1.5\"/>\n",
                   box.x, top - 4, metres * pixelsPerMetre);
    std::string note = TickLabel(metres, metres) + " m";
    if (contourMetres > 0) note += " \u00b7 contours every " + TickLabel(contourMetres, contourMetres) + " m";
    AppendLabel(svg, box.x + metres * pixelsPerMetre + 10, top + 5, "start", note);

    constexpr int kPieces = 48;
    constexpr double kLength = 140;
    const double left = box.x + box.width - kLength - 70;
    for (int i = 0; i < kPieces; ++i) {
        fmt::format_to(end, "<rect x=\"{:.2f}\" y=\"{:.1f}\" width=\"{:.2f}\" height=\"8\" fill=\"{}\"/>\n",
                       left + kLength * i / kPieces, top - 4, kLength / kPieces + 0.3, Hex(SpeedColour((i + 0.5) / kPieces)));
    }
    AppendLabel(svg, left - 8, top + 5, "end", "0");
    AppendLabel(svg, left + kLength + 8, top + 5, "start", fmt::format("{:.0f} km/h", topKilometresPerHour));
}

}  // namespace

void AppendMap(std::string& svg, const PlotBox& box, const RunSamples& run, const TriangleMesh& ground,
               double kilometresPerUnit) {
    const double metresPerUnit = kilometresPerUnit * 1000.0;
    const MapView view = ViewOf(box, run, metresPerUnit);
    double topSpeed = 1e-9;
    for (const RunReading& reading : run.readings) topSpeed = std::max(topSpeed, std::abs(reading.speed));
    const auto end = std::back_inserter(svg);
    fmt::format_to(end,
                   "<clipPath id=\"map\"><rect x=\"{0}\" y=\"{1}\" width=\"{2}\" height=\"{3}\"/></clipPath>\n"
                   "<rect x=\"{0}\" y=\"{1}\" width=\"{2}\" height=\"{3}\" fill=\"#faf9f6\"/>\n<g clip-path=\"url(#map)\">\n",
                   box.x, box.y, box.width, box.height);
    const double contourMetres = AppendContours(svg, view, ground, metresPerUnit);
    AppendPath(svg, view, run, topSpeed);
    AppendTimes(svg, view, run);
    AppendEnds(svg, view, run);
    fmt::format_to(end, "</g>\n<rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" class=\"axis\"/>\n", box.x, box.y, box.width,
                   box.height);
    AppendKey(svg, view, topSpeed * kilometresPerUnit * 3600.0, contourMetres, metresPerUnit);
}

}  // namespace tavrik

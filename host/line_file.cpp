#include "host/line_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "host/read_file.h"
#include "host/script_text.h"

namespace tavrik {
namespace {

constexpr std::size_t kKnotColumns = 9;
constexpr double kCurveStep = 1.0;       // metres between points of a curve
constexpr double kLargest = 1e9;         // units of the file
constexpr std::size_t kMostParts = 200;  // of one curve

/// Numbers of one row of the file. Only the first nine are looked at.
struct Row {
    std::size_t number = 0;  // of the line, from 1
    std::size_t count = 0;
    std::array<double, kKnotColumns> values{};
};

/// The next cell of a row; `line` becomes what is left. Commas or semicolons part cells, else blanks do.
std::string_view TakeCell(std::string_view& line, char separator) {
    const std::size_t end = separator == ' ' ? line.find_first_of(kBlanks) : line.find(separator);
    const std::string_view cell = Trim(line.substr(0, end));
    line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
    if (separator == ' ') line = Trim(line);
    return cell;
}

bool ParseNumber(std::string_view cell, double& value) {
    if (cell.size() > 1 && cell.front() == '+' && cell[1] != '-') cell.remove_prefix(1);
    const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), value);
    return error == std::errc() && end == cell.data() + cell.size() && std::abs(value) <= kLargest;
}

bool ParseRow(std::string_view line, Row& row, std::string& fault) {
    const bool bySemicolon = line.find(';') != std::string_view::npos, byComma = line.find(',') != std::string_view::npos;
    const char separator = bySemicolon ? ';' : byComma ? ',' : ' ';
    while (!line.empty()) {
        const std::string_view cell = TakeCell(line, separator);
        // A line may end in a separator, and what stands behind x and y may be anything.
        if (row.count < row.values.size() && !ParseNumber(cell, row.values[row.count])) {
            if (row.count >= 2) return true;
            fault = fmt::format("{} is {}, not a number that a place can have", row.count == 0 ? "x" : "y",
                                cell.empty() ? "empty" : Quoted(cell));
            return false;
        }
        ++row.count;
    }
    if (row.count >= 2) return true;
    fault = "it has one number, but a point takes two, x and y";
    return false;
}

bool ReadRows(const std::string& name, std::string_view text, std::vector<Row>& rows, std::string& problem) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    bool mayBeHeading = true;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = TakeLine(text);
        if (line.empty()) continue;
        const bool isHeading = mayBeHeading && (IsHeading(line) || line.front() == '"');
        mayBeHeading = false;
        if (isHeading) continue;
        Row row;
        row.number = number;
        std::string fault;
        if (!ParseRow(line, row, fault)) {
            problem = fmt::format("{}: line {}: {}.", name, number, fault);
            return false;
        }
        rows.push_back(row);
    }
    if (!rows.empty()) return true;
    problem = fmt::format("{}: it holds no point; a line is rows of x and y.", name);
    return false;
}

bool AreKnots(const std::vector<Row>& rows) {
    return rows.size() > 1 && rows[0].count == 2 && rows[0].values[1] == double(kKnotColumns) && rows[1].count == kKnotColumns;
}

/// Three points of a row, in metres.
struct Knot {
    RoadPoint at, before, behind;
};

Knot KnotOf(const Row& row, double scale) {
    const auto point = [&](std::size_t i) { return RoadPoint{row.values[i] * scale, row.values[i + 1] * scale}; };
    return {point(0), point(3), point(6)};
}

/// Appends the curve from a knot to the next, without its first point.
void AppendCurve(const Knot& from, const Knot& to, std::vector<RoadPoint>& points) {
    const double most = Distance(from.at, from.behind) + Distance(from.behind, to.before) + Distance(to.before, to.at);
    const auto parts = std::size_t(std::clamp(std::ceil(most / kCurveStep), 1.0, double(kMostParts)));
    for (std::size_t i = 1; i <= parts; ++i) {
        //   p = (1-t)^3 a + 3 (1-t)^2 t b + 3 (1-t) t^2 c + t^3 d
        const double t = double(i) / double(parts), s = 1.0 - t;
        const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
        points.push_back({a * from.at.x + b * from.behind.x + c * to.before.x + d * to.at.x,
                          a * from.at.y + b * from.behind.y + c * to.before.y + d * to.at.y});
    }
}

bool PointsOfKnots(const std::string& name, const std::vector<Row>& rows, double scale, std::vector<RoadPoint>& points,
                   std::string& problem) {
    if (rows[0].values[0] != double(rows.size() - 1)) {
        problem = fmt::format("{}: line {}: it announces {:g} knots, but {} follow.", name, rows[0].number, rows[0].values[0],
                              rows.size() - 1);
        return false;
    }
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (rows[i].count != kKnotColumns) {
            problem = fmt::format("{}: line {}: a knot is nine numbers, not {}.", name, rows[i].number, rows[i].count);
            return false;
        }
        const Knot knot = KnotOf(rows[i], scale);
        if (i == 1)
            points.push_back(knot.at);
        else
            AppendCurve(KnotOf(rows[i - 1], scale), knot, points);
    }
    return true;
}

/// The way from point to point that half of the pieces don't exceed.
double UsualStep(const RoadLine& line) {
    std::vector<double> steps;
    for (std::size_t i = 0; i + 1 < line.points.size(); ++i) steps.push_back(Distance(line.points[i], line.points[i + 1]));
    const auto middle = steps.begin() + std::ptrdiff_t(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

/// Takes out points on the spot of the one before, and joins the ends where they belong together.
bool Shape(const LineWishes& wishes, RoadLine& line, std::string& fault) {
    std::vector<RoadPoint>& points = line.points;
    const std::size_t before = points.size();
    const auto isSame = [](const RoadPoint& a, const RoadPoint& b) { return !(Distance(a, b) > 1e-3); };
    points.erase(std::unique(points.begin(), points.end(), isSame), points.end());
    if (points.size() < 2) {
        fault = before == 1 ? "it holds one point only, and a line takes two or more"
                            : "all its points lie on one spot, and a line needs a length";
        return false;
    }
    const double gap = Distance(points.front(), points.back());
    line.closed = wishes.closed ? *wishes.closed : points.size() > 3 && gap < 2.0 * UsualStep(line);
    while (line.closed && points.size() > 1 && isSame(points.front(), points.back())) points.pop_back();
    if (!line.closed || points.size() > 2) return true;
    fault = "a closed line takes three points on spots of their own or more, and it holds fewer";
    return false;
}

void Move(const std::optional<RoadPoint>& at, RoadLine& line) {
    if (!at) return;
    const RoadPoint by{at->x - line.points[0].x, at->y - line.points[0].y};
    for (RoadPoint& p : line.points) p = {p.x + by.x, p.y + by.y};
}

bool CheckSize(const RoadLine& line, std::string& fault) {
    for (const RoadPoint& p : line.points) {
        if (std::abs(p.x) <= kFarthestLinePoint && std::abs(p.y) <= kFarthestLinePoint) continue;
        fault = fmt::format(
            "it has a point at x {:.0f} m, y {:.0f} m, but may go no further than {:.0f} m from the origin; move it with --at, "
            "or shrink it with --scale",
            p.x, p.y, kFarthestLinePoint);
        return false;
    }
    const double length = LengthOf(line);
    if (length <= kLongestLine) return true;
    fault = fmt::format("it is {:.0f} km long, and {:.0f} km are the most", length / 1000.0, kLongestLine / 1000.0);
    return false;
}

}  // namespace

bool ReadLineText(const std::string& name, std::string_view text, const LineWishes& wishes, RoadLine& line,
                  std::string& problem) {
    std::vector<Row> rows;
    RoadLine result;
    if (!ReadRows(name, text, rows, problem)) return false;
    if (AreKnots(rows)) {
        if (!PointsOfKnots(name, rows, wishes.scale, result.points, problem)) return false;
    } else {
        for (const Row& row : rows) result.points.push_back({row.values[0] * wishes.scale, row.values[1] * wishes.scale});
    }
    std::string fault;
    if (Shape(wishes, result, fault)) {
        Move(wishes.at, result);
        if (CheckSize(result, fault)) {
            line = std::move(result);
            return true;
        }
    }
    problem = fmt::format("{}: {}.", name, fault);
    return false;
}

bool ReadLine(const std::filesystem::path& file, const LineWishes& wishes, RoadLine& line, std::string& problem) {
    std::string text;
    return ReadWholeFile(file, text, problem) && ReadLineText(file.string(), text, wishes, line, problem);
}

}  // namespace tavrik

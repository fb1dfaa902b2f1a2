#include "host/road_laying.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>

#include "host/car_placement.h"
#include "solver/double_maths.h"

namespace tavrik {
namespace {

constexpr double kLookEvery = 1.0;   // metres
constexpr double kMostAbove = 0.02;  // metres that the ground may be above or below a piece

/// Marks what has to stay between two points that do, so that no piece is far from the ground.
void Keep(const std::vector<DPoint3>& laid, std::size_t from, std::size_t to, double most, std::vector<bool>& kept) {
    double worst = most;
    std::size_t bend = from;
    for (std::size_t i = from + 1; i < to; ++i) {
        const double t = double(i - from) / double(to - from);
        const double off = std::abs(laid[i].z - (laid[from].z + (laid[to].z - laid[from].z) * t));
        if (!(off > worst)) continue;
        worst = off;
        bend = i;
    }
    if (bend == from) return;
    kept[bend] = true;
    Keep(laid, from, bend, most, kept);
    Keep(laid, bend, to, most, kept);
}

}  // namespace

bool LayOnGround(const SurfaceTree& surface, const RoadLine& line, double metresPerUnit, std::vector<Point3>& points,
                 std::string& problem) {
    const double unitsPerMetre = 1.0 / metresPerUnit;
    std::vector<DPoint3> laid;  // of one piece, with both ends
    const auto lay = [&](const RoadPoint& p) {
        double z = 0.0;
        if (!GroundBelow(surface, p.x * unitsPerMetre, p.y * unitsPerMetre, z)) {
            problem = fmt::format("it leaves the ground at x {:.1f} m, y {:.1f} m", p.x, p.y);
            return false;
        }
        laid.push_back({p.x * unitsPerMetre, p.y * unitsPerMetre, z});
        return true;
    };
    std::vector<Point3> result;
    for (std::size_t piece = 0; piece < line.Pieces(); ++piece) {
        const RoadPoint &a = line.points[piece], &b = line.EndOf(piece);
        const int parts = std::max(1, int(std::ceil(Distance(a, b) / kLookEvery)));
        laid.clear();
        for (int i = 0; i <= parts; ++i) {
            const double t = double(i) / parts;
            if (!lay({a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t})) return false;
        }
        std::vector<bool> kept(laid.size(), false);
        kept.front() = true;
        Keep(laid, 0, laid.size() - 1, kMostAbove * unitsPerMetre, kept);
        for (std::size_t i = 0; i + 1 < laid.size(); ++i) {
            if (kept[i]) result.push_back(ToPoint3(laid[i]));
        }
    }
    if (!line.closed && !laid.empty()) result.push_back(ToPoint3(laid.back()));
    points = std::move(result);
    return true;
}

}  // namespace tavrik

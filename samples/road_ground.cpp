#include "samples/road_ground.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "samples/hill_noise.h"
#include "solver/double_maths.h"

namespace tavrik {
namespace {

constexpr double kMetre = 100.0;      // scene units
constexpr double kStationStep = 2.0;  // metres between places along the road whose height and tilt are known
constexpr double kLevelCell = 4.0, kHillyCell = 2.0;
constexpr double kTightest = 60.0;     // radius from which on curves are banked in full, metres
constexpr int kCurveReach = 6;         // stations to each side that tell a curve
constexpr int kTiltReach = 10;         // and over which its tilt builds up
constexpr double kMostCorners = 10e6;  // of the grid, most of which are beside the ground

/// What the road does at its stations.
struct Stations {
    RoadLine line;
    std::vector<double> heights, tilts;  // metres; rise over width, positive where the right side is up
};

/// A station some way before or behind; the ends of an open line go on as they are.
std::size_t Beside(const RoadLine& line, std::size_t i, int steps) {
    const auto count = std::ptrdiff_t(line.points.size());
    const std::ptrdiff_t at = std::ptrdiff_t(i) + steps;
    return std::size_t(line.closed ? (at % count + count) % count : std::clamp<std::ptrdiff_t>(at, 0, count - 1));
}

/// 1 / radius of the circle through three points, positive to the left; 0 where they don't make one.
double Curvature(const RoadPoint& a, const RoadPoint& b, const RoadPoint& c) {
    const double around = Distance(a, b) * Distance(b, c) * Distance(a, c);
    const double cross = (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
    return around > 0.0 ? 2.0 * cross / around : 0.0;
}

double HillHeight(const RoadPoint& p, const RoadGround& wanted) {
    if (wanted.hillMetres == 0.0) return 0.0;
    return 0.5 * wanted.hillMetres * HillNoise(p.x, p.y, 120.0, wanted.seed);
}

Stations MakeStations(const RoadLine& line, const RoadGround& wanted) {
    Stations stations{Divided(line, kStationStep), {}, {}};
    const RoadLine& road = stations.line;
    std::vector<double> curves;
    for (std::size_t i = 0; i < road.points.size(); ++i) {
        stations.heights.push_back(HillHeight(road.points[i], wanted));
        const double curvature =
            Curvature(road.points[Beside(road, i, -kCurveReach)], road.points[i], road.points[Beside(road, i, kCurveReach)]);
        curves.push_back(std::clamp(curvature * kTightest, -1.0, 1.0));
    }
    for (std::size_t i = 0; i < road.points.size(); ++i) {
        double sum = 0.0;
        for (int k = -kTiltReach; k <= kTiltReach; ++k) sum += curves[Beside(road, i, k)];
        stations.tilts.push_back(sum / (2 * kTiltReach + 1) * wanted.bankPercent / 100.0);
    }
    return stations;
}

/// A place beside a piece of the road.
struct BesideRoad {
    double t;         // along the piece, 0..1
    double aside;     // metres, right positive
    double distance;  // metres
};

BesideRoad PlaceBeside(const RoadPoint& a, const RoadPoint& b, const RoadPoint& p) {
    const double x = b.x - a.x, y = b.y - a.y, length = Distance(a, b);
    const double t = std::clamp(((p.x - a.x) * x + (p.y - a.y) * y) / (length * length), 0.0, 1.0);
    const double aside = ((p.x - a.x) * y - (p.y - a.y) * x) / length;
    return {t, aside, Distance(p, {a.x + x * t, a.y + y * t})};
}

constexpr std::uint32_t kNoPiece = 0xffffffffu;

/// A regular grid over the road, each corner of which knows the piece nearest to it, where one is within reach.
class RoadGrid {
 public:
    RoadGrid(const RoadLine& road, double cell, double reach) : cell_(cell), reach_(reach) {
        RoadPoint low = road.points[0], high = low;
        for (const RoadPoint& p : road.points) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
        west_ = low.x - reach;
        south_ = low.y - reach;
        width_ = high.x + reach - west_;
        depth_ = high.y + reach - south_;
    }

    double width() const { return width_; }
    double depth() const { return depth_; }
    bool IsTooLarge() const { return (width_ / cell_ + 2.0) * (depth_ / cell_ + 2.0) > kMostCorners; }
    int columns() const { return int(width_ / cell_) + 2; }
    int rows() const { return int(depth_ / cell_) + 2; }
    RoadPoint At(int column, int row) const { return {west_ + cell_ * column, south_ + cell_ * row}; }
    std::uint32_t PieceAt(int column, int row) const { return pieces_[Index(column, row)]; }

    void FindPieces(const RoadLine& road) {
        const std::size_t count = std::size_t(columns()) * std::size_t(rows());
        pieces_.assign(count, kNoPiece);
        std::vector<double> nearest(count, reach_);
        for (std::size_t i = 0; i < road.Pieces(); ++i) {
            const RoadPoint &a = road.points[i], &b = road.EndOf(i);
            const int firstColumn = Column(std::min(a.x, b.x) - reach_), lastColumn = Column(std::max(a.x, b.x) + reach_) + 1;
            const int firstRow = Row(std::min(a.y, b.y) - reach_), lastRow = Row(std::max(a.y, b.y) + reach_) + 1;
            for (int row = firstRow; row <= lastRow; ++row) {
                for (int column = firstColumn; column <= lastColumn; ++column) {
                    const double distance = PlaceBeside(a, b, At(column, row)).distance;
                    if (!(distance < nearest[Index(column, row)])) continue;
                    nearest[Index(column, row)] = distance;
                    pieces_[Index(column, row)] = std::uint32_t(i);
                }
            }
        }
    }

 private:
    std::size_t Index(int column, int row) const { return std::size_t(row) * std::size_t(columns()) + std::size_t(column); }
    int Column(double x) const { return std::clamp(int((x - west_) / cell_), 0, columns() - 2); }
    int Row(double y) const { return std::clamp(int((y - south_) / cell_), 0, rows() - 2); }

    double cell_, reach_, west_ = 0, south_ = 0, width_ = 0, depth_ = 0;
    std::vector<std::uint32_t> pieces_;
};

/// The road keeps its own height across, and the land comes up to it over half of the verge.
double HeightAt(const RoadPoint& p, std::uint32_t piece, const Stations& stations, const RoadGround& wanted) {
    const RoadLine& road = stations.line;
    const std::size_t i = piece, j = (i + 1) % road.points.size();
    const BesideRoad place = PlaceBeside(road.points[i], road.points[j], p);
    const double half = wanted.widthMetres / 2.0;
    const double tilt = stations.tilts[i] + (stations.tilts[j] - stations.tilts[i]) * place.t;
    const double middle = stations.heights[i] + (stations.heights[j] - stations.heights[i]) * place.t;
    const double out = std::max(0.0, place.distance - half) / (wanted.vergeMetres / 2.0);
    const double ofLand = Fade(std::min(out, 1.0));
    const double onRoad = middle + tilt * std::clamp(place.aside, -half, half);
    return onRoad + (HillHeight(p, wanted) - onRoad) * ofLand;
}

void AddCells(const RoadGrid& grid, const std::vector<std::uint32_t>& vertexOf, TriangleMesh& mesh) {
    const auto at = [&](int column, int row) {
        return vertexOf[std::size_t(row) * std::size_t(grid.columns()) + std::size_t(column)];
    };
    for (int row = 0; row + 1 < grid.rows(); ++row) {
        for (int column = 0; column + 1 < grid.columns(); ++column) {
            const std::uint32_t a = at(column, row), b = at(column + 1, row), c = at(column + 1, row + 1),
                                d = at(column, row + 1);
            if (a == kNoPiece || b == kNoPiece || c == kNoPiece || d == kNoPiece) continue;
            mesh.faces.push_back({{a, b, c}});
            mesh.faces.push_back({{a, c, d}});
        }
    }
}

}  // namespace

bool MakeRoadGround(const RoadLine& line, const RoadGround& wanted, TriangleMesh& mesh, std::string& problem) {
    const bool isLevel = wanted.hillMetres == 0.0 && wanted.bankPercent == 0.0;
    const double cell = isLevel ? kLevelCell : kHillyCell;
    RoadGrid grid(line, cell, wanted.widthMetres / 2.0 + wanted.vergeMetres + cell);
    if (!(grid.width() < 1e6 && grid.depth() < 1e6) || grid.IsTooLarge()) {
        problem = "its ground would be " + std::to_string(int(std::min(grid.width(), 1e9) / 1000.0)) + " x " +
                  std::to_string(int(std::min(grid.depth(), 1e9) / 1000.0)) +
                  " km large, which is more than a road's ground may be; scale it, or cut it into parts";
        return false;
    }
    const Stations stations = MakeStations(line, wanted);
    grid.FindPieces(stations.line);
    mesh = {};
    std::vector<std::uint32_t> vertexOf;
    for (int row = 0; row < grid.rows(); ++row) {
        for (int column = 0; column < grid.columns(); ++column) {
            const std::uint32_t piece = grid.PieceAt(column, row);
            vertexOf.push_back(piece == kNoPiece ? kNoPiece : std::uint32_t(mesh.verts.size()));
            if (piece == kNoPiece) continue;
            const RoadPoint p = grid.At(column, row);
            mesh.verts.push_back(ToPoint3(DPoint3{p.x, p.y, HeightAt(p, piece, stations, wanted)} * kMetre));
        }
    }
    AddCells(grid, vertexOf, mesh);
    return true;
}

TriangleMesh MakeCircuitGround() {
    TriangleMesh mesh;
    std::string problem;
    RoadGround wanted;
    wanted.bankPercent = 5.0;
    wanted.hillMetres = 4.0;
    MakeRoadGround(SampleCircuit(), wanted, mesh, problem);
    return mesh;
}

}  // namespace tavrik

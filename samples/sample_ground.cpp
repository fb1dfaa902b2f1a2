#include "samples/sample_ground.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "samples/hill_noise.h"
#include "solver/double_maths.h"

namespace tavrik {
namespace {

constexpr double kMetre = 100.0;  // scene units

/// Metres above the level; all of it level within 35 m of the middle.
double HillHeight(double x, double y, std::uint64_t seed) {
    const double distance = std::sqrt(x * x + y * y);
    const double rise = Fade(std::clamp((distance - 35.0) / 50.0, 0.0, 1.0));
    return rise * (4.5 * HillNoise(x, y, 70.0, seed) + 1.0 * HillNoise(x, y, 24.0, seed + 1));
}

/// A square of triangles with the heights of hills at its corners and flat triangles between.
class HillGrid {
 public:
    HillGrid(const SampleGround& wanted, bool isLevel)
        : seed_(wanted.seed),
          isLevel_(isLevel),
          cells_(std::max(1, int(std::sqrt(double(wanted.triangles) / 2.0) + 0.5))),
          west_(-wanted.sizeMetres / 2.0),
          step_(wanted.sizeMetres / cells_) {}

    int cells() const { return cells_; }
    double Coordinate(int i) const { return west_ + step_ * i; }
    double Corner(int column, int row) const { return isLevel_ ? 0.0 : HillHeight(Coordinate(column), Coordinate(row), seed_); }

    /// The height of the triangle over a point, so that what is laid on the ground follows its facets.
    double HeightAt(double x, double y) const {
        const int column = std::clamp(int((x - west_) / step_), 0, cells_ - 1);
        const int row = std::clamp(int((y - west_) / step_), 0, cells_ - 1);
        const double s = (x - Coordinate(column)) / step_, t = (y - Coordinate(row)) / step_;
        const double a = Corner(column, row), c = Corner(column + 1, row + 1);
        if (s > t) return a + (Corner(column + 1, row) - a) * (s - t) + (c - a) * t;
        return a + (Corner(column, row + 1) - a) * (t - s) + (c - a) * s;
    }

 private:
    std::uint64_t seed_;
    bool isLevel_;
    int cells_;
    double west_, step_;
};

Point3 Vertex(double x, double y, double z) { return ToPoint3(DPoint3{x, y, z} * kMetre); }

/// Adds a grid of points, `columns` to a row, west to east and then south to north.
void AddGrid(TriangleMesh& mesh, std::span<const Point3> points, int columns) {
    const std::uint32_t first = std::uint32_t(mesh.verts.size());
    mesh.verts.insert(mesh.verts.end(), points.begin(), points.end());
    const int rows = int(points.size()) / columns;
    for (int row = 0; row + 1 < rows; ++row) {
        for (int column = 0; column + 1 < columns; ++column) {
            const std::uint32_t a = first + std::uint32_t(row * columns + column), b = a + 1;
            const std::uint32_t d = a + std::uint32_t(columns), c = d + 1;
            mesh.faces.push_back({{a, b, c}});
            mesh.faces.push_back({{a, c, d}});
        }
    }
}

TriangleMesh MakeHills(const HillGrid& grid) {
    TriangleMesh mesh;
    std::vector<Point3> points;
    for (int row = 0; row <= grid.cells(); ++row) {
        for (int column = 0; column <= grid.cells(); ++column) {
            points.push_back(Vertex(grid.Coordinate(column), grid.Coordinate(row), grid.Corner(column, row)));
        }
    }
    AddGrid(mesh, points, grid.cells() + 1);
    return mesh;
}

/// Two levels with an upright step between them.
TriangleMesh MakeKerb(const HillGrid& grid) {
    constexpr double kAhead = 20.0, kHeight = 0.12;
    TriangleMesh mesh;
    std::vector<Point3> points;
    bool isUp = false;
    for (int row = 0; row <= grid.cells(); ++row) {
        const double y = grid.Coordinate(row);
        const auto addRow = [&](double rowY, double z) {
            for (int column = 0; column <= grid.cells(); ++column) points.push_back(Vertex(grid.Coordinate(column), rowY, z));
        };
        if (!isUp && y >= kAhead) {
            if (y > kAhead)
                addRow(kAhead, 0.0);
            else
                addRow(y, 0.0);
            addRow(kAhead, kHeight);
            isUp = true;
            if (y == kAhead) continue;
        }
        addRow(y, isUp ? kHeight : 0.0);
    }
    AddGrid(mesh, points, grid.cells() + 1);
    return mesh;
}

/// A point of a profile along the way: metres from its start, metres above the ground.
struct ProfilePoint {
    double along, height;
};

/// Lays a strip across the way: `profile` runs towards +Y from `y`, between `west` and `east`. Its ends dip below the ground,
/// so that no gap is left to fall into.
void LayStrip(TriangleMesh& mesh, const HillGrid& grid, double west, double east, double y,
              std::span<const ProfilePoint> profile) {
    constexpr double kPieces = 1.0;  // metres across, at most, so that the strip follows the ground's facets
    const int columns = int(std::ceil((east - west) / kPieces)) + 1;
    std::vector<Point3> points;
    for (const ProfilePoint& p : profile) {
        for (int column = 0; column < columns; ++column) {
            const double x = west + (east - west) * column / (columns - 1);
            points.push_back(Vertex(x, y + p.along, grid.HeightAt(x, y + p.along) + p.height));
        }
    }
    AddGrid(mesh, points, columns);
}

/// `count` humps of a half wave each, one behind the other.
std::vector<ProfilePoint> Humps(int count, double length, double height) {
    constexpr int kPieces = 8;
    std::vector<ProfilePoint> profile{{0.0, -0.02}};
    for (int hump = 0; hump < count; ++hump) {
        for (int i = 0; i <= kPieces; ++i) {
            const double t = double(i) / kPieces;
            // 16 t^2 (1-t)^2 rises from level ground without an edge and comes back to it.
            profile.push_back({(hump + t) * length, 16.0 * t * t * (1 - t) * (1 - t) * height});
        }
    }
    profile.push_back({count * length + 0.01, -0.02});
    return profile;
}

/// Up, level, and down again, rounded where it turns.
std::vector<ProfilePoint> Tabletop(double slope, double level, double height) {
    constexpr int kPieces = 10;
    std::vector<ProfilePoint> profile{{0.0, -0.05}};
    for (int i = 0; i <= kPieces; ++i) profile.push_back({slope * i / kPieces, height * Fade(double(i) / kPieces)});
    for (int i = kPieces; i >= 0; --i)
        profile.push_back({2 * slope + level - slope * i / kPieces, height * Fade(double(i) / kPieces)});
    profile.push_back({2 * slope + level + 0.01, -0.05});
    return profile;
}

/// What stands on the way of the course, south to north.
void AddCourse(TriangleMesh& mesh, const HillGrid& grid) {
    LayStrip(mesh, grid, -8, 8, 14.0, Humps(1, 0.9, 0.07));
    LayStrip(mesh, grid, -8, 8, 20.0, Humps(1, 0.9, 0.07));
    // A bump for the left wheels, then one for the right ones.
    LayStrip(mesh, grid, -8, 0, 26.0, Humps(1, 1.2, 0.09));
    LayStrip(mesh, grid, 0, 8, 29.5, Humps(1, 1.2, 0.09));
    LayStrip(mesh, grid, -9, 9, 38.0, Humps(14, 0.75, 0.025));
    LayStrip(mesh, grid, -10, 10, 58.0, Tabletop(6.0, 5.0, 0.45));
    const ProfilePoint island[] = {{0.0, -0.05}, {0.0, 0.10}, {4.0, 0.10}, {4.0, -0.05}};
    LayStrip(mesh, grid, 5, 12, -18.0, island);
}

}  // namespace

TriangleMesh MakeSampleGround(const SampleGround& wanted) {
    switch (wanted.kind) {
        case SampleGroundKind::Plane:
            return MakeHills(HillGrid(wanted, /*isLevel=*/true));
        case SampleGroundKind::Kerb:
            return MakeKerb(HillGrid(wanted, /*isLevel=*/true));
        case SampleGroundKind::Hills:
            return MakeHills(HillGrid(wanted, /*isLevel=*/false));
        case SampleGroundKind::Course:
            break;
    }
    const HillGrid grid(wanted, /*isLevel=*/false);
    TriangleMesh mesh = MakeHills(grid);
    AddCourse(mesh, grid);
    return mesh;
}

}  // namespace tavrik

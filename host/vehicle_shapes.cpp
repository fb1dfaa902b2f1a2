#include "host/vehicle_shapes.h"

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace tavrik {
namespace {

ShapePart Part(const char* name, float red, float green, float blue, float metallic, float roughness) {
    return {{name, red, green, blue, metallic, roughness}, {}, {}, {}};
}
ShapePart Steel() { return Part("steel", 0.10f, 0.10f, 0.11f, 0.7f, 0.5f); }
ShapePart Glass() { return Part("glass", 0.02f, 0.03f, 0.04f, 0.0f, 0.1f); }
ShapePart HeadLight() { return Part("head_light", 0.95f, 0.93f, 0.80f, 0.0f, 0.3f); }
ShapePart TailLight() { return Part("tail_light", 0.30f, 0.0f, 0.0f, 0.0f, 0.3f); }

void AddBlockEachSide(ShapePart& part, const Box3& right) {
    AddBlock(part, right);
    AddBlock(part, {{-right.pmax.x, right.pmin.y, right.pmin.z}, {-right.pmin.x, right.pmax.y, right.pmax.z}});
}

/// A tube with flat ends.
void AddTube(ShapePart& part, const Point3& from, const Point3& to, float radius) {
    constexpr int kCorners = 14;
    const Point3 d = Normalize(to - from);
    const Point3 across = std::abs(d.x) > 0.7f ? Point3{0, 1, 0} : Point3{1, 0, 0};
    const Point3 v = Normalize(Cross(d, across)), u = Cross(v, d);  // u, v and d are right-handed
    std::vector<Point3> low, high;
    for (int i = 0; i < kCorners; ++i) {
        const float angle = 2.0f * std::numbers::pi_v<float> * float(i) / float(kCorners);
        const Point3 out = (u * std::cos(angle) + v * std::sin(angle)) * radius;
        low.push_back(from + out);
        high.push_back(to + out);
    }
    std::vector<Point3> sides = low;
    sides.insert(sides.end(), high.begin(), high.end());
    AddGrid(part, sides, kCorners, /*closed=*/true);
    AddPolygon(part, high);
    AddPolygon(part, {low.rbegin(), low.rend()});
}

/// The same on both sides of the vehicle.
void AddTubeEachSide(ShapePart& part, const Point3& from, const Point3& to, float radius) {
    AddTube(part, from, to, radius);
    AddTube(part, {-from.x, from.y, from.z}, {-to.x, to.y, to.z}, radius);
}

void AddBall(ShapePart& part, const Point3& centre, float radius) {
    constexpr int kColumns = 20, kRows = 10;
    std::vector<Point3> grid;
    for (int row = 0; row <= kRows; ++row) {
        const float up = std::numbers::pi_v<float> * (float(row) / float(kRows) - 0.5f);
        for (int column = 0; column < kColumns; ++column) {
            const float angle = 2.0f * std::numbers::pi_v<float> * float(column) / float(kColumns);
            const Point3 out = {std::cos(up) * std::cos(angle), std::cos(up) * std::sin(angle), std::sin(up)};
            grid.push_back(centre + out * radius);
        }
    }
    AddGrid(part, grid, kColumns, /*closed=*/true);
}

/// A drawbar of two beams that meet in the cup over the ball.
void AddDrawbar(ShapePart& steel, float halfWidth, float from, float tongue, float z) {
    AddTubeEachSide(steel, {halfWidth, from, z}, {2.0f, tongue - 12.0f, z}, 4.0f);
    AddTube(steel, {0, tongue - 20.0f, z}, {0, tongue + 3.0f, z}, 5.0f);
    AddBall(steel, {0, tongue, z}, 7.0f);
}

void AddRider(ShapePart& suit, ShapePart& helmet) {
    AddTube(suit, {0, -27, 30}, {0, 4, 64}, 15.0f);          // trunk
    AddTubeEachSide(suit, {17, 2, 62}, {25, 18, 46}, 5.5f);  // arms, down to the bar
    AddTubeEachSide(suit, {25, 18, 46}, {32, 38, 42}, 5.0f);
    AddTubeEachSide(suit, {10, -27, 28}, {19, 14, 14}, 8.0f);  // legs, down to the pegs
    AddTubeEachSide(suit, {19, 14, 14}, {20, -8, -20}, 6.0f);
    AddTubeEachSide(suit, {20, -12, -22}, {20, 8, -22}, 4.5f);
    AddBall(helmet, {0, 12, 80}, 14.0f);
}

}  // namespace

Shape TrailerShape() {
    ShapePart paint = Part("trailer_paint", 0.08f, 0.22f, 0.45f, 0.2f, 0.4f), steel = Steel(), tail = TailLight();
    AddBlock(paint, {{-72, -138, -20}, {72, 138, 80}});
    AddBlockEachSide(paint, {{74, -58, 2}, {102, 18, 6}});  // over the wheels
    for (const float y : {-138.0f, 134.0f}) AddBlock(steel, {{-74, y, 78}, {74, y + 4.0f, 82}});
    AddTube(steel, {-76, -20, -30}, {76, -20, -30}, 4.0f);
    AddDrawbar(steel, 45.0f, 138.0f, 250.0f, -15.0f);
    AddBlock(steel, {{-5, -158, -24}, {5, -130, -19}});  // for one more behind it
    AddBlockEachSide(tail, {{48, -140, -12}, {66, -138, 0}});
    return {{std::move(paint), std::move(steel), std::move(tail)}};
}

Shape SecondTrailerShape() {
    ShapePart paint = Part("boards", 0.30f, 0.17f, 0.06f, 0.0f, 0.8f), steel = Steel(), tail = TailLight();
    AddBlock(paint, {{-70, -108, -8}, {70, 108, -2}});
    AddBlockEachSide(paint, {{66, -108, -2}, {70, 108, 28}});
    for (const float y : {-108.0f, 104.0f}) AddBlock(paint, {{-66, y, -2}, {66, y + 4.0f, 28}});
    AddBlockEachSide(steel, {{72, -48, 6}, {94, 20, 9}});
    AddTube(steel, {-72, -14, -24}, {72, -14, -24}, 3.5f);
    AddDrawbar(steel, 40.0f, 108.0f, 200.0f, -7.5f);
    AddBlockEachSide(tail, {{46, -110, -8}, {62, -108, 2}});
    return {{std::move(paint), std::move(steel), std::move(tail)}};
}

Shape MotorcycleShape() {
    ShapePart paint = Part("tank_paint", 0.50f, 0.25f, 0.01f, 0.2f, 0.35f), steel = Steel(), head = HeadLight();
    ShapePart leather = Part("leather", 0.02f, 0.02f, 0.025f, 0.0f, 0.7f),
              helmet = Part("helmet", 0.6f, 0.6f, 0.62f, 0.1f, 0.2f);
    AddTubeEachSide(steel, {13, 76, -30}, {13, 42.6f, 45}, 2.5f);  // fork
    AddTube(steel, {-14, 44, 42}, {14, 44, 42}, 2.5f);
    AddTube(steel, {-36, 40, 43}, {36, 40, 43}, 1.8f);  // handlebar
    AddTube(steel, {0, 46, 34}, {0, -5, -30}, 3.0f);    // frame
    AddTube(steel, {0, 46, 34}, {0, -62, 18}, 3.0f);
    AddTubeEachSide(steel, {12, -8, -22}, {12, -68, -30}, 3.0f);  // swing arm
    AddTubeEachSide(steel, {12, -40, -26}, {10, -42, 18}, 2.5f);
    AddBlock(steel, {{-14, -24, -36}, {14, 34, 4}});  // engine
    AddTube(steel, {18, 20, -30}, {18, -88, -22}, 4.0f);
    AddTube(steel, {-26, -5, -24}, {26, -5, -24}, 2.0f);
    AddTube(paint, {0, 38, 26}, {0, -2, 22}, 15.0f);  // tank
    AddTube(paint, {0, 100, 6}, {0, 52, 6}, 5.0f);    // mudguards
    AddTube(paint, {0, -50, 14}, {0, -98, 12}, 7.0f);
    AddTube(leather, {0, -4, 20}, {0, -62, 22}, 11.0f);
    AddTube(head, {0, 50, 34}, {0, 60, 33}, 8.0f);
    AddRider(leather, helmet);
    return {{std::move(paint), std::move(steel), std::move(leather), std::move(helmet), std::move(head)}};
}

Shape SixWheelerShape() {
    ShapePart paint = Part("cab_paint", 0.05f, 0.30f, 0.12f, 0.1f, 0.4f), steel = Steel(), glass = Glass();
    ShapePart bed = Part("bed", 0.25f, 0.24f, 0.20f, 0.1f, 0.7f), head = HeadLight(), tail = TailLight();
    AddBlockEachSide(steel, {{30, -320, -12}, {44, 300, 8}});  // frame
    for (const float y : {210.0f, -90.0f, -220.0f}) AddTube(steel, {-86, y, -48}, {86, y, -48}, 8.0f);
    AddBlock(steel, {{-118, 285, -48}, {118, 328, -6}});  // bumper
    AddBlock(paint, {{-116, 140, 8}, {116, 322, 78}});    // cab
    AddBlock(paint, {{-110, 146, 78}, {110, 312, 160}});
    AddBlock(glass, {{-100, 308, 86}, {100, 315, 146}});
    AddBlockEachSide(glass, {{106, 190, 86}, {112, 296, 146}});
    AddBlock(bed, {{-118, -324, 10}, {118, 120, 20}});
    AddBlockEachSide(bed, {{112, -324, 20}, {118, 120, 92}});
    for (const float y : {-324.0f, 114.0f}) AddBlock(bed, {{-112, y, 20}, {112, y + 6.0f, 92}});
    AddBlockEachSide(head, {{74, 320, 14}, {104, 326, 36}});
    AddBlockEachSide(tail, {{80, -327, 10}, {112, -324, 20}});
    return {{std::move(paint), std::move(bed), std::move(steel), std::move(glass), std::move(head), std::move(tail)}};
}

}  // namespace tavrik

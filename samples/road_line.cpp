#include "samples/road_line.h"

#include <cmath>
#include <numbers>

namespace tavrik {
namespace {

/// A straight, and the quarter of a circle behind it.
struct Leg {
    double straight, radius;  // metres
    bool right;
};

// Their ways add up to nothing, so that the lap closes by itself.
constexpr Leg kLegs[] = {{175, 37.5, true}, {75, 25, true},       {25, 25, false},  {37.5, 50, true},
                         {75, 43.75, true}, {62.5, 31.25, false}, {0, 31.25, true}, {31.25, 50, true}};

// A quarter is made of ten chords of 9 degrees each, the first one half of that off the straight. Written numbers, since
// libraries round sines their own ways.
constexpr int kChords = 10;
constexpr double kCosine = 0.98768834059513777, kSine = 0.15643446504023087;
constexpr double kHalfCosine = 0.99691733373312796, kHalfSine = 0.078459095727844944;

/// `way` turned to its right; to its left with a negative sine.
RoadPoint Turned(const RoadPoint& way, double cosine, double sine) {
    return {way.x * cosine + way.y * sine, way.y * cosine - way.x * sine};
}

RoadPoint Ahead(const RoadPoint& from, const RoadPoint& way, double metres) {
    return {from.x + way.x * metres, from.y + way.y * metres};
}

}  // namespace

double Distance(const RoadPoint& a, const RoadPoint& b) {
    const double x = b.x - a.x, y = b.y - a.y;
    return std::sqrt(x * x + y * y);
}

double LengthOf(const RoadLine& line) {
    double length = 0.0;
    for (std::size_t i = 0; i < line.Pieces(); ++i) length += Distance(line.points[i], line.EndOf(i));
    return length;
}

double HeadingAtStart(const RoadLine& line) {
    const RoadPoint &a = line.points[0], &b = line.points[1];
    return std::atan2(b.x - a.x, b.y - a.y) * 180.0 / std::numbers::pi;
}

RoadLine Divided(const RoadLine& line, double step) {
    RoadLine result;
    result.closed = line.closed;
    for (std::size_t i = 0; i < line.Pieces(); ++i) {
        const RoadPoint &a = line.points[i], &b = line.EndOf(i);
        const int parts = int(std::ceil(Distance(a, b) / step));
        for (int part = 0; part < parts; ++part) {
            const double t = double(part) / parts;
            result.points.push_back({a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t});
        }
    }
    if (!line.closed && !line.points.empty()) result.points.push_back(line.points.back());
    return result;
}

RoadLine SampleCircuit() {
    RoadLine line;
    line.closed = true;
    RoadPoint at{0, 0}, way{0, 1};
    line.points.push_back(at);
    for (const Leg& leg : kLegs) {
        if (leg.straight > 0.0) line.points.push_back(at = Ahead(at, way, leg.straight));
        const double side = leg.right ? 1.0 : -1.0;
        RoadPoint chord = Turned(way, kHalfCosine, side * kHalfSine);
        for (int i = 0; i < kChords; ++i) {
            line.points.push_back(at = Ahead(at, chord, 2.0 * leg.radius * kHalfSine));
            chord = Turned(chord, kCosine, side * kSine);
        }
        way = Turned(way, 0.0, side);
    }
    return line;
}

}  // namespace tavrik

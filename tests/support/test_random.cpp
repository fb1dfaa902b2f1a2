#include "tests/support/test_random.h"

#include <cstdio>
#include <cstdlib>

namespace tavrik::test {

// xorshift64*: George Marsaglia, "Xorshift RNGs", 2003; the multiplier from Sebastiano Vigna, "An experimental exploration of
// Marsaglia's xorshift generators, scrambled", 2016.
std::uint64_t TestRandom::Bits() {
    if (state_ == 0) state_ = 0x9E3779B97F4A7C15u;
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    return state_ * 0x2545F4914F6CDD1Du;
}

double TestRandom::Unit() { return double(Bits() >> 11) * 0x1p-53; }
double TestRandom::Between(double low, double high) { return low + (high - low) * Unit(); }
float TestRandom::Between(float low, float high) { return low + (high - low) * float(Unit()); }
int TestRandom::Int(int low, int high) { return low + int(Bits() % std::uint64_t(high - low + 1)); }

Point3 TestRandom::PointIn(const Box3& box) {
    const float x = Between(box.pmin.x, box.pmax.x);
    const float y = Between(box.pmin.y, box.pmax.y);
    const float z = Between(box.pmin.z, box.pmax.z);
    return {x, y, z};
}

DPoint3 TestRandom::Vector(double largest) {
    const double x = Between(-largest, largest);
    const double y = Between(-largest, largest);
    const double z = Between(-largest, largest);
    return {x, y, z};
}

DMatrix3 TestRandom::Turn() {
    DMatrix3 m = IdentityDMatrix3();
    RotateX(m, Between(-3.0, 3.0));
    RotateY(m, Between(-3.0, 3.0));
    RotateZ(m, Between(-3.0, 3.0));
    return m;
}

std::uint64_t TestSeed(std::uint64_t fallback) {
    const char* text = std::getenv("TAVRIK_TEST_SEED");
    return text != nullptr ? std::strtoull(text, nullptr, 10) : fallback;
}

int TestRounds(int fallback) {
    const char* text = std::getenv("TAVRIK_TEST_ROUNDS");
    return text != nullptr ? int(std::strtol(text, nullptr, 10)) : fallback;
}

std::string Digits(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}
std::string Digits(float value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.9g", double(value));
    return text;
}
std::string Digits(const Point3& p) { return "(" + Digits(p.x) + ", " + Digits(p.y) + ", " + Digits(p.z) + ")"; }
std::string Digits(const DPoint3& p) { return "(" + Digits(p.x) + ", " + Digits(p.y) + ", " + Digits(p.z) + ")"; }

std::string DataFolder() {
    const char* folder = std::getenv("TAVRIK_DATA");
    return folder != nullptr ? folder : TAVRIK_DATA_FOLDER;
}

}  // namespace tavrik::test

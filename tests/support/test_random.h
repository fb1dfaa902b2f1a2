#pragma once
/// Random inputs for tests: a seed and a number of rounds that the environment can override for a long run, and texts that show
/// a failing input with all its digits.

#include <cstdint>
#include <string>

#include "solver/double_maths.h"
#include "solver/single_maths.h"

namespace tavrik::test {

/// A small generator of the tests' own, so that no test depends on the generator it may be testing.
class TestRandom {
 public:
    explicit TestRandom(std::uint64_t seed) : state_(seed) {}
    std::uint64_t Bits();
    double Unit();  // [0, 1)
    double Between(double low, double high);
    float Between(float low, float high);
    int Int(int low, int high);  // both ends belong to it
    Point3 PointIn(const Box3& box);
    DPoint3 Vector(double largest);  // each component in -largest..largest
    DMatrix3 Turn();                 // orthonormal, right-handed, at the origin

 private:
    std::uint64_t state_;
};

/// `fallback`, or TAVRIK_TEST_SEED from the environment.
std::uint64_t TestSeed(std::uint64_t fallback);
/// `fallback`, or TAVRIK_TEST_ROUNDS from the environment.
int TestRounds(int fallback);

std::string Digits(float value);
std::string Digits(double value);
std::string Digits(const Point3& p);
std::string Digits(const DPoint3& p);

/// The folder of real input data: TAVRIK_DATA from the environment, else where the build found it.
std::string DataFolder();

}  // namespace tavrik::test

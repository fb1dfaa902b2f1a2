#pragma once
/// The tread of a tyre as plain memory, so that a render needs nothing of the host to read it.

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "solver/single_maths.h"

namespace tavrik {

constexpr std::size_t kTreadColumns = 512;  // across the tyre
constexpr std::size_t kTreadRows = 2048;    // around it
constexpr std::size_t kTreadEntries = kTreadColumns * kTreadRows;

/// Row by row, kTreadColumns to a row. Column i stands at u = i / (kTreadColumns - 1), row j at v = j / (kTreadRows - 1), so
/// that both edges of the map have entries of their own.
using TreadTable = std::vector<float>;
/// Renders keep a table alive for as long as they read it.
using SharedTread = std::shared_ptr<const TreadTable>;

/// A table of `mono` at all entries: columns one after the other, each from its first row to its last.
///
/// @param mono  the height of the tread at (u, v), both 0..1
SharedTread MakeTread(const std::function<float(float u, float v)>& mono);
/// The table that nothing was written to yet: 0 everywhere. All wheels begin with this one.
SharedTread EmptyTread();
/// The table of a tyre without a tread map: 1 everywhere. All such tyres share one.
SharedTread EvenTread();

/// What a table says at one place.
struct TreadSample {
    float value;
    Point3 gradient;  // by column and row; z is 0
};

/// Reads a table. Places outside of 0..1 come round again, behind the last row comes the first.
///
/// @param map  kTreadEntries floats
///
/// Reads only; any number of threads may ask at once.
TreadSample SampleTread(const float* map, float u, float v);

}  // namespace tavrik

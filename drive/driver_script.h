#pragma once
/// A driver written down beforehand: what the pedals and the wheel do at which second of a run.

#include <vector>

#include "solver/drive_input.h"

namespace tavrik {

/// One row of a script, in force from its second until the next row's.
struct DriverRow {
    double seconds = 0.0;   // since the start of the run
    float steering = 0.0f;  // -1 full left .. 1 full right
    float throttle = 0.0f;  // 0 .. 1, 1 is a key held down
    float brake = 0.0f;     // 0 .. 1, likewise
    bool handBrake = false;
    bool reverse = false;
};

/// Rows in ascending order of time. Before the first row nothing is touched.
struct DriverScript {
    std::vector<DriverRow> rows;
};

/// The row in force at `seconds`.
DriverRow RowAt(const DriverScript& script, double seconds);

/// Fills the fields of `input` that a driver fills in each tick; settings in it stay.
void ApplyRow(const DriverRow& row, DriveInput& input);

}  // namespace tavrik

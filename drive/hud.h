#pragma once
/// The face of the drive window: speed, gear, bars for throttle and brake, lamps for nitro and hand brake, and the prompt that
/// tells the driver what to do next.

#include "drive/canvas.h"
#include "solver/single_maths.h"

namespace tavrik {

/// What the display shows, filled by the drive session for each drawing.
struct HudState {
    Point3 velocity = {};             // of the chassis at the host's present time, unit/s
    double kilometresPerUnit = 1e-5;  // the host's master scale in kilometres
    bool reverse = false;             // the gear is backward
    bool nitro = false;
    bool handBrake = false;
    float throttle = 0.0f;  // as DriveInput has it, 4 is a key held down
    float brake = 0.0f;     // likewise
    bool active = false;    // the window has the user's attention
    bool running = false;   // the car is being driven
};

/// Paints the whole client area of `canvas`. What was selected into it before is selected again in the end.
///
/// The speed is never signed: a car that rolls backward shows a positive number. Whatever the state holds, infinities and NaNs
/// included, the number of operations stays small.
void DrawHud(const HudState& state, Canvas& canvas);

}  // namespace tavrik

#pragma once
/// Two drivers in the hands' place. Both try a few dozen ways to steer on a simple model of the car, score each against where
/// the target will be or where the road is, and take the best.

#include "drive/drive_session.h"

namespace tavrik {

/// Something that moves by a timetable.
class TargetPositions {
 public:
    virtual ~TargetPositions() = default;
    virtual Point3 PositionAt(TimeValue tick) const = 0;
};

/// Steers and accelerates so as to be where the target will be: fills `steerTarget` and `throttle` of the session's input. The
/// target is asked for a hundred ticks, over twice the forecast from the host's present time.
///
/// @param target  null: nothing happens
/// A car that isn't locked is left alone too: it has no place to drive from.
void DriveToTarget(DriveSession& session, const TargetPositions* target);

/// Steers along the session's path: fills `steerTarget`. The speed is the hands'.
void DriveAlongPath(DriveSession& session);

}  // namespace tavrik

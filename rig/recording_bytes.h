#pragma once
/// The byte image in which a scene file keeps a recording.
//
//  valid  unitCount  frames  capacity                             i32 each; an image without a recording ends after `valid`, 0
//  times[capacity]                                                i32
//  steer[capacity]     steerValue, steerSpare                     f64
//  chassis[capacity]   frame by rows, momentum, angularMomentum   f64
//  for each unit       wheels[capacity] like chassis, then buffers[capacity]    f64
//
// Little-endian, nothing between the fields.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "rig/recorded_motion.h"

namespace tavrik {

/// The image of a recording: all of its room, entries of no frame as they stand there; four bytes where there is no recording.
std::string SaveRecording(const RecordedMotion& motion);

/// What of an image tells how long the rest is.
constexpr std::size_t kRecordingHeadBytes = 16;
/// How long an image is whose first bytes are `head`; one with counts that can't be asks for no more than its head.
/// @param head  up to kRecordingHeadBytes, as many as there are
std::size_t RecordingBytes(std::string_view head);

/// Puts a saved recording in place of the present one, its room included: saved again it gives the same bytes. Whoever calls it
/// for a car sets the car's `velocitiesStale`, as an image has no velocities.
///
/// @param image    whole; one of another length than its counts ask for is refused before anything is allocated
/// @param problem  on false: one sentence for the user, such as "the recording is damaged: its frame 12 is earlier than the one
///                 before; take the scene from a backup."
/// @return false, with `motion` as it was, when the image can't have come from a recording
bool LoadRecording(std::string_view image, RecordedMotion& motion, std::string& problem);

/// Reads no more than the ticks of a saved recording's frames, that of the assembly first; none where there is no recording.
bool LoadRecordedTimes(std::string_view image, std::vector<TimeValue>& times, std::string& problem);

}  // namespace tavrik

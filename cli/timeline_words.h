#pragma once
/// Frames and looks of pictures, as the opened scene understands them.

#include <filesystem>
#include <optional>
#include <string>

#include "cli/render_words.h"
#include "host/render/track_painter.h"

namespace tavrik_cli {

/// The frames that were asked for, or all of the timeline.
/// @param problem  on false: one sentence; the timeline has no such frames
bool FramesOf(const std::filesystem::path& scene, const std::optional<tavrik::FrameRange>& asked, int& first, int& last,
              std::string& problem);

tavrik_host::TrackLook ToLook(const tavrik::TrackOrder& order);

}  // namespace tavrik_cli

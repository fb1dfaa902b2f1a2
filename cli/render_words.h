#pragma once
/// The words of the commands that take pictures of scenes.

#include <CLI/CLI.hpp>
#include <array>
#include <filesystem>
#include <optional>
#include <string>

namespace tavrik {

/// A range of frames of the timeline.
struct FrameRange {
    int first = 0, last = 0;
};

/// How tyre tracks look.
struct TrackOrder {
    float roll = 0.3f, skid = 8.0f, dent = 3.0f, treadDepth = 5.0f;
    int samples = 20;
    std::filesystem::path tread;  // empty: as the scene has it
};

using MetresXYZ = std::array<float, 3>;

/// `tavrik render`
struct RenderOrder {
    std::filesystem::path scene;
    std::string out, master, camera = "follow";
    std::optional<FrameRange> frames;  // none: the whole timeline
    int width = 1280, height = 720, samples = 12, threads = 0;
    bool resume = false, tracks = true;
    TrackOrder look;
    std::optional<MetresXYZ> eye, target;  // from the car: to the right, ahead and up
    float lens = 40.0f, span = 25.0f;
    float sunAzimuth = 235.0f, sunElevation = 42.0f;  // degrees
};

/// `tavrik tracks`
struct TracksOrder {
    std::filesystem::path scene;
    std::string out, bump;             // no bump: not wanted
    std::optional<FrameRange> frames;  // none: one picture
    std::optional<double> atSeconds;   // of it; none: the end of the timeline
    int size = 2048, threads = 0;
    TrackOrder look;
};

/// Words as they were typed, beside those that stand in the orders at once.
struct PictureWords {
    std::string scene, frames, size = "1280x720", eye, target, sun = "235,42";
    double at = 0.0;
    bool noTracks = false;
    RenderOrder render;
    TracksOrder tracks;
};

void AddRenderOptions(CLI::App& app, PictureWords& words);
void AddTracksOptions(CLI::App& app, PictureWords& words);

/// @param problem  on false: what is wrong with the words, without a full stop
bool MakeRenderOrder(const PictureWords& words, RenderOrder& order, std::string& problem);
bool MakeTracksOrder(const CLI::App& app, const PictureWords& words, TracksOrder& order, std::string& problem);

/// Carries the order out. @return the exit status
int RunRender(const RenderOrder& order);
int RunTracks(const TracksOrder& order);

}  // namespace tavrik

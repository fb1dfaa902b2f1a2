#pragma once
/// Tyre tracks in a render: one map of the plug-in to each car, asked through the host's class of texture maps.

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/sdk/imtl.h"
#include "host/sdk/max.h"

namespace tavrik_host {

/// What an artist sets on the map. The plug-in's own defaults show skid marks alone.
struct TrackLook {
    float roll = 0.3f;   // how dark a rolling tyre colours
    float skid = 8.0f;   // and how much a sliding one adds
    int samples = 20;    // places at which a tyre is tried, per wheel radius of way
    float dent = 3.0f;   // how deep the tyre presses in
    float tread = 5.0f;  // and its tread
};

struct TrackMark {
    float value = 1.0f;    // what the ground's colour is multiplied by
    Point3 bump{0, 0, 0};  // what is added to its normal, world
};

/// The maps of a render. Made, updated and destroyed on one thread; between two updates any number of threads may ask.
class TrackPainter {
 public:
    /// The plug-in must be loaded.
    TrackPainter(std::span<INode* const> masters, const TrackLook& look);
    ~TrackPainter();
    TrackPainter(const TrackPainter&) = delete;
    TrackPainter& operator=(const TrackPainter&) = delete;

    /// Makes ready for a frame.
    void Update(TimeValue tick);
    bool PaintsAnything() const { return !maps_.empty(); }
    TrackMark At(ShadeContext& point) const;

 private:
    class Holder;
    std::vector<std::unique_ptr<Holder>> maps_;
};

/// Has all wheels sample their treads, as every render begins.
void BeginRender();
void EndRender();

/// Puts a picture on every wheel as its tread.
/// @param problem  on false: it can't be read, one sentence; no wheel has changed
bool SetTreads(const std::filesystem::path& picture, std::string& problem);

}  // namespace tavrik_host

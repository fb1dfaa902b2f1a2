#pragma once
/// What a ray sees: surfaces in sun and sky.

#include <cstdint>

#include "host/render/daylight.h"
#include "host/render/ray_scene.h"
#include "host/render/track_painter.h"

namespace tavrik_host {

/// Numbers between 0 and 1 for one sample of one pixel: spread evenly over the samples of a pixel, shifted from pixel to pixel.
/// They depend on nothing else, so that no picture differs from the next time it is taken.
class SampleNumbers {
 public:
    SampleNumbers(std::uint32_t x, std::uint32_t y, std::uint32_t sample)
        : pixel_(Hash(x + 0x9e3779b9u * Hash(y))), sample_(sample) {}
    Point2 Next();

 private:
    static std::uint32_t Hash(std::uint32_t x);

    std::uint32_t pixel_, sample_, pair_ = 0;
};

class Shading {
 public:
    /// @param pixelAngle  how much wider a ray gets on each unit of its way; of a flat view 0, with `pixelSize` instead
    Shading(const RayFrame& frame, const RenderModel& model, const Daylight& day, const TrackPainter* tracks, TimeValue tick,
            float pixelAngle, float pixelSize)
        : frame_(frame),
          model_(model),
          day_(day),
          tracks_(tracks),
          tick_(tick),
          pixelAngle_(pixelAngle),
          pixelSize_(pixelSize) {}

    /// What comes along a ray, from whatever it meets.
    Light Along(Ray ray, SampleNumbers& numbers) const;

 private:
    struct Surface;
    Surface SurfaceAt(const RayHit& hit, const Point3& direction) const;
    Light Lit(const Surface& surface, const RayHit& hit, const Point3& toEye, SampleNumbers& numbers) const;
    Light Mirrored(const Surface& surface, const RayHit& hit, const Point3& toEye) const;
    bool SunReaches(const Surface& surface, const RayHit& hit, const Point2& number) const;
    bool SkyReaches(const Surface& surface, const RayHit& hit, const Point2& number) const;

    const RayFrame& frame_;
    const RenderModel& model_;
    const Daylight& day_;
    const TrackPainter* tracks_;
    TimeValue tick_;
    float pixelAngle_, pixelSize_;
};

}  // namespace tavrik_host

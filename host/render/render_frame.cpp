#include "host/render/render_frame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "host/render/parallel_rows.h"
#include "host/render/shading.h"

namespace tavrik_host {
namespace {

// Samples of a pixel that differ by less than this, in steps of the picture, need no more of them.
constexpr float kCalm = 5.0f;

/// Brightnesses as the eye takes them: bright ones crowd together below white, and steps are those of a screen (sRGB).
float ToScreen(float linear) {
    constexpr float kShoulder = 0.65f, kRest = 1.0f - kShoulder;
    float c = std::max(0.0f, linear);
    if (c > kShoulder) c = kShoulder + kRest * (1.0f - std::exp((kShoulder - c) / kRest));
    return c <= 0.0031308f ? 12.92f * c : 1.055f * std::pow(c, 1.0f / 2.4f) - 0.055f;
}

std::uint8_t ToByte(float screen) { return std::uint8_t(std::clamp(screen, 0.0f, 1.0f) * 255.0f + 0.5f); }

Light ToScreen(const Light& light) { return {ToScreen(light.x), ToScreen(light.y), ToScreen(light.z)}; }

class PixelMaker {
 public:
    PixelMaker(const Shading& shading, const RenderCamera& camera, const RenderSettings& settings)
        : shading_(shading), camera_(camera), settings_(settings) {}

    tavrik::RgbPixel At(int x, int y) const {
        // Mixed as the screen shows them, so that an edge against the sky looks as smooth as any other.
        const int samples = std::max(1, settings_.samples), first = std::min(samples, std::max(4, samples / 4));
        Light sum(0, 0, 0), low(1e9f, 1e9f, 1e9f), high(-1e9f, -1e9f, -1e9f);
        int taken = 0;
        for (; taken < samples; ++taken) {
            if (taken == first && IsCalm(low, high)) break;
            const Light c = Sample(x, y, taken);
            sum += c;
            low = Point3(std::min(low.x, c.x), std::min(low.y, c.y), std::min(low.z, c.z));
            high = Point3(std::max(high.x, c.x), std::max(high.y, c.y), std::max(high.z, c.z));
        }
        const Light mean = sum * (1.0f / float(taken));
        return {ToByte(mean.x), ToByte(mean.y), ToByte(mean.z)};
    }

 private:
    static bool IsCalm(const Light& low, const Light& high) {
        const Light span = high - low;
        return std::max({span.x, span.y, span.z}) * 255.0f < kCalm;
    }

    Light Sample(int x, int y, int sample) const {
        SampleNumbers numbers{std::uint32_t(x), std::uint32_t(y), std::uint32_t(sample)};
        const Point2 within = numbers.Next();
        const Ray ray =
            camera_.Through((float(x) + within.x) / float(settings_.width), (float(y) + within.y) / float(settings_.height));
        return ToScreen(shading_.Along(ray, numbers));
    }

    const Shading& shading_;
    const RenderCamera& camera_;
    const RenderSettings& settings_;
};

}  // namespace

tavrik::RgbImage TakePicture(const RayFrame& frame, const RenderModel& model, const RenderCamera& camera,
                             const TrackPainter* tracks, TimeValue tick, const RenderSettings& settings,
                             const std::function<void(double)>& done) {
    const Daylight day(settings.sunAzimuth, settings.sunElevation);
    const float pixel = 2.0f * camera.halfHeight / float(settings.height);
    const Shading shading(frame, model, day, tracks, tick, camera.isFlat ? 0.0f : pixel, camera.isFlat ? pixel : 0.0f);
    const PixelMaker pixels(shading, camera, settings);
    tavrik::RgbImage image;
    image.width = settings.width;
    image.height = settings.height;
    image.pixels.resize(std::size_t(settings.width) * std::size_t(settings.height));
    constexpr int kRows = 4;
    const auto makeBand = [&](int band) {
        for (int y = band * kRows; y < std::min(settings.height, (band + 1) * kRows); ++y) {
            for (int x = 0; x < settings.width; ++x) image.At(x, y) = pixels.At(x, y);
        }
    };
    InParallel((settings.height + kRows - 1) / kRows, settings.threads, done, makeBand, settings.stop);
    return image;
}

}  // namespace tavrik_host

#include "host/render/line_overlay.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/render/parallel_rows.h"

namespace tavrik_host {
namespace {

constexpr float kNothing = std::numeric_limits<float>::infinity();
constexpr float kNearestLine = 1e-3f;

/// A place in the picture with its depth.
struct PicturePoint {
    float x, y;
    float depth;
};

class Projection {
 public:
    Projection(const RenderCamera& camera, int width, int height) : camera_(camera), width_(width), height_(height) {}

    float DepthOf(const Point3& p) const { return DotProd(p - camera_.eye, camera_.ahead); }
    PicturePoint At(const Point3& p) const {
        const Point3 d = p - camera_.eye;
        const float depth = DotProd(d, camera_.ahead);
        const float half = camera_.halfHeight * (camera_.isFlat ? 1.0f : depth);
        return {0.5f * float(width_) * (1.0f + DotProd(d, camera_.right) / (half * camera_.aspect)),
                0.5f * float(height_) * (1.0f - DotProd(d, camera_.up) / half), depth};
    }
    bool IsFlat() const { return camera_.isFlat; }

 private:
    const RenderCamera& camera_;
    int width_, height_;
};

/// Narrows t0..t1 to where `a + (b - a) * t` is at least `low`.
void KeepAbove(float a, float b, float low, float& t0, float& t1) {
    if (a < low && b < low) t1 = -1.0f;
    if ((a < low) == (b < low)) return;
    const float t = (low - a) / (b - a);
    if (a < low) {
        t0 = std::max(t0, t);
    } else {
        t1 = std::min(t1, t);
    }
}

PicturePoint Between(const PicturePoint& a, const PicturePoint& b, float t, bool isFlat) {
    const auto mix = [t](float from, float to) { return from + (to - from) * t; };
    // What is farther away is drawn closer together.
    const float depth = isFlat ? mix(a.depth, b.depth) : 1.0f / mix(1.0f / a.depth, 1.0f / b.depth);
    return {mix(a.x, b.x), mix(a.y, b.y), depth};
}

/// One drawing: how much of each pixel its lines and their rims cover, before and behind the surfaces.
class Drawing {
 public:
    Drawing(const DepthPicture& depths, const LineLook& look)
        : depths_(depths), look_(look), left_(depths.width), top_(depths.height), cover_(depths.depths.size()) {}

    void Add(const Projection& projection, const ViewLine& line) {
        Point3 from = line.from, to = line.to;
        if (!projection.IsFlat()) {
            float t0 = 0.0f, t1 = 1.0f;
            KeepAbove(projection.DepthOf(from), projection.DepthOf(to), kNearestLine, t0, t1);
            if (t0 > t1) return;
            const Point3 way = to - from;
            to = from + way * t1;
            from += way * t0;
        }
        Stroke(projection.At(from), projection.At(to), projection.IsFlat());
    }

    /// Lays it over a picture, and is empty then.
    void PaintOver(tavrik::RgbImage& image, const Color& color) {
        const bool isBright = 0.3f * color.r + 0.59f * color.g + 0.11f * color.b > 0.35f;
        const float rim = isBright ? 0.0f : 1.0f;
        for (int y = top_; y < bottom_; ++y) {
            for (int x = left_; x < right_; ++x) {
                Cover& cover = cover_[std::size_t(y) * std::size_t(depths_.width) + std::size_t(x)];
                if (cover.rim > 0.0f) Mix(image.At(x, y), Color(rim, rim, rim), kRim * cover.rim);
                const float line = std::max(cover.before, look_.behind * cover.behind);
                if (line > 0.0f) Mix(image.At(x, y), color, line);
                cover = {};
            }
        }
        left_ = depths_.width;
        top_ = depths_.height;
        right_ = bottom_ = 0;
    }

 private:
    static constexpr float kRim = 0.3f, kRimWidth = 1.0f;
    struct Cover {
        float before = 0.0f, behind = 0.0f, rim = 0.0f;
    };

    static void Mix(tavrik::RgbPixel& pixel, const Color& color, float part) {
        const auto mix = [part](std::uint8_t old, float fresh) {
            return std::uint8_t(std::clamp(float(old) * (1.0f - part) + 255.0f * fresh * part + 0.5f, 0.0f, 255.0f));
        };
        pixel = {mix(pixel.red, color.r), mix(pixel.green, color.g), mix(pixel.blue, color.b)};
    }

    void Stroke(PicturePoint a, PicturePoint b, bool isFlat) {
        const float reach = 0.5f * look_.width + kRimWidth + 1.0f;
        float t0 = 0.0f, t1 = 1.0f;
        KeepAbove(a.x, b.x, -reach, t0, t1);
        KeepAbove(a.y, b.y, -reach, t0, t1);
        KeepAbove(-a.x, -b.x, -float(depths_.width) - reach, t0, t1);
        KeepAbove(-a.y, -b.y, -float(depths_.height) - reach, t0, t1);
        if (t0 > t1 || !std::isfinite(a.x + a.y + b.x + b.y)) return;
        const PicturePoint from = Between(a, b, t0, isFlat), to = Between(a, b, t1, isFlat);
        // Row by row, only as wide as the line is there.
        const int first = std::max(0, int(std::floor(std::min(from.y, to.y) - reach)));
        const int last = std::min(depths_.height - 1, int(std::ceil(std::max(from.y, to.y) + reach)));
        for (int y = first; y <= last; ++y) {
            float low = 0.0f, high = 1.0f;
            KeepAbove(from.y, to.y, float(y) + 0.5f - reach, low, high);
            KeepAbove(-from.y, -to.y, -(float(y) + 0.5f + reach), low, high);
            if (low > high) continue;
            const float x0 = from.x + (to.x - from.x) * low, x1 = from.x + (to.x - from.x) * high;
            Row(from, to, y, std::max(0, int(std::floor(std::min(x0, x1) - reach))),
                std::min(depths_.width - 1, int(std::ceil(std::max(x0, x1) + reach))), isFlat);
        }
    }

    void Row(const PicturePoint& a, const PicturePoint& b, int y, int first, int last, bool isFlat) {
        const float dx = b.x - a.x, dy = b.y - a.y, squared = dx * dx + dy * dy;
        for (int x = first; x <= last; ++x) {
            const float px = float(x) + 0.5f, py = float(y) + 0.5f;
            const float t = squared > 0.0f ? std::clamp(((px - a.x) * dx + (py - a.y) * dy) / squared, 0.0f, 1.0f) : 0.0f;
            const float off = std::hypot(a.x + t * dx - px, a.y + t * dy - py);
            const float line = std::clamp(0.5f * look_.width + 0.5f - off, 0.0f, 1.0f);
            const float rim = std::clamp(0.5f * look_.width + kRimWidth + 0.5f - off, 0.0f, 1.0f);
            if (rim > 0.0f) Take(x, y, Between(a, b, t, isFlat).depth, line, rim);
        }
    }

    void Take(int x, int y, float depth, float line, float rim) {
        const std::size_t i = std::size_t(y) * std::size_t(depths_.width) + std::size_t(x);
        Cover& cover = cover_[i];
        if (depth <= depths_.depths[i] + look_.sunk) {
            cover.before = std::max(cover.before, line);
            cover.rim = std::max(cover.rim, rim);
        } else {
            cover.behind = std::max(cover.behind, line);
            cover.rim = std::max(cover.rim, look_.behind * rim);
        }
        left_ = std::min(left_, x);
        right_ = std::max(right_, x + 1);
        top_ = std::min(top_, y);
        bottom_ = std::max(bottom_, y + 1);
    }

    const DepthPicture& depths_;
    const LineLook& look_;
    int left_, top_, right_ = 0, bottom_ = 0;  // what has been drawn on
    std::vector<Cover> cover_;
};

bool IsSame(const Color& a, const Color& b) { return a.r == b.r && a.g == b.g && a.b == b.b; }

}  // namespace

DepthPicture TakeDepths(const RayFrame& frame, const RenderCamera& camera, int width, int height, int threads) {
    DepthPicture picture{width, height, std::vector<float>(std::size_t(width) * std::size_t(height), kNothing)};
    InParallel(height, threads, {}, [&](int y) {
        for (int x = 0; x < width; ++x) {
            const Ray ray = camera.Through((float(x) + 0.5f) / float(width), (float(y) + 0.5f) / float(height));
            RayHit hit;
            if (!frame.Meets(ray, hit)) continue;
            picture.depths[std::size_t(y) * std::size_t(width) + std::size_t(x)] =
                hit.distance * DotProd(ray.direction, camera.ahead);
        }
    });
    return picture;
}

void PaintLines(tavrik::RgbImage& image, const DepthPicture& depths, const RenderCamera& camera,
                std::span<const ViewLine> lines, const LineLook& look) {
    const Projection projection(camera, depths.width, depths.height);
    Drawing drawing(depths, look);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        drawing.Add(projection, lines[i]);
        if (i + 1 == lines.size() || !IsSame(lines[i].color, lines[i + 1].color)) drawing.PaintOver(image, lines[i].color);
    }
}

}  // namespace tavrik_host

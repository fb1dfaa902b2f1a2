#include "host/render/track_bake.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/render/parallel_rows.h"
#include "host/render/shade_point.h"

namespace tavrik_host {
namespace {

constexpr int kBorder = 4;  // pixels around each piece of the ground, so that what blends pixels finds no edge

constexpr tavrik::RgbPixel kUntouched{255, 255, 255}, kLevel{128, 128, 255};

std::uint8_t ToByte(float value) { return std::uint8_t(std::clamp(value, 0.0f, 1.0f) * 255.0f + 0.5f); }

/// A share of light as pictures hold it (sRGB).
std::uint8_t ToColorByte(float linear) {
    const float c = std::clamp(linear, 0.0f, 1.0f);
    return ToByte(c <= 0.0031308f ? 12.92f * c : 1.055f * std::pow(c, 1.0f / 2.4f) - 0.055f);
}

/// Where a place lies in a triangle: its shares of the three corners.
struct Shares {
    double a = 0.0, b = 0.0, c = 0.0;
};

bool SharesOf(const Point2* corners, double x, double y, Shares& shares) {
    const double x1 = double(corners[1].x) - double(corners[0].x), y1 = double(corners[1].y) - double(corners[0].y);
    const double x2 = double(corners[2].x) - double(corners[0].x), y2 = double(corners[2].y) - double(corners[0].y);
    const double area = x1 * y2 - x2 * y1;
    if (area == 0.0) return false;
    const double px = x - double(corners[0].x), py = y - double(corners[0].y);
    shares.b = (px * y2 - x2 * py) / area;
    shares.c = (x1 * py - px * y1) / area;
    shares.a = 1.0 - shares.b - shares.c;
    // A little beyond the edge still counts, so that no pixel falls between two neighbours.
    constexpr double kBeyond = -1e-7;
    return shares.a >= kBeyond && shares.b >= kBeyond && shares.c >= kBeyond;
}

Point3 Mix(const Point3* corners, const Shares& s) {
    return corners[0] * float(s.a) + corners[1] * float(s.b) + corners[2] * float(s.c);
}

/// The first and the last pixel whose middle lies between two places of the picture.
void PixelsBetween(float low, float high, int size, int& first, int& last) {
    first = int(std::clamp(std::floor(double(low) * size - 0.5), 0.0, double(size)));
    last = int(std::clamp(std::ceil(double(high) * size - 0.5), -1.0, double(size - 1)));
}

}  // namespace

/// What a pixel shows.
struct TrackLayout::Place {
    Point3 point, normal;
    Point3 across, up;  // along the picture, within the surface
};

bool TrackLayout::TakeTriangles(const RenderModel& model, const RayFrame& frame) {
    bool hasSpots = true;
    for (std::size_t i = 0; i < model.things.size(); ++i) {
        if (!model.things[i].takesTracks) continue;
        const Matrix3& place = frame.PlaceOf(i);
        for (const RenderPart& part : model.shapes[model.things[i].shape].parts) {
            hasSpots = hasSpots && !part.spots.empty();
            for (std::size_t corner = 0; corner + 2 < part.corners.size(); corner += 3) {
                Triangle triangle;
                triangle.thing = i;
                for (int k = 0; k < 3; ++k) {
                    const std::uint32_t vertex = part.corners[corner + std::size_t(k)];
                    triangle.points[k] = part.points[vertex] * place;
                    triangle.spots[k] = part.spots.empty() ? Point2(-1.0f, -1.0f) : part.spots[vertex];
                    const Point2& spot = triangle.spots[k];
                    hasSpots = hasSpots && spot.x >= -1e-4f && spot.y >= -1e-4f && spot.x <= 1.0001f && spot.y <= 1.0001f;
                }
                const Point3 flat =
                    Normalize(CrossProd(triangle.points[1] - triangle.points[0], triangle.points[2] - triangle.points[0]));
                for (int k = 0; k < 3; ++k) {
                    triangle.normals[k] = flat;
                    if (part.normals.empty()) continue;
                    const Point3 shaded = place.VectorTransform(part.normals[part.corners[corner + std::size_t(k)]]);
                    if (DotProd(shaded, flat) > 0.0f) triangle.normals[k] = Normalize(shaded);
                }
                triangles_.push_back(triangle);
            }
        }
    }
    return hasSpots;
}

GroundSquare TrackLayout::SquareAround() const {
    Box3 bound;
    for (const Triangle& triangle : triangles_) {
        for (const Point3& p : triangle.points) bound += p;
    }
    const float side = std::max({bound.Width().x, bound.Width().y, 1e-3f});
    return {Point2(bound.Center().x - 0.5f * side, bound.Center().y - 0.5f * side), side};
}

void TrackLayout::LayFlat(const GroundSquare& square) {
    square_ = square;
    for (Triangle& triangle : triangles_) {
        for (int k = 0; k < 3; ++k) {
            const Point3& p = triangle.points[k];
            triangle.spots[k] = Point2((p.x - square.low.x) / square.side, 1.0f - (p.y - square.low.y) / square.side);
        }
    }
}

bool TrackLayout::Build(const RenderModel& model, const RayFrame& frame, int size, std::string& problem,
                        const GroundSquare* square) {
    model_ = &model;
    frame_ = &frame;
    size_ = size;
    triangles_.clear();
    isFlat_ = !TakeTriangles(model, frame) || square != nullptr;
    if (triangles_.empty()) {
        problem = "its cars drive on nothing that has a mesh; set the ground in a master object.";
        return false;
    }
    if (isFlat_) LayFlat(square != nullptr ? *square : SquareAround());
    Fill();
    return true;
}

void TrackLayout::Fill() {
    const std::size_t pixels = std::size_t(size_) * std::size_t(size_);
    shown_.assign(pixels, 0);
    if (isFlat_) heights_.assign(pixels, -1e30f);
    for (std::size_t i = 0; i < triangles_.size(); ++i) FillWith(std::uint32_t(i));
    heights_ = {};
}

void TrackLayout::FillWith(std::uint32_t number) {
    const Triangle& triangle = triangles_[number];
    const Point2* const s = triangle.spots;
    int left, right, top, bottom;
    PixelsBetween(std::min({s[0].x, s[1].x, s[2].x}), std::max({s[0].x, s[1].x, s[2].x}), size_, left, right);
    PixelsBetween(std::min({s[0].y, s[1].y, s[2].y}), std::max({s[0].y, s[1].y, s[2].y}), size_, top, bottom);
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            Shares shares;
            if (!SharesOf(s, (x + 0.5) / size_, (y + 0.5) / size_, shares)) continue;
            const std::size_t pixel = std::size_t(y) * std::size_t(size_) + std::size_t(x);
            if (isFlat_) {
                const float height = Mix(triangle.points, shares).z;
                if (height <= heights_[pixel]) continue;
                heights_[pixel] = height;
            } else if (shown_[pixel] != 0) {
                continue;
            }
            shown_[pixel] = number + 1;
        }
    }
}

void TrackLayout::PaintRow(int row, const TrackPainter& tracks, TimeValue tick, BakedTracks& baked) const {
    for (int x = 0; x < size_; ++x) {
        const std::uint32_t number = shown_[std::size_t(row) * std::size_t(size_) + std::size_t(x)];
        if (number == 0) continue;
        const Triangle& triangle = triangles_[number - 1];
        Shares shares;
        SharesOf(triangle.spots, (x + 0.5) / size_, (row + 0.5) / size_, shares);
        const Point3 normal = Normalize(Mix(triangle.normals, shares));
        ShadePoint point(tick, model_->things[triangle.thing].node, frame_->PlaceOf(triangle.thing));
        point.MoveTo(Mix(triangle.points, shares), normal);
        const TrackMark mark = tracks.At(point);
        const std::uint8_t grey = ToColorByte(mark.value);
        baked.color.At(x, row) = {grey, grey, grey};
        if (baked.bump.pixels.empty()) continue;
        // Along the picture's rows, and up its columns.
        const Point2 *const s = triangle.spots, a = s[0];
        const float x1 = s[1].x - a.x, y1 = s[1].y - a.y, x2 = s[2].x - a.x, y2 = s[2].y - a.y;
        const float turn = x1 * y2 - x2 * y1 < 0.0f ? -1.0f : 1.0f;
        const Point3 p1 = triangle.points[1] - triangle.points[0], p2 = triangle.points[2] - triangle.points[0];
        Point3 across = (p1 * y2 - p2 * y1) * turn, up = (p1 * x2 - p2 * x1) * turn;
        across = Normalize(across - normal * DotProd(across, normal));
        up = Normalize(up - normal * DotProd(up, normal));
        const Point3 n = Normalize(
            Point3(DotProd(mark.bump, across), DotProd(mark.bump, up), std::max(0.1f, 1.0f + DotProd(mark.bump, normal))));
        const auto byte = [](float c) { return std::uint8_t(std::clamp(c * 127.0f + 128.0f, 0.0f, 255.0f) + 0.5f); };
        baked.bump.At(x, row) = {byte(n.x), byte(n.y), byte(n.z)};
    }
}

void TrackLayout::Widen(tavrik::RgbImage& image) const {
    if (image.pixels.empty()) return;
    std::vector<bool> known(shown_.size());
    for (std::size_t i = 0; i < shown_.size(); ++i) known[i] = shown_[i] != 0;
    constexpr int kSides[4][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
    std::vector<std::size_t> added;
    for (int pass = 0; pass < kBorder; ++pass) {
        added.clear();
        for (int y = 0; y < size_; ++y) {
            for (int x = 0; x < size_; ++x) {
                const std::size_t pixel = std::size_t(y) * std::size_t(size_) + std::size_t(x);
                if (known[pixel]) continue;
                for (const auto& side : kSides) {
                    const int nx = x + side[0], ny = y + side[1];
                    if (nx < 0 || ny < 0 || nx >= size_ || ny >= size_) continue;
                    if (!known[std::size_t(ny) * std::size_t(size_) + std::size_t(nx)]) continue;
                    image.pixels[pixel] = image.At(nx, ny);
                    added.push_back(pixel);
                    break;
                }
            }
        }
        for (const std::size_t pixel : added) known[pixel] = true;
    }
}

BakedTracks TrackLayout::Bake(const TrackPainter& tracks, TimeValue tick, bool withBump, int threads,
                              const std::function<void(double)>& done, const std::atomic<bool>* stop) const {
    BakedTracks baked;
    const auto clear = [this](tavrik::RgbImage& image, tavrik::RgbPixel pixel) {
        image.width = image.height = size_;
        image.pixels.assign(std::size_t(size_) * std::size_t(size_), pixel);
    };
    clear(baked.color, kUntouched);
    if (withBump) clear(baked.bump, kLevel);
    const auto paint = [&](int row) { PaintRow(row, tracks, tick, baked); };
    InParallel(size_, threads, done, paint, stop);
    if (!isFlat_) {
        Widen(baked.color);
        Widen(baked.bump);
    }
    return baked;
}

}  // namespace tavrik_host

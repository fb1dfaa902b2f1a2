#pragma once
/// Tyre tracks as pictures that lie on the ground, for renderers that know nothing of them.

#include <atomic>
#include <functional>
#include <string>

#include "host/render/ray_scene.h"
#include "host/render/track_painter.h"
#include "host/rgb_image.h"

namespace tavrik_host {

struct BakedTracks {
    tavrik::RgbImage color;  // what the ground's colour is multiplied by, as sRGB; white where no tyre was
    tavrik::RgbImage bump;   // a normal map in the ground's tangents, green up; empty if it wasn't asked for
};

/// A part of the ground, seen from above.
struct GroundSquare {
    Point2 low{0, 0};  // its corner with the smaller coordinates, scene units
    float side = 1.0f;
};

/// Which place of the ground each pixel shows. Made once for all pictures of a sequence.
class TrackLayout {
 public:
    /// Lays the pictures out by the ground's own texture coordinates, or, where it has none or repeats them, straight down on a
    /// square around it.
    /// @param square   not null: only this part of it, straight down
    /// @param problem  on false: one sentence without the file's name
    bool Build(const RenderModel& model, const RayFrame& frame, int size, std::string& problem,
               const GroundSquare* square = nullptr);

    bool IsFlat() const { return isFlat_; }
    /// Of a flat layout.
    Point2 Low() const { return square_.low; }
    float Side() const { return square_.side; }

    /// @param threads  0: as many as there are cores. The bytes are the same with any number
    /// @param stop     once it is set, the pictures end early and are of no use; may be null
    BakedTracks Bake(const TrackPainter& tracks, TimeValue tick, bool withBump, int threads,
                     const std::function<void(double)>& done, const std::atomic<bool>* stop = nullptr) const;

 private:
    struct Triangle {
        std::size_t thing = 0;
        Point3 points[3], normals[3];
        Point2 spots[3];  // across and down the picture, 0..1
    };
    struct Place;
    bool TakeTriangles(const RenderModel& model, const RayFrame& frame);
    GroundSquare SquareAround() const;
    void LayFlat(const GroundSquare& square);
    void Fill();
    void FillWith(std::uint32_t triangle);
    void PaintRow(int row, const TrackPainter& tracks, TimeValue tick, BakedTracks& baked) const;
    void Widen(tavrik::RgbImage& image) const;

    const RenderModel* model_ = nullptr;
    const RayFrame* frame_ = nullptr;
    int size_ = 0;
    bool isFlat_ = false;
    GroundSquare square_;
    std::vector<Triangle> triangles_;
    std::vector<std::uint32_t> shown_;  // of each pixel: which triangle, from 1; 0: none
    std::vector<float> heights_;        // while a flat layout is filled: the topmost ground counts
};

}  // namespace tavrik_host

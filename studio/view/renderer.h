#pragma once
/// Draws the scene with OpenGL 3.3.

#include <QString>
#include <memory>
#include <span>

#include "studio/view/gl_loader.h"
#include "studio/view/shown_scene.h"
#include "studio/view/view_picture.h"

namespace tavrik_studio {

/// Belongs to the context that is current when it is made; that one has to be current in every call and at its end.
class ViewRenderer {
 public:
    /// @param problem  on null: why this context can't draw views, without a full stop
    static std::unique_ptr<ViewRenderer> Make(const GlLoader& loader, QString& problem);
    ~ViewRenderer();
    ViewRenderer(const ViewRenderer&) = delete;
    ViewRenderer& operator=(const ViewRenderer&) = delete;

    /// Draws into a framebuffer, and has finished when it comes back.
    /// @param scene    up to date
    /// @param target   the framebuffer's number; it is as large as the picture's size times its pixel ratio
    void Draw(const ShownScene& scene, const ViewPicture& picture, const DrawEffort& effort, unsigned target);
    /// Draws into memory. @param pixels  [height][width], 0xffRRGGBB, as large as the picture's size times its pixel ratio
    void DrawImage(const ShownScene& scene, const ViewPicture& picture, const DrawEffort& effort,
                   std::span<std::uint32_t> pixels);
    /// What draws, as the driver names it.
    QString DriverName() const;

 private:
    struct Body;
    bool DrawToTargets(const ShownScene& scene, const ViewPicture& picture, const DrawEffort& effort);
    void Leave();
    explicit ViewRenderer(std::unique_ptr<Body> body);
    std::unique_ptr<Body> body_;
};

/// Of a picture, the screen's pixels.
int PixelWidth(const ViewPicture& picture);
int PixelHeight(const ViewPicture& picture);

}  // namespace tavrik_studio

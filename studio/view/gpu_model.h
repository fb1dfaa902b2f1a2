#pragma once
/// The meshes and pictures of a scene on the graphics card.

#include <vector>

#include "host/render/render_model.h"
#include "studio/view/gl_functions.h"

namespace tavrik_studio {

struct GpuPart {
    GLuint array = 0, vertices = 0, corners = 0;
    GLsizei count = 0;
    std::size_t material = 0;
    bool hasNormals = false, hasSpots = false;
    Box3 box;
};

/// Made, used and deleted while one context is current.
class GpuModel {
 public:
    /// Replaces whatever was there.
    void Upload(const GlFunctions& gl, const tavrik_host::RenderModel& model);
    void Delete(const GlFunctions& gl);

    const std::vector<std::vector<GpuPart>>& Shapes() const { return shapes_; }
    /// Binds a material's picture, to be looked up as it says. @return false where it has none
    bool BindPicture(const GlFunctions& gl, const tavrik_host::RenderMaterial& material) const;

 private:
    std::vector<std::vector<GpuPart>> shapes_;  // beside the model's
    std::vector<GLuint> pictures_;              // likewise; 0: it can't be shown
};

/// A texture with all its smaller copies.
/// @param bytes  [height][width][4], colours as sRGB
GLuint MakeTexture(const GlFunctions& gl, int width, int height, const std::vector<std::uint8_t>& bytes);

}  // namespace tavrik_studio

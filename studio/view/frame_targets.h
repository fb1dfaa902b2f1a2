#pragma once
/// Where a picture is drawn before it goes to the screen: with several samples to a pixel, or with fewer pixels than the screen
/// has.

#include <cstdint>

#include "studio/view/gl_functions.h"

namespace tavrik_studio {

class FrameTargets {
 public:
    /// Makes what isn't there in this size, and binds the one to draw into.
    /// @return false where the driver has no room for it
    bool Prepare(const GlFunctions& gl, int width, int height, int samples);
    /// A picture of a single number, of the same size, bound and empty.
    void PrepareMask(const GlFunctions& gl);
    GLuint MaskTexture() const { return mask_; }
    void BindDrawn(const GlFunctions& gl) const;
    /// Copies what was drawn to a framebuffer, as large as that one is.
    void Show(const GlFunctions& gl, GLuint target, int width, int height);
    /// Reads what was drawn into memory, 0xffRRGGBB. @param pixels  [height][width]
    void Read(const GlFunctions& gl, std::uint32_t* pixels);
    void Delete(const GlFunctions& gl);

    int Width() const { return width_; }
    int Height() const { return height_; }

 private:
    GLuint Merged(const GlFunctions& gl);

    int width_ = 0, height_ = 0, samples_ = 0;
    GLuint drawn_ = 0, color_ = 0, depth_ = 0;
    GLuint merged_ = 0, mergedColor_ = 0;  // one sample to a pixel; none where that is what is drawn
    GLuint maskFrame_ = 0, mask_ = 0;
};

}  // namespace tavrik_studio

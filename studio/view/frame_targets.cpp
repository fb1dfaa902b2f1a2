#include "studio/view/frame_targets.h"

#include <algorithm>
#include <cstddef>

namespace tavrik_studio {
namespace {

GLuint MakeBuffer(const GlFunctions& gl, GLenum format, int width, int height, int samples) {
    GLuint buffer = 0;
    gl.GenRenderbuffers(1, &buffer);
    gl.BindRenderbuffer(GL_RENDERBUFFER, buffer);
    if (samples > 1) {
        gl.RenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width, height);
    } else {
        gl.RenderbufferStorage(GL_RENDERBUFFER, format, width, height);
    }
    return buffer;
}

}  // namespace

bool FrameTargets::Prepare(const GlFunctions& gl, int width, int height, int samples) {
    GLint most = 1;
    gl.GetIntegerv(GL_MAX_SAMPLES, &most);
    if (samples > most) samples = most;
    if (width != width_ || height != height_ || samples != samples_) {
        Delete(gl);
        width_ = width;
        height_ = height;
        samples_ = samples;
        gl.GenFramebuffers(1, &drawn_);
        gl.BindFramebuffer(GL_FRAMEBUFFER, drawn_);
        color_ = MakeBuffer(gl, GL_RGBA8, width, height, samples);
        gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_);
        depth_ = MakeBuffer(gl, GL_DEPTH24_STENCIL8, width, height, samples);
        gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, depth_);
        if (samples > 1) {
            gl.GenFramebuffers(1, &merged_);
            gl.BindFramebuffer(GL_FRAMEBUFFER, merged_);
            mergedColor_ = MakeBuffer(gl, GL_RGBA8, width, height, 1);
            gl.FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, mergedColor_);
        }
    }
    BindDrawn(gl);
    return gl.CheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void FrameTargets::BindDrawn(const GlFunctions& gl) const {
    gl.BindFramebuffer(GL_FRAMEBUFFER, drawn_);
    gl.Viewport(0, 0, width_, height_);
}

void FrameTargets::PrepareMask(const GlFunctions& gl) {
    if (maskFrame_ == 0) {
        gl.GenTextures(1, &mask_);
        gl.BindTexture(GL_TEXTURE_2D, mask_);
        gl.TexImage2D(GL_TEXTURE_2D, 0, GL_R8, width_, height_, 0, GL_RED, GL_UNSIGNED_BYTE, nullptr);
        gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        gl.GenFramebuffers(1, &maskFrame_);
        gl.BindFramebuffer(GL_FRAMEBUFFER, maskFrame_);
        gl.FramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, mask_, 0);
    }
    gl.BindFramebuffer(GL_FRAMEBUFFER, maskFrame_);
    gl.Viewport(0, 0, width_, height_);
    gl.ClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    gl.Clear(GL_COLOR_BUFFER_BIT);
}

/// The framebuffer with one sample to a pixel.
GLuint FrameTargets::Merged(const GlFunctions& gl) {
    if (samples_ <= 1) return drawn_;
    gl.BindFramebuffer(GL_READ_FRAMEBUFFER, drawn_);
    gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, merged_);
    gl.BlitFramebuffer(0, 0, width_, height_, 0, 0, width_, height_, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    return merged_;
}

void FrameTargets::Read(const GlFunctions& gl, std::uint32_t* pixels) {
    gl.BindFramebuffer(GL_FRAMEBUFFER, Merged(gl));
    gl.PixelStorei(GL_PACK_ALIGNMENT, 4);
    gl.ReadPixels(0, 0, width_, height_, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, pixels);
    // There the lowest row comes first.
    for (int y = 0; y < height_ / 2; ++y) {
        std::uint32_t* const row = pixels + std::ptrdiff_t(y) * width_;
        std::swap_ranges(row, row + width_, pixels + std::ptrdiff_t(height_ - 1 - y) * width_);
    }
}

void FrameTargets::Show(const GlFunctions& gl, GLuint target, int width, int height) {
    gl.BindFramebuffer(GL_READ_FRAMEBUFFER, Merged(gl));
    gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, target);
    const bool isSame = width == width_ && height == height_;
    gl.BlitFramebuffer(0, 0, width_, height_, 0, 0, width, height, GL_COLOR_BUFFER_BIT, isSame ? GL_NEAREST : GL_LINEAR);
    gl.BindFramebuffer(GL_FRAMEBUFFER, target);
}

void FrameTargets::Delete(const GlFunctions& gl) {
    for (GLuint* const frame : {&drawn_, &merged_, &maskFrame_}) {
        if (*frame != 0) gl.DeleteFramebuffers(1, frame);
        *frame = 0;
    }
    for (GLuint* const buffer : {&color_, &depth_, &mergedColor_}) {
        if (*buffer != 0) gl.DeleteRenderbuffers(1, buffer);
        *buffer = 0;
    }
    if (mask_ != 0) gl.DeleteTextures(1, &mask_);
    mask_ = 0;
    width_ = height_ = samples_ = 0;
}

}  // namespace tavrik_studio

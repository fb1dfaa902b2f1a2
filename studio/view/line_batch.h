#pragma once

#include <cstdint>
#include <vector>

#include "host/sdk/line_view.h"
#include "studio/view/gl_functions.h"

namespace tavrik_studio {

/// Lines on the graphics card. Each is four corners of its own, since how they lie to each other depends on the eye.
class LineBatch {
 public:
    void Add(const Point3& from, const Point3& to, const Color& color, float alpha = 1.0f);
    void Clear() { corners_.clear(); }
    /// Takes over what was added.
    void Upload(const GlFunctions& gl);
    void Draw(const GlFunctions& gl) const;
    void Delete(const GlFunctions& gl);

 private:
    struct Corner {
        float from[3], to[3];
        std::uint8_t color[4];
    };
    std::vector<Corner> corners_;
    GLuint array_ = 0, vertices_ = 0, order_ = 0;
    GLsizei count_ = 0;
};

}  // namespace tavrik_studio

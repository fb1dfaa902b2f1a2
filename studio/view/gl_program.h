#pragma once

#include <QString>
#include <map>
#include <span>
#include <string>

#include "host/sdk/max.h"
#include "studio/view/gl_functions.h"

namespace tavrik_studio {

/// A linked pair of shaders. Like everything of a context, it is made, used and deleted while that one is current.
class GlProgram {
 public:
    /// @param defines  lines that come before both sources
    /// @param problem  on false: what the driver says of it
    bool Build(const GlFunctions& gl, const std::string& defines, const char* vertex, const char* fragment, QString& problem);
    void Delete(const GlFunctions& gl);
    bool IsBuilt() const { return program_ != 0; }

    void Use(const GlFunctions& gl) { gl.UseProgram(program_); }
    // Of the program in use. A name that the driver has found no use for is ignored.
    void Set(const GlFunctions& gl, const char* name, int value);
    void Set(const GlFunctions& gl, const char* name, float value);
    void Set(const GlFunctions& gl, const char* name, float x, float y);
    void Set(const GlFunctions& gl, const char* name, const Point3& value);
    void Set(const GlFunctions& gl, const char* name, const Point3& value, float w);
    void SetFrame(const GlFunctions& gl, const char* name, const float* sixteen);

 private:
    GLint Place(const GlFunctions& gl, const char* name);

    GLuint program_ = 0;
    std::map<std::string, GLint, std::less<>> places_;
};

}  // namespace tavrik_studio

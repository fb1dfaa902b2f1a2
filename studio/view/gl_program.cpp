#include "studio/view/gl_program.h"

namespace tavrik_studio {
namespace {

GLuint Compile(const GlFunctions& gl, GLenum kind, const std::string& defines, const char* source, QString& problem) {
    const std::string text = "#version 330 core\n" + defines + source;
    const GLuint shader = gl.CreateShader(kind);
    const char* const begin = text.c_str();
    gl.ShaderSource(shader, 1, &begin, nullptr);
    gl.CompileShader(shader);
    GLint isGood = 0;
    gl.GetShaderiv(shader, GL_COMPILE_STATUS, &isGood);
    if (isGood != 0) return shader;
    char log[1024] = "";
    gl.GetShaderInfoLog(shader, GLsizei(sizeof log), nullptr, log);
    problem = QString::fromUtf8(log);
    gl.DeleteShader(shader);
    return 0;
}

}  // namespace

bool GlProgram::Build(const GlFunctions& gl, const std::string& defines, const char* vertex, const char* fragment,
                      QString& problem) {
    const GLuint first = Compile(gl, GL_VERTEX_SHADER, defines, vertex, problem);
    const GLuint second = first == 0 ? 0 : Compile(gl, GL_FRAGMENT_SHADER, defines, fragment, problem);
    if (second != 0) {
        program_ = gl.CreateProgram();
        gl.AttachShader(program_, first);
        gl.AttachShader(program_, second);
        gl.LinkProgram(program_);
        GLint isGood = 0;
        gl.GetProgramiv(program_, GL_LINK_STATUS, &isGood);
        if (isGood == 0) {
            char log[1024] = "";
            gl.GetProgramInfoLog(program_, GLsizei(sizeof log), nullptr, log);
            problem = QString::fromUtf8(log);
            Delete(gl);
        }
    }
    if (first != 0) gl.DeleteShader(first);
    if (second != 0) gl.DeleteShader(second);
    return program_ != 0;
}

void GlProgram::Delete(const GlFunctions& gl) {
    if (program_ != 0) gl.DeleteProgram(program_);
    program_ = 0;
    places_.clear();
}

GLint GlProgram::Place(const GlFunctions& gl, const char* name) {
    const auto known = places_.find(std::string_view(name));
    if (known != places_.end()) return known->second;
    return places_[name] = gl.GetUniformLocation(program_, name);
}

void GlProgram::Set(const GlFunctions& gl, const char* name, int value) { gl.Uniform1i(Place(gl, name), value); }
void GlProgram::Set(const GlFunctions& gl, const char* name, float value) { gl.Uniform1f(Place(gl, name), value); }
void GlProgram::Set(const GlFunctions& gl, const char* name, float x, float y) { gl.Uniform2f(Place(gl, name), x, y); }
void GlProgram::Set(const GlFunctions& gl, const char* name, const Point3& value) {
    gl.Uniform3f(Place(gl, name), value.x, value.y, value.z);
}
void GlProgram::Set(const GlFunctions& gl, const char* name, const Point3& value, float w) {
    gl.Uniform4f(Place(gl, name), value.x, value.y, value.z, w);
}
void GlProgram::SetFrame(const GlFunctions& gl, const char* name, const float* sixteen) {
    gl.UniformMatrix4fv(Place(gl, name), 1, GL_FALSE, sixteen);
}

}  // namespace tavrik_studio

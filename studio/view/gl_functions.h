#pragma once
/// The functions of OpenGL 3.3 core that views draw with. They are asked for by name from whoever made the context, so that a
/// context of a window and one without a screen serve alike, and no program has to be linked to a driver's library.

#include <GL/glcorearb.h>

#include "studio/view/gl_loader.h"

namespace tavrik_studio {

// clang-format off
#define TAVRIK_GL_FUNCTIONS(X) \
    X(PFNGLACTIVETEXTUREPROC, ActiveTexture) X(PFNGLATTACHSHADERPROC, AttachShader) \
    X(PFNGLBINDBUFFERPROC, BindBuffer) X(PFNGLBINDFRAMEBUFFERPROC, BindFramebuffer) \
    X(PFNGLBINDRENDERBUFFERPROC, BindRenderbuffer) X(PFNGLBINDTEXTUREPROC, BindTexture) \
    X(PFNGLBINDVERTEXARRAYPROC, BindVertexArray) X(PFNGLBLENDFUNCPROC, BlendFunc) \
    X(PFNGLBLENDFUNCSEPARATEPROC, BlendFuncSeparate) X(PFNGLBLITFRAMEBUFFERPROC, BlitFramebuffer) \
    X(PFNGLBUFFERDATAPROC, BufferData) X(PFNGLCHECKFRAMEBUFFERSTATUSPROC, CheckFramebufferStatus) \
    X(PFNGLCLEARPROC, Clear) X(PFNGLCLEARCOLORPROC, ClearColor) X(PFNGLCOLORMASKPROC, ColorMask) \
    X(PFNGLCOMPILESHADERPROC, CompileShader) X(PFNGLCREATEPROGRAMPROC, CreateProgram) \
    X(PFNGLCREATESHADERPROC, CreateShader) X(PFNGLDELETEBUFFERSPROC, DeleteBuffers) \
    X(PFNGLDELETEFRAMEBUFFERSPROC, DeleteFramebuffers) X(PFNGLDELETEPROGRAMPROC, DeleteProgram) \
    X(PFNGLDELETERENDERBUFFERSPROC, DeleteRenderbuffers) X(PFNGLDELETESHADERPROC, DeleteShader) \
    X(PFNGLDELETETEXTURESPROC, DeleteTextures) X(PFNGLDELETEVERTEXARRAYSPROC, DeleteVertexArrays) \
    X(PFNGLDEPTHFUNCPROC, DepthFunc) X(PFNGLDEPTHMASKPROC, DepthMask) X(PFNGLDISABLEPROC, Disable) \
    X(PFNGLDRAWARRAYSPROC, DrawArrays) X(PFNGLDRAWELEMENTSPROC, DrawElements) X(PFNGLENABLEPROC, Enable) \
    X(PFNGLENABLEVERTEXATTRIBARRAYPROC, EnableVertexAttribArray) X(PFNGLFINISHPROC, Finish) \
    X(PFNGLFRAMEBUFFERRENDERBUFFERPROC, FramebufferRenderbuffer) \
    X(PFNGLFRAMEBUFFERTEXTURE2DPROC, FramebufferTexture2D) X(PFNGLGENBUFFERSPROC, GenBuffers) \
    X(PFNGLGENERATEMIPMAPPROC, GenerateMipmap) X(PFNGLGENFRAMEBUFFERSPROC, GenFramebuffers) \
    X(PFNGLGENRENDERBUFFERSPROC, GenRenderbuffers) X(PFNGLGENTEXTURESPROC, GenTextures) \
    X(PFNGLGENVERTEXARRAYSPROC, GenVertexArrays) X(PFNGLGETINTEGERVPROC, GetIntegerv) \
    X(PFNGLGETPROGRAMINFOLOGPROC, GetProgramInfoLog) X(PFNGLGETPROGRAMIVPROC, GetProgramiv) \
    X(PFNGLGETSHADERINFOLOGPROC, GetShaderInfoLog) X(PFNGLGETSHADERIVPROC, GetShaderiv) \
    X(PFNGLGETSTRINGPROC, GetString) X(PFNGLGETUNIFORMLOCATIONPROC, GetUniformLocation) \
    X(PFNGLLINKPROGRAMPROC, LinkProgram) X(PFNGLPIXELSTOREIPROC, PixelStorei) X(PFNGLREADPIXELSPROC, ReadPixels) \
    X(PFNGLRENDERBUFFERSTORAGEPROC, RenderbufferStorage) \
    X(PFNGLRENDERBUFFERSTORAGEMULTISAMPLEPROC, RenderbufferStorageMultisample) X(PFNGLSCISSORPROC, Scissor) \
    X(PFNGLSHADERSOURCEPROC, ShaderSource) X(PFNGLSTENCILFUNCPROC, StencilFunc) X(PFNGLSTENCILOPPROC, StencilOp) \
    X(PFNGLTEXIMAGE2DPROC, TexImage2D) X(PFNGLTEXPARAMETERIPROC, TexParameteri) \
    X(PFNGLUNIFORM1FPROC, Uniform1f) X(PFNGLUNIFORM1IPROC, Uniform1i) X(PFNGLUNIFORM2FPROC, Uniform2f) \
    X(PFNGLUNIFORM3FPROC, Uniform3f) X(PFNGLUNIFORM4FPROC, Uniform4f) X(PFNGLUNIFORMMATRIX4FVPROC, UniformMatrix4fv) \
    X(PFNGLUSEPROGRAMPROC, UseProgram) X(PFNGLVERTEXATTRIBPOINTERPROC, VertexAttribPointer) X(PFNGLVIEWPORTPROC, Viewport)
// clang-format on

struct GlFunctions {
#define TAVRIK_GL_MEMBER(Type, Name) Type Name = nullptr;
    TAVRIK_GL_FUNCTIONS(TAVRIK_GL_MEMBER)
#undef TAVRIK_GL_MEMBER

    /// @return the name of a function that is missing; null if all are there
    const char* Load(const GlLoader& loader);
};

}  // namespace tavrik_studio

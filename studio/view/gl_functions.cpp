#include "studio/view/gl_functions.h"

namespace tavrik_studio {

const char* GlFunctions::Load(const GlLoader& loader) {
#define TAVRIK_GL_LOAD(Type, Name)                     \
    Name = reinterpret_cast<Type>(loader("gl" #Name)); \
    if (Name == nullptr) return "gl" #Name;
    TAVRIK_GL_FUNCTIONS(TAVRIK_GL_LOAD)
#undef TAVRIK_GL_LOAD
    return nullptr;
}

}  // namespace tavrik_studio

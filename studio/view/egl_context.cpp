#include "studio/view/egl_context.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <dlfcn.h>

#include <QCoreApplication>

namespace tavrik_studio {
namespace {

QString Text(const char* text) { return QCoreApplication::translate("tavrik_studio::EglContext", text); }

}  // namespace

struct EglContext::Library {
    void* file = nullptr;
    decltype(&eglGetProcAddress) getProcAddress = nullptr;
    decltype(&eglMakeCurrent) makeCurrent = nullptr;
    decltype(&eglDestroyContext) destroyContext = nullptr;
    decltype(&eglDestroySurface) destroySurface = nullptr;
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;

    template <typename Function>
    bool Find(const char* name, Function& function) {
        function = reinterpret_cast<Function>(dlsym(file, name));
        return function != nullptr;
    }
    bool Open(QString& problem);
    bool OpenDisplay();
    bool MakeContext();
    void Close();
};

bool EglContext::Library::OpenDisplay() {
    decltype(&eglInitialize) initialize = nullptr;
    decltype(&eglGetDisplay) getDisplay = nullptr;
    if (!Find("eglInitialize", initialize) || !Find("eglGetDisplay", getDisplay)) return false;
    const auto getPlatform = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(getProcAddress("eglGetPlatformDisplayEXT"));
    if (getPlatform != nullptr) display = getPlatform(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
    if (display != EGL_NO_DISPLAY && initialize(display, nullptr, nullptr) != EGL_FALSE) return true;
    display = getDisplay(EGL_DEFAULT_DISPLAY);
    return display != EGL_NO_DISPLAY && initialize(display, nullptr, nullptr) != EGL_FALSE;
}

bool EglContext::Library::MakeContext() {
    decltype(&eglBindAPI) bindApi = nullptr;
    decltype(&eglChooseConfig) chooseConfig = nullptr;
    decltype(&eglCreateContext) createContext = nullptr;
    decltype(&eglCreatePbufferSurface) createSurface = nullptr;
    if (!Find("eglBindAPI", bindApi) || !Find("eglChooseConfig", chooseConfig) || !Find("eglCreateContext", createContext) ||
        !Find("eglCreatePbufferSurface", createSurface) || bindApi(EGL_OPENGL_API) == EGL_FALSE) {
        return false;
    }
    constexpr EGLint kConfig[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (chooseConfig(display, kConfig, &config, 1, &count) == EGL_FALSE || count == 0) return false;
    constexpr EGLint kContext[] = {
        EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 3, EGL_CONTEXT_OPENGL_PROFILE_MASK, 1, EGL_NONE};
    context = createContext(display, config, EGL_NO_CONTEXT, kContext);
    if (context == EGL_NO_CONTEXT) return false;
    if (makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) != EGL_FALSE) return true;
    // A driver that wants a surface gets the smallest there is; what is drawn goes elsewhere anyway.
    constexpr EGLint kSurface[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    surface = createSurface(display, config, kSurface);
    return surface != EGL_NO_SURFACE && makeCurrent(display, surface, surface, context) != EGL_FALSE;
}

bool EglContext::Library::Open(QString& problem) {
    file = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
    if (file == nullptr || !Find("eglGetProcAddress", getProcAddress) || !Find("eglMakeCurrent", makeCurrent) ||
        !Find("eglDestroyContext", destroyContext) || !Find("eglDestroySurface", destroySurface)) {
        problem = Text("the library libEGL.so.1 isn't installed");
        return false;
    }
    if (!OpenDisplay()) {
        problem = Text("the graphics driver doesn't draw without a screen");
        return false;
    }
    if (!MakeContext()) {
        problem = Text("the graphics driver has no OpenGL 3.3");
        return false;
    }
    return true;
}

void EglContext::Library::Close() {
    if (context != EGL_NO_CONTEXT) {
        makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        destroyContext(display, context);
    }
    if (surface != EGL_NO_SURFACE) destroySurface(display, surface);
    // Display and library stay: others in the process may use them, such as the window system's own module.
}

EglContext::EglContext(std::unique_ptr<Library> library) : library_(std::move(library)) {}

EglContext::~EglContext() { library_->Close(); }

std::shared_ptr<EglContext> EglContext::Shared(QString& problem) {
    static std::weak_ptr<EglContext> shared;
    if (std::shared_ptr<EglContext> context = shared.lock()) return context;
    auto library = std::make_unique<Library>();
    if (!library->Open(problem)) {
        library->Close();
        return nullptr;
    }
    const std::shared_ptr<EglContext> context(new EglContext(std::move(library)));
    shared = context;
    return context;
}

bool EglContext::MakeCurrent() {
    Library& l = *library_;
    return l.makeCurrent(l.display, l.surface, l.surface, l.context) != EGL_FALSE;
}

GlLoader EglContext::Loader() const {
    return [get = library_->getProcAddress](const char* name) { return GlFunction(get(name)); };
}

}  // namespace tavrik_studio

#pragma once

#include <QString>
#include <memory>

#include "studio/view/gl_loader.h"

namespace tavrik_studio {

/// A context for OpenGL 3.3 that needs no screen. The library behind it is looked for at run time: a computer without it runs
/// everything else.
class EglContext {
 public:
    /// All views without a screen share one.
    /// @param problem  on null: why there is none, without a full stop
    static std::shared_ptr<EglContext> Shared(QString& problem);
    ~EglContext();
    EglContext(const EglContext&) = delete;
    EglContext& operator=(const EglContext&) = delete;

    bool MakeCurrent();
    GlLoader Loader() const;

 private:
    struct Library;
    explicit EglContext(std::unique_ptr<Library> library);
    std::unique_ptr<Library> library_;
};

}  // namespace tavrik_studio

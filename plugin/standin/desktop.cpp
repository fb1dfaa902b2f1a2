#include "plugin/desktop.h"

#include "drive/null_canvas.h"
#include "host/sdk/desktop.h"

namespace tavrik_plugin {
namespace {

// Programs set and change what is behind these at any time, sessions keep them for good.

class DesktopWindows final : public tavrik::WindowLayer {
 public:
    tavrik::WindowId CreateDialogWindow(tavrik::WindowKind kind, tavrik::WindowMessages& receiver) override {
        return Layer() != nullptr ? Layer()->CreateDialogWindow(kind, receiver) : 0;
    }
    void DestroyWindow(tavrik::WindowId window) override {
        if (Layer() != nullptr) Layer()->DestroyWindow(window);
    }
    void RegisterDlgWnd(tavrik::WindowId window) override {
        if (Layer() != nullptr) Layer()->RegisterDlgWnd(window);
    }
    void UnRegisterDlgWnd(tavrik::WindowId window) override {
        if (Layer() != nullptr) Layer()->UnRegisterDlgWnd(window);
    }
    void SetAlpha(tavrik::WindowId window, std::uint8_t alpha) override {
        if (Layer() != nullptr) Layer()->SetAlpha(window, alpha);
    }
    void SetCapture(tavrik::WindowId window) override {
        if (Layer() != nullptr) Layer()->SetCapture(window);
    }
    void ReleaseCapture() override {
        if (Layer() != nullptr) Layer()->ReleaseCapture();
    }
    void SetTimer(tavrik::WindowId window, std::uint32_t timer, std::uint32_t milliseconds) override {
        if (Layer() != nullptr) Layer()->SetTimer(window, timer, milliseconds);
    }
    void KillTimer(tavrik::WindowId window, std::uint32_t timer) override {
        if (Layer() != nullptr) Layer()->KillTimer(window, timer);
    }
    void BeginDrag(tavrik::WindowId window) override {
        if (Layer() != nullptr) Layer()->BeginDrag(window);
    }
    tavrik::Canvas& GetDC(tavrik::WindowId window) override { return Layer() != nullptr ? Layer()->GetDC(window) : nowhere_; }
    void ReleaseDC(tavrik::WindowId window) override {
        if (Layer() != nullptr) Layer()->ReleaseDC(window);
    }
    tavrik::Canvas& BeginPaint(tavrik::WindowId window) override {
        return Layer() != nullptr ? Layer()->BeginPaint(window) : nowhere_;
    }
    void EndPaint(tavrik::WindowId window) override {
        if (Layer() != nullptr) Layer()->EndPaint(window);
    }
    void ShowMessageBox(tavrik::WindowId owner, std::string_view text, std::string_view title, std::uint32_t flags) override {
        if (Layer() != nullptr) Layer()->ShowMessageBox(owner, text, title, flags);
    }
    void DisableAccelerators() override {
        if (Layer() != nullptr) Layer()->DisableAccelerators();
    }
    void EnableAccelerators() override {
        if (Layer() != nullptr) Layer()->EnableAccelerators();
    }

 private:
    static tavrik::WindowLayer* Layer() { return tavrik::TheDesktop().windows; }
    tavrik::NullCanvas nowhere_;
};

class DesktopPads final : public tavrik::Devices {
 public:
    std::uint32_t joyGetPos(std::uint32_t id, tavrik::JoyInfo& info) override {
        constexpr std::uint32_t kNoDriver = 6;
        tavrik::Devices* const devices = tavrik::TheDesktop().devices;
        return devices != nullptr ? devices->joyGetPos(id, info) : kNoDriver;
    }
    std::uint32_t XInputGetState(std::int32_t user, tavrik::XInputState& state) override {
        constexpr std::uint32_t kNotConnected = 1167;
        tavrik::Devices* const devices = tavrik::TheDesktop().devices;
        return devices != nullptr ? devices->XInputGetState(user, state) : kNotConnected;
    }
};

class DesktopFile final : public tavrik::FileStore {
 public:
    tavrik::FileState Read(std::size_t limit, std::vector<std::byte>& bytes) override {
        tavrik::FileStore* const file = tavrik::TheDesktop().controls;
        // As a file that can't be read: a missing one would reset what the scene has bound.
        return file != nullptr ? file->Read(limit, bytes) : tavrik::FileState::Unreadable;
    }
    bool Write(std::span<const std::byte> bytes) override {
        tavrik::FileStore* const file = tavrik::TheDesktop().controls;
        return file != nullptr && file->Write(bytes);
    }
};

}  // namespace

tavrik::WindowLayer& Windows() {
    static auto& windows = *new DesktopWindows;  // never freed: sessions in a scene may outlive the library's statics
    return windows;
}

tavrik::Devices& Pads() {
    static auto& pads = *new DesktopPads;
    return pads;
}

tavrik::FileStore& ControlsFile() {
    static auto& file = *new DesktopFile;
    return file;
}

tavrik::StandLayer* StandWindows() { return tavrik::TheDesktop().stand; }
tavrik::TargetDriver* Driver() { return tavrik::TheDesktop().driver; }
std::uint64_t RunSeed() { return tavrik::TheDesktop().seed; }
bool StopsAtBadNumbers() { return tavrik::TheDesktop().stopAtBadNumbers; }
void Complain(std::string_view sentence) { tavrik::TheDesktop().complaint = sentence; }

void ShowError(std::string_view text) { Windows().ShowMessageBox(0, text, "Tavrik", tavrik::kMessageBoxError); }

}  // namespace tavrik_plugin

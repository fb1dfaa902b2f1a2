#include "drive/drive_session.h"

#include <algorithm>

#include "drive/drive_settings.h"
#include "drive/hud.h"
#include "drive/window_messages.h"
#include "rig/parameter_tables.h"
#include "solver/frame_stepping.h"

namespace tavrik {
namespace {

constexpr std::string_view kTitle = "Tavrik";
constexpr std::string_view kNoCar = "You didn't setup the Car.\nDo Car Setup.";
constexpr std::string_view kTooMuch = "There are more than 100 cars, hitches or pushes in this run.\nUse fewer.";
constexpr std::string_view kNoSurface = "You didn't select \"Surface Object\" or\n didn't press \"Update Surface\" button.";

using Param = MasterParam;

std::int32_t SteerAxisOf(std::int32_t choice) {
    switch (choice) {
        case 1:
            return 4;
        case 2:
            return 0;
        default:
            return 1;
    }
}

std::int32_t ThrottleAxisOf(std::int32_t choice) {
    switch (choice) {
        case 1:
            return 4;
        case 2:
            return 2;
        case 3:
            return 5;
        default:
            return 1;
    }
}

KeyBinding ReadKeys(const ParamBlock& params) {
    return {.keyThrottle = params.GetInt(Param::CtrlKbdThrottle),
            .keyBrake = params.GetInt(Param::CtrlKbdBreak),
            .keyLeft = params.GetInt(Param::CtrlKbdLeft),
            .keyRight = params.GetInt(Param::CtrlKbdRight),
            .keyHandBrake = params.GetInt(Param::CtrlKbdHandBreak),
            .keyGear = params.GetInt(Param::CtrlKbdFwdBkwd),
            .keyNitro = params.GetInt(Param::CtrlKbdNitro)};
}

GamepadBinding ReadGamepad(const ParamBlock& params, Devices& devices) {
    GamepadBinding binding;
    binding.joyBrake = std::uint32_t(params.GetInt(Param::CtrlJoyBreak));
    binding.joyHandBrake = std::uint32_t(params.GetInt(Param::CtrlJoyHandBreak));
    binding.joyForward = std::uint32_t(params.GetInt(Param::CtrlJoyForward));
    binding.joyBackward = std::uint32_t(params.GetInt(Param::CtrlJoyBackward));
    binding.joyNitro = std::uint32_t(params.GetInt(Param::CtrlJoyNitro));
    binding.joySteerAxis = SteerAxisOf(params.GetInt(Param::CtrlJoyWheelCtrl));
    binding.joyThrottleAxis = ThrottleAxisOf(params.GetInt(Param::CtrlJoyThrottleCtrl));
    binding.joyDriver = ResolveDriver(params.GetInt(Param::CtrlJoyDriver));
    binding.joyPort = ResolvePort(params.GetInt(Param::CtrlJoyPort), devices);
    return binding;
}

/// What the frame's stepping asks, answered from the session's surroundings each time anew.
class FrameMaster final : public DriveMaster {
 public:
    explicit FrameMaster(DriveSession& session) : session_(session) {}
    CarWorld& World() override { return session_.master().World(); }
    const SurfaceTree* Surface() const override { return &session_.master().Surface(); }
    float Gravity() const override { return session_.master().Params().GetFloat(Param::Gravity); }
    // A program can store what no control lets through; a frame without samples would divide by zero.
    std::int32_t Frame_Step() const override { return std::max(1, session_.master().Params().GetInt(Param::Frame_Step)); }
    std::int32_t Sample_Step() const override { return std::max(1, session_.master().Params().GetInt(Param::Sample_Step)); }
    std::int32_t GetTicksPerFrame() const override { return session_.core().GetTicksPerFrame(); }
    TimeValue AnimRangeEnd() const override { return session_.core().GetAnimRange().end; }
    /// The target driver writes the session's input, not the copy that this frame is driven with: its word counts from the next
    /// tick on.
    void BeforeSample() override {
        TargetDriver* target = session_.master().Target();
        if (session_.input.drivingType == kDriveToTarget && target != nullptr) target->DriveToTarget(session_);
    }

 private:
    DriveSession& session_;
};

}  // namespace

DriveSession::DriveSession(SessionMaster& master, DriveHost& core, WindowLayer& windows, Devices& devices)
    : master_(master), core_(core), windows_(windows), devices_(devices) {
    input = {};
    input.drivingType = kDriveByMouse;
    input.rudderSensitivity = 1000.0f;
    input.throttleSensitivity = 20.0f;
    input.brakeSensitivity = 10.0f;
    input.rudderAngle = 30.0f;
}

void DriveSession::OpenDrive() {
    if (!master_.Rig().IsAnimated(0, 0)) {
        windows_.ShowMessageBox(window, kNoCar, kTitle, kMessageBoxError);
        return;
    }
    if (!master_.Surface().built()) master_.UpdateSurface();
    if (!master_.Surface().built()) {
        windows_.ShowMessageBox(window, kNoSurface, kTitle, kMessageBoxError);
        return;
    }
    ReadSettings();
    if (!BuildWorld(master_.World(), *rig, master_.Scene())) {
        windows_.ShowMessageBox(window, kTooMuch, kTitle, kMessageBoxError);
        return;
    }
    if (window != 0) return;
    window = windows_.CreateDialogWindow(WindowKind::Drive, *this);
    windows_.RegisterDlgWnd(window);
    windows_.SetAlpha(window, kSeeThroughAlpha);
    active = 1;
    windows_.DisableAccelerators();
}

void DriveSession::ReadSettings() {
    const ParamBlock& params = master_.Params();
    rig = &master_.Rig();
    ApplySettings(ReadDriveSettings(params), core_.GetMasterScale(kKilometres), input);
    timerPeriod = std::uint32_t(params.GetInt(Param::Time_Delay));
    input.drivingType = std::uint32_t(params.GetInt(Param::Driving_Type));
    forecast = params.GetInt(Param::Driving_Forecast);
    keys = ReadKeys(params);
    gamepad = ReadGamepad(params, devices_);
    if (TargetDriver* const target = master_.Target()) target->ReadSettings();
}

void DriveSession::StartDrive() {
    if (running != 0) return;
    ReadSettings();
    TargetDriver* target = master_.Target();
    if (target != nullptr && target->HasTarget() && target->TargetIsShape() && input.drivingType == kDriveToTarget) {
        target->BuildPath();
        input.drivingType = kDriveAlongPath;
    }
    running = 1;
    mouseAnchor = mousePos;
    input.steerTarget = input.throttle = input.brake = 0.0f;
    input.handBrake = 0;
    input.keyLeftDown = input.keyRightDown = input.keyThrottleDown = input.keyBrakeDown = input.nitro = 0;
    windows_.DisableAccelerators();
    windows_.SetCapture(window);
    tick = core_.GetTime();
    windows_.SetTimer(window, kTimerId, timerPeriod);
    RedrawHud();
}

void DriveSession::StopDrive() {
    if (running == 0) return;
    windows_.KillTimer(window, kTimerId);
    running = 0;
    windows_.EnableAccelerators();
    windows_.ReleaseCapture();
    RedrawHud();
    master_.RebuildTrails();
}

DriveSession::~DriveSession() {
    if (inTick_ != nullptr) *inTick_ = false;
    inTick_ = nullptr;
    CloseDrive();
}

void DriveSession::CloseDrive() {
    if (window == 0) return;
    if (inTick_ != nullptr) {
        closeAfterTick_ = true;
        return;
    }
    StopDrive();
    windows_.UnRegisterDlgWnd(window);
    windows_.DestroyWindow(window);
    window = 0;
    active = 0;
}

void DriveSession::AdvanceTimeline(const bool& alive) {
    FillInput();
    const TimeValue end = core_.GetAnimRange().end;
    const bool atEnd = tick > end - core_.GetTicksPerFrame();
    const std::uint32_t wasRunning = running;
    core_.SetTime(atEnd ? end : tick, true);
    if (!alive) return;
    if (atEnd) {
        StopDrive();
    } else if (running == wasRunning) {  // not if a button that was served inside has just wiped what would be driven
        DriveOneFrame();
        RedrawHud();
    }
}

void DriveSession::InputTick() {
    if (inTick_ != nullptr) return;
    bool alive = true;  // a host that serves messages inside may delete the master, and this session with it
    inTick_ = &alive;
    AdvanceTimeline(alive);
    if (!alive) return;
    core_.NotifyMasters();
    if (!alive) return;
    DriveHost& core = core_;
    core.RedrawViews(core.GetTime());
    if (!alive) return;
    inTick_ = nullptr;
    if (!closeAfterTick_) return;
    closeAfterTick_ = false;
    CloseDrive();
}

void DriveSession::DriveOneFrame() {
    FrameMaster frame(*this);
    const TimeValue before = tick;
    DriveTick(frame, tick, input);
    if (tick != before) master_.FrameDriven();
}

void DriveSession::FillInput() {
    TargetDriver* target = master_.Target();
    switch (input.drivingType) {
        case kDriveByMouse:
            FillFromMouse(input, mousePos, mouseAnchor);
            break;
        case kDriveByKeyboard:
            FillFromKeyboard(input);
            break;
        case kDriveByGamepad:
            FillFromGamepad(input, gamepad, devices_);
            break;
        case kDriveToTarget:
            if (target != nullptr) target->DriveToTarget(*this);
            break;
        case kDriveAlongPath:
            ClearBeforePath(input);
            if (target != nullptr) target->DriveAlongPath(*this);
            FillBesidePath(input);
            break;
        default:
            break;
    }
}

void DriveSession::DrawHudOn(Canvas& canvas) {
    HudState state;
    state.velocity = rig != nullptr && rig->motion.valid ? rig->GetVelocity(core_.GetTime()) : Point3{};
    state.kilometresPerUnit = core_.GetMasterScale(kKilometres);
    state.reverse = input.reverse != 0;
    state.nitro = input.nitro != 0;
    state.handBrake = input.handBrake != 0;
    state.throttle = input.throttle;
    state.brake = input.brake;
    state.active = active != 0;
    state.running = running != 0;
    DrawHud(state, canvas);
}

void DriveSession::RedrawHud() {
    if (window == 0) return;
    DrawHudOn(windows_.GetDC(window));
    windows_.ReleaseDC(window);
}

void DriveSession::KeyDown(std::int32_t key) {
    if (key == keys.keyThrottle) {
        input.keyThrottleDown = 1;
    } else if (key == keys.keyBrake) {
        input.keyBrakeDown = 1;
    } else if (key == keys.keyLeft) {
        input.keyLeftDown = 1;
    } else if (key == keys.keyRight) {
        input.keyRightDown = 1;
    } else if (key == keys.keyHandBrake) {
        input.handBrake = 1;
    } else if (key == keys.keyNitro) {
        input.nitro = 1;
    } else if (key == keys.keyGear) {
        input.reverse = input.reverse == 0 ? 1 : 0;
    }
}

void DriveSession::KeyUp(std::int32_t key) {
    // These two keys start and stop, whatever is bound to them.
    if (key == kVkReturn) {
        running != 0 ? StopDrive() : StartDrive();
    } else if (key == kVkEscape) {
        StopDrive();
    } else if (key == keys.keyThrottle) {
        input.keyThrottleDown = 0;
    } else if (key == keys.keyBrake) {
        input.keyBrakeDown = 0;
    } else if (key == keys.keyLeft) {
        input.keyLeftDown = 0;
    } else if (key == keys.keyRight) {
        input.keyRightDown = 0;
    } else if (key == keys.keyHandBrake) {
        input.handBrake = 0;
    } else if (key == keys.keyNitro) {
        input.nitro = 0;
    }
}

void DriveSession::Activate(std::uint64_t how) {
    if (how != kWaClickActive && how != kWaInactive) return;
    active = how == kWaClickActive ? 1 : 0;
    RedrawHud();
}

bool DriveSession::HandleMessage(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) {
    switch (message) {
        case kWmMouseMove:
            mousePos = {float(SignedLowWord(lParam)), float(SignedHighWord(lParam)), 0.0f};
            return true;
        case kWmKeyDown:
            KeyDown(std::int32_t(wParam));
            RedrawHud();
            return true;
        case kWmKeyUp:
            KeyUp(std::int32_t(wParam));
            RedrawHud();
            return true;
        case kWmTimer:
            InputTick();
            return true;
        case kWmActivate:
            Activate(wParam);
            return true;
        case kWmPaint:
            DrawHudOn(windows_.BeginPaint(window));
            windows_.EndPaint(window);
            return true;
        case kWmClose:
            CloseDrive();
            return true;
        case kWmLButtonDown:
            windows_.BeginDrag(window);
            return true;
        case kWmLButtonUp:
            return true;
        case kWmRButtonDown:
            input.handBrake = 1;
            return true;
        case kWmRButtonUp:
            input.handBrake = 0;
            return true;
        case kWmMouseWheel:
            input.reverse = SignedHighWord(wParam) < 1 ? 1 : 0;
            return true;
        default:
            return false;
    }
}

}  // namespace tavrik

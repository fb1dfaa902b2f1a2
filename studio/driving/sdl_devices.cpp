#include "studio/driving/sdl_devices.h"

#include <algorithm>
#include <cstring>

namespace tavrik_studio {
namespace {

constexpr std::uint32_t kJoyErrUnplugged = 167, kErrorDeviceNotConnected = 1167;

struct ButtonBit {
    SDL_GameControllerButton button;
    std::uint16_t bit;
};
constexpr ButtonBit kButtonBits[] = {
    {SDL_CONTROLLER_BUTTON_DPAD_UP, 0x0001},
    {SDL_CONTROLLER_BUTTON_DPAD_DOWN, 0x0002},
    {SDL_CONTROLLER_BUTTON_DPAD_LEFT, 0x0004},
    {SDL_CONTROLLER_BUTTON_DPAD_RIGHT, 0x0008},
    {SDL_CONTROLLER_BUTTON_START, 0x0010},
    {SDL_CONTROLLER_BUTTON_BACK, 0x0020},
    {SDL_CONTROLLER_BUTTON_LEFTSTICK, 0x0040},
    {SDL_CONTROLLER_BUTTON_RIGHTSTICK, 0x0080},
    {SDL_CONTROLLER_BUTTON_LEFTSHOULDER, 0x0100},
    {SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, 0x0200},
    {SDL_CONTROLLER_BUTTON_A, 0x1000},
    {SDL_CONTROLLER_BUTTON_B, 0x2000},
    {SDL_CONTROLLER_BUTTON_X, 0x4000},
    {SDL_CONTROLLER_BUTTON_Y, 0x8000},
};

/// A stick's axis that grows downwards here and upwards there; both ends and the middle stay what they are.
std::int16_t Upwards(std::int16_t axis) { return std::int16_t(std::min(-int(axis), 32767)); }

std::uint8_t Trigger(std::int16_t axis) { return std::uint8_t((std::max(int(axis), 0) * 255 + 16383) / 32767); }

std::uint32_t UnsignedAxis(SDL_Joystick* joystick, int axis) {
    return std::uint32_t(int(SDL_JoystickGetAxis(joystick, axis)) + 32768);  // 0 for one that it doesn't have
}

tavrik::XInputGamepad StateOf(SDL_GameController* pad) {
    tavrik::XInputGamepad state{};
    for (const ButtonBit& row : kButtonBits) {
        if (SDL_GameControllerGetButton(pad, row.button) != 0) state.wButtons = std::uint16_t(state.wButtons | row.bit);
    }
    const auto axis = [&](SDL_GameControllerAxis which) { return SDL_GameControllerGetAxis(pad, which); };
    state.bLeftTrigger = Trigger(axis(SDL_CONTROLLER_AXIS_TRIGGERLEFT));
    state.bRightTrigger = Trigger(axis(SDL_CONTROLLER_AXIS_TRIGGERRIGHT));
    state.sThumbLX = axis(SDL_CONTROLLER_AXIS_LEFTX);
    state.sThumbLY = Upwards(axis(SDL_CONTROLLER_AXIS_LEFTY));
    state.sThumbRX = axis(SDL_CONTROLLER_AXIS_RIGHTX);
    state.sThumbRY = Upwards(axis(SDL_CONTROLLER_AXIS_RIGHTY));
    return state;
}

bool Same(const tavrik::XInputGamepad& a, const tavrik::XInputGamepad& b) {
    static_assert(sizeof(a) == 12, "no gaps to compare");
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

SdlDevices::SdlDevices() {
    // There is no window of this library's own that could have the user's attention, and signals are none of its business.
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetMainReady();
    works_ = SDL_InitSubSystem(SDL_INIT_JOYSTICK | SDL_INIT_GAMECONTROLLER) == 0;
}

SdlDevices::~SdlDevices() {
    joysticks_.clear();
    for (Gamepad& gamepad : gamepads_) gamepad.device.reset();
    if (works_) SDL_QuitSubSystem(SDL_INIT_JOYSTICK | SDL_INIT_GAMECONTROLLER);
}

void SdlDevices::HoldOrder(bool hold) {
    isHeld_ = hold;
    Poll();
}

/// Comings and goings are told by events; the rest of them, every move of every stick, is only drained.
void SdlDevices::Poll() {
    if (!works_) return;
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) continue;
    DropUnplugged();
    TakeNew();
    if (!isHeld_) Sort();
}

void SdlDevices::DropUnplugged() {
    for (Joystick& joystick : joysticks_) {
        if (joystick.device && SDL_JoystickGetAttached(joystick.device.get()) == SDL_FALSE) joystick.device.reset();
    }
    for (Gamepad& gamepad : gamepads_) {
        if (gamepad.device && SDL_GameControllerGetAttached(gamepad.device.get()) == SDL_FALSE) gamepad.device.reset();
    }
}

void SdlDevices::TakeNew() {
    for (int i = 0; i < SDL_NumJoysticks(); ++i) {
        const SDL_JoystickID id = SDL_JoystickGetDeviceInstanceID(i);
        const auto isIt = [&](const auto& known) { return known.device && known.id == id; };
        if (std::none_of(joysticks_.begin(), joysticks_.end(), isIt)) Open(i);
    }
}

void SdlDevices::Open(int index) {
    Joystick joystick;
    joystick.device.reset(SDL_JoystickOpen(index));
    if (!joystick.device) return;
    joystick.id = SDL_JoystickInstanceID(joystick.device.get());
    joystick.isGamepad = SDL_IsGameController(index) == SDL_TRUE;
    const auto place = std::find_if(gamepads_.begin(), gamepads_.end(), [](const Gamepad& gamepad) { return !gamepad.device; });
    if (joystick.isGamepad && place != gamepads_.end()) {
        place->device.reset(SDL_GameControllerOpen(index));
        place->id = joystick.id;
    }
    joysticks_.push_back(std::move(joystick));
}

void SdlDevices::Sort() {
    std::erase_if(joysticks_, [](const Joystick& joystick) { return !joystick.device; });
    std::stable_partition(joysticks_.begin(), joysticks_.end(), [](const Joystick& joystick) { return !joystick.isGamepad; });
}

int SdlDevices::Joysticks() {
    Poll();
    return int(std::count_if(joysticks_.begin(), joysticks_.end(), [](const Joystick& one) { return one.device != nullptr; }));
}

int SdlDevices::Gamepads() {
    Poll();
    return int(std::count_if(gamepads_.begin(), gamepads_.end(), [](const Gamepad& one) { return one.device != nullptr; }));
}

std::uint32_t SdlDevices::joyGetPos(std::uint32_t id, tavrik::JoyInfo& info) {
    Poll();
    if (id >= joysticks_.size() || !joysticks_[id].device) return kJoyErrUnplugged;
    SDL_Joystick* const joystick = joysticks_[id].device.get();
    info = {UnsignedAxis(joystick, 0), UnsignedAxis(joystick, 1), UnsignedAxis(joystick, 2), 0};
    const int buttons = std::min(SDL_JoystickNumButtons(joystick), 32);
    for (int i = 0; i < buttons; ++i) {
        if (SDL_JoystickGetButton(joystick, i) != 0) info.wButtons |= 1u << i;
    }
    return 0;
}

std::uint32_t SdlDevices::XInputGetState(std::int32_t user, tavrik::XInputState& state) {
    Poll();
    if (user < 0 || user >= tavrik::kXInputUsers || !gamepads_[std::size_t(user)].device) return kErrorDeviceNotConnected;
    Gamepad& gamepad = gamepads_[std::size_t(user)];
    const tavrik::XInputGamepad now = StateOf(gamepad.device.get());
    if (!Same(now, gamepad.last.Gamepad)) gamepad.last = {gamepad.last.dwPacketNumber + 1, now};
    state = gamepad.last;
    return 0;
}

}  // namespace tavrik_studio

#pragma once
/// What the bindings live on, in memory: parameters, a file, pads.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "drive/devices.h"
#include "drive/file_store.h"
#include "drive/param_block.h"

namespace tavrik::test {

/// Whole-number parameters; one that was never set reads as 0. Keeps the order in which they were set.
struct ControlParams : ParamBlock {
    std::map<std::int32_t, std::int32_t> values;
    std::vector<std::pair<std::int32_t, std::int32_t>> sets;  // parameter and value

    float GetFloat(std::int32_t) const override { return 0.0f; }
    std::int32_t GetInt(std::int32_t id) const override {
        const auto found = values.find(id);
        return found == values.end() ? 0 : found->second;
    }
    void SetFloat(std::int32_t, float) override {}
    void SetInt(std::int32_t id, std::int32_t value) override {
        values[id] = value;
        sets.emplace_back(id, value);
    }
};

struct MemoryFile : FileStore {
    FileState state = FileState::Missing;
    std::vector<std::byte> bytes;
    bool canWrite = true;
    std::size_t askedFor = 0;  // limit of the last Read

    FileState Read(std::size_t limit, std::vector<std::byte>& out) override {
        askedFor = limit;
        if (state == FileState::Read) out.assign(bytes.begin(), bytes.begin() + std::ptrdiff_t(std::min(limit, bytes.size())));
        return state;
    }
    bool Write(std::span<const std::byte> image) override {
        if (!canWrite) return false;
        bytes.assign(image.begin(), image.end());
        state = FileState::Read;
        return true;
    }
};

/// Devices with nothing plugged in until a test says otherwise.
struct FakePads : Devices {
    bool joystick = false;                  // plugged in
    std::uint32_t joyButtons = 0;           // of the joystick
    std::array<bool, kXInputUsers> pads{};  // plugged in
    std::array<std::uint16_t, kXInputUsers> padButtons{};
    std::vector<std::int32_t> asked;            // users of XInputGetState
    std::vector<std::uint32_t> joysticksAsked;  // numbers of joyGetPos

    std::uint32_t joyGetPos(std::uint32_t id, JoyInfo& info) override {
        joysticksAsked.push_back(id);
        if (!joystick) return 167;
        info.wButtons = joyButtons;
        return 0;
    }
    std::uint32_t XInputGetState(std::int32_t user, XInputState& state) override {
        asked.push_back(user);
        state.dwPacketNumber = 99;
        state.Gamepad.wButtons = user >= 0 && user < kXInputUsers ? padButtons[std::size_t(user)] : std::uint16_t(0xFFFF);
        return user >= 0 && user < kXInputUsers && pads[std::size_t(user)] ? 0 : 1167;
    }
};

}  // namespace tavrik::test

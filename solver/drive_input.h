#pragma once

#include <cstdint>

namespace tavrik {

/// What the driver asks for in one tick, with the settings that go with it. Each solver step reads a copy of its own.
struct DriveInput {
    std::uint32_t bikeDrive = 0;           // flag: a two-wheeler that balances itself
    float balanceForce = 0.0f;             // radians of steering to one unit of lean, at a standstill
    float maxDriftSpeed = 0.0f;            // a driven wheel that slides this fast gets no torque, unit/s
    float steerTarget = 0.0f;              // steering asked for, radians, right positive
    float throttle = 0.0f;                 // 4 is a key held down; negative in reverse
    float brake = 0.0f;                    // likewise, never negative
    std::uint8_t handBrake = 0;            // flag: held
    float steerRatio = 0.0f;               // the steering as a ratio, -1..1, three times that with nitro
    float rudderSensitivity = 0.0f;        // how fast the steering follows `steerTarget`
    float throttleSensitivity = 0.0f;      // torque for each unit of throttle and of a wheel's radius squared
    float brakeSensitivity = 0.0f;         // likewise for the brake
    float differentialSensitivity = 0.0f;  // torque between left and right for each unit of `steerRatio`, likewise
    std::uint8_t reverse = 0;              // flag: the gear is backward
    std::uint32_t drivingType = 1;         // 0 mouse, 1 keyboard, 2 gamepad, 3 target, 4 spline path
    std::uint32_t keyLeftDown = 0;         // flags of keys held
    std::uint32_t keyRightDown = 0;
    std::uint32_t keyThrottleDown = 0;
    std::uint32_t keyBrakeDown = 0;
    std::uint32_t nitro = 0;
    float rudderAngle = 0.0f;  // the largest steering angle, degrees
};

}  // namespace tavrik

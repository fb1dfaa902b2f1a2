#include "drive/devices.h"

namespace tavrik {

std::int32_t ResolveDriver(std::int32_t value) { return value == 1 ? 1 : 0; }

std::int32_t ResolvePort(std::int32_t value, Devices& devices) {
    if (value >= 1 && value <= kXInputUsers) return value - 1;
    if (value != 0) return 0;
    for (std::int32_t user = 0; user < kXInputUsers; ++user) {
        XInputState state{};
        if (devices.XInputGetState(user, state) == 0) return user;
    }
    return -1;
}

}  // namespace tavrik

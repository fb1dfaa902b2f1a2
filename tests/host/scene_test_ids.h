#pragma once
/// Numbers of the classes in scene_test_plugin.cpp.

#include "host/sdk/maxtypes.h"

namespace tavrik_host::test {

constexpr Class_ID kThingClass(0x51000001, 0x51000002), kMapClass(0x51000003, 0x51000004),
    kWrapperClass(0x51000005, 0x51000006);
constexpr Class_ID kMasterClass(0x727C1135, 0x5E2E3307);  // that of the real one: tools look for recordings by it

enum ThingParam : short { kSize, kSizes, kKey, kSteps, kFlag, kFriend, kPointer, kPattern, kFrame, kPush };

}  // namespace tavrik_host::test

#pragma once
/// What an assembly would make of a scene, and why it would leave things out. An artist who presses the button isn't told: a
/// car with three wheels drives, too.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "rig/assembly.h"

namespace tavrik {

/// One part inside the box.
struct FoundComponent {
    SceneNode* node;
    ObjectClass objectClass;
    bool held;  // its control names the master already
};

/// One wheel with the suspension that it takes.
struct MatchedPair {
    SceneNode* wheel;
    SceneNode* suspension;
    float distance;   // between their origins, scene units
    float width;      // of the wheel, scene units
    float alignment;  // product of their Z axes
};

enum class LeftOutReason : std::uint8_t {
    NoChassis,             // node: the master
    MasterFlattened,       // node: the master
    ChassisFlattened,      // node: the chassis
    TooMany,               // node: the master; text: the sentence
    OutsideBox,            // axis, found, limit: the axis that it passes by most, how far it stands, half the box's size
    FurtherChassis,        // other: the chassis that is used
    NoSuspension,          // a wheel in a box without any suspension
    WheelTooFar,           // other: the nearest suspension; found: its distance; limit: the wheel's Width
    WheelAxisApart,        // other: the suspension near enough whose axis comes closest; found: product of the axes; limit: 0.8
    NoWheel,               // a suspension in a box without any wheel
    SuspensionTooFar,      // other: the nearest wheel; found: its distance; limit: that wheel's Width
    SuspensionPassedOver,  // other: the nearest wheel that reaches it, but took none or another; found: distance; limit: Width
    SuspensionShared,      // node: a wheel that isn't the first to take its suspension; other: the suspension
};

/// One thing that an assembly leaves out, or that will not last. Lengths in scene units.
struct LeftOut {
    LeftOutReason reason;
    SceneNode* node;
    SceneNode* other = nullptr;
    float found = 0.0f;
    float limit = 0.0f;
    char axis = ' ';   // 'X', 'Y' or 'Z' of the master
    std::string text;  // for a reason that is more than numbers
};

struct AssemblyReport {
    AssemblyResult result = AssemblyResult::NoChassis;  // what an assembly would answer
    std::vector<FoundComponent> components;             // chassis, wheels, suspensions, hitches with tongues, spheres
    std::vector<MatchedPair> pairs;                     // in the order of the units
    std::vector<LeftOut> leftOut;
};

/// Looks at the scene as `Assemble` does. The scene and the rig are the same afterwards; meanwhile the rig's recording is set
/// aside, so that nodes show their own places, and nobody else may ask for them. Parts of a second car are reported as outside
/// the box of this one: whoever lists several masters leaves out what another box holds.
AssemblyReport ReportAssembly(CarRig& rig, SceneNode& root, SceneNode& master, const Point3& dummySize);

/// One English sentence for the user.
///
/// @param name       of `record.node`
/// @param otherName  of `record.other`; not looked at if there is none
std::string LeftOutSentence(const LeftOut& record, std::string_view name, std::string_view otherName);

}  // namespace tavrik

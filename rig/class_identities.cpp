#include "rig/class_identities.h"

namespace tavrik {
namespace {

constexpr std::string_view kCategory = "Tavrik";

// Some texts of one class differ from each other, as "Start Position", "Start" and "StartPosition" do. Scripts and saved scenes
// know each of them by now, so all of them stay.
// clang-format off
constexpr ClassIdentity kClasses[] = {
    {"TavrikClassDesc", "Tavrik", ObjectClass::Tavrik, kHelperSuperClass, {0x727C1135, 0x5E2E3307},
     "Tavrik", kCategory, "Tavrik", "Tavrik", "Tavrik", "Tavrik_"},
    {"WheelClassDesc", "WheelObject", ObjectClass::Wheel, kHelperSuperClass, {0x795B5018, 0x46716D27},
     "Wheel", kCategory, "Wheel", "Wheel", "Wheel", "Wheel_"},
    {"SuspensionClassDesc", "SuspensionObject", ObjectClass::Suspension, kHelperSuperClass, {0x3D5B5E1A, 0x47F7793F},
     "Suspension", kCategory, "Suspension", "Suspension", "Suspension", "Suspension_"},
    {"TavrikControlClassDesc", "TavrikControl", ObjectClass::Other, kMatrixControlSuperClass, {0x04F21D66, 0x68861A61},
     "TavrikControl", kCategory, "FWheel", "TavrikControl", "", ""},
    {"ChassisClassDesc", "ChassisObject", ObjectClass::Chassis, kHelperSuperClass, {0x1DA02DE5, 0x66EB5108},
     "Chassis", kCategory, "Chassis", "Chassis", "Chassis", "Chassis_"},
    {"StartClassDesc", "StartObject", ObjectClass::Start, kHelperSuperClass, {0x473254E9, 0x0E1C306B},
     "Start Position", kCategory, "Start", "Start", "StartPosition", "StartPosition_"},
    {"TavrikTrackTexClassDesc", "TavrikTrackTex", ObjectClass::Other, kTexmapSuperClass, {0x162E3EC8, 0x4D88768C},
     "TavrikTrackTexture", "", "TavrikTrackTexture", "", "", ""},
    {"HitchClassDesc", "HitchObject", ObjectClass::Hitch, kHelperSuperClass, {0x5D574EF9, 0x722236A8},
     "Trailer Hitch", kCategory, "Trailer Hitch", "Trailer Hitch", "Trailer Hitch", "Trailer Hitch_"},
    {"TongueClassDesc", "TongueObject", ObjectClass::Tongue, kHelperSuperClass, {0x547D5C37, 0x78F502AA},
     "Trailer Tongue", kCategory, "Trailer Tongue", "Trailer Tongue", "Trailer Tongue", "Trailer Tongue_"},
    {"PushClassDesc", "PushObject", ObjectClass::Push, kHelperSuperClass, {0x69F24B11, 0x401D0DF1},
     "Push", kCategory, "Push", "Push", "Push", "Push_"},
    {"CSphereClassDesc", "CSphereObject", ObjectClass::Sphere, kHelperSuperClass, {0x7F092351, 0x2D247095},
     "Col. Sphere", kCategory, "Col. Sphere", "Col. Sphere", "Col. Sphere", "Col. Sphere_"},
};
// clang-format on

template <typename Test>
const ClassIdentity* FirstClass(Test test) {
    for (const ClassIdentity& identity : kClasses) {
        if (test(identity)) return &identity;
    }
    return nullptr;
}

}  // namespace

std::span<const ClassIdentity> ClassIdentities() { return kClasses; }

const ClassIdentity* FindClass(const ClassId& id) {
    return FirstClass([&](const ClassIdentity& identity) { return identity.id == id; });
}

const ClassIdentity* FindClass(ObjectClass kind) {
    if (kind == ObjectClass::None || kind == ObjectClass::Other) return nullptr;
    return FirstClass([&](const ClassIdentity& identity) { return identity.kind == kind; });
}

const ClassIdentity* FindClass(std::string_view objectClass) {
    return FirstClass([&](const ClassIdentity& identity) { return identity.objectClass == objectClass; });
}

ObjectClass ObjectClassOf(const ClassId& id) {
    const ClassIdentity* const identity = FindClass(id);
    return identity != nullptr ? identity->kind : ObjectClass::Other;
}

}  // namespace tavrik

#pragma once
/// Who the eleven classes are to the host: the numbers by which it knows them, and the names that an artist reads. Scenes are
/// saved with the numbers, so they never move. The records are constants: any number of threads may read them at any time.

#include <cstdint>
#include <span>
#include <string_view>

#include "rig/scene_node.h"

namespace tavrik {

struct ClassId {
    std::uint32_t a, b;

    bool operator==(const ClassId&) const = default;
};

// The host's own numbers for the kinds of class that ours belong to.
constexpr std::uint32_t kHelperSuperClass = 0x50;
constexpr std::uint32_t kMatrixControlSuperClass = 0x9008;
constexpr std::uint32_t kTexmapSuperClass = 0xC10;

/// One class. The last three texts are what an object says of itself, and empty where its kind of class isn't asked.
struct ClassIdentity {
    std::string_view descriptorClass;
    std::string_view objectClass;  // also names its table of parameters
    ObjectClass kind;              // `Other` for the two that no node carries as its object
    std::uint32_t superClass;
    ClassId id;
    std::string_view className;  // in the create panel
    std::string_view category;
    std::string_view internalName;  // in scripts
    std::string_view getClassName;
    std::string_view getObjectName;
    std::string_view initNodeName;  // stem of the names of new nodes
};

/// The eleven classes in the order in which the library hands them out.
std::span<const ClassIdentity> ClassIdentities();

/// @return null for an id that isn't ours
const ClassIdentity* FindClass(const ClassId& id);
/// @return null for `None` and `Other`
const ClassIdentity* FindClass(ObjectClass kind);
/// @param objectClass  such as "WheelObject"
/// @return null for any other name
const ClassIdentity* FindClass(std::string_view objectClass);

/// What an object with this id is to a car: `Other` for every id that no rig object has.
ObjectClass ObjectClassOf(const ClassId& id);

// What the library says of itself. Its description is entry `kDescriptionString` of the string table.
constexpr std::uint32_t kLibraryVersion = 0x55F03700;  // of the host's plug-in interface: release 22000, API 55, revision 0
constexpr std::int32_t kDescriptionString = 1;
constexpr std::int32_t kParametersString = 4;  // names the one sub-animatable of each object

}  // namespace tavrik

#pragma once
/// A scene file as plain records: all of it is checked before the scene in memory changes.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/scene_json.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/max.h"
#include "host/sdk/param_block.h"
#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"

namespace tavrik_host {

constexpr int kNone = -1;

/// One entry of a parameter. Which field counts, the parameter's type tells.
struct EntryRecord {
    float number = 0.0f;
    FloatKeys keys;  // of an animatable number; empty: it is constant
    std::int32_t whole = 0;
    ULONG node = 0;                // handle; 0: none
    int object = kNone;            // in the list of objects
    std::optional<Matrix3> frame;  // none: was never set
};

struct ParamRecord {
    const ParamBlockDesc2* block = nullptr;
    const ParamDef* def = nullptr;
    std::vector<EntryRecord> entries;
};

/// What the host's own transform controller holds.
struct PrsRecord {
    Matrix3 local{TRUE};
    KeyTrack<Point3> position, scale;
    KeyTrack<Rotation> rotation;
    Point3 restPosition{0, 0, 0}, restScale{1, 1, 1};
    Rotation restRotation{0, 0, 0, 1};
};

/// An object, a texture map or a controller.
struct ThingRecord {
    std::string name;           // for messages: "object 3 (Wheel)"
    ClassDesc* desc = nullptr;  // null for the host's own mesh, spline and transform controller
    SClass_ID superClass = 0;
    std::vector<ParamRecord> parameters;
    std::vector<Chunk> chunks;
    int mesh = kNone;  // of a mesh or spline object: in the file's list
    std::optional<PrsRecord> prs;
    int wrappedReference = kNone;  // of a controller: the reference that holds another one
    int wrapped = kNone;           // and which
};

struct NodeRecord {
    std::wstring name;
    ULONG handle = 0;
    int file = kNone;    // number in the file
    int parent = kNone;  // in the list of nodes, where it stands before this one
    int object = kNone, controller = kNone;
    std::optional<DWORD> wireColor;
};

struct SceneRecords {
    double metresPerUnit = 0.01;
    int ticksPerFrame = 160;
    TimeValue secondZero = 0;  // tick of second 0 of the file's animations
    TimeValue firstTick = 0, lastTick = 16000, time = 0;
    ULONG nextHandle = 1;
    std::uint64_t seed = 1;
    std::vector<ThingRecord> objects, controllers;
    std::vector<NodeRecord> nodes;  // parents first
};

/// Refuses (`SceneFault`) records in which something would come to depend on itself.
void CheckLoops(const SceneRecords& records);

}  // namespace tavrik_host

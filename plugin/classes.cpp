#include "plugin/classes.h"

#include <cassert>
#include <memory>
#include <new>
#include <vector>

#include "plugin/chassis_object.h"
#include "plugin/control.h"
#include "plugin/hitch_object.h"
#include "plugin/master.h"
#include "plugin/module.h"
#include "plugin/param_blocks.h"
#include "plugin/push_object.h"
#include "plugin/sphere_object.h"
#include "plugin/start_object.h"
#include "plugin/suspension_object.h"
#include "plugin/tongue_object.h"
#include "plugin/track_texture.h"
#include "plugin/wheel_object.h"
#include "plugin/wide_text.h"

namespace tavrik_plugin {
namespace {

template <typename T>
void* CreateOne(BOOL) {
    return new (std::nothrow) T;
}

/// The host looks at a thing through the base that its super class stands for, and all of ours begin with theirs.
template <>
void* CreateOne<TavrikControl>(BOOL loading) {
    return new (std::nothrow) TavrikControl(loading);
}

struct Maker {
    std::string_view objectClass;
    RigClassDesc::CreateObject create;
};

constexpr Maker kMakers[] = {
    {"Tavrik", CreateOne<Tavrik>},
    {"WheelObject", CreateOne<WheelObject>},
    {"SuspensionObject", CreateOne<SuspensionObject>},
    {"TavrikControl", CreateOne<TavrikControl>},
    {"ChassisObject", CreateOne<ChassisObject>},
    {"StartObject", CreateOne<StartObject>},
    {"TavrikTrackTex", CreateOne<TavrikTrackTex>},
    {"HitchObject", CreateOne<HitchObject>},
    {"TongueObject", CreateOne<TongueObject>},
    {"PushObject", CreateOne<PushObject>},
    {"CSphereObject", CreateOne<CSphereObject>},
};

RigClassDesc::CreateObject MakerOf(std::string_view objectClass) {
    for (const Maker& maker : kMakers) {
        if (maker.objectClass == objectClass) return maker.create;
    }
    assert(false && "a class without a maker");
    return nullptr;
}

/// Descriptors with their tables, which register with them.
struct ClassTable {
    std::vector<RigClassDesc*> classes;
    std::vector<std::unique_ptr<RigClassDesc>> owned;
    std::vector<std::unique_ptr<ParamBlockDesc2>> blocks;  // beside `classes`

    ClassTable() {
        for (const tavrik::ClassIdentity& identity : tavrik::ClassIdentities()) {
            owned.push_back(std::make_unique<RigClassDesc>(identity, MakerOf(identity.objectClass)));
            classes.push_back(owned.back().get());
            blocks.push_back(MakeBlockDesc(identity.objectClass, *owned.back()));
        }
    }
};

const ClassTable& TheTable() {
    static const ClassTable& table = *new ClassTable;  // never freed: a scene may outlive the library's statics
    return table;
}

std::size_t IndexOf(std::string_view objectClass) {
    const ClassTable& table = TheTable();
    std::size_t i = 0;
    while (i < table.classes.size() && table.classes[i]->Identity().objectClass != objectClass) ++i;
    assert(i < table.classes.size());
    return i;
}

// Made while the library is being loaded, before the host asks for the first class.
[[maybe_unused]] const ClassTable& madeAtLoad = TheTable();

}  // namespace

const MCHAR* RigClassDesc::ClassName() { return WideText(identity_.className); }
const MCHAR* RigClassDesc::Category() { return WideText(identity_.category); }
const MCHAR* RigClassDesc::InternalName() { return WideText(identity_.internalName); }
HINSTANCE RigClassDesc::HInstance() { return ModuleHandle(); }

std::span<RigClassDesc* const> Classes() { return TheTable().classes; }
RigClassDesc& ClassNamed(std::string_view objectClass) { return *TheTable().classes[IndexOf(objectClass)]; }
ParamBlockDesc2& BlockDescOf(std::string_view objectClass) { return *TheTable().blocks[IndexOf(objectClass)]; }

}  // namespace tavrik_plugin

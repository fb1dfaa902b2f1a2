#pragma once
/// What the host knows our classes by. Names and numbers come from the rig's list of identities; here stand the operations.

#include <iparamb2.h>

#include <cstddef>
#include <span>

#include "plugin/sdk_year.h"
#include "rig/class_identities.h"

namespace tavrik_plugin {

/// The descriptor of one class.
class RigClassDesc : public ClassDesc2 {
 public:
    /// Makes an object, or answers null when memory has run out. `loading`: the host will set its references.
    using CreateObject = void* (*)(BOOL loading);

    RigClassDesc(const tavrik::ClassIdentity& identity, CreateObject create) : identity_(identity), create_(create) {}
    const tavrik::ClassIdentity& Identity() const { return identity_; }

    int IsPublic() override { return 1; }
    void* Create(BOOL loading) override { return create_(loading); }
    const MCHAR* ClassName() override;
    SClass_ID SuperClassID() override { return identity_.superClass; }
    Class_ID ClassID() override { return {identity_.id.a, identity_.id.b}; }
    const MCHAR* Category() override;
    const MCHAR* InternalName() override;
    HINSTANCE HInstance() override;
    TAVRIK_NON_LOCALIZED_CLASS_NAME

 private:
    const tavrik::ClassIdentity& identity_;
    CreateObject create_;
};

/// All classes in the order of their identities. They, and their tables of parameters, stand as soon as the library is loaded.
std::span<RigClassDesc* const> Classes();
/// @param objectClass  such as "WheelObject"; must be one of ours (asserted)
RigClassDesc& ClassNamed(std::string_view objectClass);
/// The table of a class's block.
ParamBlockDesc2& BlockDescOf(std::string_view objectClass);

}  // namespace tavrik_plugin

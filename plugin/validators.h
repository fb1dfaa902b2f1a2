#pragma once
/// Which nodes a pick button takes.

#include <iparamb2.h>

#include "rig/class_identities.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {

/// Takes nodes whose object is of one class, and always a cleared value.
class NodeValidatorClass : public PBValidator {
 public:
    explicit NodeValidatorClass(tavrik::ObjectClass wanted) : wanted_(wanted) {}
    using PBValidator::Validate;
    BOOL Validate(PB2Value& v) override;
    void DeleteThis() override {}  // they live with the tables

 private:
    tavrik::ObjectClass wanted_;
};

class HitchValidatorClass final : public NodeValidatorClass {
 public:
    HitchValidatorClass() : NodeValidatorClass(tavrik::ObjectClass::Tongue) {}
};
class PushValidatorClass final : public NodeValidatorClass {
 public:
    PushValidatorClass() : NodeValidatorClass(tavrik::ObjectClass::Tavrik) {}
};
// No parameter of a sphere or a tongue takes a node; these wait for one that does, and till then want what the hitch's wants.
class CSphereValidatorClass final : public NodeValidatorClass {
 public:
    CSphereValidatorClass() : NodeValidatorClass(tavrik::ObjectClass::Tongue) {}
};
class TongueValidatorClass final : public NodeValidatorClass {
 public:
    TongueValidatorClass() : NodeValidatorClass(tavrik::ObjectClass::Tongue) {}
};

/// @return null where any node will do
PBValidator* ValidatorFor(tavrik::NodeValidator kind);

}  // namespace tavrik_plugin

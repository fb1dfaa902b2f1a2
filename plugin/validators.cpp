#include "plugin/validators.h"

#include <max.h>

#include "plugin/scene_view.h"

namespace tavrik_plugin {

BOOL NodeValidatorClass::Validate(PB2Value& v) {
    if (v.r == nullptr) return TRUE;
    return ClassOf(static_cast<INode*>(v.r)->GetObjectRef()) == wanted_ ? TRUE : FALSE;
}

PBValidator* ValidatorFor(tavrik::NodeValidator kind) {
    static auto& hitch = *new HitchValidatorClass;  // never freed, as the tables that point to them aren't
    static auto& push = *new PushValidatorClass;
    switch (kind) {
        case tavrik::NodeValidator::None:
            return nullptr;
        case tavrik::NodeValidator::Tongue:
            return &hitch;
        case tavrik::NodeValidator::Master:
            return &push;
    }
    return nullptr;
}

}  // namespace tavrik_plugin

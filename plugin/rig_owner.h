#pragma once

#include <max.h>

namespace tavrik {
struct CarRig;
}

namespace tavrik_plugin {

/// What all our objects in the scene derive from, so that a node's object can be asked for its car: whoever has seen by its
/// class that an object is a master may cast to this.
class RigOwner : public HelperObject {
 public:
    /// The car that a master owns; null for every other object.
    virtual tavrik::CarRig* Rig() { return nullptr; }
};

}  // namespace tavrik_plugin

#pragma once

#include "maxtypes.h"

namespace tavrik_host {

/// The colour in which a new node's lines are drawn: the same for all of one class, so that an artist tells parts apart at a
/// glance. Red is the lowest byte.
DWORD WireColorOf(const Class_ID& id);

}  // namespace tavrik_host

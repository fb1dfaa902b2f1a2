#pragma once

#include "ref.h"

/// A texture map. Maps get their operations here with the first class that has any to offer.
class Texmap : public ReferenceTarget {
 public:
    SClass_ID SuperClassID() override { return TEXMAP_CLASS_ID; }
};

#include "host/sdk/units.h"

#include <iterator>

#include "host/sdk/standin.h"

double GetMasterScale(int unit) {
    // In metres: inch, foot, mile, millimetre, centimetre, metre, kilometre.
    constexpr double kUnits[] = {0.0254, 0.3048, 1609.344, 0.001, 0.01, 1.0, 1000.0};
    if (unit < 0 || unit >= int(std::size(kUnits))) return -1.0;
    return tavrik_host::MetresPerUnit() / kUnits[unit];
}

#include "host/sdk/object.h"

#include "host/sdk/mesh.h"

void Object::SetChannelValidity(int channel, Interval valid) {
    if (channel == TOPO_CHAN_NUM) topoValid_ = valid;
    if (channel == GEOM_CHAN_NUM) geomValid_ = valid;
}

/// @return an instant where the channel no longer holds; channels that nothing here has hold for ever
Interval Object::ChannelValidity(TimeValue t, int channel) const {
    Interval valid = channel == TOPO_CHAN_NUM ? topoValid_ : channel == GEOM_CHAN_NUM ? geomValid_ : FOREVER;
    return valid.InInterval(t) ? valid : Interval(t, t);
}

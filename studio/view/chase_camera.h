#pragma once

#include "host/sdk/max.h"
#include "host/sdk/view_state.h"

namespace tavrik_studio {

/// Follows a node from behind: the eye goes with it at once, turns after it softly, and doesn't share its bumps. How the user
/// orbits and zooms meanwhile stays.
class ChaseCamera {
 public:
    /// Begins anew behind the node.
    void Start(tavrik_host::ViewState& state, const Matrix3& place, TimeValue tick);
    /// @param place  of the node at that tick; a jump in time, or back, is taken at once
    void Update(tavrik_host::ViewState& state, const Matrix3& place, TimeValue tick);

    static constexpr float kTurnSeconds = 0.35f, kRiseSeconds = 0.25f;  // after which two thirds of the way are gone
    static constexpr float kLongestSeconds = 0.5f;                      // between two pictures

 private:
    float heading_ = 0.0f;  // degrees, as the eye's
    float height_ = 0.0f;
    TimeValue tick_ = 0;
};

/// Which way a place heads, degrees clockwise from +Y. @param usual  for one that points straight up
float HeadingOf(const Matrix3& place, float usual);

}  // namespace tavrik_studio

#include "studio/view/draw_pace.h"

#include <algorithm>

namespace tavrik_studio {

DrawEffort DrawPace::Next(bool isMoving) {
    wasMoving_ = isMoving;
    if (!isMoving) return {1, samples_, false};
    switch (level_) {
        case 0:
            return {1, 1, false};
        case 1:
            return {2, 1, false};
        case 2:
            return {3, 1, false};
        default:
            return {2, 1, true};
    }
}

void DrawPace::Took(double milliseconds) {
    if (!wasMoving_) {
        // The first picture of a scene has its meshes to take over, so that one slow picture says nothing.
        slowAtRest_ = milliseconds > kSlowAtRest ? slowAtRest_ + 1 : 0;
        if (slowAtRest_ < 3) return;
        samples_ = std::max(1, samples_ / 2);
        slowAtRest_ = 0;
        return;
    }
    const bool onlyBoxesAreLeft = level_ == kLevels - 2;
    if (milliseconds > (onlyBoxesAreLeft ? kHopeless : kSlow)) {
        // A better picture that was tried in vain is tried less and less often, so that a view doesn't flicker between two.
        if (isTrying_) patience_ = std::min(patience_ * 2, kMostPatience);
        level_ = std::min(level_ + 1, kLevels - 1);
        fast_ = 0;
        isTrying_ = false;
    } else if (milliseconds < kFast && level_ > 0) {
        if (++fast_ < patience_) return;
        --level_;
        fast_ = 0;
        isTrying_ = true;
    } else {
        fast_ = 0;
    }
}

}  // namespace tavrik_studio

#pragma once

#include "studio/view/view_picture.h"

namespace tavrik_studio {

/// Keeps a view fluent: while it moves it is drawn with as little effort as it takes, and once more with all of it when it has
/// come to rest.
class DrawPace {
 public:
    /// @param isMoving  the picture will be replaced by another one at once
    DrawEffort Next(bool isMoving);
    /// Tells how long the picture took that `Next` was asked for.
    void Took(double milliseconds);
    int Level() const { return level_; }

    static constexpr double kSlow = 45.0, kFast = 14.0, kSlowAtRest = 400.0;  // milliseconds
    static constexpr double kHopeless = 180.0;  // likewise: nobody drives by boxes who can see a road instead
    static constexpr int kLevels = 4;
    static constexpr int kLeastPatience = 6, kMostPatience = 200;  // pictures in a row that have to be fast

 private:
    int level_ = 0;
    int fast_ = 0, patience_ = kLeastPatience;
    int samples_ = 4, slowAtRest_ = 0;
    bool isTrying_ = false;
    bool wasMoving_ = false;
};

}  // namespace tavrik_studio

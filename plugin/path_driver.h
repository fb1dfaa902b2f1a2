#pragma once
/// The master's own driver in the hands' place: it follows the node that the artist picked, or the road that this node is.

#include <max.h>

#include "drive/drive_host.h"

namespace tavrik_plugin {

class Tavrik;

class PathDriver final : public tavrik::TargetDriver {
 public:
    explicit PathDriver(Tavrik& master) : master_(master) {}
    void ReadSettings() override;
    bool HasTarget() const override { return Target() != nullptr; }
    bool TargetIsShape() const override;
    /// Into the session's path, at time 0.
    void BuildPath() override;
    void DriveToTarget(tavrik::DriveSession& session) override;
    void DriveAlongPath(tavrik::DriveSession& session) override;

 private:
    INode* Target() const;

    Tavrik& master_;
    ULONG target_ = 0;  // by handle, so that an artist may delete the node in mid-run; 0: none
};

}  // namespace tavrik_plugin

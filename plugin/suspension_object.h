#pragma once
/// One wheel station: the arm or strut that carries a wheel, with spring, damper, buffer and stops.

#include "drive/damper_stand.h"
#include "plugin/block_values.h"
#include "plugin/helper_object.h"

namespace tavrik_plugin {

class SuspensionObject final : public RigHelper {
 public:
    SuspensionObject();
    void ReadValues(TimeValue t) override;
    std::vector<Point3> Extent() const override;
    tavrik::GizmoLines Lines() const override;
    bool Drag(const Point3& d) override;
    ParamMap2UserDlgProc* DialogProc() override;

    /// Runs the dialog in which the damper is tuned by looking at it.
    void OpenStand();

    // Cached. `Ruggedness_Factor` is worked into springs and damper.
    int type = 0;  // 0 wishbone, 1 telescopic
    float length = 0.0f, wheelShift = 0.0f;
    float ruggedness = 500.0f;
    float damping = 0.02f;
    float bufferRuggedness = 0.0f;
    float topStop = 0.0f, bottomStop = 0.0f, shift = 10.0f;
    int steering = 0, drive = 0, handbrake = 0;

 protected:
    void Draw(GraphicsWindow& gw, TimeValue t, INode& node) const override;

 private:
    tavrik::DamperStand stand_;  // its own settings last as long as the object
    BlockParams params_{pblock_};
};

}  // namespace tavrik_plugin

#pragma once
/// Cars for the wizard's tests, put together from boxes and cylinders.

#include <string>

#include "wizard/wizard.h"

namespace tavrik::test {

/// A box about `centre` with half sizes `half`.
ModelPart BoxPart(const std::string& name, const DPoint3& centre, const DPoint3& half);
/// A wheel about the X axis of its frame, which stands at `centre`.
ModelPart WheelPart(const std::string& name, const DPoint3& centre, double radius, double halfWidth, int corners = 24);

/// Adds the vertices and faces of `more` to `part`, each at its place.
void Merge(ModelPart& part, const ModelPart& more);

/// A saloon 4.4 m long that looks along +Y: a body with bonnet, cabin and boot, and wheels of radius 0.32, in metres.
/// @param named  whether its wheels are called by their places, or "piece 1" and so on
CarModel Saloon(bool named = true);

/// A wheel at every place: x, y pairs of the right side, with partners on the left.
CarModel Lorry(int axles);

CarModel Motorcycle(bool named = true);

/// The model turned about the vertical, moved and scaled; the file's unit makes up for the scale if `tellUnit`.
CarModel Moved(const CarModel& model, double turnDegrees, const DPoint3& by, double scale, bool tellUnit = true);

/// The value of a decision, empty where there is none.
std::string ValueOf(const WizardResult& result, const std::string& key);

/// The plan of a car that must be plannable.
WizardResult Planned(const CarModel& model, const WizardOptions& options = {});
/// Why it can't be; empty if it can.
std::string Refusal(const CarModel& model, const WizardOptions& options = {});

}  // namespace tavrik::test

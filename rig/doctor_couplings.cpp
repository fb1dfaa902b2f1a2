#include <algorithm>

#include "rig/doctor_notes.h"
#include "rig/parameter_tables.h"
#include "rig/scene_walk.h"

namespace tavrik {
namespace {

// A joint has no length of its own: what it is apart at the start pulls at once. Up to this many times gravity is a jerk.
constexpr double kMostPull = 10.0;

/// The car in whose box a part stands; of several, the last, which takes it.
const ExaminedCar* CarWith(const std::vector<ExaminedCar>& cars, const SceneNode* node) {
    const ExaminedCar* found = nullptr;
    for (const ExaminedCar& car : cars) {
        const auto holds = [node](const FoundComponent& part) { return part.node == node; };
        if (std::ranges::any_of(car.report.components, holds)) found = &car;
    }
    return found;
}

/// The recording that moves a locked part; null where it isn't locked.
const RecordedMotion* RecordingOf(const DoctorNotes& notes, const SceneNode& part) {
    if (!part.HasControl()) return nullptr;
    const ControlValues control = part.GetControl();
    const CarRig* const rig = control.Tavrik_Node != nullptr ? control.Tavrik_Node->Rig() : nullptr;
    const bool isPlace = control.Axle_Num >= 0 && control.Axle_Num < kMaxComponents;
    return rig != nullptr && isPlace ? notes.recordings.Of(*rig) : nullptr;
}

/// Where a coupled car's tongue is as a drive begins: a locked car stands where it was locked.
DPoint3 TongueAtStart(const DoctorNotes& notes, const ExaminedCar& car, const SceneNode& tongue) {
    const RecordedMotion* const motion = RecordingOf(notes, tongue);
    if (motion == nullptr || motion->frames < 1) return car.AtStart(tongue).row[3];
    return TransformPoint(FromPoint3(tongue.GetControl().Slot_Position.row[3]), motion->chassis[0].frame);
}

void TellDistance(DoctorNotes& notes, const ExaminedCar& car, const ExaminedCar& behind, SceneNode& hitch, SceneNode& tongue) {
    if (car.parts.chassisNode == nullptr || behind.parts.chassisNode == nullptr) return;
    const double distance = Length(TongueAtStart(notes, behind, tongue) - car.AtStart(hitch).row[3]);
    //   pull = distance * k / m      m: of the lighter body
    const double stiffness = double(hitch.GetFloat(HitchParam::Ruggedness));
    const double mass = std::min(car.parts.chassis.Mass, behind.parts.chassis.Mass);
    const double gravity = double(car.facts.master->GetFloat(MasterParam::Gravity));
    const double limit = kMostPull * gravity * mass / stiffness;
    if (!(distance > limit)) return;
    Finding& finding =
        notes.Warn(FindingKind::HitchFar, &hitch,
                   "The tongue " + notes.Name(&tongue) + " starts " + DoctorNumber(distance) + " away from its hitch " +
                       notes.Name(&hitch) + ", so it is pulled there with more than " + DoctorNumber(kMostPull) +
                       " times gravity. Move the start positions of the two cars so that they meet, and lock the car of the "
                       "tongue again.");
    finding.other = &tongue;
    finding.found = distance;
    finding.limit = limit;
}

void ExamineHitch(DoctorNotes& notes, const std::vector<ExaminedCar>& cars, SceneNode& hitch) {
    SceneNode* const tongue = hitch.GetNode(HitchParam::Connection_Node);
    if (tongue == nullptr) return;  // a tow hook that nothing hangs on
    if (tongue->Class() != ObjectClass::Tongue) {
        notes
            .Error(FindingKind::HitchToNoTongue, &hitch,
                   "The hitch " + notes.Name(&hitch) + " is connected to " + notes.Name(tongue) +
                       ", which is not a tongue, so nothing is pulled there. Connect it to the tongue of the other car.")
            .other = tongue;
        return;
    }
    const ExaminedCar* const car = CarWith(cars, &hitch);
    const ExaminedCar* const behind = CarWith(cars, tongue);
    if (car != nullptr && car == behind) {
        notes
            .Error(FindingKind::HitchToItself, &hitch,
                   "The hitch " + notes.Name(&hitch) + " and its tongue " + notes.Name(tongue) + " are both in the box of " +
                       notes.Name(car->facts.master) +
                       ", and a car can't pull itself. Make the box smaller, or connect the hitch to another car.")
            .other = tongue;
        return;
    }
    if (RecordingOf(notes, *tongue) == nullptr) {
        notes
            .Error(FindingKind::HitchUnlocked, &hitch,
                   "The tongue " + notes.Name(tongue) + " of the hitch " + notes.Name(&hitch) +
                       " is not locked, so its car stays behind. Lock that car with Update (Lock Components), or drive it once "
                       "by itself.")
            .other = tongue;
    }
    if (car != nullptr && behind != nullptr) TellDistance(notes, *car, *behind, hitch, *tongue);
}

}  // namespace

void ExamineCouplings(DoctorNotes& notes, const std::vector<ExaminedCar>& cars) {
    WalkScene(notes.facts.root, [&](SceneNode& node) {
        if (node.Class() == ObjectClass::Hitch) ExamineHitch(notes, cars, node);
        return true;
    });
}

void ExaminePushes(DoctorNotes& notes) {
    WalkScene(notes.facts.root, [&notes](SceneNode& node) {
        if (node.Class() != ObjectClass::Push) return true;
        SceneNode* const master = node.GetNode(PushParam::Tavrik);
        if (master != nullptr && master->Class() == ObjectClass::Tavrik) return true;
        notes
            .Warn(FindingKind::PushNowhere, &node,
                  "The push " + notes.Name(&node) +
                      (master == nullptr ? " names no master" : " names " + notes.Name(master) + ", which is no master") +
                      ", so it pushes nothing. Pick the master of a car as its Tavrik.")
            .other = master;
        return true;
    });
}

}  // namespace tavrik

#include <algorithm>
#include <cmath>
#include <limits>

#include "rig/component_values.h"
#include "rig/doctor_notes.h"
#include "rig/parameter_tables.h"
#include "rig/ticks.h"

namespace tavrik {
namespace {

// A wheel that hangs by half its radius falls visibly. On a slope of 45 degrees the ground straight below a standing wheel is
// less far than that.
constexpr double kHangingShare = 0.5;
// Tyres sink a little under their load; by a quarter of what their rays reach, they are squeezed and jump.
constexpr double kSqueezedShare = 0.25;

struct PlacedWheel {
    SceneNode* node;
    DMatrix3 frame;
    double radius, width;
};

/// How far a tyre reaches straight down from its centre. Its skin is a ring with the section x^4 + y^4 = width^4.
double ReachDown(const PlacedWheel& wheel) {
    //   reach = (R - W) * s + W * (s^(4/3) + |a|^(4/3))^(3/4)      a: Z of the axle, s = sqrt(1 - a^2)
    const double a = std::min(1.0, std::abs(Normalize(wheel.frame.row[2]).z)), s = std::sqrt(1.0 - a * a);
    const double section = std::pow(std::pow(s, 4.0 / 3.0) + std::pow(a, 4.0 / 3.0), 0.75);
    return (wheel.radius - wheel.width) * s + wheel.width * section;
}

/// How far something that reaches down from `centre` hangs above the ground; negative: how deep it stands in it. Infinite
/// where there is no ground at all.
double Gap(const GroundFacts& ground, const DPoint3& centre, double reach) {
    const GroundSides sides = ground.sides(centre);
    const double below = sides.below ? centre.z - reach - *sides.below : std::numeric_limits<double>::infinity();
    if (!sides.above) return below;
    // Ground over a centre is a bridge that it goes under, unless it cuts the wheel, or there is nothing else to stand on.
    const bool cuts = *sides.above - centre.z < reach;
    if (sides.below && !(cuts && below > 0.0)) return below;
    return centre.z - reach - *sides.above;
}

double Gap(const GroundFacts& ground, const PlacedWheel& wheel) { return Gap(ground, wheel.frame.row[3], ReachDown(wheel)); }

bool IsThrough(const PlacedWheel& wheel, double gap) { return gap < -wheel.width; }

/// Wheels rest where their suspensions say.
std::vector<PlacedWheel> WheelsAtStart(const ExaminedCar& car) {
    std::vector<PlacedWheel> wheels;
    for (std::size_t i = 0; i < car.report.pairs.size(); ++i) {
        const MatchedPair& pair = car.report.pairs[i];
        wheels.push_back({pair.wheel, car.AtStart(*pair.suspension), car.parts.units[i].Radius, car.parts.units[i].Width});
    }
    return wheels;
}

/// What an artist moves to move the start.
std::string StartName(const DoctorNotes& notes, const ExaminedCar& car) {
    const SceneNode* const start = car.facts.master->GetNode(MasterParam::Start_Node);
    return start != nullptr ? "the start position " + notes.Name(start) : "the parts of the car";
}

void TellSunkWheel(DoctorNotes& notes, const ExaminedCar& car, const PlacedWheel& wheel, double depth) {
    const bool through = IsThrough(wheel, -depth);
    if (!through && depth <= kSqueezedShare * wheel.width) return;
    Finding& finding =
        notes.Add(through ? Severity::Error : Severity::Warning, FindingKind::WheelBelowGround, wheel.node,
                  "The wheel " + notes.Name(wheel.node) + " starts " + DoctorNumber(depth) + " deep in the ground, " +
                      (through ? "further than its tyre feels it, so it carries nothing" : "so the car will jump up") +
                      ". Raise " + StartName(notes, car) + ", or let the car settle with \"tavrik settle\".");
    finding.found = depth;
    finding.limit = through ? wheel.width : kSqueezedShare * wheel.width;
}

/// What holds for all wheels is told of the car as a whole. @return whether it was
bool TellWholeCar(DoctorNotes& notes, const ExaminedCar& car, const std::vector<PlacedWheel>& wheels,
                  const std::vector<double>& gaps) {
    SceneNode* const master = car.facts.master;
    const std::string the = "The car of " + notes.Name(master);
    if (std::ranges::all_of(gaps, [](double gap) { return std::isinf(gap); })) {
        notes.Error(FindingKind::NoGroundBelow, master,
                    the + " starts where there is no ground under it, so it falls for ever. Move " + StartName(notes, car) +
                        " over the ground " + notes.Name(car.facts.ground.node) + ".");
        return true;
    }
    std::size_t lowest = 0;
    bool through = true;
    for (std::size_t i = 0; i < gaps.size(); ++i) {
        through = through && IsThrough(wheels[i], gaps[i]);
        if (gaps[i] < gaps[lowest]) lowest = i;
    }
    if (through) {
        Finding& finding = notes.Error(FindingKind::WheelBelowGround, master,
                                       the + " starts under the ground: its wheels are up to " + DoctorNumber(-gaps[lowest]) +
                                           " deep in it, further than their tyres feel it, so they carry nothing. Raise " +
                                           StartName(notes, car) + ".");
        finding.found = -gaps[lowest];
        finding.limit = wheels[lowest].width;
        return true;
    }
    const double limit = kHangingShare * wheels[lowest].radius;
    if (!(gaps[lowest] > limit)) return false;
    Finding& finding = notes.Warn(FindingKind::StartInAir, master,
                                  the + " starts in the air: its lowest wheel, " + notes.Name(wheels[lowest].node) +
                                      ", hangs " + DoctorNumber(gaps[lowest]) + " above the ground, so it falls first. Lower " +
                                      StartName(notes, car) + ", or let the car settle with \"tavrik settle\".");
    finding.found = gaps[lowest];
    finding.limit = limit;
    return true;
}

/// A recording against the ground, sample by sample.
class RecordingCheck {
 public:
    RecordingCheck(const ExaminedCar& car, const RecordedMotion& motion)
        : ground_(car.facts.ground),
          motion_(motion),
          parts_(car.parts),
          gravity_(double(car.facts.master->GetFloat(MasterParam::Gravity))) {
        const Matrix3 toChassis = Inverse(parts_.chassisNode->GetObjectTM());
        for (const SceneNode* sphere : parts_.sphereNodes) {
            centres_.push_back(FromPoint3((sphere->GetObjectTM() * toChassis).row[3]));
        }
    }

    /// The first frame that doesn't fit, or -1.
    std::int32_t FirstMisfit() {
        std::int32_t flightFrom = -1;
        for (std::int32_t frame = 1; frame < motion_.frames; ++frame) {
            if (MostWheelsAreThrough(frame)) return frame;
            if (Touches(frame)) {
                flightFrom = -1;
                continue;
            }
            if (flightFrom < 0) flightFrom = frame;
            if (IsHeldUp(flightFrom, frame)) return flightFrom;
        }
        return -1;
    }

 private:
    PlacedWheel Wheel(std::size_t i, std::int32_t frame) const {
        const SuspensionUnit& unit = parts_.units[i];
        return {nullptr, motion_.wheels[i][std::size_t(frame)].frame, unit.Radius, unit.Width};
    }

    bool MostWheelsAreThrough(std::int32_t frame) const {
        std::size_t through = 0;
        for (std::size_t i = 0; i < parts_.units.size(); ++i) {
            const PlacedWheel wheel = Wheel(i, frame);
            if (IsThrough(wheel, Gap(ground_, wheel))) ++through;
        }
        return through * 2 > parts_.units.size();
    }

    bool Touches(std::int32_t frame) const {
        for (std::size_t i = 0; i < parts_.units.size(); ++i) {
            const PlacedWheel wheel = Wheel(i, frame);
            if (Gap(ground_, wheel) <= kHangingShare * wheel.radius) return true;
        }
        const DMatrix3& chassis = motion_.chassis[std::size_t(frame)].frame;
        for (std::size_t i = 0; i < centres_.size(); ++i) {
            const double radius = parts_.spheres[i].Radius;
            if (Gap(ground_, TransformPoint(centres_[i], chassis), radius) <= kHangingShare * radius) return true;
        }
        return false;
    }

    double UpwardSpeed(std::int32_t frame) const {
        double momentum = motion_.chassis[std::size_t(frame)].momentum.z, mass = parts_.chassis.Mass;
        for (std::size_t i = 0; i < parts_.units.size(); ++i) {
            momentum += motion_.wheels[i][std::size_t(frame)].momentum.z;
            mass += parts_.units[i].Mass;
        }
        return momentum / mass;
    }

    /// Whether the car didn't fall although nothing touched the ground for half a second.
    bool IsHeldUp(std::int32_t from, std::int32_t to) const {
        const double seconds =
            double(TicksBetween(motion_.times[std::size_t(from)], motion_.times[std::size_t(to)])) / kTicksPerSecond;
        if (seconds < 0.5) return false;
        return UpwardSpeed(from) - UpwardSpeed(to) < 0.5 * gravity_ * seconds;
    }

    const GroundFacts& ground_;
    const RecordedMotion& motion_;
    const ReportedCar& parts_;
    double gravity_;
    std::vector<DPoint3> centres_;  // of the spheres, in chassis space
};

/// Whether the recording's wheels are those of the car as it stands, in the same order.
bool RecordsTheseWheels(const ExaminedCar& car, const RecordedMotion& motion) {
    if (std::size_t(motion.unitCount) != car.report.pairs.size()) return false;
    for (std::size_t i = 0; i < car.report.pairs.size(); ++i) {
        const SceneNode& wheel = *car.report.pairs[i].wheel;
        if (!wheel.HasControl()) return false;
        const ControlValues control = wheel.GetControl();
        if (control.Tavrik_Node != car.facts.master || control.Axle_Num != std::int32_t(i)) return false;
    }
    return true;
}

}  // namespace

void ExamineGround(DoctorNotes& notes, const ExaminedCar& car) {
    SceneNode* const master = car.facts.master;
    const GroundFacts& ground = car.facts.ground;
    const std::string the = "The ground " + notes.Name(ground.node) + " of " + notes.Name(master);
    switch (ground.state) {
        case GroundFacts::State::NonePicked:
            notes.Error(FindingKind::NoGroundPicked, master,
                        notes.Name(master) + " has no ground to drive on. Pick a mesh as its Surface_Node.");
            return;
        case GroundFacts::State::NoMesh:
            notes.Error(FindingKind::GroundWithoutMesh, ground.node,
                        the + " is not a mesh, so there is nothing to drive on. Pick a mesh as the Surface_Node.");
            return;
        case GroundFacts::State::Empty:
            notes.Error(FindingKind::GroundEmpty, ground.node,
                        the + " has no faces, so there is nothing to drive on. Pick a mesh with faces.");
            return;
        case GroundFacts::State::Refused:
            notes.Error(FindingKind::GroundRefused, ground.node,
                        the + " can't be driven on: " + ground.problem + ". Mend the mesh.");
            return;
        case GroundFacts::State::Whole:
            break;
    }
    if (ground.degenerate > 0) {
        notes
            .Warn(FindingKind::DegenerateFaces, ground.node,
                  the + " has " + std::to_string(ground.degenerate) + (ground.degenerate == 1 ? " face" : " faces") +
                      " without an area, which nothing can stand on. Weld or delete them.")
            .found = double(ground.degenerate);
    }
    if (ground.duplicates > 0) {
        notes
            .Warn(FindingKind::DuplicateFaces, ground.node,
                  the + " has " + std::to_string(ground.duplicates) +
                      (ground.duplicates == 1 ? " face that lies" : " faces that lie") +
                      " on the same corners as another, which makes it slow and large. Delete the doubles.")
            .found = double(ground.duplicates);
    }
}

void ExamineStart(DoctorNotes& notes, const ExaminedCar& car) {
    if (car.report.result != AssemblyResult::Locked || car.facts.ground.state != GroundFacts::State::Whole) return;
    const std::vector<PlacedWheel> wheels = WheelsAtStart(car);
    if (wheels.empty()) return;
    std::vector<double> gaps;
    for (const PlacedWheel& wheel : wheels) gaps.push_back(Gap(car.facts.ground, wheel));
    if (TellWholeCar(notes, car, wheels, gaps)) return;
    for (std::size_t i = 0; i < wheels.size(); ++i) {
        if (std::isinf(gaps[i])) {
            notes.Warn(FindingKind::NoGroundBelow, wheels[i].node,
                       "The wheel " + notes.Name(wheels[i].node) +
                           " starts beside the ground, so the car tips over there. Move " + StartName(notes, car) +
                           " further in.");
        } else {
            TellSunkWheel(notes, car, wheels[i], -gaps[i]);
        }
    }
}

void ExamineRecording(DoctorNotes& notes, const ExaminedCar& car) {
    const RecordedMotion* const motion = notes.recordings.Of(*car.facts.master->Rig());
    if (motion == nullptr || car.facts.ground.state != GroundFacts::State::Whole || car.parts.chassisNode == nullptr ||
        car.parts.units.empty() || !RecordsTheseWheels(car, *motion)) {
        return;
    }
    const std::int32_t frame = RecordingCheck(car, *motion).FirstMisfit();
    if (frame < 0) return;
    const double second = double(motion->times[std::size_t(frame)]) / kTicksPerSecond;
    notes
        .Warn(FindingKind::GroundMoved, car.facts.master,
              "The recording of " + notes.Name(car.facts.master) + " doesn't fit its ground from second " +
                  DoctorNumber(second) +
                  " on: wheels are deep under it, or the car hangs in the air without falling. The ground was moved or "
                  "changed since, or the car has fallen through it; drive again.")
        .found = second;
}

}  // namespace tavrik

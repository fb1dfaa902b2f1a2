#pragma once
/// What the doctor's rules have in common. Only for their own files.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "rig/car_rig.h"
#include "rig/rig_doctor.h"

namespace tavrik {

/// The recordings of all cars, out of their rigs for as long as this lives: nodes then show their own places.
class SetAsideRecordings {
 public:
    explicit SetAsideRecordings(const std::vector<CarFacts>& cars);
    ~SetAsideRecordings();
    SetAsideRecordings(const SetAsideRecordings&) = delete;
    SetAsideRecordings& operator=(const SetAsideRecordings&) = delete;

    /// Null where a car isn't locked.
    const RecordedMotion* Of(const CarRig& rig) const;

 private:
    std::vector<std::pair<CarRig*, RecordedMotion>> kept_;
};

/// Findings in the making.
struct DoctorNotes {
    const SceneFacts& facts;
    const SetAsideRecordings& recordings;
    std::vector<Finding> findings;

    std::string Name(const SceneNode* node) const { return node == nullptr ? "" : "\"" + facts.name(*node) + "\""; }
    Finding& Add(Severity severity, FindingKind kind, SceneNode* node, std::string sentence) {
        Finding finding{severity, kind, node, nullptr, 0.0, 0.0, std::move(sentence)};
        findings.push_back(std::move(finding));
        return findings.back();
    }
    Finding& Error(FindingKind kind, SceneNode* node, std::string sentence) {
        return Add(Severity::Error, kind, node, std::move(sentence));
    }
    Finding& Warn(FindingKind kind, SceneNode* node, std::string sentence) {
        return Add(Severity::Warning, kind, node, std::move(sentence));
    }
};

/// One car as the rules look at it.
struct ExaminedCar {
    const CarFacts& facts;
    AssemblyReport report;
    ReportedCar parts;
    DMatrix3 start;  // of the chassis; identity where there is none

    /// A part's frame when the car stands at its start, world. There must be a chassis.
    DMatrix3 AtStart(const SceneNode& part) const;
};

/// Four digits, as a user writes them.
std::string DoctorNumber(double value);

void ExamineNode(DoctorNotes& notes, SceneNode& node);
void ExamineParameters(DoctorNotes& notes, SceneNode& node);
void ExamineGround(DoctorNotes& notes, const ExaminedCar& car);
void ExamineStart(DoctorNotes& notes, const ExaminedCar& car);
void ExamineRecording(DoctorNotes& notes, const ExaminedCar& car);
void ExamineCouplings(DoctorNotes& notes, const std::vector<ExaminedCar>& cars);
void ExaminePushes(DoctorNotes& notes);

}  // namespace tavrik

#pragma once
/// A drive in a scene whose car drives itself.

#include <memory>
#include <string>
#include <vector>

#include "cli/follow_words.h"
#include "cli/scene_run.h"
#include "drive/cruise_keys.h"
#include "host/follow_target.h"
#include "host/pedal_script_file.h"
#include "host/run_samples.h"

namespace tavrik_cli {

class FollowRun {
 public:
    /// Sets the car to what it follows, as its artist would on its panel, and the run to drive that way. Where the user says
    /// nothing of a driver and the scene's car has its own way set, that is followed; else nothing happens here.
    ///
    /// @param run      its length is set already, and outlives this
    /// @param noHands  the user gave no input
    /// @param mayLast  in a run that ends with its laps: it may take as long as they can take
    /// @param problem  on false: one sentence that names the scene
    bool Prepare(const std::optional<tavrik::FollowOrder>& order, SceneRun& run, bool noHands, bool mayLast,
                 std::string& problem);
    /// What came of it, for the terminal.
    std::string Summary(const tavrik::RunSamples& samples) const;

 private:
    bool FindTarget(const tavrik::FollowOrder& order, std::string& problem);
    bool CheckHands(const tavrik::FollowOrder& order, bool noHands, std::string& problem) const;
    bool SetPedals(const tavrik::FollowOrder& order, bool noHands, std::string& problem);
    void SetLength(bool mayLast);
    /// The tick of the last sample recorded before a frame begins.
    TimeValue LastSample(int frame) const;
    double SpeedBefore(int frame);
    void PressPedals(int frame);
    void Hold(const tavrik::HeldPedals& wanted);
    bool GoesOn(int frame);
    tavrik::DPoint3 PlaceAt(TimeValue t);
    std::string RoadSummary(const std::vector<tavrik::RunReading>& readings) const;
    std::string TimetableSummary(const std::vector<tavrik::RunReading>& readings) const;

    SceneRun* run_ = nullptr;  // null: nothing is followed
    INode* target_ = nullptr;
    INode* chassis_ = nullptr;  // found when the car is locked
    tavrik_host::FollowKind kind_ = tavrik_host::FollowKind::Nothing;
    double cruise_ = 0.0;  // km/h; 0: hands have the pedals
    int laps_ = 0;
    std::unique_ptr<tavrik::CruiseKeys> keys_;
    std::unique_ptr<tavrik::PedalPlayer> pedals_;  // null: no script has them
    tavrik::HeldPedals held_;
    std::unique_ptr<tavrik::RoadProgress> progress_;  // frame by frame
};

}  // namespace tavrik_cli

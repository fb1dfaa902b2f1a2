#include "cli/follow_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "drive/input_modes.h"
#include "drive/window_messages.h"
#include "host/read_file.h"
#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_cli {
namespace {

using tavrik::DPoint3;
using tavrik::MasterParam;
using tavrik::RunReading;
using tavrik_host::FollowKind;
using tavrik_host::LineOf;

constexpr double kUsualCruise = 40.0;  // km/h
constexpr double kLongestSeconds = 36'000.0;
constexpr double kSpareSeconds = 60.0;  // to pull away, on top of laps at half the speed

double MetresPerSecond(double kilometresPerHour) { return kilometresPerHour / 3.6; }

DPoint3 PlaceOf(INode& node, TimeValue t) {
    const Point3 p = node.GetObjectTM(t).GetTrans();
    return {double(p.x), double(p.y), double(p.z)};
}

double FlatDistance(const DPoint3& a, const DPoint3& b) { return std::hypot(b.x - a.x, b.y - a.y); }

std::string NameOf(INode& node) { return tavrik_host::ToUtf8(node.GetName()); }

}  // namespace

bool FollowRun::FindTarget(const tavrik::FollowOrder& order, std::string& problem) {
    if (!order.node.empty()) return FindFollowed(run_->master, order.node, target_, kind_, problem);
    target_ = tavrik_host::NodeParam(run_->master, MasterParam::Driving_Target);
    if (target_ == nullptr) {
        problem = "its car has nothing set to follow; give --follow with the name of a node.";
        return false;
    }
    return FindFollowed(run_->master, NameOf(*target_), target_, kind_, problem);
}

bool FollowRun::CheckHands(const tavrik::FollowOrder& order, bool noHands, std::string& problem) const {
    if (kind_ != FollowKind::Road && (order.cruise || order.laps > 0 || !order.speedKeys.empty())) {
        problem =
            fmt::format("\"{}\" moves by itself and gives the speed too; --cruise, --speed-keys and --laps are for lines.",
                        NameOf(*target_));
    } else if (!noHands && !run_->hands.ByEvents()) {
        problem = "a table of rows has wheel and pedals to itself; beside --follow the driver's --input takes events.";
    } else if (order.laps > 1 && !LineOf(*target_).closed) {
        problem = fmt::format("\"{}\" is an open line, which is passed once; give --laps 1.", NameOf(*target_));
    }
    return problem.empty();
}

bool FollowRun::SetPedals(const tavrik::FollowOrder& order, bool noHands, std::string& problem) {
    if (!noHands) return true;
    run_->beforeFrame = [this](int frame) { PressPedals(frame); };
    if (order.speedKeys.empty()) {
        cruise_ = order.cruise ? *order.cruise : kUsualCruise;
        keys_ = std::make_unique<tavrik::CruiseKeys>(MetresPerSecond(cruise_) / tavrik_host::MetresPerUnit());
        return true;
    }
    std::string text;
    tavrik::PedalScript script;
    const tavrik::PedalBindings bindings{.throttle = tavrik_host::IntParam(run_->master, MasterParam::CtrlKbdThrottle),
                                         .brake = tavrik_host::IntParam(run_->master, MasterParam::CtrlKbdBreak),
                                         .handBrake = tavrik_host::IntParam(run_->master, MasterParam::CtrlKbdHandBreak)};
    if (!tavrik::ReadWholeFile(order.speedKeys, text, problem) ||
        !tavrik::ReadPedalScriptText(order.speedKeys.string(), text, bindings, script, problem)) {
        return false;
    }
    pedals_ = std::make_unique<tavrik::PedalPlayer>(std::move(script));
    return true;
}

void FollowRun::SetLength(bool mayLast) {
    progress_ = std::make_unique<tavrik::RoadProgress>(LineOf(*target_), tavrik_host::MetresPerUnit());
    if (laps_ == 0 || !mayLast) return;
    const double speed = MetresPerSecond(cruise_ > 0.0 ? cruise_ : kUsualCruise) / 2.0;
    const double seconds = laps_ * progress_->length() * tavrik_host::MetresPerUnit() / speed + kSpareSeconds;
    run_->frames = FramesIn(std::min(seconds, kLongestSeconds));
}

bool FollowRun::Prepare(const std::optional<tavrik::FollowOrder>& order, SceneRun& run, bool noHands, bool mayLast,
                        std::string& problem) {
    const bool isSet = tavrik_host::IntParam(run.master, MasterParam::Driving_Type) == std::int32_t(tavrik::kDriveToTarget) &&
                       tavrik_host::NodeParam(run.master, MasterParam::Driving_Target) != nullptr;
    if (!order && !(noHands && isSet)) return true;
    run_ = &run;
    const tavrik::FollowOrder wanted = order ? *order : tavrik::FollowOrder();
    if (!FindTarget(wanted, problem) || !CheckHands(wanted, noHands, problem)) {
        problem = fmt::format("{}: {}", run.scene.string(), problem);
        return false;
    }
    laps_ = wanted.laps;
    tavrik_host::SetParam(run.master, MasterParam::Driving_Type, std::int32_t(tavrik::kDriveToTarget));
    tavrik_host::SetParam(run.master, MasterParam::Driving_Target, target_);
    if (wanted.rudder) tavrik_host::SetParam(run.master, MasterParam::Rudder_Sensitivity, float(*wanted.rudder));
    run.byTarget = true;
    if (kind_ != FollowKind::Road) return true;
    if (!SetPedals(wanted, noHands, problem)) return false;
    SetLength(mayLast);
    if (laps_ > 0 || (pedals_ && pedals_->ByMetres())) run.afterFrame = [this](int frame) { return GoesOn(frame); };
    return true;
}

DPoint3 FollowRun::PlaceAt(TimeValue t) {
    if (chassis_ == nullptr) chassis_ = tavrik_host::LockedChassis(run_->master);
    return chassis_ == nullptr ? DPoint3{} : PlaceOf(*chassis_, t);
}

TimeValue FollowRun::LastSample(int frame) const {
    const int perFrame = GetTicksPerFrame();
    const int sample = perFrame / std::max(1, tavrik_host::IntParam(run_->master, MasterParam::Frame_Step));
    return run_->from + frame * perFrame - sample;
}

double FollowRun::SpeedBefore(int frame) {
    const int perFrame = GetTicksPerFrame();
    const TimeValue now = LastSample(frame);
    if (now < perFrame) return 0.0;
    const DPoint3 way = PlaceAt(now) - PlaceAt(now - perFrame);
    const Point3 ahead = chassis_ == nullptr ? Point3(0, 1, 0) : chassis_->GetObjectTM(now).GetRow(1);
    return Dot(way, {double(ahead.x), double(ahead.y), double(ahead.z)}) * tavrik::kTicksPerSecond / perFrame;
}

void FollowRun::PressPedals(int frame) {
    if (pedals_ != nullptr) {
        const double seconds = double(frame) * GetTicksPerFrame() / tavrik::kTicksPerSecond;
        return Hold(pedals_->HoldAt(seconds, progress_->way() * tavrik_host::MetresPerUnit()));
    }
    const tavrik::CruisePedals wanted = keys_->Decide(SpeedBefore(frame));
    Hold({.throttle = wanted.throttle, .brake = wanted.brake, .handBrake = false});
}

void FollowRun::Hold(const tavrik::HeldPedals& wanted) {
    const auto press = [this](std::int32_t param, bool wasDown, bool isDown) {
        if (wasDown == isDown) return;
        const auto key = std::uint64_t(std::uint32_t(tavrik_host::IntParam(run_->master, param)));
        run_->desktop.windows.Send(isDown ? tavrik::kWmKeyDown : tavrik::kWmKeyUp, key, 0);
    };
    press(MasterParam::CtrlKbdThrottle, held_.throttle, wanted.throttle);
    press(MasterParam::CtrlKbdBreak, held_.brake, wanted.brake);
    press(MasterParam::CtrlKbdHandBreak, held_.handBrake, wanted.handBrake);
    held_ = wanted;
}

bool FollowRun::GoesOn(int frame) {
    const TimeValue now = LastSample(frame + 1);
    progress_->Add(PlaceAt(now), double(now - run_->from) / tavrik::kTicksPerSecond);
    return laps_ == 0 || int(progress_->passed().size()) < laps_;
}

// -------------------------------------------------------------------------------------------------------------- the summary

std::string FollowRun::RoadSummary(const std::vector<RunReading>& readings) const {
    const tavrik::FollowedLine line = LineOf(*target_);
    const double metres = tavrik_host::MetresPerUnit();
    tavrik::RoadProgress progress(line, metres);
    for (const RunReading& reading : readings) {
        progress.Add(reading.position, double(reading.tick - run_->from) / tavrik::kTicksPerSecond);
    }
    std::string text =
        fmt::format("Follows   {}: {} line, {:.1f} m{}\n", NameOf(*target_), line.closed ? "a closed" : "an open",
                    progress.length() * metres, cruise_ > 0.0 ? fmt::format(", at {:g} km/h", cruise_) : std::string());
    double before = 0.0;
    for (std::size_t i = 0; i < progress.passed().size(); ++i) {
        text += fmt::format("{}    {} in {:.2f} s\n", line.closed ? "Lap   " : "Passed", i + 1, progress.passed()[i] - before);
        before = progress.passed()[i];
    }
    if (int(progress.passed().size()) < laps_) {
        text += fmt::format("Note      the time was up after {} of {} {}; give more with --seconds\n", progress.passed().size(),
                            laps_, laps_ == 1 ? "lap" : "laps");
    }
    if (pedals_ != nullptr && pedals_->Left() > 0) {
        text += fmt::format("Note      the drive ended before the last {} of the speed keys came\n",
                            pedals_->Left() == 1 ? "row" : fmt::format("{} rows", pedals_->Left()));
    }
    return text + fmt::format("Off line  {:.2f} m at most, at second {:.1f}; {:.2f} m in the mean\n",
                              progress.largest() * metres, progress.largestAt(), progress.mean() * metres);
}

std::string FollowRun::TimetableSummary(const std::vector<RunReading>& readings) const {
    double sum = 0.0, largest = 0.0;
    for (const RunReading& reading : readings) {
        const double distance = FlatDistance(reading.position, PlaceOf(*target_, reading.tick));
        sum += distance;
        largest = std::max(largest, distance);
    }
    const double metres = tavrik_host::MetresPerUnit();
    const double last =
        readings.empty() ? 0.0 : FlatDistance(readings.back().position, PlaceOf(*target_, readings.back().tick));
    return fmt::format("Follows   {}: {:.2f} m away in the mean, {:.2f} m at most, {:.2f} m at the end\n", NameOf(*target_),
                       sum * metres / double(std::max<std::size_t>(readings.size(), 1)), largest * metres, last * metres);
}

std::string FollowRun::Summary(const tavrik::RunSamples& samples) const {
    if (run_ == nullptr) return {};
    std::vector<RunReading> readings;
    std::copy_if(samples.readings.begin(), samples.readings.end(), std::back_inserter(readings),
                 [this](const RunReading& reading) { return reading.tick >= run_->from; });
    return kind_ == FollowKind::Road ? RoadSummary(readings) : TimetableSummary(readings);
}

}  // namespace tavrik_cli

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "cli/scene_run.h"
#include "host/atomic_file.h"
#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "host/scene_doctor.h"
#include "host/scene_rig.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_cli {
namespace {

using tavrik::DMatrix3;
using tavrik::DPoint3;
using tavrik::MasterParam;
using tavrik::ObjectClass;
using tavrik::RecordedMotion;
using tavrik_host::SceneView;

// At rest is what moves slower than a fall of two milliseconds makes it: contacts never hold quite still.
constexpr double kRestSeconds = 0.002;
// Over this long, so that the trembling of a single sample doesn't count.
constexpr double kLookBack = 0.25;
// What ends up further over than this lies on its side.
constexpr double kMostTilt = 45.0;

std::string NameOf(INode& node) { return tavrik_host::ToUtf8(node.GetName()); }

/// One car of those that stand there coupled.
struct Standing {
    INode* master = nullptr;
    RecordedMotion motion;
    double speed = 0.0;  // over the last moment, of what moves most; unit/s
    double fall = 0.0;   // of the chassis over the same, unit/s
    double sink = 0.0;   // since the start, units
    double tilt = 0.0;   // likewise, degrees
};

/// How fast the frame moved from `a` to `b`, its axes taken at the length of a car.
double Speed(const DMatrix3& a, const DMatrix3& b, double length, double seconds) {
    double way = Length(b.row[3] - a.row[3]);
    for (int i = 0; i < 3 && length > 0.0; ++i) way = std::max(way, Length(b.row[i] - a.row[i]) * length);
    return way / seconds;
}

void Measure(Standing& car, double length) {
    const RecordedMotion& motion = car.motion;
    const auto last = std::size_t(motion.frames - 1);
    const auto before =
        std::size_t(std::max(1, motion.FindFrame(motion.times[last] - int(kLookBack * tavrik::kTicksPerSecond))));
    const double seconds = std::max(1, motion.times[last] - motion.times[before]) / double(tavrik::kTicksPerSecond);
    const DMatrix3 &first = motion.chassis[0].frame, &earlier = motion.chassis[before].frame, &now = motion.chassis[last].frame;
    car.speed = Speed(earlier, now, length, seconds);
    for (std::int32_t i = 0; i < motion.unitCount; ++i) {
        const auto& wheel = motion.wheels[i];
        // Spin doesn't count: a driven wheel in the air goes on turning for ever.
        car.speed = std::max(car.speed, Speed(wheel[before].frame, wheel[last].frame, 0.0, seconds));
    }
    car.fall = (earlier.row[3].z - now.row[3].z) / seconds;
    car.sink = first.row[3].z - now.row[3].z;
    const double cosine = Dot(Normalize(first.row[2]), Normalize(now.row[2]));
    car.tilt = std::acos(std::clamp(cosine, -1.0, 1.0)) * 180.0 / std::numbers::pi;
}

/// Why a car can't start from where it ended up; empty where it can.
std::string Complaint(const Standing& car, double seconds) {
    const double gravity = double(tavrik_host::FloatParam(*car.master, MasterParam::Gravity));
    const std::string name = NameOf(*car.master);
    const double metres = tavrik_host::MetresPerUnit();
    if (car.fall > 0.25 * gravity * seconds) {
        return fmt::format(
            "{} fell off or through its ground: after {:g} s it was {:.1f} m further down; put its start position on the "
            "ground",
            name, seconds, car.sink * metres);
    }
    const bool rests = car.speed <= kRestSeconds * gravity && car.tilt <= kMostTilt;
    if (!rests && tavrik_host::IntParam(*car.master, MasterParam::Bike_Drive) != 0) {
        return fmt::format("{} is balanced only while it is driven, so it can't stand by itself; leave its start as it is",
                           name);
    }
    if (!(car.speed <= kRestSeconds * gravity)) {
        return fmt::format(
            "{} did not come to rest: after {:g} s it still moves at {:.3f} m/s; give it more --seconds, or start it on more "
            "level ground",
            name, seconds, car.speed * metres);
    }
    if (!(car.tilt <= kMostTilt)) {
        return fmt::format("{} fell over: it came to rest tilted by {:.0f} degrees; widen its stance, or let it start balanced",
                           name, car.tilt);
    }
    return {};
}

// ---------------------------------------------------------------------------------------------------------------- the start

/// A frame with axes at length 1 and square to one another, which steps leave a little off.
DMatrix3 Squared(const DMatrix3& frame) {
    DMatrix3 square = frame;
    square.row[1] = Normalize(frame.row[1]);
    square.row[2] = Normalize(frame.row[2] - square.row[1] * Dot(frame.row[2], square.row[1]));
    square.row[0] = Cross(square.row[1], square.row[2]);
    return square;
}

bool StandsAt(INode& node, const Matrix3& place) {
    const DMatrix3 is = tavrik_host::RigFrame(node.GetObjectTM(0)), wanted = tavrik_host::RigFrame(place);
    for (int i = 0; i < 4; ++i) {
        if (Length(is.row[i] - wanted.row[i]) > (i == 3 ? 0.01 : 1e-4)) return false;
    }
    return true;
}

/// Whether a master's start is a start position that nobody else starts from.
bool IsItsOwn(INode* start, INode& master) {
    if (start == nullptr || tavrik_host::ClassOf(*start) != ObjectClass::Start) return false;
    for (INode* other : tavrik_host::NodesOf(ObjectClass::Tavrik)) {
        if (other != &master && tavrik_host::NodeParam(*other, MasterParam::Start_Node) == start) return false;
    }
    return true;
}

INode* ChassisOf(INode& master);

/// Makes a car start at `frame`. What is no start position, is shared or won't be moved stays where it is, and the car gets a
/// start position of its own. @return whether there is a new one
bool SetStart(INode& master, const DMatrix3& frame) {
    Matrix3 place = tavrik_host::SceneFrame(Squared(frame));
    INode* start = tavrik_host::NodeParam(master, MasterParam::Start_Node);
    if (IsItsOwn(start, master)) {
        start->SetNodeTM(0, place);
        if (StandsAt(*start, place)) return false;
    }
    INode& made = tavrik_host::AddRigNode(ObjectClass::Start, place);
    if (INode* chassis = ChassisOf(master); chassis != nullptr) {
        tavrik_host::SetParam(made, tavrik::StartParam::Size, tavrik_host::FloatParam(*chassis, tavrik::ChassisParam::Length));
    }
    tavrik_host::SetParam(master, MasterParam::Start_Node, &made);
    return true;
}

/// The chassis that is locked to a master.
INode* ChassisOf(INode& master) {
    using tavrik::ControlParam;
    for (INode* node : tavrik_host::NodesOf(ObjectClass::Chassis)) {
        if (!tavrik_host::HasTavrikControl(*node)) continue;
        IParamBlock2& block = *node->GetTMController()->GetParamBlockByID(BlockID(tavrik::kBlockId));
        if (block.GetINode(ControlParam::Tavrik_Node) == &master) return node;
    }
    return nullptr;
}

// ------------------------------------------------------------------------------------------------------------------ the run

/// What shows whether a recording has been driven on.
struct Mark {
    std::int32_t frames = 0;
    DPoint3 last{};
};

Mark MarkOf(const RecordedMotion& motion) {
    if (!motion.valid || motion.frames < 1) return {};
    return {motion.frames, motion.chassis[std::size_t(motion.frames - 1)].frame.row[3]};
}

bool ReadMarks(const std::vector<INode*>& masters, std::vector<Mark>& marks, std::string& problem) {
    auto motion = std::make_unique<RecordedMotion>();
    for (INode* master : masters) {
        if (!tavrik_host::ReadRecording(*master, *motion, problem)) return false;
        marks.push_back(MarkOf(*motion));
    }
    return true;
}

/// Those that were driven: the car itself, first, and whatever hangs on it.
bool ReadStanding(INode& driven, const std::vector<INode*>& masters, const std::vector<Mark>& before,
                  std::vector<std::unique_ptr<Standing>>& cars, std::string& problem) {
    for (std::size_t i = 0; i < masters.size(); ++i) {
        auto car = std::make_unique<Standing>();
        car->master = masters[i];
        if (!tavrik_host::ReadRecording(*masters[i], car->motion, problem)) return false;
        if (!car->motion.valid || car->motion.frames < 2) continue;
        const Mark now = MarkOf(car->motion);
        const bool moved = now.frames != before[i].frames || Length(now.last - before[i].last) != 0.0;
        if (masters[i] != &driven && !moved) continue;
        INode* chassis = ChassisOf(*masters[i]);
        Measure(*car, chassis != nullptr ? double(tavrik_host::FloatParam(*chassis, tavrik::ChassisParam::Length)) : 0.0);
        cars.insert(masters[i] == &driven ? cars.begin() : cars.end(), std::move(car));
    }
    return true;
}

/// Every wheel braked, the engine off.
tavrik::Hands BrakingHands() {
    tavrik::Hands hands;
    tavrik::DriverRow row;
    row.brake = 1.0f;
    hands.rows.rows.push_back(row);
    return hands;
}

/// Keeps pushes off the cars for as long as it lives.
class NoPushes {
 public:
    NoPushes() {
        for (INode* push : tavrik_host::NodesOf(ObjectClass::Push)) {
            pushed_.emplace_back(push, tavrik_host::NodeParam(*push, tavrik::PushParam::Tavrik));
            SetMaster(*push, nullptr);
        }
    }
    ~NoPushes() {
        for (const auto& [push, master] : pushed_) SetMaster(*push, master);
    }
    NoPushes(const NoPushes&) = delete;
    NoPushes& operator=(const NoPushes&) = delete;

 private:
    static void SetMaster(INode& push, INode* master) { tavrik_host::SetParam(push, tavrik::PushParam::Tavrik, master); }

    std::vector<std::pair<INode*, INode*>> pushed_;
};

/// Lets the cars stand, and puts back what a drive changes beside them.
bool LetStand(const tavrik::SettleOrder& order, SceneDesktop& desktop, INode& master, tavrik::Progress& progress,
              std::string& problem) {
    Interface& core = *GetCOREInterface();
    const TimeValue time = core.GetTime();
    const Interval range = core.GetAnimRange();
    const NoPushes noPushes;
    const tavrik::Hands hands = BrakingHands();
    SceneRun run{order.scene, desktop, master, hands};
    run.frames = FramesIn(order.seconds);
    if (!DriveInScene(run, progress, problem)) return false;
    core.SetAnimRange(range);
    core.SetTime(time);
    return true;
}

/// What hangs on the car stays locked, so that it comes along again, at its new start.
std::string KeepPose(Standing& car, bool isDriven) {
    const auto last = std::size_t(car.motion.frames - 1);
    const bool isNew = SetStart(*car.master, car.motion.chassis[last].frame);
    tavrik_host::MasterPanel panel(*car.master);
    if (isDriven) {
        panel.UnlockComponents();
    } else {
        panel.LockComponents();
    }
    INode& start = *tavrik_host::NodeParam(*car.master, MasterParam::Start_Node);
    const double metres = tavrik_host::MetresPerUnit();
    return fmt::format(
        "Settled   {}: {} {:.1f} cm, tilted {:.1f} degrees, moves at {:.4f} m/s\n"
        "Start     {}{}\n",
        NameOf(*car.master), car.sink >= 0.0 ? "sank" : "rose", std::abs(car.sink) * metres * 100.0, car.tilt,
        car.speed * metres, NameOf(start), isNew ? ", which is new" : "");
}

/// Whether a finding says that one of these cars doesn't stand on its wheels.
bool IsStandFault(const tavrik::Finding& finding, const std::vector<std::unique_ptr<Standing>>& cars) {
    using tavrik::FindingKind;
    if (finding.severity != tavrik::Severity::Error) return false;
    if (finding.kind != FindingKind::NoGroundBelow && finding.kind != FindingKind::WheelBelowGround) return false;
    const tavrik::SceneNode* its = finding.node;
    if (its->HasControl()) its = its->GetControl().Tavrik_Node;
    return std::ranges::any_of(cars, [its](const auto& car) {
        return its != nullptr && &SceneView::HostNode(const_cast<tavrik::SceneNode&>(*its)) == car->master;
    });
}

/// A car may come to rest on its body, with its wheels in the ground or beside it: no place to start from.
bool CheckStand(const tavrik::SettleOrder& order, const std::vector<std::unique_ptr<Standing>>& cars, std::string& problem) {
    tavrik_host::SceneDiagnosis diagnosis;
    if (!ExamineOpenScene(diagnosis, problem)) return false;
    for (const tavrik::Finding& finding : diagnosis.findings) {
        if (!IsStandFault(finding, cars)) continue;
        problem = fmt::format("{}: the car came to rest, but not on its wheels. {}", order.scene.string(), finding.sentence);
        return false;
    }
    return true;
}

bool Settle(const tavrik::SettleOrder& order, SceneDesktop& desktop, tavrik::Progress& progress, std::string& told,
            std::string& problem) {
    const std::filesystem::path& out = order.out.empty() ? order.scene : order.out;
    tavrik_host::SceneDocument document;
    INode* master = nullptr;
    progress.Begin("Reading scene");
    if (!tavrik::CanWriteFile(out, problem) || !OpenScene(order.scene, document, problem) ||
        !ChooseMaster(order.scene, order.master, master, problem)) {
        return false;
    }
    const std::vector<INode*> masters = tavrik_host::NodesOf(ObjectClass::Tavrik);
    std::vector<Mark> before;
    std::vector<std::unique_ptr<Standing>> cars;
    progress.Begin("Settling");
    if (!ReadMarks(masters, before, problem) || !LetStand(order, desktop, *master, progress, problem) ||
        !ReadStanding(*master, masters, before, cars, problem)) {
        return false;
    }
    for (const auto& car : cars) {
        if (problem = Complaint(*car, order.seconds); problem.empty()) continue;
        problem = fmt::format("{}: {}.", order.scene.string(), problem);
        return false;
    }
    for (const auto& car : cars) told += KeepPose(*car, car->master == master);
    if (!CheckStand(order, cars, problem)) return false;
    told += fmt::format("Written   {}\n", out.string());
    return SaveScene(order.scene, out, document, {}, problem);
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunSettle(const SettleOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    std::string told, problem;
    const bool settled = tavrik_cli::Settle(order, desktop, progress, told, problem);
    progress.Clear();
    if (!settled) return tavrik_cli::Fail(problem);
    fmt::print("{}", told);
    return kExitOk;
}

#pragma once
/// What the user asked for, checked as far as the words themselves tell.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/follow_words.h"
#include "cli/gizmo_words.h"
#include "cli/prepared_drive.h"
#include "cli/render_words.h"
#include "cli/rig_order.h"
#include "drive/damper_model.h"
#include "host/drive_scene.h"
#include "samples/road_ground.h"
#include "samples/sample_ground.h"

namespace tavrik {

constexpr int kExitOk = 0, kExitBadInput = 1, kExitWrongUsage = 2;

/// `tavrik drive`
struct DriveOrder {
    DriveOptions drive;
    std::filesystem::path out, telemetry, plot;  // empty: not wanted
    KeyChoice keys = KeyChoice::EverySample;
};

/// `tavrik drive SCENE`
struct SceneDriveOrder {
    std::filesystem::path scene, out, input, telemetry, plot;  // empty: in place, half throttle, not wanted
    std::string master;                                        // empty: the only one
    double seconds = 20.0;
    bool hasSeconds = false;     // the user gave them
    std::optional<double> from;  // where to go on in the recording; none: a new drive from the start
    std::optional<std::uint64_t> seed;
    std::optional<FollowOrder> follow;
};

/// `tavrik new`
struct NewOrder {
    std::filesystem::path ground, out;  // no ground: the sample
    GroundImport import;
    std::optional<CarSpot> start;
    double seconds = 20.0;  // of the timeline
    std::int32_t ticksPerFrame = 160;
};

/// `tavrik garage`
struct GarageOrder {
    std::string name;                   // empty: list what there is
    std::filesystem::path ground, out;  // no ground: the scene's own
    GroundImport import;
    std::optional<CarSpot> start;
    double seconds = 20.0;  // of the timeline
};

/// `tavrik info`
struct InfoOrder {
    std::filesystem::path scene;
};

/// `tavrik check`
struct CheckOrder {
    std::filesystem::path scene;
};

/// `tavrik studio`
struct StudioOrder {
    std::vector<std::string> words;  // as the desktop application takes them
};

/// `tavrik panel`
struct PanelOrder {
    std::filesystem::path scene, out;  // no `out`: in place
    std::string node;
    std::vector<std::string> sets;  // "CONTROL=VALUE", in this order; empty: show the panel and write nothing
    bool motion = false;            // of the node's controller
    bool json = false;
};

/// `tavrik settle`
struct SettleOrder {
    std::filesystem::path scene, out;  // no `out`: in place
    std::string master;                // empty: the only one
    double seconds = 3.0;
};

/// `tavrik bake`
struct BakeOrder {
    std::filesystem::path scene, out;
    KeyChoice keys = KeyChoice::EverySample;
};

/// `tavrik reset`
struct ResetOrder {
    std::filesystem::path scene, out;  // no `out`: in place
    std::string master;                // empty: all
};

/// `tavrik ground`
struct GroundOrder {
    enum class Kind { Sample, Circuit, Road };
    Kind kind = Kind::Sample;
    SampleGround ground;         // of Sample
    std::filesystem::path line;  // of Road, and the two below
    LineWishes wishes;
    RoadGround road;
    std::filesystem::path out;
};

/// `tavrik controls`
struct ControlsOrder {
    enum class Action { Show, Set, Reset, ListKeys };
    Action action = Action::Show;
    std::string name, value;  // of Set
};

/// `tavrik hud`
struct HudOrder {
    DriveOptions drive;
    double atSeconds = 3.0;
    std::filesystem::path out;
};

/// `tavrik stand`
struct StandOrder {
    double seconds = 5.0;
    DamperSettings settings;
    std::uint64_t seed = 1000;
    std::filesystem::path out;
};

/// One of them, or none where `exitStatus` is all that is left to do.
struct Order {
    std::optional<DriveOrder> drive;
    std::optional<SceneDriveOrder> sceneDrive;
    std::optional<NewOrder> make;
    std::optional<GarageOrder> garage;
    std::optional<RigOrder> rig;
    std::optional<InfoOrder> info;
    std::optional<CheckOrder> check;
    std::optional<PanelOrder> panel;
    std::optional<StudioOrder> studio;
    std::optional<SettleOrder> settle;
    std::optional<BakeOrder> bake;
    std::optional<RenderOrder> render;
    std::optional<TracksOrder> tracks;
    std::optional<GizmoOrder> gizmo;
    std::optional<ResetOrder> reset;
    std::optional<GroundOrder> ground;
    std::optional<PathOrder> path;
    std::optional<ControlsOrder> controls;
    std::optional<HudOrder> hud;
    std::optional<StandOrder> stand;
    int exitStatus = kExitOk;
};

/// Reads the command line. Help and version go to the standard output; wrong usage is told in one sentence on the error output
/// and gives exit status 2.
Order ReadCommandLine(int argc, char** argv);

/// Carries an order out. Each says what it did on the standard output, or what kept it from that in one sentence on the error
/// output. @return the exit status
int RunDrive(const DriveOrder& order);
int RunSceneDrive(const SceneDriveOrder& order);
int RunNew(const NewOrder& order);
int RunGarage(const GarageOrder& order);
int RunInfo(const InfoOrder& order);
int RunCheck(const CheckOrder& order);
int RunPanel(const PanelOrder& order);
/// Becomes the desktop application; comes back only where that can't be had.
int RunStudio(const StudioOrder& order);
int RunSettle(const SettleOrder& order);
int RunBake(const BakeOrder& order);
int RunReset(const ResetOrder& order);
int RunGround(const GroundOrder& order);
int RunControls(const ControlsOrder& order);
int RunHud(const HudOrder& order);
int RunStand(const StandOrder& order);

}  // namespace tavrik

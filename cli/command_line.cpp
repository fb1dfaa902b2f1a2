#include "cli/command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/drive_words.h"
#include "cli/ground_words.h"
#include "cli/rig_words.h"
#include "cli/scene_words.h"
#include "rig/component_values.h"

namespace tavrik {
namespace {

const std::map<std::string, KeyChoice> kKeyChoices = {{"samples", KeyChoice::EverySample}, {"frames", KeyChoice::EveryFrame}};

struct DriveFileWords {
    std::string out, telemetry, plot, keys = "samples";
};

struct HudWords {
    std::string out;
    double at = 3.0;
};

/// A file of the user's with the option that names it.
using NamedFile = std::pair<std::string_view, const std::filesystem::path*>;

/// No file that is written may be one that is read, nor be written twice.
bool CheckFilesApart(std::initializer_list<NamedFile> read, std::initializer_list<NamedFile> written, std::string& problem) {
    std::vector<NamedFile> others = read;
    for (const NamedFile& file : written) {
        for (const NamedFile& other : others) {
            if (file.second->empty() || other.second->empty() || !SameFile(*file.second, *other.second)) continue;
            problem = fmt::format("{} and {} are the same file, {}", other.first, file.first, file.second->string());
            return false;
        }
        others.push_back(file);
    }
    return true;
}

bool MakeDriveOrder(const DriveWords& words, const DriveFileWords& files, DriveOrder& order, std::string& problem) {
    order.out = files.out;
    order.telemetry = files.telemetry;
    order.plot = files.plot;
    if (!Choose(kKeyChoices, files.keys, "--keys", order.keys, problem)) return false;
    if (!files.out.empty() && order.out.extension() != ".glb") {
        problem = fmt::format("--out writes glTF and takes a name that ends in .glb, not \"{}\"", files.out);
        return false;
    }
    if (words.ground.empty()) {
        problem = "drive takes a scene or a --ground";
        return false;
    }
    return MakeDriveOptions(words, "--at", order.drive, problem) &&
           CheckFilesApart({{"--ground", &order.drive.ground}, {"--input", &order.drive.input}},
                           {{"--out", &order.out}, {"--telemetry", &order.telemetry}, {"--plot", &order.plot}}, problem);
}

bool MakeSceneDrive(const CLI::App& app, const DriveWords& words, const DriveFileWords& files, const SceneWords& scene,
                    SceneDriveOrder& order, std::string& problem) {
    order.out = files.out;
    order.telemetry = files.telemetry;
    order.plot = files.plot;
    if (!MakeSceneDriveOrder(app, words, scene, order, problem)) return false;
    const std::filesystem::path keys = order.follow ? order.follow->speedKeys : std::filesystem::path();
    // The scene itself may be written in place, but nothing else over it.
    return CheckFilesApart({{"SCENE", &order.scene}, {"--input", &order.input}, {"--speed-keys", &keys}},
                           {{"--telemetry", &order.telemetry}, {"--plot", &order.plot}}, problem) &&
           CheckFilesApart(
               {{"--input", &order.input}, {"--speed-keys", &keys}, {"--telemetry", &order.telemetry}, {"--plot", &order.plot}},
               {{"--out", &order.out}}, problem);
}

bool CheckPicture(const std::filesystem::path& out, std::string& problem) {
    if (out.extension() == ".png") return true;
    problem = fmt::format("--out takes a name that ends in .png, not \"{}\"", out.string());
    return false;
}

bool MakeHudOrder(DriveWords words, const HudWords& hud, HudOrder& order, std::string& problem) {
    order.out = hud.out;
    order.atSeconds = hud.at;
    if (!(hud.at >= 0.0 && hud.at <= 36000.0)) {
        problem = fmt::format("--at takes seconds from 0 to 36000, not {}", hud.at);
        return false;
    }
    words.seconds = hud.at + 1.0;  // the range goes on, so that the picture shows a run that isn't over
    return CheckPicture(order.out, problem) && MakeDriveOptions(words, "--start", order.drive, problem);
}

bool MakeStandOrder(StandOrder& order, std::string& problem) {
    if (order.seconds >= 0.0 && order.seconds <= 3600.0) return CheckPicture(order.out, problem);
    problem = fmt::format("--seconds takes a time from 0 to 3600, not {}", order.seconds);
    return false;
}

void AddDriveOptions(CLI::App& app, DriveWords& words, DriveFileWords& files, SceneWords& scene) {
    AddSceneDriveOptions(app, scene);
    AddDriveWords(app, words, "--at", "; the stock car is put on it");
    app.add_option("--seconds", words.seconds, "How long to drive, default 20")->type_name("S");
    app.add_option("--out", files.out, "Scene with the drive, .glb; a scene is else saved in place")->type_name("FILE");
    app.add_option("--telemetry", files.telemetry, "Readings of every sample, CSV")->type_name("FILE");
    app.add_option("--plot", files.plot, "Path, speed and suspension travel, SVG")->type_name("FILE");
    app.add_option("--keys", files.keys, "Keys in the scene at: samples (default) or frames")->type_name("WHEN");
    app.footer(
        "Driver's rows: seconds, steering -1..1, throttle 0..1, brake 0..1, hand brake 0|1, reverse 0|1;\n"
        "each holds until the next. Driver's events: seconds, key-down W | key-up W | mouse X Y | wheel -120 |\n"
        "pad LX 0.5 RT 1 | ...; all in docs/drive.md. Speed keys: \"3 s, throttle\", \"250 m, brake\", \"9 s, none\", one to\n"
        "a line, each holds until the next; more in docs/follow.md. The car stands on the topmost ground at its start; in a "
        "Y-up\n"
        "file x,y is x,-z. Files are written when the whole drive went well. Exit status: 1 bad input, 2 wrong usage.");
}

void AddControlsOptions(CLI::App& app, ControlsOrder& order) {
    CLI::App* set = app.add_subcommand("set", "Bind a key or button, or make a choice");
    set->add_option("NAME", order.name, "As shown, such as CtrlKbdNitro")->type_name("")->required();
    set->add_option("VALUE", order.value, "Key, button or choice, such as N, RB or \"Left Stick\"")->type_name("")->required();
    set->callback([&order] { order.action = ControlsOrder::Action::Set; });
    app.add_subcommand("reset", "Give every action its first key again")->callback([&order] {
        order.action = ControlsOrder::Action::Reset;
    });
    app.add_subcommand("keys", "List the names of keys")->callback([&order] {
        order.action = ControlsOrder::Action::ListKeys;
    });
    app.require_subcommand(0, 1);
    app.footer("Without a command the bindings are shown. They are kept in Norvane/TavrikControls.cfg under $XDG_CONFIG_HOME.");
}

void AddHudOptions(CLI::App& app, DriveWords& words, HudWords& hud) {
    AddDriveWords(app, words, "--start", "; else the sample ground");
    app.add_option("--at", hud.at, "Second of the drive, default 3")->type_name("SECONDS");
    app.add_option("--out", hud.out, "Picture to write, .png")->type_name("FILE")->required();
}

/// What the stand starts with: the settings of a new suspension, in centimetres.
DamperSettings NewSuspension() {
    const SuspensionValues values = DefaultSuspensionValues();
    DamperSettings settings;
    settings.gravity = 980.0f;
    settings.rigidityFactor = values.Ruggedness_Factor;
    settings.springRigidity = values.Ruggedness;
    settings.oilDamping = values.Damping;
    settings.damperShift = values.Shift;
    settings.bufferRigidity = values.Buffer_Ruggedness;
    settings.sizeScale = values.Length * 0.3f;
    return settings;
}

void AddStandOptions(CLI::App& app, StandOrder& order) {
    order.settings = NewSuspension();
    DamperSettings& settings = order.settings;
    app.add_option("--seconds", order.seconds, "How long it runs, default 5")->type_name("S");
    app.add_option("--out", order.out, "Picture to write, .png")->type_name("FILE")->required();
    app.add_option("--knolls", settings.knollRate, "Knolls a second, default 1")->type_name("N");
    app.add_option("--holes", settings.holeRate, "Holes a second, default 1")->type_name("N");
    app.add_option("--mass", settings.mass, "Mass on the damper, default 400")->type_name("M");
    app.add_option("--factor", settings.rigidityFactor, "Rigidity factor, default 1")->type_name("F");
    app.add_option("--spring", settings.springRigidity, "Spring rigidity, default 50000")->type_name("K");
    app.add_option("--oil", settings.oilDamping, "Oil damping, default 5000")->type_name("C");
    app.add_option("--shift", settings.damperShift, "Damper shift, default 10")->type_name("CM");
    app.add_option("--buffer", settings.bufferRigidity, "Buffer rigidity, default 100000")->type_name("K");
    app.add_option("--seed", order.seed, "Of the road, default 1000")->type_name("N");
}

/// CLI11's messages as one line with our way out.
int TellUsage(std::string message, std::string_view command) {
    message = message.substr(0, message.find('\n'));
    while (!message.empty() && (message.back() == '.' || message.back() == ' ')) message.pop_back();
    fmt::print(stderr, "{}; see tavrik {}--help.\n", message, command);
    return kExitWrongUsage;
}

/// The words of all commands, and what they came to.
struct Commands {
    CLI::App app{"Drives a car over a mesh and keeps the motion.", "tavrik"};
    CLI::App *drive, *make, *garage, *rig, *info, *check, *panel, *settle, *bake, *render, *tracks, *gizmo;
    CLI::App *reset, *ground, *path, *controls, *hud, *stand, *studio;
    DriveWords driveWords, hudDriveWords, newWords, garageWords, rigDriveWords;
    RigWords rigWords;
    SceneWords driveScene, newScene, garageScene, infoScene, checkScene, settleScene, bakeScene, resetScene;
    DriveFileWords driveFiles;
    GroundWords groundWords;
    PathWords pathWords;
    PictureWords renderWords, tracksWords;
    GizmoWords gizmoWords;
    ControlsOrder controlsOrder;
    PanelOrder panelOrder;
    HudWords hudWords;
    StandOrder standOrder;

    Commands() {
        app.set_version_flag("--version", "tavrik " TAVRIK_VERSION, "Print the version");
        app.set_help_flag("-h,--help", "Print this help");
        app.require_subcommand(1);
        make = app.add_subcommand("new", "Make a scene with the stock car on a ground");
        garage = app.add_subcommand("garage", "Make a scene with a vehicle other than the stock car alone");
        rig = app.add_subcommand("rig", "Make a scene with somebody's car model, ready to drive");
        drive = app.add_subcommand("drive", "Drive the car of a scene, or the stock car over a ground");
        info = app.add_subcommand("info", "Tell what is in a scene, and what its cars leave out");
        check = app.add_subcommand("check", "Tell what will go wrong with the cars of a scene");
        panel = app.add_subcommand("panel", "Show the panel of a car or a part, and set what is on it");
        settle = app.add_subcommand("settle", "Let a car come to rest on its ground, and start it from there");
        bake = app.add_subcommand("bake", "Write a scene's motion as plain glTF for other programs");
        render = app.add_subcommand("render", "Take pictures of a scene, with tyre tracks");
        tracks = app.add_subcommand("tracks", "Bake tyre tracks into pictures that lie on the ground");
        gizmo = app.add_subcommand("gizmo", "Take a picture of a rig's lines over its scene");
        reset = app.add_subcommand("reset", "Unlock the cars of a scene");
        ground = app.add_subcommand("ground", "Make a ground to drive on");
        path = app.add_subcommand("path", "Bring lines into a scene, for its car to follow");
        controls = app.add_subcommand("controls", "Show, set or reset the keys and buttons that drive");
        hud = app.add_subcommand("hud", "Paint the drive window as it looks at some second of a drive");
        stand = app.add_subcommand("stand", "Paint a damper on its running-in stand");
        studio = app.add_subcommand("studio", "Open the desktop application: drive with your own hands");
        // Its words, "--help" among them, are the application's.
        studio->prefix_command()->set_help_flag();
        AddNewOptions(*make, newWords, newScene);
        AddGarageOptions(*garage, garageWords, garageScene);
        AddRigOptions(*rig, rigDriveWords, rigWords);
        AddDriveOptions(*drive, driveWords, driveFiles, driveScene);
        AddInfoOptions(*info, infoScene);
        AddCheckOptions(*check, checkScene);
        AddPanelOptions(*panel, panelOrder);
        AddSettleOptions(*settle, settleScene);
        AddBakeOptions(*bake, bakeScene);
        AddRenderOptions(*render, renderWords);
        AddTracksOptions(*tracks, tracksWords);
        AddGizmoOptions(*gizmo, gizmoWords);
        AddResetOptions(*reset, resetScene);
        AddGroundOptions(*ground, groundWords);
        AddPathOptions(*path, pathWords);
        AddControlsOptions(*controls, controlsOrder);
        AddHudOptions(*hud, hudDriveWords, hudWords);
        AddStandOptions(*stand, standOrder);
        app.footer(
            "Example:\n"
            "  tavrik ground sample --out ground.obj\n"
            "  tavrik new --ground ground.obj --out scene.glb\n"
            "  tavrik drive scene.glb --plot drive.svg");
    }

    /// The command at hand, for messages.
    std::string Name() const {
        for (const CLI::App* command : {make, garage, rig, drive, info, check, panel, settle, bake, render, tracks, gizmo,
                                        reset, ground, path, controls, hud, stand, studio}) {
            if (command->parsed()) return command->get_name() + " ";
        }
        return "";
    }
};

/// Fills the one order that was given. @return false with `problem` set when its words make no sense
bool FillOrder(const Commands& commands, Order& order, std::string& problem) {
    if (commands.make->parsed()) return MakeNewOrder(commands.newWords, commands.newScene, order.make.emplace(), problem);
    if (commands.garage->parsed()) {
        return MakeGarageOrder(*commands.garage, commands.garageWords, commands.garageScene, order.garage.emplace(), problem);
    }
    if (commands.rig->parsed()) {
        return MakeRigOrder(*commands.rig, commands.rigDriveWords, commands.rigWords, order.rig.emplace(), problem);
    }
    if (commands.info->parsed()) return MakeInfoOrder(commands.infoScene, order.info.emplace(), problem);
    if (commands.check->parsed()) return MakeCheckOrder(commands.checkScene, order.check.emplace(), problem);
    if (commands.panel->parsed()) return MakePanelOrder(commands.panelOrder, order.panel.emplace(), problem);
    if (commands.settle->parsed()) return MakeSettleOrder(commands.settleScene, order.settle.emplace(), problem);
    if (commands.bake->parsed()) return MakeBakeOrder(commands.bakeScene, order.bake.emplace(), problem);
    if (commands.render->parsed()) return MakeRenderOrder(commands.renderWords, order.render.emplace(), problem);
    if (commands.tracks->parsed()) {
        return MakeTracksOrder(*commands.tracks, commands.tracksWords, order.tracks.emplace(), problem);
    }
    if (commands.gizmo->parsed()) {
        return MakeGizmoOrder(*commands.gizmo, commands.gizmoWords, order.gizmo.emplace(), problem);
    }
    if (commands.reset->parsed()) return MakeResetOrder(commands.resetScene, order.reset.emplace(), problem);
    if (commands.drive->parsed() && !commands.driveScene.scene.empty()) {
        return MakeSceneDrive(*commands.drive, commands.driveWords, commands.driveFiles, commands.driveScene,
                              order.sceneDrive.emplace(), problem);
    }
    if (commands.drive->parsed()) {
        return CheckNoFollowing(*commands.drive, problem) &&
               MakeDriveOrder(commands.driveWords, commands.driveFiles, order.drive.emplace(), problem);
    }
    if (commands.ground->parsed())
        return MakeGroundOrder(*commands.ground, commands.groundWords, order.ground.emplace(), problem);
    if (commands.path->parsed()) return MakePathOrder(commands.pathWords, order.path.emplace(), problem);
    if (commands.controls->parsed()) {
        order.controls = commands.controlsOrder;
        return true;
    }
    if (commands.studio->parsed()) {
        order.studio.emplace().words = commands.studio->remaining();
        return true;
    }
    if (commands.hud->parsed()) return MakeHudOrder(commands.hudDriveWords, commands.hudWords, order.hud.emplace(), problem);
    order.stand = commands.standOrder;
    return MakeStandOrder(*order.stand, problem);
}

}  // namespace

Order ReadCommandLine(int argc, char** argv) {
    Order order;
    Commands commands;
    try {
        commands.app.parse(argc, argv);
    } catch (const CLI::Success& done) {
        commands.app.exit(done);  // help or version
        return order;
    } catch (const CLI::ParseError& error) {
        order.exitStatus = TellUsage(error.what(), commands.Name());
        return order;
    }
    std::string problem;
    if (FillOrder(commands, order, problem)) return order;
    order = {};
    order.exitStatus = TellUsage(problem, commands.Name());
    return order;
}

}  // namespace tavrik

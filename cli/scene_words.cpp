#include "cli/scene_words.h"

#include <fmt/format.h>

#include <cmath>

namespace tavrik {
namespace {

const std::map<std::string, KeyChoice> kKeyChoices = {{"samples", KeyChoice::EverySample}, {"frames", KeyChoice::EveryFrame}};

bool IsSceneName(const std::filesystem::path& file) { return file.extension() == ".glb" || file.extension() == ".gltf"; }

bool CheckScene(std::string_view option, const std::string& file, std::string& problem) {
    if (IsSceneName(file)) return true;
    problem = fmt::format("{} takes a scene, whose name ends in .glb or .gltf, not \"{}\"", option, file);
    return false;
}

/// What the commands that make a scene have in common.
/// @param options  the words as numbers, for what only one of them asks
template <typename Order>
bool MakeSceneOrder(const DriveWords& words, const SceneWords& files, DriveOptions& options, Order& order,
                    std::string& problem) {
    if (!MakeDriveOptions(words, "--at", options, problem) || !CheckScene("--out", files.out, problem)) return false;
    order.ground = options.ground;
    order.import = options.import;
    order.start = options.start;
    order.seconds = options.seconds;
    order.out = files.out;
    if (order.ground.empty() || !SameFile(order.ground, order.out)) return true;
    problem = fmt::format("--ground and --out are the same file, {}", files.out);
    return false;
}

}  // namespace

void AddNewOptions(CLI::App& app, DriveWords& words, SceneWords& files) {
    AddGroundWords(app, words, "; else the sample ground");
    app.add_option("--at", words.start, "Where the car stands: metres, Z up; degrees clockwise from +y. Else the middle")
        ->type_name("X,Y,HEADING");
    app.add_option("--seconds", words.seconds, "Length of the timeline, default 20")->type_name("S");
    app.add_option("--fps", words.fps, "Frames a second, default 30; a whole part of 4800")->type_name("N");
    app.add_option("--out", files.out, "Scene to write, .glb or .gltf")->type_name("FILE")->required();
}

void AddGarageOptions(CLI::App& app, DriveWords& words, SceneWords& files) {
    app.add_subcommand("list", "Tell what there is");
    CLI::App* make = app.add_subcommand("make", "Make one of them");
    make->add_option("NAME", files.scene, "As listed")->type_name("")->required();
    AddGroundWords(*make, words, "; else a ground of its own");
    make->add_option("--at", words.start, "Where it starts: metres, Z up; degrees clockwise from +y. Else the middle")
        ->type_name("X,Y,HEADING");
    make->add_option("--seconds", words.seconds, "Length of the timeline, default 20")->type_name("S");
    make->add_option("--out", files.out, "Scene to write, .glb or .gltf")->type_name("FILE")->required();
    app.require_subcommand(1);
}

void AddInfoOptions(CLI::App& app, SceneWords& words) {
    app.add_option("SCENE", words.scene, "Scene to look at, .glb or .gltf")->type_name("")->required();
}

void AddCheckOptions(CLI::App& app, SceneWords& words) {
    app.add_option("SCENE", words.scene, "Scene to look at, .glb or .gltf")->type_name("")->required();
    app.footer("Exit status 0: the cars will drive, perhaps with warnings. 1: they won't.");
}

void AddPanelOptions(CLI::App& app, PanelOrder& order) {
    app.add_option("SCENE", order.scene, "Scene of the node, .glb or .gltf")->type_name("")->required();
    app.add_option("NODE", order.node, "Name of a car, or of one of its parts")->type_name("")->required();
    app.add_option("--set", order.sets, "Set a control, or press a button; may be given again")
        ->type_name("CONTROL=VALUE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option("--out", order.out, "With --set: scene to write; else in place, the old one kept as .bak")
        ->type_name("FILE");
    app.add_flag("--motion", order.motion, "The panel of what moves the node, in the place of its own");
    app.add_flag("--json", order.json, "Tell it as JSON");
    app.footer(
        "A control goes by its label, its parameter, what is written on it or its number, with the title of its page\n"
        "or group and a dot in front where several go by the same: --set Length=50cm --set \"Dummy Size.X=120\"\n"
        "--set \"Wheel Drive=on\" --set Type=Telescopic --set \"Surface=Ground\" --set \"Update Surface=press\".\n"
        "All in docs/panel.md.");
}

void AddSettleOptions(CLI::App& app, SceneWords& words) {
    app.add_option("SCENE", words.scene, "Scene whose car to settle, .glb or .gltf")->type_name("")->required();
    app.add_option("--master", words.master, "In a scene with several cars: the one to settle")->type_name("NAME");
    app.add_option("--seconds", words.seconds, "How long it may take to come to rest, default 3")->type_name("S");
    app.add_option("--out", words.out, "Scene to write; else in place, the old one kept as .bak")->type_name("FILE");
}

void AddBakeOptions(CLI::App& app, SceneWords& words) {
    app.add_option("SCENE", words.scene, "Scene whose motion to bake, .glb or .gltf")->type_name("")->required();
    app.add_option("--out", words.out, "Film to write, .glb or .gltf")->type_name("FILE")->required();
    app.add_option("--keys", words.keys, "Keys at: samples (default) or frames")->type_name("WHEN");
}

void AddResetOptions(CLI::App& app, SceneWords& words) {
    app.add_option("SCENE", words.scene, "Scene to unlock, .glb or .gltf")->type_name("")->required();
    app.add_option("--master", words.master, "The car to unlock; else all")->type_name("NAME");
    app.add_option("--out", words.out, "Scene to write; else in place, the old one kept as .bak")->type_name("FILE");
}

void AddSceneDriveOptions(CLI::App& app, SceneWords& words) {
    app.add_option("SCENE", words.scene, "Scene whose car to drive; it is saved with the recording")->type_name("");
    app.add_option("--master", words.master, "In a scene with several cars: the one to drive")->type_name("NAME");
    words.fromOption =
        app.add_option("--from", words.from, "In a scene: go on from this second of the recording")->type_name("S");
    AddFollowWords(app, words.follow);
}

bool MakeNewOrder(const DriveWords& words, const SceneWords& files, NewOrder& order, std::string& problem) {
    DriveOptions options;
    if (!MakeSceneOrder(words, files, options, order, problem)) return false;
    order.ticksPerFrame = options.ticksPerFrame;
    return true;
}

bool MakeGarageOrder(const CLI::App& app, const DriveWords& words, const SceneWords& files, GarageOrder& order,
                     std::string& problem) {
    if (app.got_subcommand("list")) return true;
    if (files.scene.empty()) {
        problem = "make takes a name that garage list tells";
        return false;
    }
    DriveOptions options;
    order.name = files.scene;
    return MakeSceneOrder(words, files, options, order, problem);
}

bool MakeInfoOrder(const SceneWords& words, InfoOrder& order, std::string& problem) {
    order.scene = words.scene;
    return CheckScene("info", words.scene, problem);
}

bool MakeCheckOrder(const SceneWords& words, CheckOrder& order, std::string& problem) {
    order.scene = words.scene;
    return CheckScene("check", words.scene, problem);
}

bool MakePanelOrder(const PanelOrder& words, PanelOrder& order, std::string& problem) {
    order = words;
    if (!CheckScene("panel", order.scene.string(), problem)) return false;
    if (order.out.empty()) return true;
    if (order.sets.empty()) {
        problem = "--out is for a scene that --set has changed";
        return false;
    }
    return CheckScene("--out", order.out.string(), problem);
}

bool MakeSettleOrder(const SceneWords& words, SettleOrder& order, std::string& problem) {
    order.scene = words.scene;
    order.out = words.out;
    order.master = words.master;
    order.seconds = words.seconds;
    if (!CheckScene("settle", words.scene, problem) || (!words.out.empty() && !CheckScene("--out", words.out, problem))) {
        return false;
    }
    if (words.seconds >= 1.0 && words.seconds <= 600.0) return true;
    problem = fmt::format("--seconds takes seconds from 1 to 600, not {}", words.seconds);
    return false;
}

bool MakeBakeOrder(const SceneWords& words, BakeOrder& order, std::string& problem) {
    order.scene = words.scene;
    order.out = words.out;
    if (!CheckScene("bake", words.scene, problem) || !CheckScene("--out", words.out, problem) ||
        !Choose(kKeyChoices, words.keys, "--keys", order.keys, problem)) {
        return false;
    }
    if (!SameFile(order.scene, order.out)) return true;
    problem = fmt::format("the film would replace its scene, {}", words.scene);
    return false;
}

bool MakeResetOrder(const SceneWords& words, ResetOrder& order, std::string& problem) {
    order.scene = words.scene;
    order.out = words.out;
    order.master = words.master;
    return CheckScene("reset", words.scene, problem) && (words.out.empty() || CheckScene("--out", words.out, problem));
}

bool MakeSceneDriveOrder(const CLI::App& app, const DriveWords& words, const SceneWords& scene, SceneDriveOrder& order,
                         std::string& problem) {
    // The scene brings its own ground, frame rate and start.
    for (const char* option : {"--ground", "--up", "--unit", "--fps", "--at", "--keys"}) {
        if (app.count(option) == 0) continue;
        problem = fmt::format("{} is for drives without a scene; {} has its own", option, scene.scene);
        return false;
    }
    DriveOptions options;
    if (!MakeDriveOptions(words, "--at", options, problem) || !CheckScene("drive", scene.scene, problem)) return false;
    if (!order.out.empty() && !CheckScene("--out", order.out.string(), problem)) return false;
    order.scene = scene.scene;
    order.master = scene.master;
    order.input = options.input;
    order.seconds = options.seconds;
    order.hasSeconds = app.count("--seconds") != 0;
    if (app.count("--seed") != 0) order.seed = words.seed;
    if (!MakeFollowOrder(app, scene.follow, order.follow, problem)) return false;
    if (scene.fromOption->count() == 0) return true;
    if (std::isfinite(scene.from) && scene.from >= 0.0 && scene.from <= 36000.0) {
        order.from = scene.from;
        return true;
    }
    problem = fmt::format("--from takes seconds from 0 to 36000, not {}", scene.from);
    return false;
}

}  // namespace tavrik

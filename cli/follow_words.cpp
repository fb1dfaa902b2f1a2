#include "cli/follow_words.h"

#include <fmt/format.h>

#include "cli/drive_words.h"

namespace tavrik {
namespace {

constexpr double kSlowest = 1.0, kFastest = 300.0;  // km/h
constexpr int kMostLaps = 1000;

bool IsSceneName(const std::filesystem::path& file) { return file.extension() == ".glb" || file.extension() == ".gltf"; }

}  // namespace

void AddFollowWords(CLI::App& app, FollowWords& words) {
    app.add_option("--follow", words.node, "In a scene: the car drives itself along this line, or after this moving node")
        ->type_name("NODE");
    app.add_option("--cruise", words.cruise, "On a line: km/h to hold with the pedals' keys, default 40")->type_name("KMH");
    app.add_option("--speed-keys", words.speedKeys, "On a line, instead: pedals by time or distance, see below")
        ->type_name("FILE");
    app.add_option("--rudder", words.rudder, "With one of these: sets Rudder_Sensitivity; hairpins want about 60")
        ->type_name("N");
    app.add_option("--laps", words.laps, "On a line: ends when it was passed this often")->type_name("N");
}

void AddPathOptions(CLI::App& app, PathWords& words) {
    CLI::App* import = app.add_subcommand("import", "Lay the line of a file on the ground of a scene");
    import->add_option("LINE", words.line, "Rows of x,y in metres seen from above, or knots of Bezier curves")
        ->type_name("")
        ->required();
    import->add_option("--into", words.scene, "Scene to lay it into, .glb or .gltf")->type_name("SCENE")->required();
    import->add_option("--name", words.name, "Of its node; else as the file is called")->type_name("NAME");
    AddLineWords(*import, words.wishes);
    import->add_option("--out", words.out, "Scene to write; else in place, the old one kept as .bak")->type_name("FILE");
    app.require_subcommand(1);
}

bool MakeFollowOrder(const CLI::App& app, const FollowWords& words, std::optional<FollowOrder>& order, std::string& problem) {
    const bool hasNode = app.count("--follow") != 0, hasCruise = app.count("--cruise") != 0, hasLaps = app.count("--laps") != 0;
    const bool hasRudder = app.count("--rudder") != 0, hasKeys = app.count("--speed-keys") != 0;
    if (!hasNode && !hasCruise && !hasLaps && !hasRudder && !hasKeys) return true;
    if (hasNode && words.node.empty()) {
        problem = "--follow takes the name of a node";
        return false;
    }
    if (hasCruise && !(words.cruise >= kSlowest && words.cruise <= kFastest)) {
        problem = fmt::format("--cruise takes km/h from {} to {}, not {}", kSlowest, kFastest, words.cruise);
        return false;
    }
    if (hasLaps && (words.laps < 1 || words.laps > kMostLaps)) {
        problem = fmt::format("--laps takes a number from 1 to {}, not {}", kMostLaps, words.laps);
        return false;
    }
    if (hasCruise && app.count("--input") != 0) {
        problem = "--cruise and --input exclude each other: one of them has the pedals";
        return false;
    }
    if (hasKeys && (hasCruise || app.count("--input") != 0)) {
        problem = fmt::format("--speed-keys and {} exclude each other: one of them has the pedals",
                              hasCruise ? "--cruise" : "--input");
        return false;
    }
    if (hasKeys && words.speedKeys.empty()) {
        problem = "--speed-keys takes the name of a file";
        return false;
    }
    if (hasRudder && !(words.rudder >= 1.0 && words.rudder <= 1000.0)) {
        problem = fmt::format("--rudder takes a number from 1 to 1000, not {}", words.rudder);
        return false;
    }
    order.emplace().node = words.node;
    if (hasRudder) order->rudder = words.rudder;
    if (hasCruise) order->cruise = words.cruise;
    if (hasLaps) order->laps = words.laps;
    order->speedKeys = words.speedKeys;
    return true;
}

bool MakePathOrder(const PathWords& words, PathOrder& order, std::string& problem) {
    if (words.line.empty() || words.scene.empty()) {
        problem = "import takes a LINE and a scene behind --into";
        return false;
    }
    order.line = words.line;
    order.scene = words.scene;
    order.out = words.out;
    order.name = words.name.empty() ? order.line.stem().string() : words.name;
    const std::filesystem::path& written = words.out.empty() ? order.scene : order.out;
    if (!IsSceneName(order.scene) || !IsSceneName(written)) {
        const bool isIn = !IsSceneName(order.scene);
        problem = fmt::format("{} takes a scene, whose name ends in .glb or .gltf, not \"{}\"", isIn ? "--into" : "--out",
                              isIn ? words.scene : words.out);
        return false;
    }
    if (SameFile(order.line, written)) {
        problem = fmt::format("LINE and {} are the same file, {}", words.out.empty() ? "--into" : "--out", words.line);
        return false;
    }
    return MakeLineWishes(words.wishes, order.wishes, problem);
}

bool CheckNoFollowing(const CLI::App& app, std::string& problem) {
    for (const char* option : {"--follow", "--cruise", "--speed-keys", "--laps", "--rudder"}) {
        if (app.count(option) == 0) continue;
        problem = fmt::format("{} is for drives in a scene; make one with \"tavrik new\"", option);
        return false;
    }
    return true;
}

}  // namespace tavrik

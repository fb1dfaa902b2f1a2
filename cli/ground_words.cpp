#include "cli/ground_words.h"

#include <fmt/format.h>

#include <map>
#include <optional>
#include <string_view>

#include "cli/drive_words.h"

namespace tavrik {
namespace {

/// Kinds of grounds by their words; those that aren't samples of a kind have none.
const std::map<std::string, std::optional<SampleGroundKind>> kKinds = {
    {"sample", SampleGroundKind::Course}, {"hills", SampleGroundKind::Hills}, {"kerb", SampleGroundKind::Kerb},
    {"plane", SampleGroundKind::Plane},   {"circuit", std::nullopt},          {"road", std::nullopt}};

bool CheckRange(std::string_view option, double value, double low, double high, std::string_view what, std::string& problem) {
    if (value >= low && value <= high) return true;
    problem = fmt::format("{} takes {} from {} to {}, not {}", option, what, low, high, value);
    return false;
}

bool MakeSample(const GroundWords& words, SampleGround& ground, std::string& problem) {
    ground.sizeMetres = words.size;
    ground.triangles = words.triangles;
    ground.seed = words.seed;
    return CheckRange("--size", words.size, 10, 20'000, "metres", problem) &&
           CheckRange("--triangles", words.triangles, 2, 5'000'000, "a number", problem);
}

bool MakeRoad(const GroundWords& words, GroundOrder& order, std::string& problem) {
    if (words.line.empty()) {
        problem = "road takes the file of a line besides";
        return false;
    }
    order.line = words.line;
    order.road = words.road;
    order.road.seed = words.seed;
    if (SameFile(order.line, order.out)) {
        problem = fmt::format("LINE and --out are the same file, {}", words.out);
        return false;
    }
    return CheckRange("--width", words.road.widthMetres, 2, 100, "metres", problem) &&
           CheckRange("--bank", words.road.bankPercent, 0, 50, "percent", problem) &&
           CheckRange("--hills", words.road.hillMetres, 0, 50, "metres", problem) &&
           MakeLineWishes(words.wishes, order.wishes, problem);
}

/// Words that some other kind of ground understands.
bool CheckWordsFit(const CLI::App& app, const GroundWords& words, std::string& problem) {
    const bool isRoad = words.kind == "road", isSample = kKinds.at(words.kind).has_value();
    if (!isRoad && !words.line.empty()) {
        problem = fmt::format("{} takes no line; only road does", words.kind);
        return false;
    }
    for (const char* option : {"--width", "--bank", "--hills", "--at", "--scale", "--closed", "--open"}) {
        if (isRoad || app.count(option) == 0) continue;
        problem = fmt::format("{} is for a road", option);
        return false;
    }
    for (const char* option : {"--size", "--triangles"}) {
        if (isSample || app.count(option) == 0) continue;
        problem = fmt::format("{} is not for a {}, which is as large as its line", option, words.kind);
        return false;
    }
    return true;
}

}  // namespace

void AddGroundOptions(CLI::App& app, GroundWords& words) {
    app.add_option("KIND", words.kind,
                   "sample (hills with bumps and a jump), hills, kerb, plane, circuit (a lap of curves) or road (along LINE)")
        ->type_name("")
        ->required();
    app.add_option("LINE", words.line, "Of a road: rows of x,y in metres seen from above, or knots of Bezier curves")
        ->type_name("");
    app.add_option("--out", words.out, "Mesh to write, .obj (metres, Z up) or .glb")->type_name("FILE")->required();
    app.add_option("--size", words.size, "Metres along each side, default 300")->type_name("M");
    app.add_option("--triangles", words.triangles, "About how many, default 20000")->type_name("N");
    app.add_option("--seed", words.seed, "Of the hills, default 1")->type_name("N");
    app.add_option("--width", words.road.widthMetres, "Of a road: metres, default 10; a verge lies beside it")->type_name("M");
    app.add_option("--bank", words.road.bankPercent, "Of a road: how much curves lean inwards, default 0")
        ->type_name("PERCENT");
    app.add_option("--hills", words.road.hillMetres, "Of a road: how high the land rises, default 0")->type_name("M");
    AddLineWords(app, words.wishes);
}

bool MakeGroundOrder(const CLI::App& app, const GroundWords& words, GroundOrder& order, std::string& problem) {
    std::optional<SampleGroundKind> sample;
    order.out = words.out;
    if (!Choose(kKinds, words.kind, "KIND", sample, problem) || !CheckWordsFit(app, words, problem)) return false;
    order.kind = sample                 ? GroundOrder::Kind::Sample
                 : words.kind == "road" ? GroundOrder::Kind::Road
                                        : GroundOrder::Kind::Circuit;
    if (sample) order.ground.kind = *sample;
    if (order.kind == GroundOrder::Kind::Sample && !MakeSample(words, order.ground, problem)) return false;
    if (order.kind == GroundOrder::Kind::Road && !MakeRoad(words, order, problem)) return false;
    if (order.out.extension() == ".obj" || order.out.extension() == ".glb") return true;
    problem = fmt::format("--out takes a name that ends in .obj or .glb, not \"{}\"", words.out);
    return false;
}

}  // namespace tavrik

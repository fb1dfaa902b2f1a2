#include "cli/rig_words.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/placed_parts.h"

namespace tavrik {
namespace {

const std::map<std::string, double> kMetresOfUnit = {{"m", 1.0}, {"cm", 0.01}, {"mm", 0.001}, {"in", 0.0254}, {"ft", 0.3048}};
const std::map<std::string, UpAxis> kUpAxes = {{"y", UpAxis::Y}, {"z", UpAxis::Z}};
const std::map<std::string, DPoint3> kAxes = {{"x", {1, 0, 0}}, {"+x", {1, 0, 0}}, {"-x", {-1, 0, 0}},
                                              {"y", {0, 1, 0}}, {"+y", {0, 1, 0}}, {"-y", {0, -1, 0}},
                                              {"z", {0, 0, 1}}, {"+z", {0, 0, 1}}, {"-z", {0, 0, -1}}};

bool ParseNumber(std::string_view word, double& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size() && std::isfinite(number);
}

std::vector<std::string> SplitAtCommas(std::string_view words) {
    std::vector<std::string> items;
    for (std::size_t at = 0; at <= words.size();) {
        const std::size_t end = std::min(words.find(',', at), words.size());
        items.emplace_back(words.substr(at, end - at));
        at = end + 1;
    }
    return items;
}

bool ParsePoint(std::string_view option, const std::string& words, std::optional<DPoint3>& point, std::string& problem) {
    if (words.empty()) return true;
    const std::vector<std::string> items = SplitAtCommas(words);
    DPoint3 p{};
    if (items.size() == 3 && ParseNumber(items[0], p.x) && ParseNumber(items[1], p.y) && ParseNumber(items[2], p.z)) {
        point = p;
        return true;
    }
    problem = fmt::format("{} takes x,y,z as three numbers with commas between, not \"{}\"", option, words);
    return false;
}

bool ParseForward(const std::string& words, std::optional<DPoint3>& forward, std::string& problem) {
    const auto axis = kAxes.find(words);
    if (axis != kAxes.end()) forward = axis->second;
    if (axis != kAxes.end() || words.empty()) return true;
    std::string fault;
    if (ParsePoint("--forward", words, forward, fault)) return true;
    problem = fmt::format("--forward takes x, -x, y, -y, z, -z or x,y,z in the axes of the model's file, not \"{}\"", words);
    return false;
}

bool ParseUnit(const std::string& words, std::optional<double>& unit, std::string& problem) {
    double metres = 0.0;
    const auto known = kMetresOfUnit.find(words);
    if (known != kMetresOfUnit.end()) unit = known->second;
    if (known != kMetresOfUnit.end() || words.empty()) return true;
    if (ParseNumber(words, metres) && metres > 0.0) {
        unit = metres;
        return true;
    }
    problem = fmt::format("--unit takes one of {} or a number of metres, not \"{}\"", NamesOf(kMetresOfUnit), words);
    return false;
}

bool ParseAxles(const CLI::App& app, const char* option, const std::string& words, std::optional<std::vector<int>>& axles,
                std::string& problem) {
    if (app.count(option) == 0) return true;
    axles.emplace();
    if (words == "none") return true;
    for (const std::string& item : SplitAtCommas(words)) {
        int axle = 0;
        const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), axle);
        if (error == std::errc() && end == item.data() + item.size() && axle > 0) {
            axles->push_back(axle);
            continue;
        }
        problem =
            fmt::format("{} takes axles counted from 1 at the front, such as 1 or 2,3, or none, not \"{}\"", option, words);
        return false;
    }
    return true;
}

bool ParsePlaces(const RigWords& words, RigOrder& order, std::string& problem) {
    for (const std::string& one : words.places) {
        PartPlace place;
        if (ParsePlace(one, place)) {
            order.wish.options.places.push_back(place);
        } else if (one.find(',') != std::string::npos && !std::filesystem::exists(one)) {
            problem = fmt::format("--place takes a file or name,x,y,z,yaw, not \"{}\"", one);
            return false;
        } else if (!order.wish.places.empty()) {
            problem = "--place takes one file only";
            return false;
        } else {
            order.wish.places = one;
        }
    }
    if (order.wish.places.empty() || order.wish.options.places.empty()) return true;
    problem = "--place takes a file or rows, not both";
    return false;
}

void TakeNumbers(const CLI::App& app, const RigWords& words, WizardOptions& options) {
    const auto take = [&app](const char* option, double number, std::optional<double>& value) {
        if (app.count(option) > 0) value = number;
    };
    take("--wheel-radius", words.wheelRadius, options.wheelRadius);
    take("--wheel-width", words.wheelWidth, options.wheelWidth);
    take("--mass", words.mass, options.mass);
    take("--wheel-mass", words.wheelMass, options.wheelMass);
    take("--frequency", words.frequency, options.frequency);
    take("--damping", words.damping, options.dampingRatio);
}

bool TakeWishes(const CLI::App& app, const RigWords& words, RigOrder& order, std::string& problem) {
    WizardOptions& options = order.wish.options;
    options.wheelNames = words.wheels;
    options.bodyNames = words.body;
    options.root = words.root;
    TakeNumbers(app, words, options);
    if (words.bike && words.noBike) {
        problem = "--bike and --no-bike exclude each other";
        return false;
    }
    if (words.bike || words.noBike) options.bike = words.bike;
    return ParseUnit(words.unit, options.unit, problem) && ParseForward(words.forward, options.forward, problem) &&
           ParsePoint("--hitch", words.hitch, options.hitch, problem) &&
           ParsePoint("--tongue", words.tongue, options.tongue, problem) &&
           ParseAxles(app, "--steer", words.steer, options.steeredAxles, problem) &&
           ParseAxles(app, "--drive", words.drive, options.drivenAxles, problem) &&
           ParseAxles(app, "--handbrake", words.handbrake, options.handbrakeAxles, problem) &&
           ParsePlaces(words, order, problem);
}

bool CheckOut(const RigWords& words, RigOrder& order, std::string& problem) {
    if (words.dryRun) return true;
    order.out = words.out;
    if (words.out.empty()) {
        problem = "--out is required, or --dry-run";
    } else if (order.out.extension() != ".glb" && order.out.extension() != ".gltf") {
        problem = fmt::format("--out takes a scene, whose name ends in .glb or .gltf, not \"{}\"", words.out);
    } else if (SameFile(order.wish.model, order.out)) {
        problem = fmt::format("the scene would replace its model, {}", words.model);
    } else if (!order.ground.empty() && SameFile(order.ground, order.out)) {
        problem = fmt::format("--ground and --out are the same file, {}", words.out);
    } else if (!order.wish.places.empty() && SameFile(order.wish.places, order.out)) {
        problem = fmt::format("--place and --out are the same file, {}", words.out);
    }
    return problem.empty();
}

}  // namespace

void AddRigOptions(CLI::App& app, DriveWords& drive, RigWords& words) {
    app.add_option("CAR", words.model, "Car model: " + KnownMeshExtensions())->type_name("")->required();
    app.add_option("--out", words.out, "Scene to write, .glb or .gltf")->type_name("FILE");
    app.add_flag("--dry-run", words.dryRun, "Only tell what would be made");
    app.add_option("--name", words.name, "Of the master object; else the file's")->type_name("NAME");
    app.add_option("--ground", drive.ground, "Mesh to drive on; else the sample ground")->type_name("FILE");
    app.add_option("--ground-up", drive.up, "Its up axis, y or z; else as the file tells, or z")->type_name("AXIS");
    app.add_option("--ground-unit", drive.unit, "Its unit: m, cm, mm, in, ft; else as the file tells, or m")->type_name("UNIT");
    app.add_option("--at", drive.start, "Where the car stands: metres, Z up; degrees clockwise from +y. Else the middle")
        ->type_name("X,Y,HEADING");
    app.add_option("--seconds", drive.seconds, "Length of the timeline, default 20")->type_name("S");
    app.add_option("--fps", drive.fps, "Frames a second, default 30; a whole part of 4800")->type_name("N");
    app.add_option("--up", words.up, "The model's up axis, y or z; else as the file tells")->type_name("AXIS");
    app.add_option("--unit", words.unit, "The model's unit: m, cm, mm, in, ft or metres; else guessed")->type_name("UNIT");
    app.add_option("--forward", words.forward, "Where the car looks in its file: x, -x, ... or x,y,z; else guessed")
        ->type_name("AXIS");
    app.add_option("--root", words.root, "Look only at this part and what hangs below it")->type_name("NAME");
    app.add_option("--wheels", words.wheels, "Parts that are wheels; * stands for any text, ? for a letter")
        ->type_name("NAME,...")
        ->delimiter(',');
    app.add_option("--body", words.body, "Parts of the body; all others but the wheels are left out")
        ->type_name("NAME,...")
        ->delimiter(',');
    app.add_option("--place", words.places, "Places for parts, model units: a file, or a row for each, repeated")
        ->type_name("FILE|NAME,X,Y,Z,YAW")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option("--wheel-radius", words.wheelRadius, "Of all wheels, model units")->type_name("R");
    app.add_option("--wheel-width", words.wheelWidth, "Of all tyres, model units")->type_name("W");
    app.add_option("--mass", words.mass, "Of the whole car, kg")->type_name("KG");
    app.add_option("--wheel-mass", words.wheelMass, "Of each wheel, kg")->type_name("KG");
    app.add_option("--frequency", words.frequency, "Of the body on its springs")->type_name("HZ");
    app.add_option("--damping", words.damping, "Ratio; 1 stops the swing altogether, usual is 0.3")->type_name("Z");
    app.add_option("--steer", words.steer, "Axles that steer, from 1 at the front, or none")->type_name("N,...");
    app.add_option("--drive", words.drive, "Axles that drive")->type_name("N,...");
    app.add_option("--handbrake", words.handbrake, "Axles that the hand brake holds")->type_name("N,...");
    app.add_flag("--bike", words.bike, "It is a motorcycle");
    app.add_flag("--no-bike", words.noBike, "It is none");
    app.add_option("--hitch", words.hitch, "Of a trailer to come, in the model's space")->type_name("X,Y,Z");
    app.add_option("--tongue", words.tongue, "It is a trailer; its coupling")->type_name("X,Y,Z");
    app.footer("Places and directions are in the axes of the model's file. All is told in docs/rig.md.");
}

bool MakeRigOrder(const CLI::App& app, const DriveWords& drive, const RigWords& words, RigOrder& order, std::string& problem) {
    DriveOptions options;
    std::string fault;
    if (!MakeDriveOptions(drive, "--at", options, fault)) {
        // The ground's own options go by longer names here.
        problem = fault.starts_with("--up") || fault.starts_with("--unit") ? "--ground-" + fault.substr(2) : fault;
        return false;
    }
    order.ground = options.ground;
    order.groundImport = options.import;
    order.start = options.start;
    order.seconds = options.seconds;
    order.ticksPerFrame = options.ticksPerFrame;
    order.wish.model = words.model;
    order.wish.name = words.name;
    if (!words.up.empty() && !Choose(kUpAxes, words.up, "--up", order.wish.import.up, problem)) return false;
    return TakeWishes(app, words, order, problem) && CheckOut(words, order, problem);
}

}  // namespace tavrik

#include "cli/render_words.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

#include "host/render/frame_names.h"

namespace tavrik {
namespace {

template <typename T>
bool ParseWhole(std::string_view word, T& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

/// Numbers with commas between them, as many as there is room for.
bool ParseNumbers(std::string_view words, std::size_t count, float* numbers) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t comma = words.find(',');
        if ((comma == std::string_view::npos) != (i + 1 == count)) return false;
        if (!ParseWhole(words.substr(0, comma), numbers[i]) || !std::isfinite(numbers[i])) return false;
        if (comma != std::string_view::npos) words.remove_prefix(comma + 1);
    }
    return true;
}

bool CheckScene(const char* command, const std::string& file, std::string& problem) {
    const std::filesystem::path name = file;
    if (name.extension() == ".glb" || name.extension() == ".gltf") return true;
    problem = fmt::format("{} takes a scene, whose name ends in .glb or .gltf, not \"{}\"", command, file);
    return false;
}

bool ParseFrames(const std::string& words, std::optional<FrameRange>& frames, std::string& problem) {
    if (words.empty()) return true;
    FrameRange range;
    const std::size_t dash = words.find('-', 1);  // a first one may be a sign
    const std::string_view all = words, first = all.substr(0, dash), last = dash == words.npos ? first : all.substr(dash + 1);
    constexpr int kMost = 10'000'000;
    if (ParseWhole(first, range.first) && ParseWhole(last, range.last) && range.first <= range.last && range.first >= -kMost &&
        range.last <= kMost) {
        frames = range;
        return true;
    }
    problem = fmt::format("--frames takes two frames such as 1-300, or one, not \"{}\"", words);
    return false;
}

bool ParseSize(const std::string& words, int& width, int& height, std::string& problem) {
    const std::size_t cross = words.find('x');
    constexpr int kMost = 16384;
    if (cross != words.npos && ParseWhole(std::string_view(words).substr(0, cross), width) &&
        ParseWhole(std::string_view(words).substr(cross + 1), height) && width >= 1 && height >= 1 && width <= kMost &&
        height <= kMost) {
        return true;
    }
    problem = fmt::format("--size takes pixels across and down such as 1280x720, up to {}, not \"{}\"", kMost, words);
    return false;
}

bool ParsePoint(const char* option, const std::string& words, std::optional<MetresXYZ>& point, std::string& problem) {
    if (words.empty()) return true;
    MetresXYZ metres{};
    if (ParseNumbers(words, metres.size(), metres.data())) {
        point = metres;
        return true;
    }
    problem = fmt::format("{} takes metres x,y,z from the car: to the right, ahead and up, not \"{}\"", option, words);
    return false;
}

/// @return false with `problem` set when a number lies outside of its range
bool CheckRange(const char* option, double value, double low, double high, std::string& problem) {
    if (value >= low && value <= high) return true;
    problem = fmt::format("{} takes a number from {:g} to {:g}, not {:g}", option, low, high, value);
    return false;
}

bool CheckLook(const TrackOrder& look, int threads, std::string& problem) {
    constexpr double kStrongest = 1000.0;
    return CheckRange("--roll", double(look.roll), 0.0, kStrongest, problem) &&
           CheckRange("--skid", double(look.skid), 0.0, kStrongest, problem) &&
           CheckRange("--dent", double(look.dent), 0.0, kStrongest, problem) &&
           CheckRange("--tread-depth", double(look.treadDepth), 0.0, kStrongest, problem) &&
           CheckRange("--track-samples", look.samples, 1, 200, problem) && CheckRange("--threads", threads, 0, 1024, problem);
}

bool CheckNames(const char* option, const std::string& pattern, bool isSequence, std::string& problem) {
    tavrik_host::FrameNames names;
    if (!names.Read(pattern, problem)) {
        problem = fmt::format("{}: {}", option, problem);
        return false;
    }
    if (!isSequence || names.IsNumbered()) return true;
    problem =
        fmt::format("{} needs a number in the name of each of several frames, as in %04d.png, not \"{}\"", option, pattern);
    return false;
}

void AddLookOptions(CLI::App& app, TrackOrder& look, int& threads) {
    app.add_option("--tread", look.tread, "Greyscale picture on every wheel, PNG; white touches")->type_name("IMAGE");
    app.add_option("--roll", look.roll, "How dark a rolling tyre colours, default 0.3")->type_name("X");
    app.add_option("--skid", look.skid, "How much a sliding tyre adds, default 8")->type_name("X");
    app.add_option("--dent", look.dent, "How deep the tyre presses in, default 3")->type_name("X");
    app.add_option("--tread-depth", look.treadDepth, "How deep its tread does, default 5")->type_name("X");
    app.add_option("--track-samples", look.samples, "Places tried per wheel radius of way, 1 to 200, default 20")
        ->type_name("N");
    app.add_option("--threads", threads, "Default: one for each core; the pictures don't depend on it")->type_name("N");
}

}  // namespace

void AddRenderOptions(CLI::App& app, PictureWords& words) {
    RenderOrder& order = words.render;
    app.add_option("SCENE", words.scene, "Scene to take pictures of, .glb or .gltf")->type_name("")->required();
    app.add_option("--frames", words.frames, "Frames of the timeline, or one; else all")->type_name("A-B");
    app.add_option("--out", order.out, "Pictures to write, such as frames/%04d.png")->type_name("NAMES")->required();
    app.add_option("--size", words.size, "Default 1280x720")->type_name("WxH");
    app.add_option("--samples", order.samples, "A pixel, at most; default 12")->type_name("N");
    app.add_option("--camera", order.camera, "follow (default), top, or a camera of the scene by its name")->type_name("WHICH");
    app.add_option("--eye", words.eye, "Of follow: where the camera is, metres from the car")->type_name("X,Y,Z");
    app.add_option("--look", words.target, "Of follow: what it looks at, likewise")->type_name("X,Y,Z");
    app.add_option("--lens", order.lens, "Of follow: degrees from top to bottom, default 40")->type_name("DEG");
    app.add_option("--span", order.span, "Of top: metres from top to bottom, default 25")->type_name("M");
    app.add_option("--sun", words.sun, "Degrees clockwise from +y, and above the horizon; default 235,42")->type_name("AZ,EL");
    app.add_option("--master", order.master, "Whose car the camera follows; else the first")->type_name("NAME");
    app.add_flag("--no-tracks", words.noTracks, "Leave the ground untouched");
    app.add_flag("--resume", order.resume, "Keep pictures that are there already");
    AddLookOptions(app, order.look, order.threads);
}

void AddTracksOptions(CLI::App& app, PictureWords& words) {
    TracksOrder& order = words.tracks;
    app.add_option("SCENE", words.scene, "Scene whose tracks to bake, .glb or .gltf")->type_name("")->required();
    app.add_option("--bake", order.out, "What multiplies the ground's colour, .png; %04d for sequences")
        ->type_name("FILE")
        ->required();
    app.add_option("--bump", order.bump, "Normal map, likewise")->type_name("FILE");
    app.add_option("--size", order.size, "Pixels along each side, default 2048")->type_name("N");
    app.add_option("--at", words.at, "Tracks up to this second; else the end of the timeline")->type_name("S");
    app.add_option("--frames", words.frames, "One picture for each of these frames")->type_name("A-B");
    AddLookOptions(app, order.look, order.threads);
}

bool MakeRenderOrder(const PictureWords& words, RenderOrder& order, std::string& problem) {
    order = words.render;
    order.scene = words.scene;
    order.tracks = !words.noTracks;
    float sun[2];
    if (!ParseNumbers(words.sun, 2, sun)) {
        problem = fmt::format("--sun takes two angles such as 235,42, not \"{}\"", words.sun);
        return false;
    }
    order.sunAzimuth = sun[0];
    order.sunElevation = sun[1];
    if (!CheckScene("render", words.scene, problem) || !ParseFrames(words.frames, order.frames, problem) ||
        !ParseSize(words.size, order.width, order.height, problem) || !ParsePoint("--eye", words.eye, order.eye, problem) ||
        !ParsePoint("--look", words.target, order.target, problem) || !CheckLook(order.look, order.threads, problem)) {
        return false;
    }
    // Of a whole timeline it shows later how many frames that is.
    const bool isSequence = order.frames && order.frames->first != order.frames->last;
    return CheckRange("--samples", order.samples, 1, 4096, problem) &&
           CheckRange("--lens", double(order.lens), 1.0, 150.0, problem) &&
           CheckRange("--span", double(order.span), 0.1, 100'000.0, problem) &&
           CheckRange("--sun", double(order.sunElevation), 1.0, 90.0, problem) &&
           CheckNames("--out", order.out, isSequence, problem);
}

bool MakeTracksOrder(const CLI::App& app, const PictureWords& words, TracksOrder& order, std::string& problem) {
    order = words.tracks;
    order.scene = words.scene;
    if (app.count("--at") != 0) order.atSeconds = words.at;
    if (!CheckScene("tracks", words.scene, problem) || !ParseFrames(words.frames, order.frames, problem) ||
        !CheckLook(order.look, order.threads, problem) || !CheckRange("--size", order.size, 1, 16384, problem)) {
        return false;
    }
    if (order.atSeconds && order.frames) {
        problem = "--at and --frames don't go together";
        return false;
    }
    if (order.atSeconds && !CheckRange("--at", *order.atSeconds, -36000.0, 36000.0, problem)) return false;
    if (order.out == order.bump) {
        problem = fmt::format("--bake and --bump are the same file, {}", order.out);
        return false;
    }
    const bool isSequence = order.frames && order.frames->first != order.frames->last;
    return CheckNames("--bake", order.out, isSequence, problem) &&
           (order.bump.empty() || CheckNames("--bump", order.bump, isSequence, problem));
}

}  // namespace tavrik

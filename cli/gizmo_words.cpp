#include "cli/gizmo_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>

namespace tavrik {
namespace {

bool ParseWhole(std::string_view word, int& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

bool ParseViews(std::string_view words, std::vector<tavrik_host::RigView>& views, std::string& problem) {
    views.clear();
    for (std::size_t at = 0; at <= words.size();) {
        const std::size_t comma = std::min(words.find(',', at), words.size());
        const std::string_view word = words.substr(at, comma - at);
        const std::optional<tavrik_host::RigView> view = tavrik_host::RigViewNamed(word);
        if (!view) {
            problem = fmt::format("--views takes {}, with commas between them, not \"{}\"", tavrik_host::RigViewNames(), word);
            return false;
        }
        if (std::ranges::find(views, *view) != views.end()) {
            problem = fmt::format("--views has \"{}\" twice", word);
            return false;
        }
        views.push_back(*view);
        at = comma + 1;
    }
    return true;
}

}  // namespace

void AddGizmoOptions(CLI::App& app, GizmoWords& words) {
    GizmoOrder& order = words.order;
    app.add_option("SCENE", order.scene, "Scene whose rig to draw, .glb or .gltf")->type_name("")->required();
    app.add_option("--out", order.out, "Picture to write, .png")->type_name("FILE")->required();
    app.add_option("--views", words.views, "Some of front,side,top,perspective; else all four")->type_name("LIST");
    app.add_option("--size", words.size, "Of the whole picture, default 1280x960")->type_name("WxH");
    app.add_option("--frame", order.frame, "Frame of the timeline; else its first")->type_name("N");
    app.add_option("--select", order.select, "Draw this node as selected, in white")
        ->type_name("NODE")
        ->allow_extra_args(false);
    app.add_option("--only", order.only,
                   "Draw and frame these alone: chassis, suspension, wheel, sphere, hitch, tongue, push, start, master, "
                   "or a node by its name")
        ->type_name("WHAT")
        ->delimiter(',')
        ->allow_extra_args(false);
    app.add_option("--threads", order.threads, "Default: one for each core; the picture doesn't depend on it")->type_name("N");
    app.footer(
        "Lines have their node's colour; white is selected, blue is locked by a recording, green is a car as a whole. What a\n"
        "surface hides shows faintly. Front, side and top are the car's own.");
}

bool MakeGizmoOrder(const CLI::App& app, const GizmoWords& words, GizmoOrder& order, std::string& problem) {
    order = words.order;
    order.hasFrame = app.count("--frame") != 0;
    if (app.count("--views") == 0) {
        order.views = tavrik_host::GizmoWish{}.views;
    } else if (!ParseViews(words.views, order.views, problem)) {
        return false;
    }
    constexpr int kLeast = 16, kMost = 8192, kLastFrame = 10'000'000;
    const std::size_t cross = words.size.find('x');
    const std::string_view size = words.size;
    if (cross == size.npos || !ParseWhole(size.substr(0, cross), order.width) ||
        !ParseWhole(size.substr(cross + 1), order.height) || std::min(order.width, order.height) < kLeast ||
        std::max(order.width, order.height) > kMost) {
        problem =
            fmt::format("--size takes pixels across and down such as 1280x960, {} to {}, not \"{}\"", kLeast, kMost, size);
        return false;
    }
    if (order.scene.extension() != ".glb" && order.scene.extension() != ".gltf") {
        problem = fmt::format("gizmo takes a scene, whose name ends in .glb or .gltf, not \"{}\"", order.scene.string());
    } else if (order.out.extension() != ".png") {
        problem = fmt::format("--out takes a name that ends in .png, not \"{}\"", order.out.string());
    } else if (order.frame < -kLastFrame || order.frame > kLastFrame) {
        problem = fmt::format("--frame takes a frame from {} to {}, not {}", -kLastFrame, kLastFrame, order.frame);
    } else if (order.threads < 0 || order.threads > 1024) {
        problem = fmt::format("--threads takes a number from 0 to 1024, not {}", order.threads);
    }
    return problem.empty();
}

}  // namespace tavrik

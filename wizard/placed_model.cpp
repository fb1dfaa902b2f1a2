#include "wizard/placed_model.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

#include "wizard/part_names.h"

namespace tavrik {
namespace {

bool IsFinite(const DPoint3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

bool CheckPart(const CarModel& model, int index, std::string& problem) {
    const ModelPart& part = model.parts[std::size_t(index)];
    const std::string title = PartTitle(model, index);
    for (const DPoint3& row : part.frame.row) {
        if (IsFinite(row)) continue;
        problem = "the place of part " + title + " is not made of finite numbers; export the model again.";
        return false;
    }
    for (std::size_t i = 0; i < part.vertices.size(); ++i) {
        if (IsFinite(part.vertices[i]) && IsFinite(TransformPoint(part.vertices[i], part.frame))) continue;
        problem =
            "vertex " + std::to_string(i + 1) + " of part " + title + " is not made of finite numbers; export the model again.";
        return false;
    }
    for (const MeshFace& face : part.faces) {
        for (const std::uint32_t v : face.v) {
            if (v < part.vertices.size()) continue;
            problem = "a face of part " + title + " uses vertex " + std::to_string(v + 1) + ", but there are " +
                      std::to_string(part.vertices.size()) + "; export the model again.";
            return false;
        }
    }
    // Walking up ends at a part without a parent, or goes round for ever.
    int steps = 0;
    for (int at = index; at != -1; at = model.parts[std::size_t(at)].parent) {
        if (at >= 0 && at < int(model.parts.size()) && ++steps <= int(model.parts.size())) {
            const int parent = model.parts[std::size_t(at)].parent;
            if (parent >= -1 && parent < int(model.parts.size())) continue;
        }
        problem = "part " + title + " hangs below itself or below a part that isn't there; export the model again.";
        return false;
    }
    return true;
}

bool CheckModel(const CarModel& model, std::string& problem) {
    std::size_t faces = 0;
    for (int i = 0; i < int(model.parts.size()); ++i) {
        if (!CheckPart(model, i, problem)) return false;
        faces += model.parts[std::size_t(i)].faces.size();
    }
    if (faces == 0) problem = "the model holds no triangles, so there is no car in it.";
    if (faces > 0 && !(std::isfinite(model.metresPerUnit) && model.metresPerUnit > 0.0)) {
        problem = "the model's unit is " + NumberText(model.metresPerUnit) + " m; it must be above zero.";
        return false;
    }
    return faces > 0;
}

bool CheckOptions(const WizardOptions& options, std::string& problem) {
    struct Number {
        const char* name;
        std::optional<double> value;
    };
    const Number numbers[] = {{"unit", options.unit},
                              {"wheel radius", options.wheelRadius},
                              {"wheel width", options.wheelWidth},
                              {"mass", options.mass},
                              {"wheel mass", options.wheelMass},
                              {"frequency", options.frequency},
                              {"damping ratio", options.dampingRatio},
                              {"solver's step", options.stepSeconds},
                              {"gravity", options.gravity},
                              {"number of scene units in a metre", options.unitsPerMetre}};
    for (const Number& number : numbers) {
        if (!number.value || (std::isfinite(*number.value) && *number.value > 0.0)) continue;
        problem = std::string("the ") + number.name + " is set to " + NumberText(*number.value) + "; it must be above zero.";
        return false;
    }
    if (options.forward && !(IsFinite(*options.forward) && std::hypot(options.forward->x, options.forward->y) > 0.0)) {
        problem = "the forward direction must be level, such as 0, 1, 0.";
        return false;
    }
    for (const PartPlace& place : options.places) {
        if (IsFinite({place.x, place.y, place.z}) && std::isfinite(place.yaw)) continue;
        problem = "the place of part \"" + place.name + "\" is not made of finite numbers.";
        return false;
    }
    return true;
}

bool HangsBelow(const CarModel& model, int part, int root) {
    for (int at = part; at != -1; at = model.parts[std::size_t(at)].parent) {
        if (at == root) return true;
    }
    return false;
}

/// The one part of that name.
bool FindPart(const CarModel& model, const std::string& name, int& found, std::string& problem) {
    found = -1;
    for (int i = 0; i < int(model.parts.size()); ++i) {
        if (!MatchesPattern(model.parts[std::size_t(i)].name, name)) continue;
        if (found != -1) {
            problem = "several parts are called \"" + name + "\"; give the wanted one a name of its own.";
            return false;
        }
        found = i;
    }
    if (found == -1) problem = "the model has no part called \"" + name + "\".";
    return found != -1;
}

/// Turns and moves the frames of a part and of what hangs below it.
void AddPlaced(const CarModel& model, int part, const PartPlace& place, std::vector<RiggedPart>& parts) {
    const DPoint3 origin = model.parts[std::size_t(part)].frame.row[3];
    DMatrix3 move = IdentityDMatrix3();
    const double angle = place.yaw * std::numbers::pi / 180.0, c = std::cos(angle), s = std::sin(angle);
    move.row[0] = {c, s, 0};
    move.row[1] = {-s, c, 0};
    move.row[3] = DPoint3{place.x, place.y, place.z} - TransformPoint(origin, move);
    for (int i = 0; i < int(model.parts.size()); ++i) {
        if (!HangsBelow(model, i, part)) continue;
        parts.push_back({i, Compose(model.parts[std::size_t(i)].frame, move), PartRole::Body, -1});
    }
}

}  // namespace

std::string PartTitle(const CarModel& model, int part) {
    const std::string& name = model.parts[std::size_t(part)].name;
    return name.empty() ? std::to_string(part + 1) : "\"" + name + "\"";
}

double Handedness(const DMatrix3& frame) { return Dot(Cross(frame.row[0], frame.row[1]), frame.row[2]); }

bool PlaceModel(const CarModel& model, const WizardOptions& options, std::vector<RiggedPart>& parts, std::string& problem) {
    if (!CheckModel(model, problem) || !CheckOptions(options, problem)) return false;
    int root = -1;
    if (!options.root.empty() && !FindPart(model, options.root, root, problem)) return false;
    for (const PartPlace& place : options.places) {
        int part = -1;
        if (!FindPart(model, place.name, part, problem)) return false;
        AddPlaced(model, part, place, parts);
    }
    if (options.places.empty()) {
        for (int i = 0; i < int(model.parts.size()); ++i) {
            const bool isIn = root == -1 || HangsBelow(model, i, root);
            const bool isSolid = !model.parts[std::size_t(i)].faces.empty();
            parts.push_back({i, model.parts[std::size_t(i)].frame, isIn && isSolid ? PartRole::Body : PartRole::LeftOut, -1});
        }
    }
    bool any = false;
    for (RiggedPart& part : parts) {
        if (model.parts[std::size_t(part.part)].faces.empty()) part.role = PartRole::LeftOut;
        any = any || part.role == PartRole::Body;
    }
    if (!any) problem = "none of the chosen parts holds any triangles.";
    return any;
}

}  // namespace tavrik

#include "tests/wizard/model_cars.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <utility>

namespace tavrik::test {
namespace {

void AddQuad(ModelPart& part, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    part.faces.push_back({{a, b, c}});
    part.faces.push_back({{a, c, d}});
}

/// A bar across the car whose outline in Y and Z goes counter-clockwise seen from the right.
ModelPart Bar(const std::string& name, const std::vector<std::pair<double, double>>& outline, double halfWidth) {
    ModelPart part;
    part.name = name;
    const std::uint32_t n = std::uint32_t(outline.size());
    for (const double side : {-1.0, 1.0}) {
        for (const auto& [y, z] : outline) part.vertices.push_back({side * halfWidth, y, z});
    }
    for (std::uint32_t i = 0; i < n; ++i) AddQuad(part, i, (i + 1) % n, n + (i + 1) % n, n + i);
    for (std::uint32_t i = 1; i + 1 < n; ++i) {
        part.faces.push_back({{0, i + 1, i}});
        part.faces.push_back({{n, n + i, n + i + 1}});
    }
    return part;
}

}  // namespace

ModelPart BoxPart(const std::string& name, const DPoint3& centre, const DPoint3& half) {
    ModelPart part = Bar(name, {{-half.y, -half.z}, {half.y, -half.z}, {half.y, half.z}, {-half.y, half.z}}, half.x);
    part.frame.row[3] = centre;
    return part;
}

ModelPart WheelPart(const std::string& name, const DPoint3& centre, double radius, double halfWidth, int corners) {
    std::vector<std::pair<double, double>> outline;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / corners;
        outline.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    ModelPart part = Bar(name, outline, halfWidth);
    part.frame.row[3] = centre;
    return part;
}

void Merge(ModelPart& part, const ModelPart& more) {
    const std::uint32_t first = std::uint32_t(part.vertices.size());
    DMatrix3 back = part.frame;
    Inverse(back);
    for (const DPoint3& v : more.vertices) part.vertices.push_back(TransformPoint(TransformPoint(v, more.frame), back));
    for (const MeshFace& face : more.faces) part.faces.push_back({{first + face.v[0], first + face.v[1], first + face.v[2]}});
}

CarModel Saloon(bool named) {
    CarModel model;
    model.parts.push_back(
        Bar(named ? "body" : "piece 0",
            {{-2.2, 0.25}, {2.1, 0.25}, {2.2, 0.65}, {1.0, 0.9}, {0.2, 1.4}, {-1.2, 1.4}, {-1.7, 1.0}, {-2.2, 0.95}}, 0.88));
    const char* const names[] = {"wheel_FL", "wheel_FR", "wheel_RL", "wheel_RR"};
    for (int i = 0; i < 4; ++i) {
        const DPoint3 at{i % 2 == 0 ? -0.76 : 0.76, i < 2 ? 1.35 : -1.35, 0.32};
        model.parts.push_back(WheelPart(named ? names[i] : "piece " + std::to_string(i + 1), at, 0.32, 0.1));
    }
    return model;
}

CarModel Lorry(int axles) {
    CarModel model;
    model.parts.push_back(BoxPart("cargo", {0, -1.2, 2.0}, {1.2, 3.5, 1.2}));
    model.parts.push_back(BoxPart("cab", {0, 3.2, 1.6}, {1.2, 0.9, 0.9}));
    const double places[] = {3.0, -2.2, -3.4, -4.6, -1.0};
    for (int axle = 0; axle < axles; ++axle) {
        for (const double side : {-1.0, 1.0}) {
            model.parts.push_back(WheelPart("tyre", {side, places[axle], 0.5}, 0.5, 0.15));
        }
    }
    return model;
}

CarModel Motorcycle(bool named) {
    CarModel model;
    model.parts.push_back(BoxPart(named ? "frame" : "a", {0, -0.05, 0.7}, {0.15, 0.75, 0.25}));
    model.parts.push_back(BoxPart(named ? "handlebar" : "b", {0, 0.5, 1.05}, {0.35, 0.05, 0.05}));
    model.parts.push_back(WheelPart(named ? "wheel-front" : "c", {0, 0.72, 0.31}, 0.31, 0.07));
    model.parts.push_back(WheelPart(named ? "wheel-back" : "d", {0, -0.72, 0.31}, 0.31, 0.09));
    return model;
}

CarModel Moved(const CarModel& model, double turnDegrees, const DPoint3& by, double scale, bool tellUnit) {
    DMatrix3 move = IdentityDMatrix3();
    RotateZ(move, turnDegrees * std::numbers::pi / 180.0);
    for (int r = 0; r < 3; ++r) move.row[r] = move.row[r] * scale;
    move.row[3] = by;
    CarModel moved = model;
    for (ModelPart& part : moved.parts) part.frame = Compose(part.frame, move);
    if (tellUnit) moved.metresPerUnit /= scale;
    moved.usualForward = TransformPoint(model.usualForward, WithoutTranslation(move));
    return moved;
}

std::string ValueOf(const WizardResult& result, const std::string& key) {
    for (const Decision& decision : result.decisions) {
        if (decision.key == key) return decision.value;
    }
    return {};
}

WizardResult Planned(const CarModel& model, const WizardOptions& options) {
    WizardResult result;
    std::string problem;
    EXPECT_TRUE(PlanRig(model, options, result, problem)) << problem;
    return result;
}

std::string Refusal(const CarModel& model, const WizardOptions& options) {
    WizardResult result;
    result.scale = 77.0;
    std::string problem;
    EXPECT_FALSE(PlanRig(model, options, result, problem));
    EXPECT_EQ(result.scale, 77.0) << "half a plan was left";
    EXPECT_TRUE(result.parts.empty());
    EXPECT_TRUE(problem.ends_with('.')) << problem;
    return problem;
}

}  // namespace tavrik::test

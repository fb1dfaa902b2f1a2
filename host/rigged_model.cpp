#include "host/rigged_model.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace tavrik_host {
namespace {

using tavrik::CarLooks;
using tavrik::CarModel;
using tavrik::DMatrix3;
using tavrik::DPoint3;
using tavrik::ModelPart;
using tavrik::PartLooks;
using tavrik::RiggedPart;
using tavrik::ShapePart;
using tavrik::WizardResult;

// Where a model brings no normals, edges that are sharper than this stay sharp: 40 degrees.
constexpr double kSmoothCosine = 0.766;

/// From the model's space to the chassis', scene units.
DMatrix3 ModelToChassis(const WizardResult& result, double unitsPerMetre) {
    DMatrix3 frame = result.frame;
    Inverse(frame);
    for (DPoint3& row : frame.row) row = row * (result.scale * unitsPerMetre);
    return frame;
}

/// Turns a direction across a surface as `frame` turns the surface, whatever its scales.
DPoint3 TurnNormal(const DPoint3& n, const DMatrix3& frame) {
    const DPoint3 *const r = frame.row, m = Cross(r[1], r[2]) * n.x + Cross(r[2], r[0]) * n.y + Cross(r[0], r[1]) * n.z;
    return Normalize(m);
}

/// Makes up normals of a mesh that has none.
class CreaseNormals {
 public:
    explicit CreaseNormals(const ModelPart& part) : part_(part) {
        for (std::size_t f = 0; f < part.faces.size(); ++f) {
            const auto& v = part.faces[f].v;
            const DPoint3 a = part.vertices[v[0]];
            areas_.push_back(Cross(part.vertices[v[1]] - a, part.vertices[v[2]] - a));
            for (const std::uint32_t corner : v) around_[Key(corner)].push_back(f);
        }
    }

    /// At a corner of a face: the mean of the faces around that are nearly level with it.
    DPoint3 At(std::size_t face, std::uint32_t vertex) const {
        const DPoint3 own = Normalize(areas_[face]);
        DPoint3 sum{};
        for (const std::size_t other : around_.at(Key(vertex))) {
            if (Dot(Normalize(areas_[other]), own) > kSmoothCosine) sum += areas_[other];
        }
        return sum;
    }

 private:
    std::array<double, 3> Key(std::uint32_t vertex) const {
        const DPoint3& p = part_.vertices[vertex];
        return {p.x, p.y, p.z};
    }

    const ModelPart& part_;
    std::vector<DPoint3> areas_;  // across each face, as long as twice its area
    std::map<std::array<double, 3>, std::vector<std::size_t>> around_;
};

/// Some faces of a part on their way into the scene, sorted by material.
class ShapeMaker {
 public:
    ShapeMaker(const ModelPart& part, const PartLooks& partLooks, const CarLooks& looks, const DMatrix3& frame)
        : part_(part), partLooks_(partLooks), looks_(looks), frame_(frame) {}

    void AddFace(std::size_t face) {
        const int material = face < partLooks_.materials.size() ? partLooks_.materials[face] : -1;
        Open& open = open_[material];
        for (const std::uint32_t v : part_.faces[face].v) open.part.indices.push_back(CornerOf(open, face, v));
    }

    /// @return false where a number doesn't fit
    bool Finish(std::vector<ShapePart>& shapes) {
        for (auto& [material, open] : open_) {
            const bool isKnown = material >= 0 && std::size_t(material) < looks_.materials.size();
            open.part.material = tavrik::PlainMaterial();
            if (isKnown) {
                const tavrik::CarMaterial& known = looks_.materials[std::size_t(material)];
                open.part.material = known.material;
                if (!open.part.pictureSpots.empty()) open.part.picture = known.picture;
            }
            if (open.part.picture == nullptr) open.part.pictureSpots.clear();
            for (const tavrik::Point3& p : open.part.positions) {
                if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) return false;
            }
            shapes.push_back(std::move(open.part));
        }
        return true;
    }

 private:
    struct Open {
        ShapePart part;
        std::map<std::uint32_t, std::uint32_t> numbers;  // of vertices that bring a normal
    };

    std::uint32_t CornerOf(Open& open, std::size_t face, std::uint32_t vertex) {
        const bool isDrawn = vertex < partLooks_.normals.size() && Length(partLooks_.normals[vertex]) > 0.5;
        if (isDrawn) {
            const auto [entry, isNew] = open.numbers.emplace(vertex, std::uint32_t(open.part.positions.size()));
            if (isNew) AddVertex(open.part, vertex, partLooks_.normals[vertex]);
            return entry->second;
        }
        if (crease_ == nullptr) crease_ = std::make_unique<CreaseNormals>(part_);
        AddVertex(open.part, vertex, crease_->At(face, vertex));
        return std::uint32_t(open.part.positions.size() - 1);
    }

    void AddVertex(ShapePart& shape, std::uint32_t vertex, const DPoint3& normal) {
        shape.positions.push_back(ToPoint3(TransformPoint(part_.vertices[vertex], frame_)));
        const DPoint3 n = TurnNormal(normal, frame_);
        // A corner without any area around it still needs a direction, and any will do.
        shape.normals.push_back(Length(n) > 0.5 ? ToPoint3(n) : tavrik::Point3{0, 0, 1});
        if (partLooks_.pictureSpots.empty()) return;
        const float* spot = &partLooks_.pictureSpots[2 * std::size_t(vertex)];
        shape.pictureSpots.insert(shape.pictureSpots.end(), spot, spot + 2);
    }

    const ModelPart& part_;
    const PartLooks& partLooks_;
    const CarLooks& looks_;
    const DMatrix3& frame_;
    std::map<int, Open> open_;
    std::unique_ptr<CreaseNormals> crease_;
};

class Dresser {
 public:
    Dresser(const CarModel& model, const CarLooks& looks, const WizardResult& result, double unitsPerMetre)
        : model_(model), looks_(looks), result_(result), toChassis_(ModelToChassis(result, unitsPerMetre)) {
        for (const tavrik::PartSplit& split : result.splits) splits_[split.rigged] = &split.faceWheels;
    }

    bool Run(std::vector<DressPiece>& pieces, std::string& problem) {
        for (std::size_t i = 0; i < result_.parts.size(); ++i) {
            if (result_.parts[i].role == tavrik::PartRole::LeftOut) continue;
            if (AddPart(int(i), pieces)) continue;
            problem = "part \"" + NameOf(result_.parts[i]) + "\" is too large for a scene; check the model's unit.";
            return false;
        }
        return true;
    }

 private:
    std::string NameOf(const RiggedPart& rigged) const {
        const std::string& name = model_.parts[std::size_t(rigged.part)].name;
        return name.empty() ? "part " + std::to_string(rigged.part + 1) : name;
    }

    bool AddPart(int rigged, std::vector<DressPiece>& pieces) {
        const RiggedPart& its = result_.parts[std::size_t(rigged)];
        const auto split = splits_.find(rigged);
        if (split == splits_.end()) {
            const int wheel = its.role == tavrik::PartRole::Wheel ? its.wheel : -1;
            return AddPiece(its, wheel, nullptr, NameOf(its), pieces);
        }
        std::vector<int> wheels = *split->second;
        std::sort(wheels.begin(), wheels.end());
        wheels.erase(std::unique(wheels.begin(), wheels.end()), wheels.end());
        for (const int wheel : wheels) {
            const std::string label = wheel < 0 ? "rest" : result_.wheels[std::size_t(wheel)].label;
            if (!AddPiece(its, wheel, split->second, NameOf(its) + " " + label, pieces)) return false;
        }
        return true;
    }

    /// @param faceWheels  null: all faces
    bool AddPiece(const RiggedPart& its, int wheel, const std::vector<int>* faceWheels, const std::string& name,
                  std::vector<DressPiece>& pieces) {
        const ModelPart& part = model_.parts[std::size_t(its.part)];
        DMatrix3 frame = Compose(its.frame, toChassis_);
        if (wheel >= 0) {
            DMatrix3 toWheel = RestFrame(result_.plan.units[std::size_t(wheel)]);
            Inverse(toWheel);
            frame = Compose(frame, toWheel);
        }
        ShapeMaker maker(part, looks_.parts[std::size_t(its.part)], looks_, frame);
        for (std::size_t f = 0; f < part.faces.size(); ++f) {
            if (faceWheels == nullptr || (*faceWheels)[f] == wheel) maker.AddFace(f);
        }
        pieces.push_back({name, wheel, {}});
        return maker.Finish(pieces.back().shapes);
    }

    const CarModel& model_;
    const CarLooks& looks_;
    const WizardResult& result_;
    const DMatrix3 toChassis_;
    std::map<int, const std::vector<int>*> splits_;
};

tavrik::DriveSettings SettingsOf(const tavrik::WizardOptions& options, const tavrik::DriveAdvice& advice) {
    tavrik::DriveSettings settings = tavrik::StockCarSettings();
    settings.Gravity = float(options.gravity);
    // Without a wheel that drives the throttle may be as it likes; zero it may not be.
    if (advice.throttleSensitivity > 0.0f) settings.Throttle_Sensitivity = advice.throttleSensitivity;
    settings.Brake_Sensitivity = advice.brakeSensitivity;
    settings.Bike_Drive = advice.bikeDrive ? 1 : 0;
    settings.Balance_Force = advice.balanceForce;
    return settings;
}

}  // namespace

bool DressPlan(const CarModel& model, const CarLooks& looks, const WizardResult& result, const tavrik::WizardOptions& options,
               const std::string& name, DressedCar& car, std::string& problem) {
    assert(looks.parts.size() == model.parts.size());
    car.plan = result.plan;
    car.dress = {};
    car.dress.name = name;
    car.dress.settings = SettingsOf(options, result.advice);
    // Of a train, the towed ones say whose wheel it is.
    const std::string whose = options.tongue ? name + " " : "";
    for (const tavrik::RiggedWheel& wheel : result.wheels) car.dress.labels.push_back(whose + wheel.label);
    return Dresser(model, looks, result, options.unitsPerMetre).Run(car.dress.pieces, problem);
}

}  // namespace tavrik_host

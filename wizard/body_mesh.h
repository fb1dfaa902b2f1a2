#pragma once
/// All that isn't a wheel, as one mesh.

#include <span>
#include <vector>

#include "surface/triangle_mesh.h"
#include "wizard/find_wheels.h"

namespace tavrik {

struct BodyMesh {
    std::vector<DPoint3> points;
    std::vector<MeshFace> faces;
};

struct DBox {
    DPoint3 low{}, high{};
};

/// The faces of all body parts that no wheel has taken, in the model's space, without points that no face uses.
BodyMesh GatherBody(const CarModel& model, const std::vector<RiggedPart>& parts, const std::vector<FoundWheel>& wheels);

/// `body` as seen from `frame`, which is square and of length 1, and then scaled.
BodyMesh SeenFrom(const BodyMesh& body, const DMatrix3& frame, double scale);
DPoint3 SeenFrom(const DPoint3& p, const DMatrix3& frame, double scale);

/// The box of at least one point.
DBox BoxOf(std::span<const DPoint3> points);

}  // namespace tavrik

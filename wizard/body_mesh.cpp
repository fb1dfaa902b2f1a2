#include "wizard/body_mesh.h"

#include <algorithm>

namespace tavrik {

BodyMesh GatherBody(const CarModel& model, const std::vector<RiggedPart>& parts, const std::vector<FoundWheel>& wheels) {
    BodyMesh body;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].role == PartRole::LeftOut) continue;
        const ModelPart& part = model.parts[std::size_t(parts[i].part)];
        std::vector<bool> isTaken(part.faces.size(), false);
        for (const FoundWheel& wheel : wheels) {
            for (const WheelPiece& piece : wheel.pieces) {
                if (piece.rigged != int(i)) continue;
                if (piece.faces.empty()) isTaken.assign(isTaken.size(), true);
                for (const std::uint32_t f : piece.faces) isTaken[f] = true;
            }
        }
        constexpr std::uint32_t kNone = 0xffffffff;
        std::vector<std::uint32_t> numbers(part.vertices.size(), kNone);
        for (std::size_t f = 0; f < part.faces.size(); ++f) {
            if (isTaken[f]) continue;
            MeshFace face = part.faces[f];
            for (std::uint32_t& v : face.v) {
                if (numbers[v] == kNone) {
                    numbers[v] = std::uint32_t(body.points.size());
                    body.points.push_back(TransformPoint(part.vertices[v], parts[i].frame));
                }
                v = numbers[v];
            }
            body.faces.push_back(face);
        }
    }
    return body;
}

DPoint3 SeenFrom(const DPoint3& p, const DMatrix3& frame, double scale) {
    const DPoint3 d = p - frame.row[3];
    return DPoint3{Dot(d, frame.row[0]), Dot(d, frame.row[1]), Dot(d, frame.row[2])} * scale;
}

BodyMesh SeenFrom(const BodyMesh& body, const DMatrix3& frame, double scale) {
    BodyMesh seen = body;
    for (DPoint3& p : seen.points) p = SeenFrom(p, frame, scale);
    return seen;
}

DBox BoxOf(std::span<const DPoint3> points) {
    DBox box{points[0], points[0]};
    for (const DPoint3& p : points) {
        box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y), std::min(box.low.z, p.z)};
        box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y), std::max(box.high.z, p.z)};
    }
    return box;
}

}  // namespace tavrik

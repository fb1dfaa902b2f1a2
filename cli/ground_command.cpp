#include <fmt/format.h>

#include <cstdio>
#include <string>

#include "cli/command_line.h"
#include "host/atomic_file.h"
#include "host/drive_scene.h"
#include "host/ground_obj.h"

namespace tavrik {
namespace {

/// @param line  out: of a road or circuit
bool MakeGround(const GroundOrder& order, TriangleMesh& mesh, RoadLine& line, std::string& problem) {
    switch (order.kind) {
        case GroundOrder::Kind::Sample:
            mesh = MakeSampleGround(order.ground);
            return true;
        case GroundOrder::Kind::Circuit:
            line = SampleCircuit();
            mesh = MakeCircuitGround();
            return true;
        case GroundOrder::Kind::Road:
            break;
    }
    if (!ReadLine(order.line, order.wishes, line, problem)) return false;
    if (MakeRoadGround(line, order.road, mesh, problem)) return true;
    problem = fmt::format("{}: {}.", order.line.string(), problem);
    return false;
}

bool MakeFile(const GroundOrder& order, const TriangleMesh& mesh, std::string& bytes, std::string& problem) {
    if (order.out.extension() != ".glb") {
        bytes = GroundObj(mesh);
        return true;
    }
    constexpr double kKilometresPerCentimetre = 1e-5;
    if (MakeGroundScene(mesh, kKilometresPerCentimetre, bytes, problem)) return true;
    problem = fmt::format("{}: {}", order.out.string(), problem);
    return false;
}

}  // namespace

int RunGround(const GroundOrder& order) {
    std::string problem, bytes;
    TriangleMesh mesh;
    RoadLine line;
    if (!CanWriteFile(order.out, problem) || !MakeGround(order, mesh, line, problem) ||
        !MakeFile(order, mesh, bytes, problem) || !WriteFileAtomically(order.out, bytes, problem)) {
        fmt::print(stderr, "{}\n", problem);
        return kExitBadInput;
    }
    Box3 box = EmptyBox3();
    for (const Point3& v : mesh.verts) box.Include(v);
    const Point3 size = box.Width() * 0.01f;
    fmt::print("Ground    {}: {} triangles, {:g} x {:g} m\n", order.out.string(), mesh.faces.size(), size.x, size.y);
    if (order.kind == GroundOrder::Kind::Sample) return kExitOk;
    fmt::print("Road      {}, {:.1f} m\n", line.closed ? "closed" : "open", LengthOf(line));
    fmt::print("Start     tavrik new --ground {} {} --out SCENE\n", order.out.string(), StartOf(line));
    return kExitOk;
}

}  // namespace tavrik

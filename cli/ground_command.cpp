#include <fmt/format.h>

#include <cstdio>
#include <string>

#include "cli/command_line.h"
#include "host/atomic_file.h"
#include "host/drive_scene.h"
#include "host/ground_obj.h"

namespace tavrik {

int RunGround(const GroundOrder& order) {
    std::string problem;
    if (!CanWriteFile(order.out, problem)) {
        fmt::print(stderr, "{}\n", problem);
        return kExitBadInput;
    }
    const TriangleMesh mesh = MakeSampleGround(order.ground);
    std::string bytes;
    if (order.out.extension() == ".glb") {
        constexpr double kKilometresPerCentimetre = 1e-5;
        if (!MakeGroundScene(mesh, kKilometresPerCentimetre, bytes, problem)) {
            fmt::print(stderr, "{}: {}\n", order.out.string(), problem);
            return kExitBadInput;
        }
    } else {
        bytes = GroundObj(mesh);
    }
    if (!WriteFileAtomically(order.out, bytes, problem)) {
        fmt::print(stderr, "{}\n", problem);
        return kExitBadInput;
    }
    fmt::print("Ground    {}: {} triangles, {} x {} m\n", order.out.string(), mesh.faces.size(), order.ground.sizeMetres,
               order.ground.sizeMetres);
    return kExitOk;
}

}  // namespace tavrik

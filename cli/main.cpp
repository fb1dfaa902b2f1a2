#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <new>

#include "cli/command_line.h"

int main(int argc, char** argv) {
    try {
        const tavrik::Order order = tavrik::ReadCommandLine(argc, argv);
        if (order.drive) return tavrik::RunDrive(*order.drive);
        if (order.sceneDrive) return tavrik::RunSceneDrive(*order.sceneDrive);
        if (order.make) return tavrik::RunNew(*order.make);
        if (order.garage) return tavrik::RunGarage(*order.garage);
        if (order.rig) return tavrik::RunRig(*order.rig);
        if (order.info) return tavrik::RunInfo(*order.info);
        if (order.check) return tavrik::RunCheck(*order.check);
        if (order.panel) return tavrik::RunPanel(*order.panel);
        if (order.studio) return tavrik::RunStudio(*order.studio);
        if (order.settle) return tavrik::RunSettle(*order.settle);
        if (order.bake) return tavrik::RunBake(*order.bake);
        if (order.render) return tavrik::RunRender(*order.render);
        if (order.tracks) return tavrik::RunTracks(*order.tracks);
        if (order.gizmo) return tavrik::RunGizmo(*order.gizmo);
        if (order.reset) return tavrik::RunReset(*order.reset);
        if (order.ground) return tavrik::RunGround(*order.ground);
        if (order.path) return tavrik::RunPath(*order.path);
        if (order.controls) return tavrik::RunControls(*order.controls);
        if (order.hud) return tavrik::RunHud(*order.hud);
        if (order.stand) return tavrik::RunStand(*order.stand);
        return order.exitStatus;
    } catch (const std::bad_alloc&) {
        fmt::print(stderr, "This machine's memory is not enough for that; drive a shorter time, or on a smaller ground.\n");
    } catch (const std::exception& error) {
        fmt::print(stderr, "Something unforeseen went wrong: {}.\n", error.what());
    }
    return tavrik::kExitBadInput;
}

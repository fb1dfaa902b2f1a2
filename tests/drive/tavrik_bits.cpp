// Prints the hash of the scripted drive on hills.

#include <cinttypes>
#include <cstdio>
#include <memory>

#include "tests/drive/drive_on_hills.h"

int main() {
    const auto rig = std::make_unique<tavrik::CarRig>();
    tavrik::ScriptedRun run = tavrik::test::HillRun(*rig);
    std::string problem;
    for (int frame = 0; frame < 180; ++frame) {
        if (tavrik::DriveFrame(run, problem)) continue;
        std::fprintf(stderr, "%s\n", problem.c_str());
        return 1;
    }
    std::printf("%016" PRIx64 "\n", tavrik::test::HashRecording(rig->motion));
    return 0;
}

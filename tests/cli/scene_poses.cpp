// Prints where the host has each node of a scene at twenty frames, for other programs to compare with:
//   scene_poses SCENE    lines of handle, frame, and twelve numbers: the rows of the node's world frame, scene units

#include <cstdio>
#include <string>

#include "host/plugin_file.h"
#include "host/scene_file.h"
#include "host/sdk/standin.h"

int main(int argc, char** argv) {
    constexpr int kFrames = 20;
    std::string problem;
    tavrik_host::SceneDocument document;
    if (argc != 2 || !tavrik_host::LoadTavrikPlugin(problem) || !tavrik_host::LoadScene(argv[1], document, problem)) {
        std::fprintf(stderr, "%s\n", argc == 2 ? problem.c_str() : "usage: scene_poses SCENE");
        return 1;
    }
    const std::vector<TimeValue> ticks = tavrik_host::RecordedTicks();
    if (ticks.empty()) {
        std::fprintf(stderr, "%s: nothing is recorded in it.\n", argv[1]);
        return 1;
    }
    const int last = ticks.back() / GetTicksPerFrame();
    for (int i = 0; i < kFrames; ++i) {
        const int frame = last * i / (kFrames - 1);
        for (INode* node : tavrik_host::AllNodes()) {
            const Matrix3 tm = node->GetNodeTM(frame * GetTicksPerFrame());
            std::printf("%u %d", node->GetHandle(), frame);
            for (int row = 0; row < 4; ++row) {
                const Point3 r = tm.GetRow(row);
                std::printf(" %.9g %.9g %.9g", double(r.x), double(r.y), double(r.z));
            }
            std::printf("\n");
        }
    }
    tavrik_host::ResetScene();
    return 0;
}

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/scene_file.h"
#include "host/sdk/standin.h"

/// Loads bytes as a scene of the host's own classes. What is refused has one sentence for it and leaves the scene alone; what
/// is accepted comes back from its file as it is.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tavrik_host;
    ResetScene();
    CreateNode(nullptr, L"stays");
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    SceneDocument document, again;
    std::string problem, first, second;
    if (!LoadSceneBytes(size > 0 && data[0] == '{' ? "a.gltf" : "a.glb", bytes, document, problem)) {
        if (problem.empty() || problem.find('\n') != std::string::npos || AllNodes().size() != 1) std::abort();
        return 0;
    }
    // A place may be finite while its product with its parent's is not; that is told at saving.
    if (!MakeSceneFile(document, first, problem)) return problem.empty() ? (std::abort(), 0) : 0;
    if (!LoadSceneBytes("b.glb", first, again, problem) || !MakeSceneFile(again, second, problem) || first != second)
        std::abort();
    return 0;
}

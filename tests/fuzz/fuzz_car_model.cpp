#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "host/car_model_gltf.h"
#include "wizard/wizard.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavrik::CarModel model;
    tavrik::CarLooks looks;
    tavrik::CarImport import;
    import.mostTriangles = 20'000;
    std::string problem;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    try {
        if (!tavrik::ReadGltfCar("/nowhere/a.glb", bytes, import, model, looks, problem)) return 0;
    } catch (const std::exception&) {
        return 0;  // the parser's own way out, which the reader of all formats catches
    }
    if (looks.parts.size() != model.parts.size()) std::abort();
    for (std::size_t i = 0; i < model.parts.size(); ++i) {
        const std::size_t points = model.parts[i].vertices.size();
        const tavrik::PartLooks& its = looks.parts[i];
        if (its.materials.size() != model.parts[i].faces.size()) std::abort();
        if (!its.normals.empty() && its.normals.size() != points) std::abort();
        if (!its.pictureSpots.empty() && its.pictureSpots.size() != 2 * points) std::abort();
        for (const int material : its.materials) {
            if (material >= int(looks.materials.size())) std::abort();
        }
    }
    tavrik::WizardResult result;
    problem.clear();
    if (model.parts.size() < 50 && tavrik::PlanRig(model, {}, result, problem) == !problem.empty()) std::abort();
    return 0;
}

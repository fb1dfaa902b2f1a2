#include "host/gltf_extensions.h"

namespace tavrik {

bool IsHarmlessExtension(std::string_view name) {
    for (const std::string_view prefix : {"KHR_materials_", "KHR_texture_", "EXT_texture_", "MSFT_texture_", "KHR_lights_"}) {
        if (name.starts_with(prefix)) return true;
    }
    return name == "KHR_mesh_quantization";  // just allows more component types, and those are read
}

}  // namespace tavrik

#include "host/car_looks.h"

namespace tavrik {

ShapeMaterial PlainMaterial() { return {"plain", 0.6f, 0.6f, 0.6f, 0.0f, 0.8f, /*doubleSided=*/true}; }

std::string MaterialName(const std::string& name) {
    std::string clean;
    for (const char c : name) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        clean += isPlain ? c : '_';
    }
    return clean.empty() ? "material" : clean.substr(0, 60);
}

}  // namespace tavrik

#pragma once
/// What a car model's parts look like: all that makes no difference to how the car drives.

#include <memory>
#include <string>
#include <vector>

#include "host/shape.h"
#include "solver/double_maths.h"

namespace tavrik {

struct PartLooks {
    std::vector<DPoint3> normals;     // beside the part's vertices, in its space; zero, or none at all: not drawn
    std::vector<float> pictureSpots;  // two to each vertex; none at all: no pictures
    std::vector<int> materials;       // of each face, in the list; -1 for none
};

struct CarMaterial {
    ShapeMaterial material;
    std::shared_ptr<const ShapePicture> picture = nullptr;  // null: none
};

struct CarLooks {
    std::vector<CarMaterial> materials;
    std::vector<PartLooks> parts;     // beside the model's
    std::vector<std::string> missed;  // a sentence for each thing that a file beside the model should have brought
};

/// For what no material has been given to.
ShapeMaterial PlainMaterial();

/// A name of letters, digits and `_`, as materials in scenes have.
std::string MaterialName(const std::string& name);

}  // namespace tavrik

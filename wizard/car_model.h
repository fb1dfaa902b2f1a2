#pragma once
/// Somebody's car as its file tells it: parts with their places, before anyone knows which of them are wheels.

#include <string>
#include <vector>

#include "solver/double_maths.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

/// One node of the model. A node without faces is a group, or a point to hang others under.
struct ModelPart {
    std::string name;
    int parent = -1;                      // index of a part, -1 for none
    DMatrix3 frame = IdentityDMatrix3();  // in the model's space; may be scaled or mirrored
    std::vector<DPoint3> vertices;        // in the part's own space
    std::vector<MeshFace> faces;          // indices into `vertices`
    int mesh = -1;                        // parts that show the same mesh have the same number; -1: a mesh of its own
    bool spins = false;                   // an animation turns it, and so most likely a wheel
};

/// Z is up in the model's space; lengths are in the model's unit.
struct CarModel {
    std::vector<ModelPart> parts;
    double metresPerUnit = 1.0;           // what the file tells, or its format's habit
    DPoint3 usualForward{0.0, 0.0, 0.0};  // where cars in this format mostly look; zero: no habit
    bool stoodUp = false;                 // whether Y is up in its file: the file's (x, y, z) is (x, -z, y) here
};

}  // namespace tavrik

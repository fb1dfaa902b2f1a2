#pragma once

#include <string>

#include "surface/triangle_mesh.h"

namespace tavrik {

/// A ground as OBJ in metres, Z up, just as an OBJ is taken that nobody tells about. Reading it back gives the same bits.
///
/// @param mesh  scene units are centimetres
std::string GroundObj(const TriangleMesh& mesh);

}  // namespace tavrik

#pragma once
/// Car models of other people's making, with their parts kept apart.

#include <filesystem>
#include <string>

#include "host/car_looks.h"
#include "host/file_mesh.h"
#include "wizard/car_model.h"

namespace tavrik {

/// What the user knows about a file better than the file does. The unit is told to the wizard instead.
struct CarImport {
    UpAxis up = UpAxis::FromFile;
    std::size_t mostTriangles = 10'000'000;  // all parts together, a mesh that is shown twice counted twice
};

/// Reads a car model of any known mesh format: every node becomes a part, with its name, place and mesh, Z up, in the file's
/// unit. glTF, FBX, COLLADA and 3DS know nodes, animations tell which of them turn; the groups of an OBJ become parts; PLY and
/// STL are one part each.
///
/// @param problem  on false: one sentence that names the file
/// @return false on anything that isn't a readable model; `model` then stays as it was
bool ReadCarModel(const std::filesystem::path& file, const CarImport& import, CarModel& model, std::string& problem);

/// As above, with what the parts look like: glTF brings its materials with the pictures that colour them, OBJ and the others
/// plain colours. Looks that can't be had keep no model from being read.
bool ReadCarModel(const std::filesystem::path& file, const CarImport& import, CarModel& model, CarLooks& looks,
                  std::string& problem);

/// As the first from bytes at hand; `file` names them, tells the format, and its folder is where buffers are looked for.
bool ReadCarModelBytes(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                       std::string& problem);

}  // namespace tavrik

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/car_model_reader.h"

namespace tavrik {

/// Reads the nodes of an FBX, COLLADA, 3DS, PLY or STL file, in the file's axes, and tells which is up. Runs the importer in a
/// process of its own, since damaged files may crash it.
/// @param problem  on false: what is wrong, without the file's name
bool ReadSceneCar(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                  CarLooks& looks, UpAxis& up, std::string& problem);

}  // namespace tavrik

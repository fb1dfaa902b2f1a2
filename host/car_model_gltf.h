#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/car_model_reader.h"

namespace tavrik {

/// Reads the nodes of a glTF 2.0 scene, in the file's axes. @param problem  on false: what is wrong, without the file's name
bool ReadGltfCar(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                 CarLooks& looks, std::string& problem);

}  // namespace tavrik

#pragma once
/// Where the parts of vehicles go that a model keeps without places.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "wizard/wizard.h"

namespace tavrik {

/// One vehicle as the user wants it. Places and directions are in the axes of the model's file until `StandUpWish`.
struct VehicleWish {
    std::string name;  // of its master object; empty: the model's
    WizardOptions options;
};

/// Reads a file of places: JSON with "parts", or with "vehicles" that each have "parts", the driven one first.
///
/// @param usual    what holds for all vehicles
/// @param problem  on false: one sentence that names file and fault
bool ReadPlaces(const std::filesystem::path& file, const WizardOptions& usual, std::vector<VehicleWish>& wishes,
                std::string& problem);
/// As above from bytes at hand; the problem comes without the file's name.
bool ReadPlacesText(std::string_view text, const WizardOptions& usual, std::vector<VehicleWish>& wishes, std::string& problem);

/// "name,x,y,z" or "name,x,y,z,yaw". @return false where the words are something else
bool ParsePlace(std::string_view words, PartPlace& place);

/// From the axes of a file with Y up to those of its model: (x, y, z) becomes (x, -z, y).
void StandUpWish(VehicleWish& wish);

}  // namespace tavrik

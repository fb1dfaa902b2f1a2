#pragma once

#include <filesystem>
#include <string>

#include "host/car_looks.h"
#include "host/tiny_gltf.h"

namespace tavrik {

/// Keeps the bytes of images that stand in the text itself, for `ReadGltfMaterials`; others are left where they are.
bool KeepImageBytes(tinygltf::Image* image, int, std::string*, std::string*, int, int, const unsigned char* bytes, int size,
                    void*);

/// The materials of a file, with the pictures that colour them. @param file  beside which pictures may lie
void ReadGltfMaterials(const std::filesystem::path& file, const tinygltf::Model& gltf, CarLooks& looks);

/// Appends normals, places in the picture and the material of a primitive to those of its part.
///
/// @param points   of the primitive
/// @param before   vertices that the part had before it
/// @param faces    of the primitive
/// @param problem  on false: what is wrong, without the file's name
bool ReadGltfLooks(const tinygltf::Model& gltf, const tinygltf::Primitive& primitive, std::size_t points, std::size_t before,
                   std::size_t faces, PartLooks& looks, std::string& problem);

}  // namespace tavrik

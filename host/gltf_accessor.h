#pragma once
/// Numbers out of glTF accessors, with every index and length checked before it is used.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "solver/double_maths.h"

namespace tinygltf {
class Model;
}

namespace tavrik {

/// Reads a VEC3 accessor of any component type, normalised or sparse.
///
/// @param most     elements that the caller can take
/// @param problem  on false: what is wrong, without the file's name
bool ReadVectors(const tinygltf::Model& model, int accessor, std::size_t most, std::vector<DPoint3>& out, std::string& problem);

/// Reads a SCALAR accessor of unsigned integers. Arguments as above.
bool ReadIndices(const tinygltf::Model& model, int accessor, std::size_t most, std::vector<std::uint32_t>& out,
                 std::string& problem);

/// Reads the numbers of an accessor of a given type, without sparse elements, one after the other.
///
/// @param type  a TINYGLTF_TYPE_ constant: SCALAR, VEC3 or VEC4. Other arguments as above
bool ReadNumbers(const tinygltf::Model& model, int accessor, int type, std::size_t most, std::vector<double>& out,
                 std::string& problem);

}  // namespace tavrik

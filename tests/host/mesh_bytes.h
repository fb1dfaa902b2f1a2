#pragma once
/// Small files of every mesh format, made by hand: the triangle (0, 0, 0), (2, 0, 0), (0, 3, 4) in the file's own unit and
/// axes.

#include <string>
#include <string_view>
#include <vector>

namespace tavrik::test {

std::string PlyTriangle();
std::string StlTextTriangle();
std::string StlBinaryTriangle();
/// @param up  "Y_UP" or "Z_UP"
std::string ColladaTriangle(std::string_view up, std::string_view metresPerUnit);
std::string ThreeDsTriangle();
/// @param upAxis  1 for Y, 2 for Z
std::string FbxTriangle(int upAxis, double centimetresPerUnit);

/// A binary glTF of a text and a binary chunk.
std::string Glb(std::string text, std::string binary);
/// Little-endian bytes of numbers.
std::string Floats(const std::vector<float>& values);
std::string Shorts(const std::vector<int>& values);
/// One mesh of that triangle, without indices.
std::string GlbTriangle();

}  // namespace tavrik::test

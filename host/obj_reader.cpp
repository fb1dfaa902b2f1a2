#include "host/obj_reader.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <sstream>
#include <utility>

#define TINYOBJLOADER_IMPLEMENTATION
#define TINYOBJLOADER_USE_DOUBLE
#include <tiny_obj_loader.h>

namespace tavrik {
namespace {

/// Cutting a polygon takes time with the cube of its corners; drawn ones have a few hundred at most.
constexpr std::size_t kMostCorners = 1024;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

/// Takes the next word off the front of `line`.
std::string_view NextWord(std::string_view& line) {
    std::size_t begin = 0;
    while (begin < line.size() && IsBlank(line[begin])) ++begin;
    std::size_t end = begin;
    while (end < line.size() && !IsBlank(line[end])) ++end;
    const std::string_view word = line.substr(begin, end - begin);
    line.remove_prefix(end);
    return word;
}

/// A word that is one number from its first to its last letter, in the exact reading of its digits. Too large or too small for
/// a double counts as not finite.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view word) {
    if (!word.empty() && word.front() == '+') word.remove_prefix(1);
    Number value{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error == std::errc::result_out_of_range && end == word.data() + word.size()) {
        if constexpr (std::is_floating_point_v<Number>) return std::strtod(std::string(word).c_str(), nullptr);
    }
    if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
    return value;
}

/// Reads the text once, checks every vertex and face, and writes both down again as plain as can be. The loader behind gets
/// this copy: its own number parser turns "nan" into 0, and other directives can ask it for any amount of memory.
class ObjCheck {
 public:
    ObjCheck(std::size_t mostTriangles, FileMesh& mesh, std::string& problem)
        : mostTriangles_(mostTriangles), mesh_(mesh), problem_(problem) {}

    bool Run(std::string_view text) {
        std::size_t lineNumber = 0;
        while (!text.empty()) {
            ++lineNumber;
            const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
            std::string_view line = text.substr(0, end);
            text.remove_prefix(end);
            if (text.starts_with("\r\n")) text.remove_prefix(1);
            if (!text.empty()) text.remove_prefix(1);
            line = line.substr(0, line.find('#'));
            const std::string_view directive = NextWord(line);
            if (directive == "v" && !Vertex(line, lineNumber)) return false;
            if (directive == "f" && !Face(line, lineNumber)) return false;
        }
        if (!mesh_.verts.empty() || faces_ > 0) return true;
        problem_ = "there is no vertex in it; this is not an OBJ mesh.";
        return false;
    }

    /// The checked copy.
    std::string TakeText() { return std::move(plain_); }

 private:
    bool Vertex(std::string_view line, std::size_t lineNumber) {
        double axes[3] = {};
        for (double& axis : axes) {
            const std::string_view word = NextWord(line);
            const std::optional<double> value = ParseNumber<double>(word);
            if (!value) {
                problem_ = word.empty() ? fmt::format("line {}: vertex {} has fewer than three coordinates.", lineNumber,
                                                      mesh_.verts.size() + 1)
                                        : fmt::format("line {}: \"{}\" of vertex {} is not a number.", lineNumber,
                                                      word.substr(0, 40), mesh_.verts.size() + 1);
                return false;
            }
            if (!std::isfinite(*value)) {
                problem_ = fmt::format("line {}: the coordinates of vertex {} are not finite ({}); export the mesh again.",
                                       lineNumber, mesh_.verts.size() + 1, word.substr(0, 40));
                return false;
            }
            axis = *value;
        }
        mesh_.verts.push_back({axes[0], axes[1], axes[2]});
        fmt::format_to(std::back_inserter(plain_), "v {} {} {}\n", axes[0], axes[1], axes[2]);
        return true;
    }

    bool Face(std::string_view line, std::size_t lineNumber) {
        ++faces_;
        std::size_t corners = 0;
        plain_ += 'f';
        for (std::string_view word = NextWord(line); !word.empty(); word = NextWord(line)) {
            const std::string_view digits = word.substr(0, word.find('/'));
            const std::optional<std::int64_t> index = ParseNumber<std::int64_t>(digits);
            if (!index) {
                problem_ = fmt::format("line {}: \"{}\" of face {} is not the number of a vertex.", lineNumber,
                                       word.substr(0, 40), faces_);
                return false;
            }
            // Negative numbers count back from the vertex read last.
            const std::int64_t count = std::int64_t(mesh_.verts.size());
            const std::int64_t vertex = *index < 0 ? (*index < -count ? 0 : count + 1 + *index) : *index;
            if (vertex < 1 || (vertex > count && *index < 0)) {
                problem_ = fmt::format("line {}: face {} uses vertex {}, but there are {} so far; export the mesh again.",
                                       lineNumber, faces_, *index, count);
                return false;
            }
            if (vertex > highestVertex_) {
                highestVertex_ = vertex;
                highestFace_ = faces_;
            }
            fmt::format_to(std::back_inserter(plain_), " {}", vertex);
            ++corners;
        }
        plain_ += '\n';
        if (corners < 3) {
            problem_ = fmt::format("line {}: face {} has {} corners, but needs three.", lineNumber, faces_, corners);
            return false;
        }
        if (corners > kMostCorners) {
            problem_ = fmt::format("line {}: face {} has {} corners; cut it into triangles before the export.", lineNumber,
                                   faces_, corners);
            return false;
        }
        triangles_ += corners - 2;
        if (triangles_ <= mostTriangles_) return true;
        problem_ = fmt::format("it holds more than {} triangles, the most that a ground may have.", mostTriangles_);
        return false;
    }

 public:
    /// Faces may name vertices of later lines, so this is known at the end only.
    bool IndicesFit() {
        if (highestVertex_ <= std::int64_t(mesh_.verts.size())) return true;
        problem_ = fmt::format("face {} uses vertex {}, but there are {}; export the mesh again.", highestFace_, highestVertex_,
                               mesh_.verts.size());
        return false;
    }

 private:
    const std::size_t mostTriangles_;
    FileMesh& mesh_;
    std::string& problem_;
    std::string plain_;
    std::size_t faces_ = 0;
    std::size_t triangles_ = 0;
    std::int64_t highestVertex_ = 0;
    std::size_t highestFace_ = 0;
};

}  // namespace

bool ReadObj(const std::filesystem::path&, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
             std::string& problem) {
    mesh.up = UpAxis::Z;
    mesh.metresPerUnit = 1.0;
    ObjCheck check(import.mostTriangles, mesh, problem);
    if (!check.Run(bytes) || !check.IndicesFit()) return false;

    std::istringstream plain(check.TakeText());
    tinyobj::attrib_t attributes;
    std::vector<tinyobj::shape_t> shapes;
    std::vector<tinyobj::material_t> materials;
    std::string warning, error;
    if (!tinyobj::LoadObj(&attributes, &shapes, &materials, &warning, &error, &plain, nullptr, /*triangulate=*/true)) {
        problem = fmt::format("it is damaged ({}).", error.substr(0, error.find('\n')));
        return false;
    }
    for (const tinyobj::shape_t& shape : shapes) {
        const std::vector<tinyobj::index_t>& corners = shape.mesh.indices;
        for (std::size_t i = 0; i + 2 < corners.size(); i += 3) {
            mesh.faces.push_back({{std::uint32_t(corners[i].vertex_index), std::uint32_t(corners[i + 1].vertex_index),
                                   std::uint32_t(corners[i + 2].vertex_index)}});
        }
    }
    return true;
}

}  // namespace tavrik

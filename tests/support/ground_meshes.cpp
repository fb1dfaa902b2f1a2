#include "tests/support/ground_meshes.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/support/test_random.h"

namespace tavrik::test {
namespace {

std::uint32_t AddVertex(TriangleMesh& mesh, float x, float y, float z) {
    mesh.verts.push_back({x, y, z});
    return std::uint32_t(mesh.verts.size() - 1);
}

void AddQuad(TriangleMesh& mesh, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    mesh.faces.push_back({{a, b, c}});
    mesh.faces.push_back({{a, c, d}});
}

void AddQuad(TriangleMesh& mesh, const Point3& a, const Point3& b, const Point3& c, const Point3& d) {
    const std::uint32_t first = std::uint32_t(mesh.verts.size());
    mesh.verts.insert(mesh.verts.end(), {a, b, c, d});
    AddQuad(mesh, first, first + 1, first + 2, first + 3);
}

}  // namespace

float HillHeight(float x, float y) {
    const double u = double(x), v = double(y);
    return float(180.0 * std::sin(u * 0.0011) * std::cos(v * 0.0013) + 60.0 * std::sin(u * 0.0047 + v * 0.0031) +
                 9.0 * std::sin(u * 0.019) * std::sin(v * 0.023));
}

TriangleMesh HillMesh(std::size_t faces, float width) {
    std::uint32_t cells = 1;
    while (2 * std::size_t(cells) * cells < faces) ++cells;
    TriangleMesh mesh;
    mesh.verts.reserve(std::size_t(cells + 1) * (cells + 1));
    mesh.faces.reserve(2 * std::size_t(cells) * cells);
    for (std::uint32_t j = 0; j <= cells; ++j) {
        for (std::uint32_t i = 0; i <= cells; ++i) {
            const float x = width * (float(i) / float(cells) - 0.5f), y = width * (float(j) / float(cells) - 0.5f);
            AddVertex(mesh, x, y, HillHeight(x, y));
        }
    }
    for (std::uint32_t j = 0; j < cells; ++j) {
        for (std::uint32_t i = 0; i < cells; ++i) {
            const std::uint32_t a = j * (cells + 1) + i;
            AddQuad(mesh, a, a + 1, a + cells + 2, a + cells + 1);
        }
    }
    return mesh;
}

TriangleMesh TerraceMesh(int cells, float cellWidth, std::uint64_t seed) {
    TestRandom random(seed);
    TriangleMesh mesh;
    std::vector<float> height(std::size_t(cells) * std::size_t(cells));
    for (float& h : height) h = cellWidth * 0.25f * float(random.Int(0, 6));
    const auto heightAt = [&](int i, int j) { return height[std::size_t(j) * std::size_t(cells) + std::size_t(i)]; };
    const auto wall = [&](float x0, float y0, float x1, float y1, float low, float high) {
        if (low == high) return;
        AddQuad(mesh, Point3{x0, y0, low}, {x1, y1, low}, {x1, y1, high}, {x0, y0, high});
    };
    for (int j = 0; j < cells; ++j) {
        for (int i = 0; i < cells; ++i) {
            const float x0 = cellWidth * float(i), x1 = cellWidth * float(i + 1);
            const float y0 = cellWidth * float(j), y1 = cellWidth * float(j + 1);
            const float z = heightAt(i, j);
            AddQuad(mesh, Point3{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z});
            if (i + 1 < cells) wall(x1, y0, x1, y1, z, heightAt(i + 1, j));
            if (j + 1 < cells) wall(x0, y1, x1, y1, z, heightAt(i, j + 1));
        }
    }
    return mesh;
}

TriangleMesh SliverFanMesh(int slivers, float radius) {
    TriangleMesh mesh;
    const std::uint32_t hub = AddVertex(mesh, 0, 0, radius * 0.05f);
    const auto rim = [&](int i) {
        const double angle = 6.283185307179586 * double(i) / double(slivers);
        return AddVertex(mesh, float(double(radius) * std::cos(angle)), float(double(radius) * std::sin(angle)),
                         float(0.02 * double(radius) * std::sin(7 * angle)));
    };
    std::uint32_t before = rim(0);
    for (int i = 1; i <= slivers; ++i) {
        const std::uint32_t next = rim(i);
        mesh.faces.push_back({{hub, before, next}});
        before = next;
    }
    return mesh;
}

TriangleMesh WithDoubles(const TriangleMesh& mesh) {
    TriangleMesh doubled = mesh;
    for (const MeshFace& face : mesh.faces) doubled.faces.push_back({{face.v[0], face.v[2], face.v[1]}});
    return doubled;
}

TriangleMesh CoincidentMesh(int count, float size) {
    TriangleMesh mesh;
    mesh.verts = {{0, 0, 0}, {size, 0, size * 0.3f}, {0, size, size * 0.6f}};
    for (int i = 0; i < count; ++i) mesh.faces.push_back({{0, 1, 2}});
    return mesh;
}

bool ReadRealGround(const std::string& name, TriangleMesh& mesh) {
    constexpr float kUnitsPerMetre = 100.0f;
    std::ifstream file(DataFolder() + "/ground/" + name);
    if (!file) return false;
    mesh = {};
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string kind, word;
        words >> kind;
        if (kind == "v") {
            Point3 p{};
            words >> p.x >> p.y >> p.z;
            mesh.verts.push_back(p * kUnitsPerMetre);
        } else if (kind == "f") {
            std::vector<std::uint32_t> corners;
            while (words >> word) corners.push_back(std::uint32_t(std::strtoul(word.c_str(), nullptr, 10) - 1));
            for (std::size_t i = 2; i < corners.size(); ++i) mesh.faces.push_back({{corners[0], corners[i - 1], corners[i]}});
        }
    }
    return true;
}

}  // namespace tavrik::test

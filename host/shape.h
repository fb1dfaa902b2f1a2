#pragma once
/// Meshes to look at, as opposed to the ground that is driven on: with normals, in parts of one material each.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "solver/single_maths.h"
#include "surface/triangle_mesh.h"

namespace tavrik {

struct ShapeMaterial {
    std::string name;        // letters, digits, `_`
    float red, green, blue;  // linear, 0..1
    float metallic, roughness;
    bool doubleSided = false;
    float alpha = 1.0f;  // below 1: one looks through
};

/// An image as a file holds it.
struct ShapePicture {
    std::string mimeType;  // "image/png" or "image/jpeg"
    std::string bytes;     // at least one
    bool blurred = true;   // whether its pixels flow into each other
};

/// Faces run counter-clockwise seen from outside.
struct ShapePart {
    ShapeMaterial material;
    std::vector<Point3> positions;  // scene units, Z up
    std::vector<Point3> normals;    // of length 1, beside `positions`
    std::vector<std::uint32_t> indices;
    /// What the material's colour is multiplied by; null: nothing. Each position has two numbers in `pictureSpots`, across and
    /// down the picture, 0..1.
    std::shared_ptr<const ShapePicture> picture = nullptr;
    std::vector<float> pictureSpots = {};
};

struct Shape {
    std::vector<ShapePart> parts;
};

/// Adds a grid of points, `columns` to a row, with smooth normals. Seen from outside, rows go up and columns to the right.
/// @param closed  whether the last column joins the first
void AddGrid(ShapePart& part, const std::vector<Point3>& points, int columns, bool closed);

/// Adds a flat convex polygon, counter-clockwise seen from outside.
void AddPolygon(ShapePart& part, const std::vector<Point3>& points);

/// Adds a block with flat sides between two corners.
void AddBlock(ShapePart& part, const Box3& box);

/// The ground as something to look at: normals are smooth where faces share vertices.
ShapePart GroundShape(const TriangleMesh& ground);

}  // namespace tavrik

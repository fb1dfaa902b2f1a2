#pragma once
/// A scene as a render sees it: shapes with materials on nodes, taken once. Only the nodes' places differ from frame to frame.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/render/picture.h"
#include "host/scene_file.h"
#include "host/sdk/max.h"

namespace tavrik_host {

struct RenderMaterial {
    enum class Cover { Whole, Cut, SeeThrough };

    Point3 color{0.5f, 0.5f, 0.5f};  // linear
    Point3 glow{0.0f, 0.0f, 0.0f};   // light that it sends out itself
    float metallic = 0.0f, roughness = 0.9f;
    Cover cover = Cover::Whole;
    float alpha = 1.0f, cutoff = 0.5f;
    int picture = -1;                // in the model's list; -1: none
    int spots = 0;                   // which set of places in the picture it goes by
    float offset[2] = {0.0f, 0.0f};  // of the places, after the scale
    float scale[2] = {1.0f, 1.0f};
    PictureEdge edges[2] = {PictureEdge::Repeat, PictureEdge::Repeat};
    bool blurred = true;
};

/// Triangles of one material, in the space of their node's object, scene units.
struct RenderPart {
    std::size_t material = 0;
    std::vector<Point3> points;
    std::vector<Point3> normals;  // beside `points`; none at all: faces are flat
    std::vector<Point2> spots;    // places in the material's picture, beside `points`; none at all: no picture
    std::vector<std::uint32_t> corners;
};

struct RenderShape {
    std::vector<RenderPart> parts;
};

/// A shape on a node.
struct RenderThing {
    INode* node = nullptr;
    std::size_t shape = 0;
    bool takesTracks = false;  // it is what a car drives on
};

struct RenderModel {
    std::vector<RenderMaterial> materials;  // the last one is for faces without any
    std::vector<Picture> pictures;
    std::vector<RenderShape> shapes;
    std::vector<RenderThing> things;
    std::vector<std::string> notes;  // a sentence for each picture that can't be shown
};

/// Takes what the scene at hand shows.
/// @param grounds  nodes that take tracks
RenderModel TakeRenderModel(const SceneDocument& document, std::span<INode* const> grounds);

/// Materials and pictures of a scene's file, and one more material at the end for what has none.
void TakeMaterials(const SceneDocument& document, RenderModel& model);

/// A mesh of the scene in parts by material, with normals and places in pictures as the file draws them.
/// @param fileMesh  its number in the file, or -1: it is in no file, and shows as one plain part
RenderShape TakeShape(const SceneDocument& document, const Mesh& mesh, int fileMesh, const RenderModel& model);

}  // namespace tavrik_host

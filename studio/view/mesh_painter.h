#pragma once
/// Draws the meshes of a scene.

#include <map>
#include <vector>

#include "host/render/daylight.h"
#include "studio/view/eye_frame.h"
#include "studio/view/gl_program.h"
#include "studio/view/gpu_model.h"
#include "studio/view/shown_scene.h"
#include "studio/view/view_picture.h"

namespace tavrik_studio {

/// What all meshes of a picture have in common.
struct MeshLook {
    const ShownScene* scene = nullptr;
    const EyeFrame* eye = nullptr;
    float light = 1.0f;
    bool cutsGround = false;  // before the eye of a flat view: else a hill on the way would hide everything
    float cut = 0.0f;         // how far along the way back to the eye that is
    bool boxes = false;       // big parts are left out; somebody draws boxes in their place
    GLuint tracks = 0;        // texture; 0: none
    Point2 tracksLow{0, 0};
    float tracksSide = 1.0f;
};

class MeshPainter {
 public:
    /// @param problem  on false: what the driver says
    bool Build(const GlFunctions& gl, QString& problem);
    void Delete(const GlFunctions& gl);

    /// Takes over what has changed.
    void Update(const GlFunctions& gl, const ShownScene& scene);
    void DrawSolid(const GlFunctions& gl, const MeshLook& look);
    /// What one sees through, the farthest first.
    void DrawClear(const GlFunctions& gl, const MeshLook& look);
    /// Where the selected meshes are. @return false where there is none
    bool DrawMask(const GlFunctions& gl, const MeshLook& look);
    /// Boxes of the parts that are left out, to be drawn as lines: their shape's and place's.
    struct LeftOut {
        Box3 box;
        Matrix3 place;
    };
    std::vector<LeftOut> PartsLeftOut(const MeshLook& look) const;

 private:
    enum Variant : unsigned { kFlat = 1, kPicture = 2, kTracks = 4, kGlossy = 8, kMask = 16, kCut = 32 };
    GlProgram& ProgramFor(const GlFunctions& gl, unsigned variant, const MeshLook& look);
    void DrawPart(const GlFunctions& gl, const MeshLook& look, std::size_t thing, const GpuPart& part, unsigned extra);
    bool IsLeftOut(const MeshLook& look, const GpuPart& part) const;

    GpuModel model_;
    std::uint64_t revision_ = 0;
    std::map<unsigned, GlProgram> programs_;
    std::map<unsigned, const MeshLook*> prepared_;  // for which picture a program has its common values
    tavrik_host::Daylight day_{235.0f, 42.0f};
};

}  // namespace tavrik_studio

#include "studio/view/mesh_painter.h"

#include <algorithm>
#include <string>

#include "studio/view/view_shaders.h"

namespace tavrik_studio {
namespace {

using tavrik_host::RenderMaterial;

constexpr GLsizei kBigPart = 3 * 2000;  // corners

void ToSixteen(const Matrix3& m, float (&out)[16]) {
    for (int i = 0; i < 4; ++i) {
        const Point3 row = m.GetRow(i);
        out[4 * i] = row.x;
        out[4 * i + 1] = row.y;
        out[4 * i + 2] = row.z;
        out[4 * i + 3] = i == 3 ? 1.0f : 0.0f;
    }
}

/// Turns normals: they go with the inverse's columns, so that a stretched mesh is lit as it lies. A frame that is flat leaves
/// them what they are.
Matrix3 NormalFrame(const Matrix3& place) {
    const Point3 x = place.GetRow(0), y = place.GetRow(1), z = place.GetRow(2);
    Matrix3 turn(TRUE);
    const float size = DotProd(x, CrossProd(y, z));
    if (size == 0.0f) return turn;
    turn.SetRow(0, CrossProd(y, z) / size);
    turn.SetRow(1, CrossProd(z, x) / size);
    turn.SetRow(2, CrossProd(x, y) / size);
    return turn;
}

std::string DefinesOf(unsigned variant) {
    std::string defines;
    const char* const names[] = {"FLAT", "PICTURE", "TRACKS", "GLOSSY", "MASK", "CUT"};
    for (unsigned i = 0; i < 6; ++i) {
        if ((variant >> i & 1u) != 0) defines += std::string("#define ") + names[i] + "\n";
    }
    return defines;
}

}  // namespace

bool MeshPainter::Build(const GlFunctions& gl, QString& problem) {
    // The others differ from this one only by what it can do already; they are made when something needs them.
    return programs_[0].Build(gl, DefinesOf(0), kMeshVertex, kMeshFragment, problem);
}

void MeshPainter::Delete(const GlFunctions& gl) {
    model_.Delete(gl);
    for (auto& [variant, program] : programs_) program.Delete(gl);
    programs_.clear();
}

void MeshPainter::Update(const GlFunctions& gl, const ShownScene& scene) {
    prepared_.clear();
    if (revision_ == scene.ModelRevision()) return;
    revision_ = scene.ModelRevision();
    model_.Upload(gl, scene.Model());
}

GlProgram& MeshPainter::ProgramFor(const GlFunctions& gl, unsigned variant, const MeshLook& look) {
    GlProgram* program = &programs_[variant];
    QString problem;
    if (!program->IsBuilt() && !program->Build(gl, DefinesOf(variant), kMeshVertex, kMeshFragment, problem)) {
        program = &programs_[0];
        variant = 0;
    }
    program->Use(gl);
    if (prepared_[variant] == &look) return *program;
    prepared_[variant] = &look;
    program->SetFrame(gl, "uClip", look.eye->clip);
    program->Set(gl, "uEye", look.eye->eye, look.eye->perspective ? 1.0f : 0.0f);
    program->Set(gl, "uToSun", day_.toSun);
    program->Set(gl, "uSun", day_.sun * look.light);
    program->Set(gl, "uFromAbove", day_.SkyOn(Point3(0, 0, 1)) * look.light);
    program->Set(gl, "uFromBelow", day_.SkyOn(Point3(0, 0, -1)) * look.light);
    program->Set(gl, "uPicture", 0);
    program->Set(gl, "uCut", look.cut);
    program->Set(gl, "uTracks", 1);
    if ((variant & kTracks) != 0) {
        program->Set(gl, "uTrackSquare", Point3(look.tracksLow.x, look.tracksLow.y, 1.0f / look.tracksSide), 0.0f);
    }
    return *program;
}

bool MeshPainter::IsLeftOut(const MeshLook& look, const GpuPart& part) const { return look.boxes && part.count > kBigPart; }

void MeshPainter::DrawPart(const GlFunctions& gl, const MeshLook& look, std::size_t thing, const GpuPart& part,
                           unsigned extra) {
    const Matrix3& place = look.scene->Places()[thing];
    if (IsLeftOut(look, part) || !look.eye->MaySee(part.box, place)) return;
    const RenderMaterial& material = look.scene->Model().materials[part.material];
    unsigned variant = extra;
    if ((extra & kMask) != 0) {
        variant = kMask | kFlat;
    } else {
        if (!part.hasNormals) variant |= kFlat;
        if (part.hasSpots && model_.BindPicture(gl, material)) variant |= kPicture;
        if (look.tracks != 0 && look.scene->Model().things[thing].takesTracks) variant |= kTracks;
        if (material.roughness < 0.6f || material.metallic > 0.3f) variant |= kGlossy;
    }
    if (look.cutsGround && look.scene->Model().things[thing].takesTracks) variant |= kCut;
    GlProgram& program = ProgramFor(gl, variant, look);
    float sixteen[16];
    ToSixteen(place, sixteen);
    program.SetFrame(gl, "uPlace", sixteen);
    if ((variant & kMask) == 0) {
        ToSixteen(NormalFrame(place), sixteen);
        program.SetFrame(gl, "uTurn", sixteen);
        program.Set(gl, "uSpots", Point3(material.scale[0], material.scale[1], material.offset[0]), material.offset[1]);
        program.Set(gl, "uColor", material.color);
        program.Set(gl, "uGlow", material.glow);
        program.Set(gl, "uAlpha", material.cover == RenderMaterial::Cover::Whole ? 1.0f : material.alpha);
        program.Set(gl, "uCutoff", material.cover == RenderMaterial::Cover::Cut ? material.cutoff : -1.0f);
        program.Set(gl, "uGloss", std::clamp(1.0f - material.roughness, 0.0f, 1.0f));
        program.Set(gl, "uMetal", material.metallic);
    }
    gl.BindVertexArray(part.array);
    gl.DrawElements(GL_TRIANGLES, part.count, GL_UNSIGNED_INT, nullptr);
}

void MeshPainter::DrawSolid(const GlFunctions& gl, const MeshLook& look) {
    if (look.tracks != 0) {
        gl.ActiveTexture(GL_TEXTURE1);
        gl.BindTexture(GL_TEXTURE_2D, look.tracks);
    }
    gl.ActiveTexture(GL_TEXTURE0);
    const tavrik_host::RenderModel& model = look.scene->Model();
    for (std::size_t i = 0; i < model.things.size(); ++i) {
        for (const GpuPart& part : model_.Shapes()[model.things[i].shape]) {
            if (model.materials[part.material].cover != RenderMaterial::Cover::SeeThrough) DrawPart(gl, look, i, part, 0);
        }
    }
    gl.BindVertexArray(0);
}

void MeshPainter::DrawClear(const GlFunctions& gl, const MeshLook& look) {
    struct Clear {
        std::size_t thing;
        const GpuPart* part;
        float distance;
    };
    std::vector<Clear> parts;
    const tavrik_host::RenderModel& model = look.scene->Model();
    for (std::size_t i = 0; i < model.things.size(); ++i) {
        for (const GpuPart& part : model_.Shapes()[model.things[i].shape]) {
            if (model.materials[part.material].cover != RenderMaterial::Cover::SeeThrough) continue;
            const Point3 middle = part.box.Center() * look.scene->Places()[i];
            const float distance = look.eye->perspective ? Length(middle - look.eye->eye) : -DotProd(middle, look.eye->eye);
            parts.push_back({i, &part, distance});
        }
    }
    if (parts.empty()) return;
    std::ranges::stable_sort(parts, std::greater(), &Clear::distance);
    gl.DepthMask(GL_FALSE);
    gl.Enable(GL_BLEND);
    for (const Clear& clear : parts) DrawPart(gl, look, clear.thing, *clear.part, 0);
    gl.Disable(GL_BLEND);
    gl.DepthMask(GL_TRUE);
    gl.BindVertexArray(0);
}

bool MeshPainter::DrawMask(const GlFunctions& gl, const MeshLook& look) {
    const tavrik_host::RenderModel& model = look.scene->Model();
    bool any = false;
    for (std::size_t i = 0; i < model.things.size(); ++i) {
        if (look.scene->Chosen()[i] == 0) continue;
        any = true;
        for (const GpuPart& part : model_.Shapes()[model.things[i].shape]) DrawPart(gl, look, i, part, kMask);
    }
    gl.BindVertexArray(0);
    return any;
}

std::vector<MeshPainter::LeftOut> MeshPainter::PartsLeftOut(const MeshLook& look) const {
    std::vector<LeftOut> boxes;
    const tavrik_host::RenderModel& model = look.scene->Model();
    for (std::size_t i = 0; i < model.things.size(); ++i) {
        for (const GpuPart& part : model_.Shapes()[model.things[i].shape]) {
            if (IsLeftOut(look, part)) boxes.push_back({part.box, look.scene->Places()[i]});
        }
    }
    return boxes;
}

}  // namespace tavrik_studio

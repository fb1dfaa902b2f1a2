#include "studio/view/renderer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "studio/view/eye_frame.h"
#include "studio/view/frame_targets.h"
#include "studio/view/gl_program.h"
#include "studio/view/line_batch.h"
#include "studio/view/mesh_painter.h"
#include "studio/view/view_grid.h"
#include "studio/view/view_shaders.h"

namespace tavrik_studio {
namespace {

using tavrik_host::ViewLine;

constexpr float kGizmoWidth = 1.6f, kChosenWidth = 2.0f, kGridLineWidth = 1.0f;  // the widget's pixels
constexpr float kHidden = 0.26f;                                                 // how much of a line shows through a surface
// How much nearer to the eye lines are drawn than they are: those that lie on a surface, as a tyre's rings do, belong to it.
constexpr float kPull = 0.004f, kGridPull = 0.0005f;

void AddBox(const MeshPainter::LeftOut& part, const Color& color, LineBatch& batch) {
    Point3 corners[8];
    for (int i = 0; i < 8; ++i) {
        corners[i] = Point3((i & 1) != 0 ? part.box.pmax.x : part.box.pmin.x, (i & 2) != 0 ? part.box.pmax.y : part.box.pmin.y,
                            (i & 4) != 0 ? part.box.pmax.z : part.box.pmin.z) *
                     part.place;
    }
    for (int i = 0; i < 8; ++i) {
        for (const int bit : {1, 2, 4}) {
            if ((i & bit) == 0) batch.Add(corners[i], corners[i | bit], color);
        }
    }
}

}  // namespace

int PixelWidth(const ViewPicture& picture) {
    return std::max(1, int(std::lround(float(picture.state.width) * picture.pixelRatio)));
}
int PixelHeight(const ViewPicture& picture) {
    return std::max(1, int(std::lround(float(picture.state.height) * picture.pixelRatio)));
}

struct ViewRenderer::Body {
    GlFunctions gl;
    MeshPainter meshes;
    GlProgram lineProgram, skyProgram, outlineProgram;
    LineBatch plain, chosen, grid, coarseGrid, boxes;
    FrameTargets targets;
    GLuint screenArray = 0;
    std::vector<std::uint32_t> drawn;  // a coarse picture on its way into an image
    std::uint64_t lineRevision = 0;
    std::vector<Point3> bound;  // of all lines: a box's corners
    std::shared_ptr<const TrackPicture> tracks;
    GLuint trackTexture = 0;

    bool Build(QString& problem);
    void Delete();
    void UpdateLines(const ShownScene& scene);
    void UpdateTracks(const std::shared_ptr<const TrackPicture>& wanted);
    std::vector<Point3> Seen(const ShownScene& scene) const;
    void DrawSky(const ViewPicture& picture);
    void DrawGrid(const ViewPicture& picture, const EyeFrame& eye, float pixelRatio);
    void DrawSceneLines(const EyeFrame& eye, float pixelRatio, const ViewPicture& picture);
    void DrawOutline(const MeshLook& look, const ViewPicture& picture);
    void UseLines(const EyeFrame& eye, float width, float rim, float pull, float alpha);
    void DrawScene(const ShownScene& scene, const ViewPicture& picture, const DrawEffort& effort);
};

bool ViewRenderer::Body::Build(QString& problem) {
    if (!meshes.Build(gl, problem) || !lineProgram.Build(gl, "", kLineVertex, kLineFragment, problem) ||
        !skyProgram.Build(gl, "", kScreenVertex, kSkyFragment, problem) ||
        !outlineProgram.Build(gl, "", kScreenVertex, kOutlineFragment, problem)) {
        return false;
    }
    gl.GenVertexArrays(1, &screenArray);
    return true;
}

void ViewRenderer::Body::Delete() {
    meshes.Delete(gl);
    for (GlProgram* const program : {&lineProgram, &skyProgram, &outlineProgram}) program->Delete(gl);
    for (LineBatch* const batch : {&plain, &chosen, &grid, &coarseGrid, &boxes}) batch->Delete(gl);
    targets.Delete(gl);
    if (screenArray != 0) gl.DeleteVertexArrays(1, &screenArray);
    if (trackTexture != 0) gl.DeleteTextures(1, &trackTexture);
}

// ----------------------------------------------------------------------------------------------------------- what has changed

void ViewRenderer::Body::UpdateLines(const ShownScene& scene) {
    if (lineRevision == scene.LineRevision()) return;
    lineRevision = scene.LineRevision();
    plain.Clear();
    chosen.Clear();
    Box3 box;
    for (const NodeLines& node : scene.Nodes()) {
        LineBatch& batch = node.isSelected ? chosen : plain;
        for (std::size_t i = node.first; i < node.first + node.count; ++i) {
            const ViewLine& line = scene.Lines()[i];
            batch.Add(line.from, line.to, line.color);
            box += line.from;
            box += line.to;
        }
    }
    plain.Upload(gl);
    chosen.Upload(gl);
    bound.clear();
    if (box.IsEmpty() != 0) return;
    for (int i = 0; i < 8; ++i) {
        bound.emplace_back((i & 1) != 0 ? box.pmax.x : box.pmin.x, (i & 2) != 0 ? box.pmax.y : box.pmin.y,
                           (i & 4) != 0 ? box.pmax.z : box.pmin.z);
    }
}

void ViewRenderer::Body::UpdateTracks(const std::shared_ptr<const TrackPicture>& wanted) {
    if (tracks == wanted) return;
    tracks = wanted;
    if (trackTexture != 0) gl.DeleteTextures(1, &trackTexture);
    trackTexture = 0;
    if (wanted == nullptr || wanted->image.width <= 0 || wanted->image.height <= 0) return;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(wanted->image.pixels.size() * 4);
    for (const tavrik::RgbPixel& pixel : wanted->image.pixels) {
        for (const std::uint8_t byte : {pixel.red, pixel.green, pixel.blue, std::uint8_t(255)}) bytes.push_back(byte);
    }
    trackTexture = MakeTexture(gl, wanted->image.width, wanted->image.height, bytes);
}

std::vector<Point3> ViewRenderer::Body::Seen(const ShownScene& scene) const {
    std::vector<Point3> points = bound;
    const tavrik_host::RenderModel& model = scene.Model();
    for (std::size_t i = 0; i < model.things.size(); ++i) {
        const Box3& box = scene.BoxOf(model.things[i].shape);
        if (box.IsEmpty() != 0) continue;
        for (int k = 0; k < 8; ++k) {
            points.push_back(Point3((k & 1) != 0 ? box.pmax.x : box.pmin.x, (k & 2) != 0 ? box.pmax.y : box.pmin.y,
                                    (k & 4) != 0 ? box.pmax.z : box.pmin.z) *
                             scene.Places()[i]);
        }
    }
    return points;
}

// -------------------------------------------------------------------------------------------------------------------- drawing

void ViewRenderer::Body::DrawSky(const ViewPicture& picture) {
    const tavrik_host::ViewCamera camera = CameraOf(picture.state);
    skyProgram.Use(gl);
    skyProgram.Set(gl, "uAhead", -camera.frame.GetRow(2));
    skyProgram.Set(gl, "uRight", camera.frame.GetRow(0) * (0.5f * float(picture.state.width) / camera.scale));
    skyProgram.Set(gl, "uUp", camera.frame.GetRow(1) * (0.5f * float(picture.state.height) / camera.scale));
    skyProgram.Set(gl, "uZenith", picture.colors.zenith);
    skyProgram.Set(gl, "uHorizon", picture.colors.horizon);
    skyProgram.Set(gl, "uHaze", picture.colors.haze);
    gl.DepthMask(GL_FALSE);
    gl.BindVertexArray(screenArray);
    gl.DrawArrays(GL_TRIANGLES, 0, 3);
    gl.DepthMask(GL_TRUE);
}

void ViewRenderer::Body::UseLines(const EyeFrame& eye, float width, float rim, float pull, float alpha) {
    lineProgram.Use(gl);
    lineProgram.SetFrame(gl, "uClip", eye.clip);
    lineProgram.Set(gl, "uHalfSize", 0.5f * float(targets.Width()), 0.5f * float(targets.Height()));
    lineProgram.Set(gl, "uHalfWidth", std::max(0.5f, 0.5f * width));
    lineProgram.Set(gl, "uRim", rim);
    lineProgram.Set(gl, "uRimColor", Point3(0.05f, 0.05f, 0.06f));
    lineProgram.Set(gl, "uRimAlpha", 0.45f);
    lineProgram.Set(gl, "uEye", eye.eye, eye.perspective ? 1.0f : 0.0f);
    lineProgram.Set(gl, "uPull", pull);
    lineProgram.Set(gl, "uAlpha", alpha);
    lineProgram.Set(gl, "uLeast", 0.0f);
    lineProgram.Set(gl, "uFade", Point3(0, 0, 0), 0.0f);
}

void ViewRenderer::Body::DrawGrid(const ViewPicture& picture, const EyeFrame& eye, float pixelRatio) {
    const ViewGrid lines = GridOf(picture);
    for (const auto& [batch, added] : {std::pair(&grid, &lines.fine), std::pair(&coarseGrid, &lines.coarse)}) {
        batch->Clear();
        for (const GridLine& line : *added) batch->Add(line.from, line.to, line.color, line.alpha);
        batch->Upload(gl);
    }
    const float pull = eye.perspective ? kGridPull : kGridPull * picture.state.distance;
    UseLines(eye, kGridLineWidth * pixelRatio, 0.0f, pull, 1.0f);
    lineProgram.Set(gl, "uFade", lines.middle, lines.fineReach);
    grid.Draw(gl);
    lineProgram.Set(gl, "uFade", lines.middle, lines.coarseReach);
    coarseGrid.Draw(gl);
}

void ViewRenderer::Body::DrawSceneLines(const EyeFrame& eye, float pixelRatio, const ViewPicture& picture) {
    const float pull = eye.perspective ? kPull : kPull * picture.state.distance;
    const float rim = std::min(1.0f, pixelRatio);
    UseLines(eye, kGizmoWidth * pixelRatio, 0.0f, pull, kHidden);
    // Hidden lines are one drawing: where they cross or lie close together they are no stronger.
    lineProgram.Set(gl, "uLeast", 0.5f);
    gl.DepthFunc(GL_GREATER);
    gl.Enable(GL_STENCIL_TEST);
    gl.StencilFunc(GL_EQUAL, 0, 0xff);
    gl.StencilOp(GL_KEEP, GL_KEEP, GL_INCR);
    plain.Draw(gl);
    gl.Disable(GL_STENCIL_TEST);
    gl.DepthFunc(GL_LEQUAL);
    UseLines(eye, kGizmoWidth * pixelRatio, rim, pull, 1.0f);
    plain.Draw(gl);
    gl.Disable(GL_DEPTH_TEST);
    UseLines(eye, kChosenWidth * pixelRatio, rim, pull, 1.0f);
    chosen.Draw(gl);
    gl.Enable(GL_DEPTH_TEST);
}

void ViewRenderer::Body::DrawOutline(const MeshLook& look, const ViewPicture& picture) {
    const std::vector<char>& chosenThings = look.scene->Chosen();
    if (std::ranges::none_of(chosenThings, [](char c) { return c != 0; })) return;
    targets.PrepareMask(gl);
    gl.Disable(GL_DEPTH_TEST);
    const bool any = meshes.DrawMask(gl, look);
    targets.BindDrawn(gl);
    if (any) {
        gl.Enable(GL_BLEND);
        outlineProgram.Use(gl);
        gl.BindTexture(GL_TEXTURE_2D, targets.MaskTexture());
        outlineProgram.Set(gl, "uMask", 0);
        outlineProgram.Set(gl, "uPixel", 1.0f / float(targets.Width()), 1.0f / float(targets.Height()));
        outlineProgram.Set(gl, "uColor", picture.colors.outline);
        gl.BindVertexArray(screenArray);
        gl.DrawArrays(GL_TRIANGLES, 0, 3);
        gl.Disable(GL_BLEND);
    }
    gl.Enable(GL_DEPTH_TEST);
}

void ViewRenderer::Body::DrawScene(const ShownScene& scene, const ViewPicture& picture, const DrawEffort& effort) {
    const EyeFrame eye = EyeFrameOf(picture.state, Seen(scene));
    MeshLook look;
    look.scene = &scene;
    look.eye = &eye;
    look.light = picture.colors.light;
    look.boxes = effort.boxes;
    look.cutsGround = IsFromTheSide(picture.state);
    look.cut = DotProd(eye.eye, CameraOf(picture.state).frame.GetTrans());
    if (tracks != nullptr) {
        look.tracks = trackTexture;
        look.tracksLow = tracks->low;
        look.tracksSide = tracks->side;
    }
    const Point3& plainColor = picture.colors.plain;
    gl.ClearColor(plainColor.x, plainColor.y, plainColor.z, 1.0f);
    gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    meshes.DrawSolid(gl, look);
    if (picture.hasSky && eye.perspective) DrawSky(picture);
    gl.Enable(GL_BLEND);
    gl.DepthMask(GL_FALSE);
    const float pixelRatio = picture.pixelRatio / float(effort.coarse);
    if (picture.hasGrid) DrawGrid(picture, eye, pixelRatio);
    boxes.Clear();
    for (const MeshPainter::LeftOut& part : meshes.PartsLeftOut(look)) AddBox(part, Color(0.2f, 0.2f, 0.22f), boxes);
    boxes.Upload(gl);
    UseLines(eye, pixelRatio, 0.0f, 0.0f, 0.8f);
    boxes.Draw(gl);
    gl.Disable(GL_BLEND);
    gl.DepthMask(GL_TRUE);
    meshes.DrawClear(gl, look);
    DrawOutline(look, picture);
    gl.Enable(GL_BLEND);
    gl.DepthMask(GL_FALSE);
    DrawSceneLines(eye, pixelRatio, picture);
    gl.Disable(GL_BLEND);
    gl.DepthMask(GL_TRUE);
}

// ------------------------------------------------------------------------------------------------------------------- renderer

ViewRenderer::ViewRenderer(std::unique_ptr<Body> body) : body_(std::move(body)) {}

ViewRenderer::~ViewRenderer() { body_->Delete(); }

std::unique_ptr<ViewRenderer> ViewRenderer::Make(const GlLoader& loader, QString& problem) {
    auto body = std::make_unique<Body>();
    if (const char* const missing = body->gl.Load(loader); missing != nullptr) {
        problem = QString("the driver has no %1").arg(missing);
        return nullptr;
    }
    if (!body->Build(problem)) {
        body->Delete();
        return nullptr;
    }
    return std::unique_ptr<ViewRenderer>(new ViewRenderer(std::move(body)));
}

/// @return false where the driver has no room for the picture
bool ViewRenderer::DrawToTargets(const ShownScene& scene, const ViewPicture& picture, const DrawEffort& effort) {
    const GlFunctions& gl = body_->gl;
    const int coarse = std::max(1, effort.coarse);
    for (const GLint off : {GL_SCISSOR_TEST, GL_CULL_FACE, GL_STENCIL_TEST, GL_FRAMEBUFFER_SRGB, GL_BLEND})
        gl.Disable(GLenum(off));
    gl.Enable(GL_DEPTH_TEST);
    gl.DepthFunc(GL_LEQUAL);
    gl.DepthMask(GL_TRUE);
    gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    gl.BlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    body_->meshes.Update(gl, scene);
    body_->UpdateLines(scene);
    body_->UpdateTracks(picture.tracks);
    if (!body_->targets.Prepare(gl, (PixelWidth(picture) + coarse - 1) / coarse, (PixelHeight(picture) + coarse - 1) / coarse,
                                effort.samples)) {
        return false;
    }
    body_->DrawScene(scene, picture, effort);
    return true;
}

/// Whoever else uses the context finds it as new ones are.
void ViewRenderer::Leave() {
    const GlFunctions& gl = body_->gl;
    gl.Disable(GL_DEPTH_TEST);
    gl.BindVertexArray(0);
    gl.UseProgram(0);
    gl.Finish();
}

void ViewRenderer::Draw(const ShownScene& scene, const ViewPicture& picture, const DrawEffort& effort, unsigned target) {
    if (DrawToTargets(scene, picture, effort)) {
        body_->targets.Show(body_->gl, target, PixelWidth(picture), PixelHeight(picture));
    }
    Leave();
}

void ViewRenderer::DrawImage(const ShownScene& scene, const ViewPicture& picture, const DrawEffort& effort,
                             std::span<std::uint32_t> pixels) {
    const auto width = std::size_t(PixelWidth(picture)), height = std::size_t(PixelHeight(picture));
    if (pixels.size() < width * height || !DrawToTargets(scene, picture, effort)) return;
    const auto coarse = std::size_t(std::max(1, effort.coarse));
    if (coarse == 1) {
        body_->targets.Read(body_->gl, pixels.data());
    } else {
        const auto drawnWidth = std::size_t(body_->targets.Width()), drawnHeight = std::size_t(body_->targets.Height());
        std::vector<std::uint32_t>& drawn = body_->drawn;
        drawn.resize(drawnWidth * drawnHeight);
        body_->targets.Read(body_->gl, drawn.data());
        for (std::size_t y = 0; y < height; ++y) {
            const std::uint32_t* const row = &drawn[y / coarse * drawnWidth];
            for (std::size_t x = 0; x < width; ++x) pixels[y * width + x] = row[x / coarse];
        }
    }
    Leave();
}

QString ViewRenderer::DriverName() const {
    return QString::fromLatin1(reinterpret_cast<const char*>(body_->gl.GetString(GL_RENDERER)));
}

}  // namespace tavrik_studio

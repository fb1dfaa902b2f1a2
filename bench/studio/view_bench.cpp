// How long a picture of a view takes without a graphics card: 1280 x 720, meshes of 200,000 triangles in all.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "host/scene_file.h"
#include "host/shape.h"
#include "studio/view/egl_context.h"
#include "studio/view/renderer.h"
#include "studio/view/shown_scene.h"

namespace {

using tavrik_studio::DrawEffort;
using tavrik_studio::ViewPicture;

/// A square of hills, 2 * (side - 1)^2 triangles.
tavrik::ShapePart Hills(int side, float size, float z, const tavrik::ShapeMaterial& material) {
    std::vector<tavrik::Point3> points;
    for (int y = side - 1; y >= 0; --y) {
        for (int x = 0; x < side; ++x) {
            const float u = size * (float(x) / float(side - 1) - 0.5f), v = size * (float(y) / float(side - 1) - 0.5f);
            points.push_back({u, v, z + 0.02f * size * (std::sin(u * 12.0f / size) + std::cos(v * 9.0f / size))});
        }
    }
    tavrik::ShapePart part;
    part.material = material;
    tavrik::AddGrid(part, points, side, false);
    return part;
}

/// The scene and what draws it; made once, since there is one scene to a process.
struct Stage {
    Stage() {
        const tavrik::ShapePart ground = Hills(225, 20000.0f, 0.0f, {"ground", 0.4f, 0.4f, 0.3f, 0.0f, 0.95f});
        AddMeshNode(editor.Document(), {&ground, 1}, "ground");
        // As many triangles again in things that are small in the picture, as a car's parts are.
        const tavrik::ShapePart body = Hills(50, 400.0f, 100.0f, {"body", 0.6f, 0.1f, 0.1f, 0.2f, 0.3f});
        for (int i = 0; i < 21; ++i) {
            INode* const node = AddMeshNode(editor.Document(), {&body, 1}, "body");
            Matrix3 place(TRUE);
            place.SetTrans(Point3(float(i % 5 - 2) * 500.0f, float(i / 5 - 2) * 500.0f, 100.0f));
            node->SetNodeTM(0, place);
        }
        editor.TouchNodes();
        scene.Update();
        for (const tavrik_host::RenderThing& thing : scene.Model().things) {
            for (const tavrik_host::RenderPart& part : scene.Model().shapes[thing.shape].parts)
                triangles += part.corners.size() / 3;
        }
        picture.state = Seen(picture.state, tavrik_host::ViewSide::Perspective);
        picture.state.width = 1280;
        picture.state.height = 720;
        picture.state = Framed(picture.state, std::vector<Point3>{Point3(-1500, -1500, 0), Point3(1500, 1500, 300)});
        QString problem;
        context = tavrik_studio::EglContext::Shared(problem);
        if (context != nullptr) renderer = tavrik_studio::ViewRenderer::Make(context->Loader(), problem);
        pixels.resize(1280 * 720);
    }
    void Draw(const DrawEffort& effort) { renderer->DrawImage(scene, picture, effort, pixels); }

    tavrik_studio::Editor editor;
    tavrik_studio::ShownScene scene{editor};
    ViewPicture picture;
    std::shared_ptr<tavrik_studio::EglContext> context;
    std::unique_ptr<tavrik_studio::ViewRenderer> renderer;
    std::vector<std::uint32_t> pixels;
    std::size_t triangles = 0;
};

Stage& TheStage() {
    static Stage* const stage = new Stage;  // never deleted: the host's scene ends with the process
    return *stage;
}

void Measure(benchmark::State& state, const DrawEffort& effort) {
    Stage& stage = TheStage();
    if (stage.renderer == nullptr) {
        state.SkipWithError("there is no OpenGL 3.3 without a screen");
        return;
    }
    stage.Draw(effort);
    for (auto _ : state) {
        stage.picture.state = Orbited(stage.picture.state, 1.0f, 0.0f);
        stage.Draw(effort);
    }
    state.counters["triangles"] = double(stage.triangles);
}

void BM_View_Moving(benchmark::State& state) { Measure(state, {1, 1, false}); }
void BM_View_MovingHalfAsFine(benchmark::State& state) { Measure(state, {2, 1, false}); }
void BM_View_MovingBoxes(benchmark::State& state) { Measure(state, {2, 1, true}); }
void BM_View_AtRest(benchmark::State& state) { Measure(state, {1, 4, false}); }
BENCHMARK(BM_View_Moving)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(BM_View_MovingHalfAsFine)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(BM_View_MovingBoxes)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(BM_View_AtRest)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

}  // namespace

// One picture of a driven scene. TAVRIK_RENDER_SCENE names a scene with a recording; without it there is nothing to measure.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "host/render/render_sequence.h"
#include "host/rig_objects.h"
#include "host/sdk/standin.h"

namespace tavrik_host {
namespace {

void BM_TakePicture_LastFrameFollowed(benchmark::State& state) {
    const char* const file = std::getenv("TAVRIK_RENDER_SCENE");
    SceneDocument document;
    std::string problem = "TAVRIK_RENDER_SCENE names no scene.";
    if (file == nullptr || !LoadPlugin(TAVRIK_PLUGIN_FILE, problem) || !LoadScene(file, document, problem)) {
        state.SkipWithError(problem.c_str());
        return;
    }
    BeginRender();
    const std::vector<INode*> masters = NodesOf(tavrik::ObjectClass::Tavrik);
    const RenderModel model = TakeRenderModel(document, TrackGrounds());
    const RayShapes shapes(model);
    const TimeValue tick = GetCOREInterface()->GetAnimRange().End();
    const RayFrame frame(shapes, tick);
    CameraMan camera;
    RenderSettings settings;
    if (masters.empty() || !camera.Prepare(document, {}, masters.front(), 16.0f / 9.0f, problem)) {
        state.SkipWithError("the scene has no car to follow.");
        return;
    }
    TrackPainter tracks(masters, {});
    tracks.Update(tick);
    const TrackPainter* const shown = state.range(0) != 0 ? &tracks : nullptr;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(TakePicture(frame, model, camera.At(tick, frame, model), shown, tick, settings));
    }
}
BENCHMARK(BM_TakePicture_LastFrameFollowed)->ArgName("tracks")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace tavrik_host

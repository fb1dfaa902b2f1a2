#pragma once
/// One picture of a scene.

#include <atomic>
#include <functional>

#include "host/render/daylight.h"
#include "host/render/ray_scene.h"
#include "host/render/render_camera.h"
#include "host/render/track_painter.h"
#include "host/rgb_image.h"

namespace tavrik_host {

struct RenderSettings {
    int width = 1280, height = 720;
    int samples = 12;                                 // a pixel, at most; four where they all say the same
    int threads = 0;                                  // 0: as many as there are cores
    float sunAzimuth = 235.0f, sunElevation = 42.0f;  // degrees
    const std::atomic<bool>* stop = nullptr;  // once it is set, pictures end early and are of no use; null: nobody stops
};

/// Takes the picture. The same scene, camera and settings give the same bytes with any number of threads.
///
/// @param tracks  updated for this tick; null: no tracks
/// @param done    told how much is done, 0..1, on the calling thread; null: nobody asks
tavrik::RgbImage TakePicture(const RayFrame& frame, const RenderModel& model, const RenderCamera& camera,
                             const TrackPainter* tracks, TimeValue tick, const RenderSettings& settings,
                             const std::function<void(double)>& done = {});

}  // namespace tavrik_host

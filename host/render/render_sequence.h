#pragma once
/// A range of frames as picture files. Each is on disk, whole, before the next one is begun.

#include <functional>
#include <string>
#include <vector>

#include "host/render/frame_names.h"
#include "host/render/render_frame.h"
#include "host/scene_file.h"

namespace tavrik_host {

struct SequenceOrder {
    int first = 0, last = 0;  // frames of the timeline
    FrameNames names;
    bool resume = false;  // pictures that are there already stay as they are
    RenderSettings settings;
    CameraWish camera;
    INode* master = nullptr;  // whose car the camera follows; null: the first there is
    bool tracks = true;       // of all cars
    TrackLook look;
    std::filesystem::path tread;  // a picture for every wheel; empty: as the scene has them
};

struct SequenceResult {
    int written = 0, kept = 0;
    bool isStopped = false;          // by `RenderSettings::stop`, before the range was done
    std::vector<std::string> notes;  // a sentence for each thing that shows otherwise than the scene says
};

/// Renders frames of the scene at hand; the scene is not changed by it, but for treads that were ordered.
///
/// @param done     told how much of the range is done, 0..1; may be null
/// @param problem  on false: one sentence. Frames that are finished stay, and `result` tells how many; likewise where it was
///                 stopped, which is no problem
bool RenderSequence(const SceneDocument& document, const SequenceOrder& order, const std::function<void(double)>& done,
                    SequenceResult& result, std::string& problem);

/// The grounds on which tyres leave tracks: what the masters drive on.
std::vector<INode*> TrackGrounds();

/// Tries whether pictures can be put there, before hours of work; a missing folder is made where its own folder stands.
bool CanTakePictures(const FrameNames& names, int frame, std::string& problem);

/// What maps complained of while they were read.
void TakeComplaint(std::vector<std::string>& notes);

}  // namespace tavrik_host

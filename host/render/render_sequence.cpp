#include "host/render/render_sequence.h"

#include <memory>
#include <system_error>
#include <utility>

#include "host/atomic_file.h"
#include "host/png_file.h"
#include "host/rig_objects.h"
#include "host/sdk/desktop.h"
#include "rig/parameter_tables.h"

namespace tavrik_host {
namespace {

/// Tells every plug-in that a render begins, and that it ends, however it ends.
class RenderSpan {
 public:
    RenderSpan() { BeginRender(); }
    ~RenderSpan() { EndRender(); }
    RenderSpan(const RenderSpan&) = delete;
    RenderSpan& operator=(const RenderSpan&) = delete;
};

bool IsThere(const std::filesystem::path& picture) {
    std::error_code error;
    return std::filesystem::is_regular_file(picture, error);  // pictures appear whole or not at all
}

class SequenceMaker {
 public:
    SequenceMaker(const SceneDocument& document, const SequenceOrder& order, const std::function<void(double)>& done,
                  SequenceResult& result)
        : order_(order), done_(done), result_(result), model_(TakeRenderModel(document, TrackGrounds())), shapes_(model_) {
        result.notes.insert(result.notes.end(), model_.notes.begin(), model_.notes.end());
    }

    bool Run(const SceneDocument& document, std::string& problem) {
        const std::vector<INode*> masters = NodesOf(tavrik::ObjectClass::Tavrik);
        INode* const master = order_.master != nullptr ? order_.master : masters.empty() ? nullptr : masters.front();
        const float aspect = float(order_.settings.width) / float(order_.settings.height);
        if (!camera_.Prepare(document, order_.camera, master, aspect, problem)) return false;
        if (order_.tracks) tracks_ = std::make_unique<TrackPainter>(masters, order_.look);
        for (int frame = order_.first; frame <= order_.last; ++frame) {
            result_.isStopped = IsStopped();
            if (result_.isStopped) return true;
            if (!MakeFrame(frame, problem)) return false;
        }
        return true;
    }

 private:
    bool MakeFrame(int frame, std::string& problem) {
        const std::filesystem::path file = order_.names.Of(frame);
        const double all = double(order_.last - order_.first + 1), before = double(frame - order_.first);
        if (order_.resume && IsThere(file)) {
            ++result_.kept;
            return true;
        }
        const TimeValue tick = frame * GetTicksPerFrame();
        const RayFrame rays(shapes_, tick);
        if (tracks_ != nullptr) tracks_->Update(tick);
        const auto tell = [&](double part) {
            if (done_) done_((before + part) / all);
        };
        const tavrik::RgbImage image =
            TakePicture(rays, model_, camera_.At(tick, rays, model_), tracks_.get(), tick, order_.settings, tell);
        result_.isStopped = IsStopped();
        if (result_.isStopped) return true;  // half a picture
        if (!tavrik::WritePngFile(file, image, problem)) return false;
        ++result_.written;
        return true;
    }
    bool IsStopped() const { return order_.settings.stop != nullptr && *order_.settings.stop; }

    const SequenceOrder& order_;
    const std::function<void(double)>& done_;
    SequenceResult& result_;
    RenderModel model_;
    RayShapes shapes_;
    CameraMan camera_;
    std::unique_ptr<TrackPainter> tracks_;
};

}  // namespace

std::vector<INode*> TrackGrounds() {
    std::vector<INode*> grounds;
    for (INode* const master : NodesOf(tavrik::ObjectClass::Tavrik)) {
        INode* const ground = NodeParam(*master, tavrik::MasterParam::Surface_Node);
        if (ground != nullptr) grounds.push_back(ground);
    }
    return grounds;
}

bool CanTakePictures(const FrameNames& names, int frame, std::string& problem) {
    const std::filesystem::path file = names.Of(frame), folder = file.parent_path();
    std::error_code error;
    const bool isNew = !folder.empty() && std::filesystem::create_directory(folder, error);
    if (tavrik::CanWriteFile(file, problem)) return true;
    if (isNew) std::filesystem::remove(folder, error);
    return false;
}

void TakeComplaint(std::vector<std::string>& notes) {
    std::string complaint;
    std::swap(complaint, tavrik::TheDesktop().complaint);
    if (!complaint.empty()) notes.push_back(std::move(complaint));
}

bool RenderSequence(const SceneDocument& document, const SequenceOrder& order, const std::function<void(double)>& done,
                    SequenceResult& result, std::string& problem) {
    if (!order.tread.empty() && !SetTreads(order.tread, problem)) return false;
    if (!CanTakePictures(order.names, order.first, problem)) return false;
    const RenderSpan span;
    TakeComplaint(result.notes);
    return SequenceMaker(document, order, done, result).Run(document, problem);
}

}  // namespace tavrik_host

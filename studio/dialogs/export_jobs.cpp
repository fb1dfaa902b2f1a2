#include "studio/dialogs/export_jobs.h"

#include <QCoreApplication>
#include <system_error>
#include <utility>

#include "host/atomic_file.h"
#include "host/png_file.h"
#include "host/render/track_bake.h"
#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "studio/dialogs/dialog_parts.h"

namespace tavrik_studio {
namespace {

struct JobTexts {
    Q_DECLARE_TR_FUNCTIONS(JobTexts)
};

JobResult Fault(const QString& sentence) {
    JobResult result;
    result.sentence = sentence;
    return result;
}

JobResult Fault(const std::string& sentence) { return Fault(Text(sentence)); }

bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error);
}

/// @param problem  on false: one sentence
bool ReadNames(const std::string& pattern, bool isSequence, tavrik_host::FrameNames& names, QString& problem) {
    std::string fault;
    if (!names.Read(pattern, fault)) {
        problem = Text(pattern) + ": " + Text(fault) + ".";
        return false;
    }
    if (!isSequence || names.IsNumbered()) return true;
    problem = JobTexts::tr("%1: several frames need a number in their names, as in %04d.png.").arg(Text(pattern));
    return false;
}

/// A name may be relative to where the program was started.
std::filesystem::path FolderOf(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::absolute(file, error).parent_path();
}

QString Pictures(int count) { return count == 1 ? JobTexts::tr("1 picture") : JobTexts::tr("%1 pictures").arg(count); }

/// Tells every plug-in that a render begins, and that it ends, however it ends.
class RenderSpan {
 public:
    RenderSpan() { tavrik_host::BeginRender(); }
    ~RenderSpan() { tavrik_host::EndRender(); }
    RenderSpan(const RenderSpan&) = delete;
    RenderSpan& operator=(const RenderSpan&) = delete;
};

QStringList ToTexts(const std::vector<std::string>& notes) {
    QStringList texts;
    for (const std::string& note : notes) texts << Text(note);
    return texts;
}

/// The ground seen from above, in words.
QString LayoutText(const tavrik_host::TrackLayout& layout) {
    if (!layout.IsFlat()) return JobTexts::tr("They lie in the ground's own texture coordinates.");
    const double metres = tavrik_host::MetresPerUnit();
    const double west = double(layout.Low().x) * metres, south = double(layout.Low().y) * metres;
    const double side = double(layout.Side()) * metres;
    return JobTexts::tr("They lie straight down: x %1 to %2 m from left to right, y %3 to %4 m from bottom to top.")
        .arg(Number(west, 3), Number(west + side, 3), Number(south, 3), Number(south + side, 3));
}

class TracksMaker {
 public:
    TracksMaker(const TracksOrder& order, const JobWatch& watch) : order_(order), watch_(watch) {}

    JobResult Run(const tavrik_host::SceneDocument& document) {
        QString problem;
        std::string fault;
        const bool isSequence = order_.first != order_.last;
        if (order_.color == order_.bump)
            return Fault(JobTexts::tr("Both pictures would have the same name, %1.").arg(Text(order_.color)));
        if (!ReadNames(order_.color, isSequence, colors_, problem) ||
            (WithBump() && !ReadNames(order_.bump, isSequence, bumps_, problem))) {
            return Fault(problem);
        }
        if (!CanTakePictures(colors_, order_.first, fault) || (WithBump() && !CanTakePictures(bumps_, order_.first, fault))) {
            return Fault(fault);
        }
        const RenderSpan span;
        std::vector<std::string> notes;
        tavrik_host::TakeComplaint(notes);
        const tavrik_host::RenderModel model = TakeRenderModel(document, tavrik_host::TrackGrounds());
        const tavrik_host::RayShapes shapes(model);
        const tavrik_host::RayFrame frame(shapes, order_.first * GetTicksPerFrame());
        tavrik_host::TrackLayout layout;
        if (!layout.Build(model, frame, order_.size, fault)) return Fault(JobTexts::tr("The scene: %1").arg(Text(fault)));
        JobResult result = Bake(layout);
        result.notes = ToTexts(notes);
        return result;
    }

 private:
    bool WithBump() const { return !order_.bump.empty(); }

    JobResult Bake(const tavrik_host::TrackLayout& layout) {
        const std::vector<INode*> masters = tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik);
        tavrik_host::TrackPainter painter(masters, order_.look);
        int written = 0;
        JobResult result;
        std::string fault;
        for (int frame = order_.first; frame <= order_.last && result.sentence.isEmpty(); ++frame) {
            result.isStopped = !MakeFrame(layout, painter, frame, fault);
            if (result.isStopped) break;
            if (!fault.empty()) {
                result.sentence = Text(fault);
            } else {
                ++written;
            }
        }
        if (written > 0) result.folder = FolderOf(colors_.Of(order_.first));
        result.isDone = result.sentence.isEmpty() && !result.isStopped;
        if (result.isStopped) {
            result.sentence = JobTexts::tr("Stopped; %1 finished before.").arg(Pictures(written));
        } else if (result.isDone) {
            result.sentence = JobTexts::tr("%1 of the tracks written. %2")
                                  .arg(Pictures(WithBump() ? 2 * written : written), LayoutText(layout));
        }
        return result;
    }

    /// @return false where it was stopped
    bool MakeFrame(const tavrik_host::TrackLayout& layout, tavrik_host::TrackPainter& painter, int frame, std::string& fault) {
        const double all = double(order_.last - order_.first + 1), before = double(frame - order_.first);
        const TimeValue tick = frame * GetTicksPerFrame();
        painter.Update(tick);
        const auto done = [&](double part) { watch_.done((before + part) / all); };
        const tavrik_host::BakedTracks tracks = layout.Bake(painter, tick, WithBump(), 0, done, watch_.stop);
        if (*watch_.stop) return false;
        if (tavrik::WritePngFile(colors_.Of(frame), tracks.color, fault) && WithBump()) {
            tavrik::WritePngFile(bumps_.Of(frame), tracks.bump, fault);
        }
        return true;
    }

    const TracksOrder& order_;
    const JobWatch& watch_;
    tavrik_host::FrameNames colors_, bumps_;
};

}  // namespace

JobResult ExportFilm(const tavrik_host::SceneDocument& document, const std::filesystem::path& scene, FilmOrder order,
                     const JobWatch& watch) {
    std::string fault, bytes;
    if (order.file.extension().empty()) order.file += ".glb";
    const QString extension = TextOf(order.file.extension()).toLower();
    if (extension != ".glb" && extension != ".gltf") {
        return Fault(JobTexts::tr("%1: films are written as .glb or .gltf.").arg(TextOf(order.file)));
    }
    if (IsSameFile(scene, order.file)) {
        return Fault(JobTexts::tr("%1 is the scene itself; choose another name for the film.").arg(TextOf(order.file)));
    }
    if (!tavrik::CanWriteFile(order.file, fault)) return Fault(fault);
    const auto goesOn = [&watch](double part) {
        watch.done(part);
        return !*watch.stop;
    };
    JobResult result;
    if (!MakeFilmFile(document, order.keys, bytes, fault, goesOn)) {
        result = Fault(TextOf(order.file) + ": " + Text(fault));
        result.isStopped = *watch.stop;
        if (result.isStopped) result.sentence = JobTexts::tr("Stopped; no film was written.");
        return result;
    }
    if (!tavrik_host::WriteSceneFile(order.file, std::move(bytes), fault)) return Fault(fault);
    watch.done(1.0);
    result.isDone = true;
    result.folder = FolderOf(order.file);
    result.sentence = JobTexts::tr("%1 written, for any program that plays glTF.").arg(TextOf(order.file));
    return result;
}

JobResult RenderPictures(const tavrik_host::SceneDocument& document, RenderOrder order, const JobWatch& watch) {
    QString problem;
    std::string fault;
    tavrik_host::SequenceOrder& frames = order.frames;
    if (!ReadNames(order.pattern, frames.first != frames.last, frames.names, problem)) return Fault(problem);
    frames.settings.stop = watch.stop;
    tavrik_host::SequenceResult sequence;
    JobResult result;
    const bool isMade = RenderSequence(document, frames, watch.done, sequence, fault);
    result.isStopped = sequence.isStopped;
    result.isDone = isMade && !sequence.isStopped;
    result.notes = ToTexts(sequence.notes);
    if (sequence.written + sequence.kept > 0) result.folder = FolderOf(frames.names.Of(frames.first));
    if (!isMade) {
        result.sentence = Text(fault);
        if (sequence.written > 0) {
            result.sentence += " " + JobTexts::tr("%1 finished before.").arg(Pictures(sequence.written));
        }
    } else if (result.isStopped) {
        result.sentence = JobTexts::tr("Stopped; %1 finished before.").arg(Pictures(sequence.written));
    } else {
        result.sentence = JobTexts::tr("%1 written.").arg(Pictures(sequence.written));
        if (sequence.kept > 0)
            result.sentence =
                JobTexts::tr("%1 written; %2 were there already.").arg(Pictures(sequence.written)).arg(sequence.kept);
    }
    return result;
}

JobResult BakeTracks(const tavrik_host::SceneDocument& document, const TracksOrder& order, const JobWatch& watch) {
    return TracksMaker(order, watch).Run(document);
}

}  // namespace tavrik_studio

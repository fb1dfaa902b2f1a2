#pragma once
/// Films and pictures of the open scene as files, without a window.

#include <QString>
#include <QStringList>
#include <atomic>
#include <filesystem>
#include <functional>
#include <string>

#include "host/render/render_sequence.h"
#include "host/scene_file.h"

namespace tavrik_studio {

/// Whoever waits for a job.
struct JobWatch {
    std::function<void(double)> done;         // told how much is done, 0..1; must be there
    const std::atomic<bool>* stop = nullptr;  // once it is set, the job ends early; must be there
};

/// How a job ended. What was finished before a stop or a fault stays.
struct JobResult {
    bool isDone = false;           // all of it
    bool isStopped = false;        // by the user
    QString sentence;              // what was written, or what is wrong
    std::filesystem::path folder;  // where something was written; empty: nothing was
    QStringList notes;             // a sentence for each thing that shows otherwise than the scene says
};

struct FilmOrder {
    std::filesystem::path file;  // .glb or .gltf; without either, it becomes a .glb
    tavrik_host::BakedKeys keys = tavrik_host::BakedKeys::EverySample;
};
/// @param scene  the scene's own file, which a film must not replace; may be empty
JobResult ExportFilm(const tavrik_host::SceneDocument& document, const std::filesystem::path& scene, FilmOrder order,
                     const JobWatch& watch);

struct RenderOrder {
    std::string pattern;                // such as "frames/%04d.png"
    tavrik_host::SequenceOrder frames;  // but for the names
};
JobResult RenderPictures(const tavrik_host::SceneDocument& document, RenderOrder order, const JobWatch& watch);

struct TracksOrder {
    std::string color, bump;  // names of pictures; no bump: none is made
    int size = 2048;          // pixels along each side
    int first = 0, last = 0;  // one picture for each of these frames
    tavrik_host::TrackLook look;
};
JobResult BakeTracks(const tavrik_host::SceneDocument& document, const TracksOrder& order, const JobWatch& watch);

}  // namespace tavrik_studio

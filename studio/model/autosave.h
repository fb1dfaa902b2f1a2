#pragma once
/// A copy of the scene that outlives a crash.

#include <QObject>
#include <QTimer>
#include <cstdint>
#include <filesystem>
#include <future>
#include <vector>

namespace tavrik_studio {

class Editor;

/// A copy that some session left behind.
struct RescuedScene {
    std::filesystem::path copy;
    std::filesystem::path file;  // where the scene belongs; empty: it was never saved
};

/// Writes a changed scene beside the user's settings, again and again, and removes the copy where nothing was lost.
class Autosave final : public QObject {
    Q_OBJECT
 public:
    /// @param folder  made where it isn't there
    Autosave(Editor& editor, std::filesystem::path folder, QObject* parent = nullptr);
    /// The session ends as it should: the copy goes.
    ~Autosave() override;

    /// `tavrik/autosave` under `$XDG_STATE_HOME`, or under `.local/state` in the home folder.
    static std::filesystem::path UsualFolder();
    /// Copies in a folder whose session is no longer running, the newest first.
    static std::vector<RescuedScene> Rescued(const std::filesystem::path& folder);
    static void Remove(const RescuedScene& rescued);

    /// Writes the copy now, where the scene has changed since the last one. What it can't write, it tells by `Failed`.
    void SaveNow();
    /// Waits until what is being written is on the disk.
    void Wait();

 signals:
    void Failed(const QString& sentence);

 private:
    std::filesystem::path Copy() const;
    std::filesystem::path Note() const;

    Editor& editor_;
    std::filesystem::path folder_;
    QTimer timer_;
    std::uint64_t saved_ = 0;  // revision of the copy
    std::future<std::string> writing_;
};

}  // namespace tavrik_studio

#pragma once
/// The studio's window: menus, views, tree, panel and timeline around one scene.

#include <QMainWindow>
#include <QStringList>
#include <filesystem>
#include <functional>
#include <memory>

#include "studio/driving/drive_desk.h"
#include "studio/model/autosave.h"
#include "studio/model/commands.h"
#include "studio/model/editor.h"
#include "studio/panel/panel_view.h"
#include "studio/window/notice_bar.h"
#include "studio/window/scene_tree.h"
#include "studio/window/time_bar.h"
#include "studio/window/view_area.h"

namespace tavrik_studio {

class DoctorDock;

enum class CloseAnswer { Save, Discard, Cancel };

/// One to a process; the plug-in must be loaded.
class MainWindow final : public QMainWindow {
    Q_OBJECT
 public:
    /// @param autosaveFolder  where copies of unsaved scenes are kept
    explicit MainWindow(const std::filesystem::path& autosaveFolder = Autosave::UsualFolder());
    ~MainWindow() override;

    bool OpenFile(const std::filesystem::path& file);
    bool SaveFile(const std::filesystem::path& file);
    /// Opens the drive window for the master that is selected, or the only one. A car that isn't locked yet is locked first.
    bool OpenDrive();

    Editor& TheEditor() { return editor_; }
    Commands& TheCommands() { return commands_; }
    DriveDesk& Desk() { return *desk_; }
    NoticeBar& Notices() { return *notices_; }
    ViewArea& Views() { return *views_; }
    PanelView& Panel() { return *panel_; }
    SceneTree& Tree() { return *tree_; }
    TimeBar& Time() { return *time_; }
    DoctorDock& Doctor() { return *doctor_; }
    Autosave& Copies() { return *autosave_; }

    // How the user is asked; tests answer in their place.
    std::function<CloseAnswer()> askToSave;
    std::function<std::filesystem::path(bool toSave)> askForFile;

 protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void AddFileCommands();
    void AddDriveCommands();
    void AddDialogs();
    void AddMenus();
    void AddDocks();
    void AddToolBar();
    QMenu* AddMenu(const QString& title, const QStringList& commands);
    void ConnectParts();
    void RestoreLayout();
    void OfferRescued(const std::filesystem::path& folder);

    bool MayReplaceScene();
    /// Looks at the car that would drive, its panel open.
    void ShowCar();
    bool Save();
    bool SaveAs();
    void ShowTitle();
    void FillRecent(QMenu& menu);
    void Remember(const std::filesystem::path& file);
    INode* MasterToDrive();
    void RunStarted();
    void RunStopped();
    void ShowTracks();
    void ShowContextMenu(const QPoint& globalAt);
    void ShowAbout();
    void ShowHelp();

    Editor editor_;
    Commands commands_;
    std::unique_ptr<DriveDesk> desk_;
    std::unique_ptr<Autosave> autosave_;
    NoticeBar* notices_ = nullptr;
    ViewArea* views_ = nullptr;
    PanelView* panel_ = nullptr;
    SceneTree* tree_ = nullptr;
    TimeBar* time_ = nullptr;
    DoctorDock* doctor_ = nullptr;
    bool shortcutsRest_ = false;
    bool wasFollowing_ = false;
};

}  // namespace tavrik_studio

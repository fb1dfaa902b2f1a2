#include "studio/window/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>

#include "host/master_panel.h"
#include "host/render/render_camera.h"
#include "host/rig_objects.h"
#include "host/sdk/panels.h"
#include "host/sdk/standin.h"
#include "studio/dialogs/bake_tracks_dialog.h"
#include "studio/dialogs/doctor_dock.h"
#include "studio/dialogs/export_film_dialog.h"
#include "studio/dialogs/garage_dialog.h"
#include "studio/dialogs/import_ground_dialog.h"
#include "studio/dialogs/render_dialog.h"
#include "studio/dialogs/rig_wizard_dialog.h"
#include "studio/dialogs/sample_ground_dialog.h"
#include "studio/window/edit_commands.h"
#include "studio/window/track_overlay.h"

namespace tavrik_studio {
namespace fs = std::filesystem;
namespace {

constexpr int kMostRecent = 10;
constexpr int kDoctorHeight = 170;  // pixels, until the user drags it
constexpr const char* kRecent = "recentFiles";
constexpr const char* kGeometry = "window/geometry";
constexpr const char* kLayout = "window/layout";

QString NameOf(const fs::path& file) { return QString::fromStdString(file.string()); }

/// A car is locked once its chassis follows a recording.
bool IsLocked(INode& master) {
    for (INode* const chassis : tavrik_host::NodesOf(tavrik::ObjectClass::Chassis)) {
        if (tavrik_host::HasTavrikControl(*chassis) && tavrik_host::MasterOf(*chassis) == &master) return true;
    }
    return false;
}

CloseAnswer AskToSave(QWidget* parent, const QString& name) {
    QMessageBox box(QMessageBox::Warning, MainWindow::tr("Unsaved changes"),
                    MainWindow::tr("%1 has changes that are not saved.").arg(name),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent);
    box.setDefaultButton(QMessageBox::Save);
    const int answer = box.exec();
    return answer == QMessageBox::Save      ? CloseAnswer::Save
           : answer == QMessageBox::Discard ? CloseAnswer::Discard
                                            : CloseAnswer::Cancel;
}

fs::path AskForFile(QWidget* parent, bool toSave) {
    const QString filter = MainWindow::tr("Scenes (*.glb *.gltf)");
    const QString file = toSave ? QFileDialog::getSaveFileName(parent, MainWindow::tr("Save scene"), "scene.glb", filter)
                                : QFileDialog::getOpenFileName(parent, MainWindow::tr("Open scene"), {}, filter);
    if (toSave && !file.isEmpty() && QFileInfo(file).suffix().isEmpty()) return (file + ".glb").toStdString();
    return file.toStdString();
}

}  // namespace

MainWindow::MainWindow(const fs::path& autosaveFolder) {
    setObjectName("main");
    setAcceptDrops(true);
    resize(1280, 800);
    askToSave = [this] { return AskToSave(this, windowTitle().remove("[*]").section(" - ", 0, 0)); };
    askForFile = [this](bool toSave) { return AskForFile(this, toSave); };
    desk_ = std::make_unique<DriveDesk>(editor_, this);
    auto* const middle = new QWidget(this);
    auto* const column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    notices_ = new NoticeBar(middle);
    views_ = new ViewArea(editor_, commands_, middle);
    time_ = new TimeBar(editor_, commands_, middle);
    column->addWidget(notices_);
    column->addWidget(views_, 1);
    column->addWidget(time_);
    setCentralWidget(middle);
    AddFileCommands();
    AddEditCommands(editor_, commands_, [this] { desk_->StopRun(); });
    AddDriveCommands();
    AddDocks();
    AddDialogs();
    AddMenus();
    AddToolBar();
    ConnectParts();
    for (QAction* const action : commands_.All()) {
        action->installEventFilter(this);
        // Those of views are keys of a view alone.
        if (action->shortcutContext() == Qt::WindowShortcut) addAction(action);
    }
    RestoreLayout();
    OfferRescued(autosaveFolder);
    autosave_ = std::make_unique<Autosave>(editor_, autosaveFolder);
    connect(autosave_.get(), &Autosave::Failed, this,
            [this](const QString& fault) { notices_->Say(tr("The scene could not be autosaved: %1").arg(fault)); });
    ShowTitle();
    commands_.Refresh();
}

MainWindow::~MainWindow() {
    // A run holds a change of the scene, which must end before the scene does.
    desk_->StopRun();
    editor_.Select(nullptr);
    editor_.disconnect();
}

bool MainWindow::OpenFile(const fs::path& file) {
    if (!MayReplaceScene()) return false;
    QString problem;
    if (!editor_.Open(file, problem)) {
        notices_->Say(problem);
        return false;
    }
    notices_->Clear();
    Remember(file);
    ShowCar();
    ShowTracks();
    return true;
}

void MainWindow::ShowCar() {
    INode* const master = MasterToDrive();
    if (master == nullptr) {
        views_->Main().FrameAll();
        return;
    }
    std::vector<INode*> car = tavrik_host::NodesOf(tavrik::ObjectClass::Wheel);
    std::erase_if(car, [&](INode* wheel) { return tavrik_host::MasterOf(*wheel) != master; });
    if (INode* const chassis = tavrik_host::ChassisOf(*master)) car.push_back(chassis);
    editor_.Select(car.empty() ? std::vector<INode*>{master} : car);
    views_->Main().FrameSelection();
    editor_.Select(master);
}

bool MainWindow::SaveFile(const fs::path& file) {
    desk_->StopRun();
    QString problem;
    if (!editor_.Save(file, problem)) {
        notices_->Say(problem);
        return false;
    }
    Remember(file);
    statusBar()->showMessage(tr("Saved %1").arg(NameOf(file)), 5000);
    return true;
}

bool MainWindow::OpenDrive() {
    INode* const master = MasterToDrive();
    if (master == nullptr) {
        notices_->Say(tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik).empty()
                          ? tr("There is no car yet: import one, take one from the garage, or make a master object.")
                          : tr("There are several cars: select the master object of the one to drive."));
        return false;
    }
    editor_.Select(master);
    if (!IsLocked(*master)) {
        Change change(editor_, tr("Lock Components"));
        tavrik_host::PressMasterButton(tavrik_host::MasterButton::Lock);
        change.KeepIfChanged();
        editor_.TouchNodes();
    }
    tavrik_host::PressMasterButton(tavrik_host::MasterButton::Drive);
    commands_.Refresh();
    return desk_->Windows().Face(tavrik::WindowKind::Drive) != nullptr;
}

void MainWindow::AddFileCommands() {
    commands_.Add("file.new", tr("&New"), QKeySequence::New, [this] {
        if (!MayReplaceScene()) return;
        editor_.New();
        ShowTracks();
    });
    commands_
        .Add("file.open", tr("&Open..."), QKeySequence::Open,
             [this] {
                 const fs::path file = askForFile(false);
                 if (!file.empty()) OpenFile(file);
             })
        .setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
    commands_.Add("file.save", tr("&Save"), QKeySequence::Save, [this] { Save(); })
        .setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    commands_.Add("file.save_as", tr("Save &As..."), QKeySequence::SaveAs, [this] { SaveAs(); });
    commands_.Add("file.quit", tr("&Quit"), QKeySequence::Quit, [this] { close(); });
}

void MainWindow::AddDriveCommands() {
    commands_
        .Add(
            "drive.drive", tr("&Drive"), QKeySequence("F5"), [this] { OpenDrive(); }, [this] { return !desk_->IsRunning(); })
        .setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
    commands_.Add(
        "drive.stop", tr("&Stop the Run"), QKeySequence("Shift+F5"), [this] { desk_->StopRun(); },
        [this] { return desk_->IsRunning(); });
    commands_.Add("help.about", tr("&About Tavrik"), {}, [this] { ShowAbout(); });
    commands_.Add("help.keys", tr("&Keys and Mouse"), QKeySequence::HelpContents, [this] { ShowHelp(); });
}

QMenu* MainWindow::AddMenu(const QString& title, const QStringList& commands) {
    QMenu* const menu = menuBar()->addMenu(title);
    for (const QString& name : commands) {
        if (name.isEmpty()) {
            menu->addSeparator();
        } else if (QAction* const action = commands_.Find(name)) {
            menu->addAction(action);
        }
    }
    return menu;
}

void MainWindow::AddDialogs() {
    const auto show = [](QDialog* dialog) {
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    };
    // A run must not go on behind a dialog that changes its scene, or writes what is half driven.
    const auto add = [this, show](const char* name, const QString& text, std::function<QDialog*()> make) {
        commands_.Add(name, text, {}, [this, show, make = std::move(make)] {
            desk_->StopRun();
            show(make());
        });
    };
    add("file.import_ground", tr("Import &Ground..."), [this] { return new ImportGroundDialog(editor_, {}, this); });
    add("file.sample_ground", tr("Sa&mple Ground..."), [this] { return new SampleGroundDialog(editor_, this); });
    add("file.import_car", tr("Import &Car..."), [this] { return new RigWizardDialog(editor_, {}, this); });
    add("file.garage", tr("Gara&ge..."), [this] {
        return new GarageDialog(
            editor_, [this] { return MayReplaceScene(); }, this);
    });
    add("file.export_film", tr("&Export Film..."), [this] { return new ExportFilmDialog(editor_, this); });
    add("file.render", tr("&Render Pictures..."), [this] { return new RenderDialog(editor_, this); });
    add("file.bake_tracks", tr("&Bake Tracks..."), [this] { return new BakeTracksDialog(editor_, this); });
    doctor_ = new DoctorDock(editor_, this);
    doctor_->setObjectName("dock.doctor");
    addDockWidget(Qt::BottomDockWidgetArea, doctor_);
    doctor_->hide();
    commands_.Add("drive.doctor", tr("&Check the Rigs"), QKeySequence("F6"), [this] {
        if (doctor_->isHidden()) {
            doctor_->show();
            resizeDocks({doctor_}, {kDoctorHeight}, Qt::Vertical);
        }
        doctor_->raise();
        doctor_->LookAgain();
    });
}

void MainWindow::AddMenus() {
    QMenu* const file = AddMenu(tr("&File"), {"file.new", "file.open", "file.save", "file.save_as", "", "file.import_ground",
                                              "file.sample_ground", "file.import_car", "file.garage", "", "file.export_film",
                                              "file.render", "file.bake_tracks", "", "file.quit"});
    auto* const recent = new QMenu(tr("Open &Recent"), file);
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { FillRecent(*recent); });
    file->insertMenu(commands_.Find("file.save"), recent);
    QMenu* const edit =
        AddMenu(tr("&Edit"), {"edit.undo", "edit.redo", "", "edit.duplicate", "edit.delete", "", "edit.select_all",
                              "edit.select_none", "", "tool.select", "tool.move", "tool.rotate", "tool.snap"});
    (void)edit;
    AddMenu(tr("&Create"), {"create.master", "create.chassis", "create.suspension", "create.wheel", "create.sphere",
                            "create.hitch", "create.tongue", "create.push", "create.start"});
    QMenu* const view =
        AddMenu(tr("&View"), {"view.perspective", "view.top", "view.bottom", "view.front", "view.back", "view.left",
                              "view.right", "", "view.frame_all", "view.frame_selection", "view.follow", "", "view.grid",
                              "view.sky", "view.four", "", "tool.orbit", "tool.pan", "tool.zoom"});
    view->addSeparator();
    for (QDockWidget* const dock : findChildren<QDockWidget*>()) view->addAction(dock->toggleViewAction());
    AddMenu(tr("&Drive"),
            {"drive.drive", "drive.stop", "drive.doctor", "", "time.play", "time.first", "time.back", "time.on", "time.last"});
    AddMenu(tr("&Help"), {"help.keys", "help.about"});
}

void MainWindow::AddToolBar() {
    QToolBar* const bar = addToolBar(tr("Tools"));
    bar->setObjectName("tools");
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    for (const char* name :
         {"file.open", "file.save", "", "edit.undo", "edit.redo", "", "tool.select", "tool.move", "tool.rotate", "tool.orbit",
          "tool.pan", "tool.zoom", "", "view.frame_all", "view.follow", "", "drive.drive"}) {
        if (*name == '\0') {
            bar->addSeparator();
        } else if (QAction* const action = commands_.Find(name)) {
            bar->addAction(action);
        }
    }
}

void MainWindow::AddDocks() {
    const auto add = [this](const char* name, const QString& title, QWidget* content, Qt::DockWidgetArea area) {
        auto* const dock = new QDockWidget(title, this);
        dock->setObjectName(name);
        dock->setWidget(content);
        addDockWidget(area, dock);
        return dock;
    };
    tree_ = new SceneTree(editor_, this);
    panel_ = new PanelView(editor_, this);
    QDockWidget* const scene = add("dock.tree", tr("Scene"), tree_, Qt::LeftDockWidgetArea);
    QDockWidget* const panel = add("dock.panel", tr("Panel"), panel_, Qt::RightDockWidgetArea);
    resizeDocks({scene, panel}, {270, 330}, Qt::Horizontal);
}

void MainWindow::ConnectParts() {
    const auto say = [this](const QString& sentence) { notices_->Say(sentence); };
    connect(views_, &ViewArea::Said, this, say);
    connect(views_, &ViewArea::Drawn, this, [this](qint64 nanoseconds) {
        if (desk_->IsRunning()) desk_->Profile().AddViewTime(std::chrono::nanoseconds(nanoseconds));
    });
    connect(views_, &ViewArea::MenuWanted, this, &MainWindow::ShowContextMenu);
    connect(desk_.get(), &DriveDesk::Complained, this, say);
    connect(desk_.get(), &DriveDesk::RunStarted, this, &MainWindow::RunStarted);
    connect(desk_.get(), &DriveDesk::RunStopped, this, &MainWindow::RunStopped);
    connect(desk_.get(), &DriveDesk::AcceleratorsChanged, this, [this](bool enabled) { shortcutsRest_ = !enabled; });
    connect(&editor_, &Editor::StateChanged, this, &MainWindow::ShowTitle);
    // A way back may bring another recording.
    connect(&editor_, &Editor::SceneReplaced, this, [this] {
        QMetaObject::invokeMethod(
            this, [this] { ShowTracks(); }, Qt::QueuedConnection);
    });
    tree_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(tree_, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { ShowContextMenu(tree_->viewport()->mapToGlobal(at)); });
}

void MainWindow::RestoreLayout() {
    const QSettings settings;
    restoreGeometry(settings.value(kGeometry).toByteArray());
    restoreState(settings.value(kLayout).toByteArray());
}

void MainWindow::OfferRescued(const fs::path& folder) {
    const std::vector<RescuedScene> rescued = Autosave::Rescued(folder);
    if (rescued.empty()) return;
    const RescuedScene scene = rescued.front();
    const QString name = scene.file.empty() ? tr("a scene that was never saved") : NameOf(scene.file);
    notices_->Say(tr("The last session ended without saving %1.").arg(name), tr("Recover"), [this, scene] {
        QString problem;
        if (!MayReplaceScene()) return;
        if (!editor_.Recover(scene.copy, scene.file, problem)) {
            notices_->Say(problem);
            return;
        }
        autosave_->SaveNow();
        Autosave::Remove(scene);
        ShowCar();
    });
}

bool MainWindow::MayReplaceScene() {
    desk_->StopRun();
    if (!editor_.IsModified()) return true;
    const CloseAnswer answer = askToSave();
    return answer == CloseAnswer::Discard || (answer == CloseAnswer::Save && Save());
}

bool MainWindow::Save() { return editor_.File().empty() ? SaveAs() : SaveFile(editor_.File()); }

bool MainWindow::SaveAs() {
    const fs::path file = askForFile(true);
    return !file.empty() && SaveFile(file);
}

void MainWindow::ShowTitle() {
    const QString name = editor_.File().empty() ? tr("Untitled") : QFileInfo(NameOf(editor_.File())).fileName();
    setWindowTitle(name + "[*] - Tavrik");
    setWindowModified(editor_.IsModified());
}

void MainWindow::FillRecent(QMenu& menu) {
    menu.clear();
    for (const QString& file : QSettings().value(kRecent).toStringList()) {
        menu.addAction(file, this, [this, file] { OpenFile(file.toStdString()); });
    }
    if (menu.isEmpty()) menu.addAction(tr("Nothing yet"))->setEnabled(false);
}

void MainWindow::Remember(const fs::path& file) {
    QSettings settings;
    QStringList recent = settings.value(kRecent).toStringList();
    const QString name = NameOf(fs::absolute(file));
    recent.removeAll(name);
    recent.prepend(name);
    settings.setValue(kRecent, recent.mid(0, kMostRecent));
}

INode* MainWindow::MasterToDrive() {
    const std::vector<INode*> masters = tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik);
    if (INode* const current = editor_.Current(); current != nullptr && std::ranges::find(masters, current) != masters.end()) {
        return current;
    }
    // Of a train the vehicle in front drives; it was made first.
    return masters.empty() ? nullptr : masters.front();
}

void MainWindow::RunStarted() {
    time_->Pause();
    ViewWidget& view = views_->Main();
    wasFollowing_ = view.Followed() != nullptr;
    if (INode* const master = editor_.Current(); master != nullptr && !wasFollowing_) {
        view.SetFollow(tavrik_host::ChassisOf(*master));
    }
    commands_.Refresh();
}

void MainWindow::RunStopped() {
    if (!wasFollowing_) views_->Main().SetFollow(nullptr);
    ShowTracks();
    commands_.Refresh();
    statusBar()->showMessage(tr("The run is recorded. Scrub the timeline, or drive on from any frame."), 8000);
}

void MainWindow::ShowTracks() {
    const std::optional<TrackPicturePlace> tracks = PaintTracks(editor_);
    for (ViewWidget* const view : views_->All()) {
        if (tracks) {
            view->SetTracks(tracks->image, tracks->low, tracks->side);
        } else {
            view->SetTracks({}, Point2(0.0f, 0.0f), 1.0f);
        }
    }
}

void MainWindow::ShowContextMenu(const QPoint& globalAt) {
    commands_.Refresh();
    QMenu menu(this);
    for (const char* name : {"edit.undo", "edit.redo", "", "edit.duplicate", "edit.delete", "", "view.frame_selection",
                             "view.frame_all", "view.follow", "", "drive.drive"}) {
        if (*name == '\0') {
            menu.addSeparator();
        } else if (QAction* const action = commands_.Find(name)) {
            menu.addAction(action);
        }
    }
    menu.exec(globalAt);
}

void MainWindow::ShowAbout() {
    QMessageBox::about(this, tr("About Tavrik"),
                       tr("<h3>Tavrik %1</h3><p>Drive a car over a mesh with your hands on the keys, and keep the motion.</p>")
                           .arg(QApplication::applicationVersion()));
}

void MainWindow::ShowHelp() {
    auto* const help = new QTextBrowser(this);
    help->setWindowFlag(Qt::Window);
    help->setAttribute(Qt::WA_DeleteOnClose);
    help->setWindowTitle(tr("Keys and Mouse"));
    QString rows;
    for (const QAction* const action : commands_.All()) {
        if (action->shortcut().isEmpty()) continue;
        rows += QString("<tr><td><b>%1</b>&nbsp;&nbsp;</td><td>%2</td></tr>")
                    .arg(action->shortcut().toString(QKeySequence::NativeText).toHtmlEscaped(),
                         action->text().remove('&').toHtmlEscaped());
    }
    help->setHtml(tr("<h3>Views</h3><p>Middle button: look about. With Shift: move. With Ctrl, or the wheel: nearer and "
                     "farther. Arrow keys, plus and minus do the same; so do the tools Orbit, Pan and Zoom with the left "
                     "button.</p><h3>Driving</h3><p>Press Drive, then ENTER in the drive window to start and to stop. Keys are "
                     "bound in the rollout \"Controller Setup\" of the master object.</p><h3>Keys</h3><table>%1</table>")
                      .arg(rows));
    help->resize(460, 620);
    help->show();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!MayReplaceScene()) {
        event->ignore();
        return;
    }
    QSettings settings;
    settings.setValue(kGeometry, saveGeometry());
    settings.setValue(kLayout, saveState());
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile() && OpenFile(url.toLocalFile().toStdString())) break;
    }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    // While somebody drives, keys are the car's.
    if (event->type() == QEvent::Shortcut && shortcutsRest_) return true;
    return QMainWindow::eventFilter(watched, event);
}

}  // namespace tavrik_studio

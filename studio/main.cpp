#include <fmt/format.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>

#include "drive/window_messages.h"
#include "host/plugin_file.h"
#include "host/sdk/standin.h"
#include "studio/window/main_window.h"

namespace {

using tavrik_studio::MainWindow;

constexpr QSize kPictureSize{1080, 680};
constexpr std::chrono::milliseconds kSettleTime{1500};  // until views are drawn with all effort

/// Drives the scene for a while as a user would, and tells where the time went.
class ProfileRun {
 public:
    ProfileRun(MainWindow& window, double seconds) : window_(window) {
        QTimer::singleShot(0, &window_, [this] { Begin(); });
        QTimer::singleShot(int(seconds * 1000.0), &window_, [this] { End(); });
    }

 private:
    void Begin() {
        if (!window_.OpenDrive()) return Fail();
        window_.Desk().Windows().SendToDrive(tavrik::kWmKeyUp, std::uint64_t(tavrik::kVkReturn));
        if (!window_.Desk().IsRunning()) Fail();
    }
    void Fail() {
        fmt::print(stderr, "The scene can't be driven: {}\n", window_.Notices().Sentence().toStdString());
        QApplication::exit(1);
    }
    void End() {
        window_.Desk().StopRun();
        fmt::print("{}\n", window_.Desk().ProfileReport().toStdString());
        QApplication::exit(window_.Desk().Profile().Ticks() > 0 ? 0 : 1);
    }

    MainWindow& window_;
};

/// The window, or the dialog in front of it.
bool SavePicture(MainWindow& window, const QString& file) {
    QWidget* front = &window;
    for (QDialog* const dialog : window.findChildren<QDialog*>()) {
        if (dialog->isVisible()) front = dialog;
    }
    return front->grab().save(file);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication::setOrganizationName("Norvane");
    QApplication::setApplicationName("Tavrik Studio");
    QApplication::setApplicationVersion(TAVRIK_VERSION);
    const QApplication application(argc, argv);
    QCommandLineParser words;
    words.setApplicationDescription("Drive a car over a mesh with your hands on the keys, and keep the motion.");
    words.addHelpOption();
    words.addVersionOption();
    words.addPositionalArgument("scene", "Scene to open, .glb or .gltf", "[scene.glb]");
    const QCommandLineOption drive("drive", "Open the drive window at once");
    const QCommandLineOption profile("profile", "Drive the scene for ten seconds, print where the time went, and end");
    const QCommandLineOption picture("picture", "Save a picture of the window, or of the dialog in front of it, and end",
                                     "file.png");
    const QCommandLineOption command("command", "Run a command by its name once the scene is open, such as file.garage",
                                     "name");
    const QCommandLineOption select("select", "Select a node once the scene is open", "node");
    words.addOptions({drive, profile, picture, command, select});
    words.process(application);
    std::string problem;
    if (!tavrik_host::LoadTavrikPlugin(problem)) {
        fmt::print(stderr, "{}\n", problem);
        return 1;
    }
    MainWindow window;
    if (words.isSet(picture)) window.resize(kPictureSize);
    window.show();
    const QStringList files = words.positionalArguments();
    if (!files.isEmpty() && !window.OpenFile(files.front().toStdString()) && words.isSet(profile)) {
        fmt::print(stderr, "{}\n", window.Notices().Sentence().toStdString());
        return 1;
    }
    for (INode* const node : tavrik_host::AllNodes()) {
        if (words.isSet(select) && words.value(select).toStdWString() == node->GetName()) window.TheEditor().Select(node);
    }
    for (const QString& name : words.values(command)) {
        if (window.TheCommands().Run(name)) continue;
        fmt::print(stderr, "{}: there is no such command, or it isn't possible now.\n", name.toStdString());
        return 1;
    }
    std::unique_ptr<ProfileRun> run;
    if (words.isSet(profile)) {
        run = std::make_unique<ProfileRun>(window, 10.0);
    } else if (words.isSet(picture)) {
        QTimer::singleShot(kSettleTime, &window,
                           [&] { QApplication::exit(SavePicture(window, words.value(picture)) ? 0 : 1); });
    } else if (words.isSet(drive)) {
        QTimer::singleShot(0, &window, [&window] { window.OpenDrive(); });
    }
    const int status = QApplication::exec();
    run.reset();
    return status;
}

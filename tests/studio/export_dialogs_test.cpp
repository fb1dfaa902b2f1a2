/// Films, pictures and tracks written through the real windows.

#include <gtest/gtest.h>

#include <QTest>
#include <QTimer>
#include <algorithm>

#include "host/rig_objects.h"
#include "host/scene_file.h"
#include "host/sdk/prs_control.h"
#include "studio/dialogs/bake_tracks_dialog.h"
#include "studio/dialogs/export_film_dialog.h"
#include "studio/dialogs/render_dialog.h"
#include "tests/studio/dialogs_scene.h"

namespace tavrik_studio {
namespace {

using tavrik::ObjectClass;
using tavrik::test::FileBytes;

class Exports : public test::DialogScene {
 protected:
    Exports() {
        AddCar(AddPlane());
        // Something that moves.
        auto* const motion = dynamic_cast<tavrik_host::PrsControl*>(Only(ObjectClass::Start).GetTMController());
        for (int i = 0; i < 5; ++i) motion->position.keys.push_back({i * 640, Point3(float(i) * 10.0f, 0.0f, 50.0f)});
        motion->KeysChanged();
    }
    QString Name(const char* name) const { return TextOf(folder / name); }
    static void Click(QPushButton& button) { QTest::mouseClick(&button, Qt::LeftButton); }
};

class FilmWindow : public Exports {};
class RenderWindow : public Exports {
 protected:
    static void MakeSmall(RenderDialog& dialog) {
        dialog.First().setValue(1);
        dialog.Last().setValue(2);
        dialog.Width().setValue(64);
        dialog.Height().setValue(36);
        dialog.Samples().setValue(2);
    }
};
class TracksWindow : public Exports {};

TEST_F(FilmWindow, WritesAFilmThatPlays) {
    ExportFilmDialog dialog(editor);
    dialog.show();
    dialog.File().SetPath(folder / "film.glb");
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Result().isDone) << dialog.Message().Sentence().toStdString();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_TRUE(dialog.FolderButton().isVisible());
    Picture(dialog, "film_done");
    const std::string film = FileBytes(folder / "film.glb");
    EXPECT_NE(film.find("\"animations\""), std::string::npos);
    EXPECT_EQ(film.find("NORVANE_tavrik"), std::string::npos);
}

TEST_F(FilmWindow, OpensTheFolderOfTheFilm) {
    ExportFilmDialog dialog(editor);
    dialog.show();
    QUrl opened;
    dialog.openFolder = [&opened](const QUrl& url) { opened = url; };
    dialog.File().SetPath(folder / "film.glb");
    EXPECT_FALSE(dialog.FolderButton().isVisible());
    Click(dialog.StartButton());
    Click(dialog.FolderButton());
    EXPECT_EQ(opened.toLocalFile(), TextOf(folder.path()));
}

TEST_F(FilmWindow, NeverReplacesTheScene) {
    QString problem;
    const std::filesystem::path file = folder / "scene.glb";
    ASSERT_TRUE(editor.Save(file, problem));
    const std::string before = FileBytes(file);
    ExportFilmDialog dialog(editor);
    dialog.show();
    EXPECT_EQ(dialog.File().Path(), folder / "scene_film.glb");
    dialog.File().SetPath(file);
    Click(dialog.StartButton());
    EXPECT_FALSE(dialog.Result().isDone);
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_EQ(FileBytes(file), before);
}

TEST_F(FilmWindow, AFolderThatIsNotThereIsTold) {
    ExportFilmDialog dialog(editor);
    dialog.show();
    dialog.File().SetPath(folder / "none/film.glb");
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_TRUE(dialog.Message().Sentence().contains("film.glb"));
    EXPECT_FALSE(dialog.FolderButton().isVisible());
}

TEST_F(FilmWindow, ANameWithoutAnEndingGetsOne) {
    ExportFilmDialog dialog(editor);
    dialog.show();
    dialog.File().SetPath(folder / "film");
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Result().isDone) << dialog.Message().Sentence().toStdString();
    EXPECT_EQ(folder.List(), "film.glb");
}

TEST_F(FilmWindow, AnotherEndingIsRefusedBeforeTheWork) {
    ExportFilmDialog dialog(editor);
    dialog.show();
    dialog.File().SetPath(folder / "film.mp4");
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Message().Sentence().endsWith("films are written as .glb or .gltf."));
    EXPECT_EQ(folder.List(), "");
}

TEST_F(FilmWindow, AStopWritesNothing) {
    std::atomic<bool> stop{true};
    const JobWatch watch{[](double) {}, &stop};
    const JobResult result =
        ExportFilm(editor.Document(), {}, {folder / "film.glb", tavrik_host::BakedKeys::EveryFrame}, watch);
    EXPECT_TRUE(result.isStopped);
    EXPECT_FALSE(result.isDone);
    EXPECT_EQ(folder.List(), "");
}

TEST_F(RenderWindow, ProposesTheWholeTimelineBesideTheScene) {
    QString problem;
    ASSERT_TRUE(editor.Save(folder / "hill.glb", problem));
    RenderDialog dialog(editor);
    dialog.show();
    Picture(dialog, "render");
    EXPECT_EQ(dialog.Names().Path(), folder / "hill_frames/%04d.png");
    EXPECT_EQ(dialog.First().value(), 0);
    EXPECT_EQ(dialog.Last().value(), GetCOREInterface()->GetAnimRange().End() / GetTicksPerFrame());
    EXPECT_TRUE(dialog.Message().Sentence().contains("1280 × 720"));
}

TEST_F(RenderWindow, RendersTheFrames) {
    RenderDialog dialog(editor);
    dialog.show();
    dialog.Names().SetPath(folder / "shots/%02d.png");
    MakeSmall(dialog);
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Result().isDone) << dialog.Message().Sentence().toStdString();
    EXPECT_TRUE(dialog.Message().Sentence().startsWith("2 pictures written"));
    EXPECT_EQ(QImage(Name("shots/01.png")).size(), QSize(64, 36));
    EXPECT_TRUE(std::filesystem::exists(folder / "shots/02.png"));
    EXPECT_EQ(dialog.Result().folder, folder / "shots");
}

TEST_F(RenderWindow, CancelStopsTheJobAndKeepsWhatIsFinished) {
    RenderDialog dialog(editor);
    dialog.show();
    dialog.Names().SetPath(folder / "%d.png");
    MakeSmall(dialog);
    dialog.Last().setValue(90);
    QString left;
    bool wasModal = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &dialog, [&] {
        JobDialog* const job = dialog.RunningJob();
        if (job == nullptr || !std::filesystem::exists(folder / "2.png")) return;
        if (job->CancelButton().isEnabled()) Picture(*job, "job");
        wasModal = job->isModal() && job->isVisible();
        Click(job->CancelButton());
    });
    timer.start(5);
    Click(dialog.StartButton());
    timer.stop();
    EXPECT_TRUE(wasModal);
    EXPECT_TRUE(dialog.Result().isStopped);
    EXPECT_FALSE(dialog.Result().isDone);
    EXPECT_EQ(dialog.RunningJob(), nullptr);
    EXPECT_FALSE(QImage(Name("1.png")).isNull());
    EXPECT_FALSE(std::filesystem::exists(folder / "90.png"));
    EXPECT_TRUE(dialog.Message().Sentence().startsWith("Stopped;")) << dialog.Message().Sentence().toStdString();
    EXPECT_TRUE(dialog.FolderButton().isVisible());
}

TEST_F(RenderWindow, GoesOnWhereItWasStopped) {
    RenderDialog dialog(editor);
    dialog.show();
    dialog.Names().SetPath(folder / "%d.png");
    MakeSmall(dialog);
    dialog.Last().setValue(1);
    Click(dialog.StartButton());
    dialog.Last().setValue(2);
    dialog.Resume().setChecked(true);
    Click(dialog.StartButton());
    EXPECT_EQ(dialog.Message().Sentence(), "1 picture written; 1 were there already.");
}

TEST_F(RenderWindow, SeveralFramesNeedNumbersInTheirNames) {
    RenderDialog dialog(editor);
    dialog.show();
    dialog.Names().SetPath(folder / "shot.png");
    MakeSmall(dialog);
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_EQ(folder.List(), "");
}

TEST_F(RenderWindow, ARangeThatRunsBackwardsIsTold) {
    RenderDialog dialog(editor);
    dialog.show();
    dialog.First().setValue(5);
    dialog.Last().setValue(3);
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_FALSE(dialog.Result().isDone);
}

TEST_F(TracksWindow, BakesAPictureAndItsNormalMap) {
    BakeTracksDialog dialog(editor);
    dialog.show();
    Picture(dialog, "tracks");
    EXPECT_FALSE(dialog.Bump().isEnabled());
    dialog.WithBump().setChecked(true);
    dialog.Color().SetPath(folder / "color.png");
    dialog.Bump().SetPath(folder / "bump.png");
    dialog.Size().setCurrentIndex(0);
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Result().isDone) << dialog.Message().Sentence().toStdString();
    Picture(dialog, "tracks_done");
    EXPECT_EQ(QImage(Name("color.png")).width(), 512);
    EXPECT_EQ(QImage(Name("bump.png")).width(), 512);
}

TEST_F(TracksWindow, ASequenceIsProposedWithNumbers) {
    BakeTracksDialog dialog(editor);
    dialog.TracksUpTo().setCurrentIndex(dialog.TracksUpTo().findData(int(BakeTracksDialog::When::EachFrame)));
    EXPECT_EQ(dialog.Color().Path().filename(), "%04d.png");
}

TEST_F(TracksWindow, AStopWritesNoHalfPicture) {
    TracksOrder order;
    order.color = (folder / "color.png").string();
    order.size = 512;
    std::atomic<bool> stop{false};
    int told = 0;
    const JobWatch watch{[&](double) { stop = ++told > 3; }, &stop};
    const JobResult result = BakeTracks(editor.Document(), order, watch);
    EXPECT_TRUE(result.isStopped);
    EXPECT_LT(told, 512);
    EXPECT_EQ(folder.List(), "");
}

TEST_F(TracksWindow, BothPicturesNeedNamesOfTheirOwn) {
    BakeTracksDialog dialog(editor);
    dialog.show();
    dialog.WithBump().setChecked(true);
    dialog.Color().SetPath(folder / "same.png");
    dialog.Bump().SetPath(folder / "same.png");
    Click(dialog.StartButton());
    EXPECT_TRUE(dialog.Message().Complains());
    EXPECT_EQ(folder.List(), "");
}

TEST(TimeLeft, IsToldOnceSomethingCanBeTold) {
    EXPECT_EQ(TimeLeftText(0.2, 0.5), "");
    EXPECT_EQ(TimeLeftText(10.0, 0.0), "");
    EXPECT_EQ(TimeLeftText(10.0, 0.5), "0:10 left");
    EXPECT_EQ(TimeLeftText(60.0, 0.01), "1:39:00 left");
    EXPECT_EQ(TimeLeftText(10.0, 1.0), "0:00 left");
}

}  // namespace
}  // namespace tavrik_studio

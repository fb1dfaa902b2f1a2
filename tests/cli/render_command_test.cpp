// Pictures of scenes, taken by the program, and the tracks in them.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "host/render/frame_names.h"
#include "host/render/picture.h"
#include "host/render/render_sequence.h"
#include "host/render/shade_point.h"
#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "tests/cli/driven_scene.h"
#include "tests/cli/program.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class RenderCommand : public testing::Test {
 protected:
    void SetUp() override { folder.Write("scene.glb", DrivenScene()); }

    std::vector<std::string> Words(std::vector<std::string> words) const {
        words.insert(words.begin(), {"render", "scene.glb", "--size", "80x45", "--samples", "4"});
        return words;
    }
    std::string Expect(const std::vector<std::string>& words) const {
        const ProgramResult result = RunTavrik(folder.path(), words);
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_EQ(result.error, "");
        return result.out;
    }
    void ExpectRefusal(const std::vector<std::string>& words, const std::string& part, int status = 1) const {
        const ProgramResult result = RunTavrik(folder.path(), words);
        EXPECT_EQ(result.status, status) << result.error;
        EXPECT_TRUE(Has(result.error, part)) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    }

    TempFolder folder;
};

TEST_F(RenderCommand, ThreadsDontChangeAByte) {
    Expect(Words({"--frames", "90", "--out", "one.png", "--threads", "1"}));
    Expect(Words({"--frames", "90", "--out", "three.png", "--threads", "3"}));
    Expect(Words({"--frames", "90", "--out", "all.png"}));
    EXPECT_TRUE(FileBytes(folder / "one.png") == FileBytes(folder / "three.png"));
    EXPECT_TRUE(FileBytes(folder / "one.png") == FileBytes(folder / "all.png"));
}

TEST_F(RenderCommand, AFrameIsTheSameWhicheverRangeAskedForIt) {
    Expect(Words({"--frames", "88-91", "--out", "all/%03d.png"}));
    Expect(Words({"--frames", "90-91", "--out", "some/%03d.png"}));
    EXPECT_TRUE(FileBytes(folder / "all/090.png") == FileBytes(folder / "some/090.png"));
    EXPECT_FALSE(FileBytes(folder / "all/088.png") == FileBytes(folder / "all/091.png"));
}

TEST_F(RenderCommand, TracksChangeThePictureOnlyBehindTheCar) {
    for (const char* frame : {"0", "110"}) {
        Expect(Words({"--frames", frame, "--out", "with.png", "--camera", "top", "--roll", "1"}));
        Expect(Words({"--frames", frame, "--out", "without.png", "--camera", "top", "--no-tracks"}));
        EXPECT_EQ(FileBytes(folder / "with.png") == FileBytes(folder / "without.png"), frame[0] == '0');
    }
}

TEST_F(RenderCommand, ResumeKeepsWhatIsThere) {
    folder.Write("005.png", "mine");
    EXPECT_TRUE(Has(Expect(Words({"--frames", "4-6", "--out", "%03d.png", "--resume"})), "1 were there already"));
    EXPECT_EQ(FileBytes(folder / "005.png"), "mine");
    EXPECT_TRUE(FileBytes(folder / "006.png").starts_with("\x89PNG"));
    Expect(Words({"--frames", "4-6", "--out", "%03d.png"}));
    EXPECT_TRUE(FileBytes(folder / "005.png").starts_with("\x89PNG"));
}

TEST_F(RenderCommand, AFolderThatTakesNoFilesIsToldBeforeTheFirstPicture) {
    ExpectRefusal(Words({"--frames", "4-6", "--out", "/proc/%03d.png"}), "/proc/004.png");
    ExpectRefusal(Words({"--frames", "4-6", "--out", "no/such/%03d.png"}), "there is no folder");
    EXPECT_EQ(folder.List(), "scene.glb");
}

TEST_F(RenderCommand, AFullDiskLeavesWhatIsFinished) {
    Expect(Words({"--frames", "80-99", "--out", "%03d.png"}));
    const auto sizeOf = [this](int frame) { return FileBytes(folder / fmt::format("{:03}.png", frame)).size(); };
    int first = 80;
    while (first < 98 && sizeOf(first) >= sizeOf(first + 1)) ++first;
    ASSERT_LT(sizeOf(first), sizeOf(first + 1));
    // A limit on files stands for a disk that fills up; programs hear of both in the same way.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tight{sizeOf(first + 1) - 1, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    const ProgramResult result =
        RunTavrik(folder.path(), Words({"--frames", fmt::format("{}-{}", first, first + 1), "--out", "full/%03d.png"}));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(Has(result.error, fmt::format("{:03}.png", first + 1)) && Has(result.error, "--resume")) << result.error;
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    int files = 0;
    for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator(folder / "full")) ++files;
    EXPECT_EQ(files, 1);
    EXPECT_EQ(FileBytes(folder / fmt::format("full/{:03}.png", first)).size(), sizeOf(first));
}

TEST_F(RenderCommand, BadInputIsRefusedInOneSentence) {
    ExpectRefusal(Words({"--frames", "1-999", "--out", "%d.png"}), "frames 0 to 120");
    ExpectRefusal(Words({"--frames", "1", "--out", "a.png", "--camera", "Crane"}), "no camera \"Crane\"");
    ExpectRefusal(Words({"--frames", "1", "--out", "a.png", "--tread", "none.png"}), "none.png");
    folder.Write("broken.png", "\x89PNG broken");
    ExpectRefusal(Words({"--frames", "1", "--out", "a.png", "--tread", "broken.png"}), "broken.png");
    ExpectRefusal(Words({"--frames", "1-3", "--out", "a.png"}), "%04d", 2);
    ExpectRefusal(Words({"--frames", "3-1", "--out", "%d.png"}), "--frames", 2);
    ExpectRefusal(Words({"--frames", "1", "--out", "a.jpg"}), ".png", 2);
    ExpectRefusal(Words({"--frames", "1", "--out", "a.png", "--master", "Nobody"}), "\"Nobody\"");
    EXPECT_FALSE(Has(folder.List(), "a.png"));
}

TEST_F(RenderCommand, ASceneThatWasNeverDrivenHasAPictureToo) {
    Expect({"reset", "scene.glb"});
    Expect(Words({"--frames", "1", "--out", "a.png"}));
    EXPECT_TRUE(FileBytes(folder / "a.png").starts_with("\x89PNG"));
}

TEST_F(RenderCommand, ARecordingOfOneFrameHasAPictureWithoutTracks) {
    Expect({"drive", "scene.glb", "--seconds", "0.03"});
    Expect(Words({"--frames", "0-1", "--out", "with%d.png", "--roll", "1"}));
    Expect(Words({"--frames", "0-1", "--out", "without%d.png", "--no-tracks"}));
    for (const char* frame : {"0.png", "1.png"}) {
        const std::string with = FileBytes(folder / (std::string("with") + frame));
        EXPECT_TRUE(with.starts_with("\x89PNG") && with == FileBytes(folder / (std::string("without") + frame))) << frame;
    }
    Expect({"tracks", "scene.glb", "--bake", "c.png", "--size", "64"});
}

TEST_F(RenderCommand, TracksAreBakedIntoThePlaneOfTheGround) {
    const std::string told = Expect({"tracks", "scene.glb", "--bake", "c.png", "--bump", "n.png", "--size", "2048"});
    EXPECT_TRUE(Has(told, "straight down: x -150.000 to 150.000 m")) << told;
    tavrik_host::Picture colors, bumps;
    std::string problem;
    ASSERT_TRUE(colors.Decode(FileBytes(folder / "c.png"), problem)) << problem;
    ASSERT_TRUE(bumps.Decode(FileBytes(folder / "n.png"), problem)) << problem;
    EXPECT_EQ(colors.width(), 2048);
    constexpr auto kEdge = tavrik_host::PictureEdge::Clamp;
    EXPECT_EQ(colors.At(0.1f, 0.1f, 0.0f, kEdge, kEdge, false).red, 1.0f);
    // The car went north from (1, 2): ten metres on its tracks cross a row of the picture.
    int dark = 0, leaning = 0;
    for (int i = 0; i < 2048; ++i) {
        const float u = (float(i) + 0.5f) / 2048.0f, v = 0.5f - 12.0f / 300.0f;
        dark += colors.At(u, v, 0.0f, kEdge, kEdge, false).red < 0.97f;
        leaning += bumps.At(u, v, 0.0f, kEdge, kEdge, false).blue < 0.95f;
    }
    EXPECT_GE(dark, 2);
    EXPECT_GE(leaning, 1);  // at a shoulder; the middle of a track is level
    EXPECT_LT(dark, 20);
}

TEST_F(RenderCommand, BakedTracksDontDependOnThreads) {
    Expect({"tracks", "scene.glb", "--bake", "a.png", "--size", "512", "--threads", "1"});
    Expect({"tracks", "scene.glb", "--bake", "b.png", "--size", "512", "--threads", "3"});
    EXPECT_TRUE(FileBytes(folder / "a.png") == FileBytes(folder / "b.png"));
}

TEST(FrameNames, TakeOneNumber) {
    tavrik_host::FrameNames names;
    std::string problem;
    ASSERT_TRUE(names.Read("a/%04d.png", problem));
    EXPECT_EQ(names.Of(7), "a/0007.png");
    EXPECT_EQ(names.Of(12345), "a/12345.png");
    ASSERT_TRUE(names.Read("100%%.png", problem));
    EXPECT_FALSE(names.IsNumbered());
    EXPECT_EQ(names.Of(7), "100%.png");
    for (const char* wrong : {"%d%d.png", "%s.png", "%.png", "%04d.jpg", "%4d.png", ""}) {
        EXPECT_FALSE(names.Read(wrong, problem)) << wrong;
    }
}

// ----------------------------------------------------------------------------------------------------- marks on the ground

class TrackMarks : public testing::Test {
 protected:
    TrackMarks() {
        std::string problem;
        EXPECT_TRUE(tavrik_host::LoadPlugin(TAVRIK_PLUGIN_FILE, problem)) << problem;
        EXPECT_TRUE(tavrik_host::LoadSceneBytes("scene.glb", DrivenScene(), document, problem)) << problem;
        tavrik_host::BeginRender();
    }
    ~TrackMarks() override { tavrik_host::ResetScene(); }

    /// The places right below the wheels' middles as they were at a tick.
    static std::vector<::Point3> PlacesUnder(TimeValue tick) {
        std::vector<::Point3> places;
        for (INode* const wheel : tavrik_host::NodesOf(ObjectClass::Wheel)) {
            places.push_back(wheel->GetNodeTM(tick).GetTrans());
            places.back().z = 0.0f;
        }
        return places;
    }
    /// The darkest of some places at the end of the drive.
    static float DarkestOf(const std::vector<::Point3>& places, const tavrik_host::TrackLook& look) {
        constexpr TimeValue kEnd = 4 * 4800;
        tavrik_host::TrackPainter painter(tavrik_host::NodesOf(ObjectClass::Tavrik), look);
        painter.Update(kEnd);
        const ::Matrix3 identity(TRUE);
        tavrik_host::ShadePoint point(kEnd, nullptr, identity);
        float darkest = 1.0f;
        for (const ::Point3& place : places) {
            point.MoveTo(place, ::Point3(0, 0, 1));
            darkest = std::min(darkest, painter.At(point).value);
        }
        return darkest;
    }
    static float Under(TimeValue tick, const tavrik_host::TrackLook& look) { return DarkestOf(PlacesUnder(tick), look); }

    tavrik_host::SceneDocument document;
};

TEST_F(TrackMarks, AreDarkerWhereAWheelRolled) {
    tavrik_host::TrackLook look;
    look.skid = 0.0f;
    EXPECT_LT(Under(TimeValue(2.4 * 4800), look), 0.97f);
}

TEST_F(TrackMarks, AreDarkerStillWhereItSlid) {
    const tavrik_host::TrackLook look;
    EXPECT_LT(Under(TimeValue(3.15 * 4800), look), 0.5f * Under(TimeValue(2.4 * 4800), look));
}

TEST_F(TrackMarks, ArePlainWhereTheWheelsAreGone) {
    tavrik_host::TrackLook look;
    look.skid = 0.0f;
    look.roll = 1.0f;
    const std::vector<::Point3> places = PlacesUnder(TimeValue(2.4 * 4800));
    const float even = DarkestOf(places, look);
    for (INode* const wheel : tavrik_host::NodesOf(ObjectClass::Wheel)) GetCOREInterface()->DeleteNode(wheel);
    const float plain = DarkestOf(places, look);
    EXPECT_LT(plain, 1.0f);
    EXPECT_GT(plain, even);  // a rounded section presses less than a tread that touches all over
}

TEST_F(TrackMarks, AreNoneWhereTheMasterIsGone) {
    tavrik_host::TrackPainter painter(tavrik_host::NodesOf(ObjectClass::Tavrik), {});
    GetCOREInterface()->DeleteNode(tavrik_host::NodesOf(ObjectClass::Tavrik).front());
    painter.Update(4 * 4800);
    const ::Matrix3 identity(TRUE);
    tavrik_host::ShadePoint point(4 * 4800, nullptr, identity);
    point.MoveTo(::Point3(0, 0, 0), ::Point3(0, 0, 1));
    const tavrik_host::TrackMark mark = painter.At(point);
    EXPECT_EQ(mark.value, 1.0f);
    EXPECT_TRUE(mark.bump == ::Point3(0, 0, 0));
}

}  // namespace
}  // namespace tavrik::test

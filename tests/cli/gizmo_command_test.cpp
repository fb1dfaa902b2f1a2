// Pictures of rigs, taken in process and by the program.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/plugin_file.h"
#include "host/render/gizmo_picture.h"
#include "host/render/picture.h"
#include "host/rig_objects.h"
#include "host/scene_file.h"
#include "host/sdk/standin.h"
#include "host/sdk/view_picking.h"
#include "rig/parameter_tables.h"
#include "tests/cli/program.h"
#include "tests/host/temp_folder.h"

namespace {

using tavrik::CanvasFonts;
using tavrik::LoadCanvasFonts;
using tavrik::ObjectClass;
using tavrik::RgbImage;
using tavrik::RgbPixel;
using tavrik::test::FileBytes;
using tavrik::test::ProgramResult;
using tavrik::test::RunTavrik;
using tavrik::test::TempFolder;
using tavrik_host::GizmoWish;
using tavrik_host::RigView;

constexpr RgbPixel kMagenta{255, 0, 255};

/// How far apart two colours are, in the component in which they differ most.
int Apart(const RgbPixel& a, const RgbPixel& b) {
    return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

/// The pixel next to a place that is nearest to a colour: lines are thin.
RgbPixel NearestTo(const RgbImage& image, const RgbPixel& color, int x, int y) {
    RgbPixel best = image.At(x, y);
    for (int dy = -2; dy <= 2; ++dy) {
        for (int dx = -2; dx <= 2; ++dx) {
            const RgbPixel& here = image.At(x + dx, y + dy);
            if (Apart(here, color) < Apart(best, color)) best = here;
        }
    }
    return best;
}

// ----------------------------------------------------------------------------------------------------------------- in process

class GizmoPicture : public testing::Test {
 protected:
    // A sphere alone, in a square picture of 200 pixels: its outline is a circle of 84 of them, 8 of 100 being margin.
    static constexpr int kSize = 200, kMiddle = 100, kOutline = 84;

    GizmoPicture() {
        ::setenv("TAVRIK_PLUGIN", TAVRIK_PLUGIN_FILE, 1);
        std::string problem;
        EXPECT_TRUE(tavrik_host::LoadTavrikPlugin(problem) && LoadCanvasFonts(fonts, problem)) << problem;
        tavrik_host::ResetScene();
        wish.width = wish.height = kSize;
        wish.threads = 1;
    }
    ~GizmoPicture() override { tavrik_host::ResetScene(); }

    static INode& AddSphere(const Point3& at = {0, 0, 0}) {
        Matrix3 place(TRUE);
        place.SetTrans(at);
        INode& node = tavrik_host::AddRigNode(ObjectClass::Sphere, place);
        node.SetWireColor(0xFF00FF);
        return node;
    }
    /// A square across Y, far larger than a sphere.
    static void AddWall(float y) {
        TriObject* const wall = CreateNewTriObject();
        wall->mesh.setNumVerts(4);
        wall->mesh.setNumFaces(2);
        const Point3 corners[] = {{-500, y, -500}, {500, y, -500}, {500, y, 500}, {-500, y, 500}};
        for (int i = 0; i < 4; ++i) wall->mesh.setVert(i, corners[i]);
        wall->mesh.faces[0].setVerts(0, 1, 2);
        wall->mesh.faces[1].setVerts(0, 2, 3);
        tavrik_host::CreateNode(wall, L"Wall");
    }
    RgbImage Take(std::vector<RigView> views) {
        wish.views = std::move(views);
        return TakeGizmoPicture(TakeRenderModel(tavrik_host::SceneDocument(), {}), 0, wish, fonts);
    }
    /// How far the outline's colour is from `color` where it differs most, around the middle.
    static int OutlineFrom(const RgbImage& image, const RgbPixel& color) {
        int most = 0;
        for (int i = 0; i < 12; ++i) {
            const float angle = float(i) * 0.5235988f;
            const int x = kMiddle + int(std::lround(kOutline * std::cos(angle)));
            const int y = kMiddle + int(std::lround(kOutline * std::sin(angle)));
            most = std::max(most, Apart(NearestTo(image, color, x, y), color));
        }
        return most;
    }

    CanvasFonts fonts;
    GizmoWish wish;
};

TEST_F(GizmoPicture, LinesAreWhereTheyMustBeInTheColourOfTheirNode) {
    AddSphere();
    for (const RigView view : {RigView::Front, RigView::Side, RigView::Top}) {
        const RgbImage image = Take({view});
        EXPECT_LT(OutlineFrom(image, kMagenta), 40);
        EXPECT_GT(Apart(NearestTo(image, kMagenta, kMiddle + 40, kMiddle + 40), kMagenta), 100);  // between the circles
    }
}

TEST_F(GizmoPicture, ASelectedNodeIsWhite) {
    tavrik_host::SelectNodes({&AddSphere()});
    EXPECT_LT(OutlineFrom(Take({RigView::Front}), {255, 255, 255}), 40);
}

TEST_F(GizmoPicture, LinesBehindAWallAreFaintAndStillThere) {
    AddSphere();
    AddWall(60);  // the front view looks from +Y
    const RgbImage hidden = Take({RigView::Front});
    const RgbPixel wall = hidden.At(kMiddle + 40, kMiddle + 40);
    const RgbPixel line = NearestTo(hidden, kMagenta, kMiddle, kMiddle - kOutline);
    EXPECT_GT(Apart(line, kMagenta), 80);
    EXPECT_GT(Apart(line, wall), 15);
}

TEST_F(GizmoPicture, LinesInFrontOfAWallAreWholeAndThoseThroughItAreHalf) {
    AddSphere();
    AddWall(-60);
    EXPECT_LT(OutlineFrom(Take({RigView::Front}), kMagenta), 40);
    // From the side the wall is an edge, which hides nothing.
    EXPECT_LT(OutlineFrom(Take({RigView::Side}), kMagenta), 60);
}

TEST_F(GizmoPicture, ViewsAreTheCarsOwn) {
    Matrix3 place(TRUE);  // the car heads along +X, its left to +Y
    place.SetRow(0, Point3(0, -1, 0));
    place.SetRow(1, Point3(1, 0, 0));
    INode& chassis = tavrik_host::AddRigNode(ObjectClass::Chassis, place);
    chassis.SetWireColor(0xFF00FF);
    wish.width = 400;
    const RgbImage side = Take({RigView::Side});
    // 400 units long and 100 high: it fills the width, and is a band in the middle.
    EXPECT_LT(Apart(NearestTo(side, kMagenta, 32, 100), kMagenta), 80);
    EXPECT_LT(Apart(NearestTo(side, kMagenta, 368, 100), kMagenta), 80);
    EXPECT_GT(Apart(NearestTo(side, kMagenta, 200, 20), kMagenta), 100);
    const RgbImage front = Take({RigView::Front});
    EXPECT_GT(Apart(NearestTo(front, kMagenta, 32, 100), kMagenta), 100);  // 140 wide and 100 high: the height counts
}

TEST_F(GizmoPicture, FourViewsFillThePictureWithACaptionEach) {
    AddSphere();
    wish.width = wish.height = 2 * kSize;
    const RgbImage image = Take(GizmoWish{}.views);
    ASSERT_EQ(image.width, 400);
    ASSERT_EQ(image.height, 400);
    for (const int left : {0, kSize}) {
        for (const int top : {0, kSize}) {
            int light = 0;
            for (int y = top; y < top + 16; ++y) {
                for (int x = left; x < left + 40; ++x) light += image.At(x, y).green > 200 ? 1 : 0;
            }
            EXPECT_GT(light, 10) << left << ' ' << top;
        }
    }
    for (int i = 20; i < 380; i += 7) {
        EXPECT_LT(image.At(198, i).red, 80);  // the gap between them
        EXPECT_LT(image.At(i, 198).red, 80);
    }
}

TEST_F(GizmoPicture, AnyNumberOfViewsFillsThePicture) {
    AddSphere();
    for (const std::vector<RigView>& views :
         {std::vector<RigView>{RigView::Top}, {RigView::Top, RigView::Side}, {RigView::Top, RigView::Side, RigView::Front}}) {
        const RgbImage image = Take(views);
        EXPECT_GT(image.At(kSize - 1, kSize - 1).red, 100) << views.size();
        EXPECT_GT(image.At(1, kSize - 1).red, 100) << views.size();
    }
}

TEST_F(GizmoPicture, ThreadsDontChangeAPixel) {
    AddSphere();
    AddWall(-80);
    const RgbImage one = Take({RigView::Perspective});
    wish.threads = 3;
    EXPECT_TRUE(Take({RigView::Perspective}).pixels == one.pixels);
}

TEST_F(GizmoPicture, OnlyTheNodesThatWereAskedForAreDrawnAndFramed) {
    INode& near = AddSphere();
    AddSphere({1000, 0, 0});
    EXPECT_GT(OutlineFrom(Take({RigView::Front}), kMagenta), 80);  // far away, both of them
    wish.nodes = {&near};
    EXPECT_LT(OutlineFrom(Take({RigView::Front}), kMagenta), 40);
}

TEST_F(GizmoPicture, AMasterAndAStartAreDrawnButDontPushTheCarAway) {
    AddSphere();
    INode& master = tavrik_host::AddRigNode(ObjectClass::Tavrik, Matrix3(TRUE));
    for (int i = 0; i < 3; ++i) tavrik_host::SetParam(master, tavrik::MasterParam::Dummy_Size, 5000.0f, i);
    EXPECT_LT(OutlineFrom(Take({RigView::Front}), kMagenta), 40);
}

// ---------------------------------------------------------------------------------------------------------------- the program

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class GizmoCommand : public testing::Test {
 protected:
    void SetUp() override {
        static const std::string scene = [] {
            const TempFolder made;
            for (const std::vector<std::string>& words :
                 {std::vector<std::string>{"ground", "plane", "--triangles", "200", "--out", "ground.obj"},
                  {"new", "--ground", "ground.obj", "--seconds", "4", "--out", "scene.glb"}}) {
                const ProgramResult result = RunTavrik(made.path(), words);
                EXPECT_EQ(result.status, 0) << result.error;
            }
            return FileBytes(made / "scene.glb");
        }();
        folder.Write("scene.glb", scene);
    }
    static std::vector<std::string> Words(std::vector<std::string> more) {
        std::vector<std::string> words{"gizmo", "scene.glb", "--out", "rig.png", "--size", "160x120"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    void Expect(const std::vector<std::string>& words) const {
        const ProgramResult result = RunTavrik(folder.path(), words);
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_EQ(result.error, "");
    }
    void ExpectRefusal(const std::vector<std::string>& words, const std::string& part, int status) const {
        const ProgramResult result = RunTavrik(folder.path(), words);
        EXPECT_EQ(result.status, status) << result.error;
        EXPECT_TRUE(Has(result.error, part)) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_EQ(folder.List(), "scene.glb");
    }
    /// How many pixels of the written picture are of a colour.
    int Count(const RgbPixel& color) const {
        tavrik_host::Picture picture;
        std::string problem;
        EXPECT_TRUE(picture.Decode(FileBytes(folder / "rig.png"), problem)) << problem;
        const auto byte = [](float linear) {
            const float c = linear <= 0.0031308f ? 12.92f * linear : 1.055f * std::pow(linear, 1.0f / 2.4f) - 0.055f;
            return std::uint8_t(std::lround(c * 255.0f));
        };
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const tavrik_host::PictureColor c =
                    picture.At((float(x) + 0.5f) / float(picture.width()), (float(y) + 0.5f) / float(picture.height()), 1.0f,
                               tavrik_host::PictureEdge::Clamp, tavrik_host::PictureEdge::Clamp, false);
                if (Apart({byte(c.red), byte(c.green), byte(c.blue)}, color) < 70) ++count;
            }
        }
        return count;
    }

    TempFolder folder;
};

TEST_F(GizmoCommand, DrawsLockedPartsBlueAndSelectedOnesWhite) {
    constexpr RgbPixel kBlue{0, 0, 255}, kWhite{255, 255, 255};
    const std::vector<std::string> words = Words({"--only", "wheel", "--views", "side"});
    Expect(words);
    EXPECT_EQ(Count(kBlue), 0);
    const int white = Count(kWhite);
    Expect({"drive", "scene.glb", "--seconds", "0.2"});
    Expect(words);
    EXPECT_GT(Count(kBlue), 200);
    std::vector<std::string> selected = words;
    selected.insert(selected.end(), {"--select", "Wheel_001", "--select", "Wheel_002"});  // left and right
    Expect(selected);
    EXPECT_GT(Count(kWhite), white + 50);
    EXPECT_GT(Count(kBlue), 50);
}

TEST_F(GizmoCommand, FollowsTheRecording) {
    Expect({"drive", "scene.glb", "--seconds", "3"});
    Expect(Words({"--views", "top"}));
    const std::string first = FileBytes(folder / "rig.png");
    Expect(Words({"--views", "top", "--frame", "85"}));
    EXPECT_FALSE(FileBytes(folder / "rig.png") == first);
}

TEST_F(GizmoCommand, RefusesWordsThatMakeNoSenseInOneSentence) {
    ExpectRefusal(Words({"--views", "front,behind"}), "--views takes front, side, top, perspective", 2);
    ExpectRefusal(Words({"--views", ""}), "--views", 2);
    ExpectRefusal(Words({"--views", "top,top"}), "twice", 2);
    ExpectRefusal({"gizmo", "scene.glb", "--out", "rig.png", "--size", "12x"}, "--size", 2);
    ExpectRefusal({"gizmo", "scene.glb", "--out", "rig.png", "--size", "100000x90"}, "--size", 2);
    ExpectRefusal({"gizmo", "scene.glb", "--out", "rig.jpg"}, ".png", 2);
    ExpectRefusal({"gizmo", "scene.obj", "--out", "rig.png"}, ".glb", 2);
    ExpectRefusal({"gizmo", "scene.glb"}, "--out", 2);
}

TEST_F(GizmoCommand, RefusesWhatTheSceneDoesntHave) {
    ExpectRefusal(Words({"--select", "Nobody"}), "there is no node \"Nobody\" in it", 1);
    ExpectRefusal(Words({"--only", "Nobody"}), "there is no node \"Nobody\" in it", 1);
    ExpectRefusal(Words({"--only", "hitch"}), "there is no hitch in it", 1);
    ExpectRefusal({"gizmo", "nothing.glb", "--out", "rig.png"}, "nothing.glb", 1);
}

TEST_F(GizmoCommand, RefusesAPictureThatCantBeWritten) {
    ExpectRefusal({"gizmo", "scene.glb", "--out", "missing/rig.png"}, "missing", 1);
}

}  // namespace

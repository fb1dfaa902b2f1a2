// What a view shows, by its pixels.

#include <cmath>

#include "host/sdk/view_picking.h"
#include "rig/parameter_tables.h"
#include "studio/view/view_overlay.h"
#include "tests/studio/view_scene.h"

namespace tavrik_studio {
namespace {

using tavrik::ObjectClass;
using tavrik_host::ViewSide;
using test::ViewScene;

class ViewPictureTest : public ViewScene {
 public:
    ViewPictureTest() {
        view.SetSky(false);
        view.SetGrid(false);
    }
    /// How far two colours are apart, in the bytes of a pixel.
    static int Apart(const QColor& a, const QColor& b) {
        return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue());
    }
    QColor Background() { return view.GrabScene().pixelColor(3, 3); }
    /// How many pixels aren't the background.
    int Drawn() {
        const QImage image = view.GrabScene();
        const QRgb none = image.pixel(3, 3);
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) != none;
        }
        return count;
    }
};

TEST_F(ViewPictureTest, IsDrawnWithoutAScreen) {
    EXPECT_EQ(view.BodyKind(), ViewBodyKind::NoScreen);
    EXPECT_EQ(view.GrabScene().size(), QSize(400, 300));
}

TEST_F(ViewPictureTest, SaysInOneSentenceWhyThereIsNone) {
    ViewWidget other(editor, commands, ViewBodyKind::Sentence);
    other.resize(400, 300);
    other.show();
    const QImage image = other.grab().toImage();
    const QRgb none = image.pixel(0, 0);
    int written = 0;
    for (int y = 130; y < 170; ++y) {
        for (int x = 0; x < 400; ++x) written += image.pixel(x, y) != none;
    }
    EXPECT_GT(written, 100);
}

TEST_F(ViewPictureTest, ShowsAMeshInItsColour) {
    AddBlock(Point3(0, 0, 0), 60.0f, Point3(0.8f, 0.05f, 0.05f));
    LookDown();
    const QColor red = ColorAt(Point3(0, 0, 0));
    EXPECT_GT(red.red(), 150);
    EXPECT_LT(red.green(), 110);
    EXPECT_LT(red.blue(), 110);
    EXPECT_LT(Apart(ColorAt(Point3(36, 0, 0)), Background()), 6);
    EXPECT_GT(Apart(ColorAt(Point3(26, 0, 0)), Background()), 60);
}

TEST_F(ViewPictureTest, PlacesMeshesWhereTheirNodesAreAtTheTime) {
    INode& block = AddBlock(Point3(0, 0, 0), 40.0f, Point3(0.1f, 0.1f, 0.8f));
    LookDown();
    Matrix3 place = test::At(100.0f, 50.0f, 0.0f);
    block.SetNodeTM(0, place);
    editor.Touch();
    EXPECT_LT(Apart(ColorAt(Point3(0, 0, 0)), Background()), 6);
    EXPECT_GT(Apart(ColorAt(Point3(100, 50, 0)), Background()), 60);
}

TEST_F(ViewPictureTest, LightsSidesThatFaceTheSunMore) {
    AddBlock(Point3(0, 0, 0), 80.0f, Point3(0.5f, 0.5f, 0.5f));
    view.SetSide(ViewSide::Left);  // the sun stands in the south-west
    view.FrameAll();
    const int west = ColorAt(Point3(-40, 0, 0)).value();
    view.SetSide(ViewSide::Right);
    const int east = ColorAt(Point3(40, 0, 0)).value();
    EXPECT_GT(west, east + 30);
}

TEST_F(ViewPictureTest, HasAGridWithAxesInTheirColours) {
    LookDown();
    const QColor none = ColorAt(Point3(57, 0, 0));
    view.SetGrid(true);
    const QColor x = ColorAt(Point3(57, 0, 0)), y = ColorAt(Point3(0, 57, 0)), line = ColorAt(Point3(100, 57, 0)),
                 between = ColorAt(Point3(57, 57, 0));
    EXPECT_GT(x.red(), x.green() + 60);
    EXPECT_GT(y.green(), y.red() + 40);
    EXPECT_GT(Apart(line, none), 20);
    EXPECT_LT(Apart(between, none), 6);
}

TEST_F(ViewPictureTest, DrawsTheLinesOfObjectsAndFaintlyWhatIsHidden) {
    INode& wheel = Add(ObjectClass::Wheel, 0, 0, -200);
    tavrik_host::SetParam(wheel, tavrik::WheelParam::Radius, 60.0f);
    wheel.SetWireColor(0x0000ff00);
    LookDown();
    const int open = Drawn();
    EXPECT_GT(open, 200);
    const QImage before = view.GrabScene();
    AddBlock(Point3(0, 0, 0), 200.0f, Point3(0.5f, 0.5f, 0.5f));
    const QImage after = view.GrabScene();
    // Where a line was at its strongest it still shows, less than it did.
    int lines = 0, faint = 0, strong = 0;
    const QColor block = after.pixelColor(PixelOf(Point3(90, 90, 0)));
    for (int y = 70; y < 230; ++y) {
        for (int x = 120; x < 280; ++x) {
            const QColor line = before.pixelColor(x, y);
            if (line.green() < line.red() + 150) continue;
            ++lines;
            const int apart = Apart(after.pixelColor(x, y), block);
            faint += apart > 15 && apart < 150;
            strong += apart >= 150;
        }
    }
    EXPECT_GT(lines, 40);
    EXPECT_GT(faint, lines * 8 / 10);
    EXPECT_EQ(strong, 0);
}

TEST_F(ViewPictureTest, DrawsASelectedObjectWhiteAndOverWhatHidesIt) {
    INode& wheel = Add(ObjectClass::Wheel, 0, 0, -200);
    AddBlock(Point3(0, 0, 0), 200.0f, Point3(0.2f, 0.05f, 0.05f));
    LookDown();
    const auto white = [this] {
        const QImage image = view.GrabScene();
        int count = 0;
        for (int y = 0; y < 300; ++y) {
            for (int x = 0; x < 400; ++x) {
                const QColor c = image.pixelColor(x, y);
                count += c.red() > 235 && c.green() > 235 && c.blue() > 235;
            }
        }
        return count;
    };
    EXPECT_EQ(white(), 0);
    editor.Select(&wheel);
    EXPECT_GT(white(), 20);
}

TEST_F(ViewPictureTest, OutlinesASelectedMesh) {
    INode& block = AddBlock(Point3(0, 0, 0), 60.0f, Point3(0.5f, 0.05f, 0.05f));
    LookDown();
    const QColor beside = ColorAt(Point3(30.6f, 0, 0));
    editor.Select(&block);
    EXPECT_GT(ColorAt(Point3(30.6f, 0, 0)).value(), 235);
    EXPECT_LT(beside.value(), 235);
}

TEST_F(ViewPictureTest, HasASkyInPerspectiveAlone) {
    view.SetSky(true);
    const QColor flat = (view.SetSide(ViewSide::Front), view.GrabScene().pixelColor(200, 10));
    view.SetSide(ViewSide::Perspective);
    tavrik_host::ViewState state = view.State();
    state.pitch = 20.0f;
    view.SetState(state);
    const QColor sky = view.GrabScene().pixelColor(200, 10);
    EXPECT_GT(sky.blue(), sky.red() + 40);
    EXPECT_LT(std::abs(flat.blue() - flat.red()), 20);
}

TEST_F(ViewPictureTest, FollowsADarkPalette) {
    QPalette light = view.palette(), dark = view.palette();
    light.setColor(QPalette::Window, QColor(240, 240, 240));
    dark.setColor(QPalette::Window, QColor(35, 36, 40));
    view.SetSide(ViewSide::Front);
    view.setPalette(light);
    const int day = Background().value();
    view.setPalette(dark);
    EXPECT_LT(Background().value(), 90);
    EXPECT_GT(day, 130);
}

TEST_F(ViewPictureTest, FramesAllOfAScene) {
    for (const Point3& at : {Point3(900, 0, 0), Point3(-700, 300, 0), Point3(0, -800, 400)}) {
        AddBlock(at, 50.0f, Point3(0.8f, 0.8f, 0.1f));
    }
    for (const ViewSide side : {ViewSide::Perspective, ViewSide::Top, ViewSide::Front, ViewSide::Left}) {
        view.SetSide(side);
        view.FrameAll();
        view.Shown().Update();
        for (const Point3& corner : view.Shown().AllPoints()) {
            EXPECT_TRUE(view.rect().contains(PixelOf(corner))) << int(side);
        }
    }
    EXPECT_GT(Drawn(), 100);
}

TEST_F(ViewPictureTest, FramesWhatIsSelectedAlone) {
    AddBlock(Point3(5000, 0, 0), 50.0f, Point3(0.8f, 0.8f, 0.1f));
    INode& near = AddBlock(Point3(0, 0, 0), 50.0f, Point3(0.8f, 0.8f, 0.1f));
    editor.Select(&near);
    view.SetSide(ViewSide::Top);
    view.FrameSelection();
    EXPECT_LT(view.State().distance, 300.0f);
    EXPECT_EQ(PixelOf(Point3(0, 0, 0)), QPoint(200, 150));
}

TEST_F(ViewPictureTest, ShowsTracksOnTheGroundOfACarAndNowhereElse) {
    INode& ground = AddBlock(Point3(0, 0, -50), 100.0f, Point3(0.5f, 0.5f, 0.5f));
    AddBlock(Point3(100, 0, -50), 80.0f, Point3(0.5f, 0.5f, 0.5f));
    INode& master = Add(ObjectClass::Tavrik, -500, 0);
    tavrik_host::SetParam(master, tavrik::MasterParam::Surface_Node, &ground);
    editor.TouchNodes();
    LookDown();
    const QColor before = ColorAt(Point3(20, 20, 0)), other = ColorAt(Point3(100, 20, 0));
    // Black towards greater y.
    tavrik::RgbImage image{2, 2, {{0, 0, 0}, {0, 0, 0}, {255, 255, 255}, {255, 255, 255}}};
    view.SetTracks(image, Point2(-200, -200), 400.0f);
    EXPECT_LT(ColorAt(Point3(20, 45, 0)).value(), before.value() - 40);
    EXPECT_EQ(ColorAt(Point3(100, 20, 0)), other);
    view.SetTracks({}, Point2(0, 0), 1.0f);
    EXPECT_EQ(ColorAt(Point3(20, 20, 0)), before);
}

TEST_F(ViewPictureTest, CutsAGroundOffThatStandsBeforeTheEyeOfASideView) {
    INode& car = AddBlock(Point3(0, 0, 0), 60.0f, Point3(0.8f, 0.05f, 0.05f));
    INode& hill = AddBlock(Point3(0, -3000, 0), 1000.0f, Point3(0.1f, 0.6f, 0.1f));
    INode& master = Add(ObjectClass::Tavrik, -500, 0);
    view.SetSide(ViewSide::Front);
    editor.Select(&car);
    view.FrameSelection();
    editor.Select(nullptr);
    EXPECT_GT(ColorAt(Point3(0, -30, 0)).green(), 120);
    tavrik_host::SetParam(master, tavrik::MasterParam::Surface_Node, &hill);
    editor.TouchNodes();
    EXPECT_GT(ColorAt(Point3(0, -30, 0)).red(), 120);
    EXPECT_EQ(view.NodeUnder(PixelOf(Point3(0, -30, 0))), &car);
}

TEST_F(ViewPictureTest, WritesItsNameAndTheAxes) {
    view.SetSide(ViewSide::Top);
    const QImage with = view.grab().toImage(), without = view.GrabScene();
    const auto differ = [&](const QRect& part) {
        int count = 0;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) count += with.pixel(x, y) != without.pixel(x, y);
        }
        return count;
    };
    EXPECT_GT(differ({5, 5, 60, 25}), 50);     // the name
    EXPECT_GT(differ({5, 225, 80, 70}), 100);  // the axes
    EXPECT_EQ(differ({150, 100, 100, 100}), 0);
    EXPECT_EQ(view.ViewName(), "Top");
}

TEST_F(ViewPictureTest, SurvivesThatANodeGoesUnannounced) {
    INode& block = AddBlock(Point3(0, 0, 0), 60.0f, Point3(0.8f, 0.05f, 0.05f));
    LookDown();
    ASSERT_GT(Drawn(), 1000);
    GetCOREInterface()->DeleteNode(&block);
    EXPECT_EQ(Drawn(), 0);
}

}  // namespace
}  // namespace tavrik_studio

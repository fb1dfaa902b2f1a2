/// Driving with keys and a mouse that go through a screen. Run by on_a_screen.sh.

#include <gtest/gtest.h>

#include <QApplication>
#include <QProcess>
#include <QTest>

#include "drive/input_modes.h"
#include "host/rig_objects.h"
#include "rig/parameter_tables.h"
#include "tests/studio/driving_scene.h"

namespace tavrik_studio {
namespace {

class RealKeys : public test::DrivingScene {
 protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != "xcb") GTEST_SKIP() << "this needs an X screen and xdotool";
    }
    static void Do(const QStringList& command) {
        ASSERT_EQ(QProcess::execute("xdotool", command), 0) << command.join(' ').toStdString();
        QTest::qWait(30);
    }
    bool WaitUntilRunning(bool running) {
        return QTest::qWaitFor([&] { return desk.IsRunning() == running; });
    }
    static void Point(const QPoint& onScreen) {
        Do({"mousemove", QString::number(onScreen.x()), QString::number(onScreen.y())});
    }
    float WayDriven() const { return DotProd(CarAt(editor.Time()) - CarAt(0), CarForward()); }
    static void ClickOn(QWidget& window, const QPoint& at) {
        Point(window.mapToGlobal(at));
        Do({"click", "1"});
    }
    /// The prompt asks for a click in red, and for a start in green.
    bool PromptIsRed() const {
        const QImage picture = Face().Picture();
        for (int y = 96; y < 112; ++y) {
            for (int x = 60; x < 240; ++x) {
                const QRgb pixel = picture.pixel(x, y);
                if (qRed(pixel) > 180 && qGreen(pixel) < 80) return true;
            }
        }
        return false;
    }
};

TEST_F(RealKeys, EnterAndAHeldKeyDriveTheCar) {
    OpenDrive();
    Do({"key", "Return"});
    ASSERT_TRUE(WaitUntilRunning(true));
    Do({"keydown", "w"});
    ASSERT_TRUE(WaitForFrames(40));
    Do({"keyup", "w"});
    Do({"key", "Return"});
    ASSERT_TRUE(WaitUntilRunning(false));
    EXPECT_GT(WayDriven(), 50.0f);
}

TEST_F(RealKeys, KeysGoByTheirPlaceUnderAFrenchLayout) {
    if (QProcess::execute("setxkbmap", {"fr"}) != 0) GTEST_SKIP() << "setxkbmap is not installed";
    OpenDrive();
    Do({"key", "Return"});
    ASSERT_TRUE(WaitUntilRunning(true));
    Do({"keydown", "z"});  // where W is elsewhere
    ASSERT_TRUE(WaitForFrames(40));
    Do({"keyup", "z"});
    Do({"key", "Escape"});
    QProcess::execute("setxkbmap", {"us"});
    EXPECT_GT(WayDriven(), 50.0f);
}

TEST_F(RealKeys, MouseDrivesFromOutsideOfTheWindow) {
    tavrik_host::SetParam(Master(), tavrik::MasterParam::Driving_Type, std::int32_t(tavrik::kDriveByMouse));
    OpenDrive();
    const QPoint middle = Face().mapToGlobal(Face().rect().center());
    Point(middle);
    Do({"key", "Return"});
    ASSERT_TRUE(WaitUntilRunning(true));
    Point(middle - QPoint(0, 300));  // beside the window, over nothing
    ASSERT_TRUE(WaitForFrames(40));
    Do({"key", "Escape"});
    ASSERT_TRUE(WaitUntilRunning(false));
    EXPECT_GT(WayDriven(), 50.0f);
}

TEST_F(RealKeys, ClickElsewhereAsksForAClickOnTheFace) {
    OpenDrive();
    EXPECT_FALSE(PromptIsRed());
    ClickOn(mainWindow, {50, 50});
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &mainWindow; }));
    EXPECT_TRUE(PromptIsRed());
    ClickOn(Face(), {150, 60});
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &Face(); }));
    EXPECT_FALSE(PromptIsRed());
}

TEST_F(RealKeys, RunGoesOnWithoutTheUserAndHearsHimAgainAfterAClick) {
    OpenDrive();
    Do({"key", "Return"});
    ASSERT_TRUE(WaitUntilRunning(true));
    ClickOn(mainWindow, {50, 50});
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &mainWindow; }));
    const TimeValue left = editor.Time();
    ASSERT_TRUE(QTest::qWaitFor([&] { return editor.Time() > left + 3 * GetTicksPerFrame(); }, 20'000));
    ClickOn(Face(), {150, 60});
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &Face(); }));
    Do({"key", "Return"});
    EXPECT_TRUE(WaitUntilRunning(false));
}

TEST_F(RealKeys, FaceDragsTheWindow) {
    OpenDrive();
    const QPoint before = Face().pos();
    const QPoint grip = Face().mapToGlobal(QPoint(40, 60));
    Point(grip);
    Do({"mousedown", "1"});
    Point(grip + QPoint(30, 20));
    Point(grip + QPoint(70, -50));
    Do({"mouseup", "1"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return Face().pos() == before + QPoint(70, -50); }))
        << Face().pos().x() << ' ' << Face().pos().y();
}

}  // namespace
}  // namespace tavrik_studio

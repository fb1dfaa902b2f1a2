#include "studio/driving/qt_windows.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTimerEvent>
#include <string>
#include <vector>

#include "drive/window_messages.h"

namespace tavrik_studio {
namespace {

using tavrik::WindowKind;

struct Message {
    std::uint32_t number;
    std::uint64_t wParam, lParam;
    bool operator==(const Message&) const = default;
};

/// Keeps what it gets, and paints the face in one colour.
class Receiver final : public tavrik::WindowMessages {
 public:
    explicit Receiver(QtWindows& windows) : windows_(windows) {}
    std::vector<Message> messages;
    tavrik::WindowId window = 0;
    tavrik::ColorRef color = 0x0000FF;
    std::function<void(std::uint32_t)> onMessage;

    bool HandleMessage(std::uint32_t message, std::uint64_t wParam, std::uint64_t lParam) override {
        messages.push_back({message, wParam, lParam});
        if (message == tavrik::kWmPaint) {
            Draw(windows_.BeginPaint(window));
            windows_.EndPaint(window);
        }
        if (onMessage) onMessage(message);
        return true;
    }
    void Draw(tavrik::Canvas& canvas) const {
        canvas.SelectObject(tavrik::CanvasObject::DcPen);
        canvas.SelectObject(tavrik::CanvasObject::DcBrush);
        canvas.SetDcPenColor(color);
        canvas.SetDcBrushColor(color);
        const tavrik::PixelRect all = canvas.GetClientRect();
        canvas.Rectangle(all.left, all.top, all.right, all.bottom);
    }
    int Count(std::uint32_t number) const {
        return int(std::count_if(messages.begin(), messages.end(), [&](const Message& m) { return m.number == number; }));
    }
    /// Those of a kind, in order.
    std::vector<Message> Of(std::initializer_list<std::uint32_t> numbers) const {
        std::vector<Message> found;
        for (const Message& message : messages) {
            if (std::find(numbers.begin(), numbers.end(), message.number) != numbers.end()) found.push_back(message);
        }
        return found;
    }
    /// The last one of a kind; one of number 0 where there is none.
    Message Last(std::uint32_t number) const {
        const std::vector<Message> found = Of({number});
        return found.empty() ? Message{} : found.back();
    }

 private:
    QtWindows& windows_;
};

class QtWindowsTest : public testing::Test {
 protected:
    QtWindowsTest() {
        main.resize(500, 400);
        main.show();
    }
    void Open(WindowKind kind = WindowKind::Drive) {
        receiver.window = windows.CreateDialogWindow(kind, receiver);
        windows.RegisterDlgWnd(receiver.window);
        face = windows.Face(kind);
        ASSERT_TRUE(QTest::qWaitForWindowActive(face));
        receiver.messages.clear();
    }
    std::uint64_t Packed(int x, int y) const { return std::uint64_t(std::uint16_t(x)) | std::uint64_t(std::uint16_t(y)) << 16; }
    /// A key as the X server tells it.
    void SendKey(QEvent::Type type, std::uint32_t scanCode, int key, bool repeat = false) {
        QKeyEvent event(type, key, Qt::NoModifier, scanCode, 0, 0, QString(), repeat);
        QApplication::sendEvent(face, &event);
    }
    void MoveMouse(QWidget& over, const QPoint& inFace) {
        const QPointF global = face->mapToGlobal(inFace);
        QMouseEvent event(QEvent::MouseMove, over.mapFromGlobal(global), global, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&over, &event);
    }

    /// A window counts as active along with those above it, so the application is asked instead.
    void ActivateMain() {
        main.activateWindow();
        ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &main; }));
    }

    QWidget main;
    QtWindows windows{&main};
    Receiver receiver{windows};
    FaceWindow* face = nullptr;
};

TEST_F(QtWindowsTest, DriveWindowIsBareSeeThroughAndAboveTheMainOne) {
    Open();
    windows.SetAlpha(receiver.window, tavrik::kSeeThroughAlpha);
    EXPECT_EQ(face->size(), QSize(300, 114));
    EXPECT_TRUE(face->windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_FALSE(face->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(face->parentWidget(), &main);
    EXPECT_TRUE(face->isWindow());
    EXPECT_NEAR(face->windowOpacity(), 229.0 / 255.0, 0.003);
    EXPECT_FALSE(face->isModal());
}

TEST_F(QtWindowsTest, PromptIsSmaller) {
    Open(WindowKind::Prompt);
    EXPECT_EQ(face->size(), QSize(225, 41));
}

TEST_F(QtWindowsTest, FaceIsPaintedOnDemandAndAtOnceAfterADrawing) {
    Open();
    EXPECT_EQ(face->grab().toImage().pixel(100, 50), 0xffff0000);
    receiver.color = 0x00FF00;
    receiver.Draw(windows.GetDC(receiver.window));
    windows.ReleaseDC(receiver.window);
    EXPECT_EQ(face->Picture().pixel(100, 50), 0xff00ff00);
    EXPECT_GT(windows.TakeDrawingTime().count(), 0);
    EXPECT_EQ(windows.TakeDrawingTime().count(), 0);
}

TEST_F(QtWindowsTest, KeysComeByTheirClassicCodes) {
    Open();
    QTest::keyPress(face, Qt::Key_W);
    QTest::keyRelease(face, Qt::Key_W);
    const std::vector<Message> wanted = {{tavrik::kWmKeyDown, 87, 0}, {tavrik::kWmKeyUp, 87, 0}};
    EXPECT_EQ(receiver.messages, wanted);
}

TEST_F(QtWindowsTest, KeysGoByTheirPlace) {
    Open();
    SendKey(QEvent::KeyPress, 25, Qt::Key_Z);  // where W is, on a French keyboard
    EXPECT_EQ(receiver.messages, std::vector<Message>({{tavrik::kWmKeyDown, 87, 0}}));
}

TEST_F(QtWindowsTest, RepeatOfAHeldKeyIsPressedAgainAndNeverReleased) {
    Open();
    SendKey(QEvent::KeyPress, 25, Qt::Key_W);
    for (int i = 0; i < 3; ++i) {
        SendKey(QEvent::KeyRelease, 25, Qt::Key_W, true);
        SendKey(QEvent::KeyPress, 25, Qt::Key_W, true);
    }
    EXPECT_EQ(receiver.Count(tavrik::kWmKeyDown), 4);
    EXPECT_EQ(receiver.Count(tavrik::kWmKeyUp), 0);
    SendKey(QEvent::KeyRelease, 25, Qt::Key_W);
    EXPECT_EQ(receiver.Count(tavrik::kWmKeyUp), 1);
}

TEST_F(QtWindowsTest, KeyIsReleasedUnderTheNameItWasPressedBy) {
    Open();
    QKeyEvent down(QEvent::KeyPress, Qt::Key_8, Qt::KeypadModifier, 80, 0, 0);
    QApplication::sendEvent(face, &down);
    QKeyEvent up(QEvent::KeyRelease, Qt::Key_Up, Qt::KeypadModifier, 80, 0, 0);  // num lock was switched in between
    QApplication::sendEvent(face, &up);
    EXPECT_EQ(receiver.messages, std::vector<Message>({{tavrik::kWmKeyDown, 104, 0}, {tavrik::kWmKeyUp, 104, 0}}));
}

TEST_F(QtWindowsTest, RightShiftIsItselfAndShift) {
    Open();
    SendKey(QEvent::KeyPress, 62, Qt::Key_Shift);
    EXPECT_EQ(receiver.messages, std::vector<Message>({{tavrik::kWmKeyDown, 161, 0}, {tavrik::kWmKeyDown, 16, 0}}));
}

TEST_F(QtWindowsTest, CaptureGetsOneCodeOfAKeyAndOnlyOfOnePressedOverIt) {
    Open(WindowKind::Prompt);
    SendKey(QEvent::KeyRelease, 36, Qt::Key_Return);
    EXPECT_TRUE(receiver.messages.empty());
    SendKey(QEvent::KeyPress, 62, Qt::Key_Shift);
    SendKey(QEvent::KeyRelease, 62, Qt::Key_Shift);
    EXPECT_EQ(receiver.Of({tavrik::kWmKeyUp}), std::vector<Message>({{tavrik::kWmKeyUp, 161, 0}}));
}

TEST_F(QtWindowsTest, KeyThatGoesUpWithoutHavingGoneDownStillReachesTheDriver) {
    Open();
    SendKey(QEvent::KeyRelease, 36, Qt::Key_Return);
    EXPECT_EQ(receiver.messages, std::vector<Message>({{tavrik::kWmKeyUp, 13, 0}}));
}

TEST_F(QtWindowsTest, TabAndMenuKeysAreTheDriversToo) {
    Open();
    QTest::keyPress(face, Qt::Key_Tab);
    QTest::keyPress(face, Qt::Key_Z, Qt::ControlModifier);
    QKeyEvent wish(QEvent::ShortcutOverride, Qt::Key_Z, Qt::ControlModifier);
    wish.ignore();
    QApplication::sendEvent(face, &wish);
    EXPECT_TRUE(wish.isAccepted());
    ASSERT_FALSE(receiver.messages.empty());
    EXPECT_EQ(receiver.messages.front(), (Message{tavrik::kWmKeyDown, 9, 0}));
    EXPECT_EQ(receiver.Last(tavrik::kWmKeyDown), (Message{tavrik::kWmKeyDown, 90, 0}));
}

TEST_F(QtWindowsTest, ClickTellsOfAttentionThenOfTheButton) {
    Open();
    ActivateMain();
    receiver.messages.clear();
    QTest::mousePress(face, Qt::LeftButton, {}, {20, 30});
    const std::vector<Message> told = receiver.Of({tavrik::kWmActivate, tavrik::kWmLButtonDown});
    ASSERT_GE(told.size(), 2u);
    EXPECT_EQ(told.back(), (Message{tavrik::kWmLButtonDown, 0, Packed(20, 30)}));
    EXPECT_EQ(told[told.size() - 2], (Message{tavrik::kWmActivate, tavrik::kWaClickActive, 0}));
}

TEST_F(QtWindowsTest, LosingAndGettingActivationByKeysIsTold) {
    Open();
    ActivateMain();
    EXPECT_EQ(receiver.Of({tavrik::kWmActivate}), std::vector<Message>({{tavrik::kWmActivate, tavrik::kWaInactive, 0}}));
    receiver.messages.clear();
    face->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == face; }));
    EXPECT_EQ(receiver.Of({tavrik::kWmActivate}), std::vector<Message>({{tavrik::kWmActivate, tavrik::kWaActive, 0}}));
}

TEST_F(QtWindowsTest, RightButtonGoesDownAndUp) {
    Open();
    QTest::mousePress(face, Qt::RightButton, {}, {5, 6});
    QTest::mouseRelease(face, Qt::RightButton, {}, {5, 6});
    EXPECT_EQ(receiver.Of({tavrik::kWmRButtonDown, tavrik::kWmRButtonUp}),
              std::vector<Message>({{tavrik::kWmRButtonDown, 0, Packed(5, 6)}, {tavrik::kWmRButtonUp, 0, Packed(5, 6)}}));
}

TEST_F(QtWindowsTest, SecondOfTwoFastRightClicksCountsToo) {
    Open();
    QTest::mouseClick(face, Qt::RightButton, {}, {5, 6});
    QTest::mouseDClick(face, Qt::RightButton, {}, {5, 6});  // the second press, as the desktop tells it
    EXPECT_EQ(receiver.Count(tavrik::kWmRButtonDown), 2);
}

TEST_F(QtWindowsTest, WheelTurnIsTheHighWord) {
    Open();
    const auto turn = [&](QPoint delta, Qt::KeyboardModifiers keys) {
        QWheelEvent event({10, 10}, face->mapToGlobal(QPointF(10, 10)), {}, delta, Qt::NoButton, keys, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(face, &event);
    };
    turn({0, -120}, Qt::NoModifier);
    turn({0, 240}, Qt::NoModifier);
    turn({120, 0}, Qt::NoModifier);    // to the side
    turn({-120, 0}, Qt::AltModifier);  // down, with Alt held
    std::vector<int> deltas;
    for (const Message& message : receiver.Of({tavrik::kWmMouseWheel}))
        deltas.push_back(tavrik::SignedHighWord(message.wParam));
    EXPECT_EQ(deltas, std::vector<int>({-120, 240, -120}));
}

TEST_F(QtWindowsTest, MouseOutsideIsFollowedWhileItIsCaptured) {
    Open();
    MoveMouse(*face, {10, 20});
    windows.SetCapture(receiver.window);
    MoveMouse(main, {-40, 700});
    windows.ReleaseCapture();
    MoveMouse(main, {-50, 800});
    EXPECT_EQ(receiver.Of({tavrik::kWmMouseMove}),
              std::vector<Message>({{tavrik::kWmMouseMove, 0, Packed(10, 20)}, {tavrik::kWmMouseMove, 0, Packed(-40, 700)}}));
    const Message far = receiver.Last(tavrik::kWmMouseMove);
    EXPECT_EQ(tavrik::SignedLowWord(far.lParam), -40);
    EXPECT_EQ(tavrik::SignedHighWord(far.lParam), 700);
}

TEST_F(QtWindowsTest, PointerOverAnotherProgramIsLookedForWithEachTick) {
    Open();
    windows.SetCapture(receiver.window);
    QCursor::setPos(face->mapToGlobal(QPoint(-300, -7)));
    windows.SetTimer(receiver.window, tavrik::kTimerId, 5);
    ASSERT_TRUE(QTest::qWaitFor([&] { return receiver.Count(tavrik::kWmTimer) > 0; }));
    EXPECT_EQ(receiver.Last(tavrik::kWmMouseMove), (Message{tavrik::kWmMouseMove, 0, Packed(-300, -7)}));
}

TEST_F(QtWindowsTest, FarAwayMouseStaysAt16Bits) {
    Open();
    windows.SetCapture(receiver.window);
    MoveMouse(main, {-70000, 70000});
    const Message far = receiver.Last(tavrik::kWmMouseMove);
    EXPECT_EQ(tavrik::SignedLowWord(far.lParam), -32767);
    EXPECT_EQ(tavrik::SignedHighWord(far.lParam), 32767);
}

TEST_F(QtWindowsTest, FaceDragsTheWindow) {
    Open();
    receiver.onMessage = [&](std::uint32_t message) {
        if (message == tavrik::kWmLButtonDown) windows.BeginDrag(receiver.window);
    };
    const QPoint before = face->pos();
    const auto send = [&](QEvent::Type type, QPoint global, Qt::MouseButton button, Qt::MouseButtons held) {
        QMouseEvent event(type, face->mapFromGlobal(global), global, button, held, Qt::NoModifier);
        QApplication::sendEvent(face, &event);
    };
    const QPoint grip = before + QPoint(30, 40);
    send(QEvent::MouseButtonPress, grip, Qt::LeftButton, Qt::LeftButton);
    receiver.messages.clear();
    send(QEvent::MouseMove, grip + QPoint(50, -20), Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, grip + QPoint(50, -20), Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(face->pos(), before + QPoint(50, -20));
    EXPECT_EQ(receiver.Count(tavrik::kWmMouseMove), 0);
    EXPECT_EQ(receiver.Count(tavrik::kWmLButtonUp), 0);
}

TEST_F(QtWindowsTest, ClickBesideTheFaceLeavesTheMouseToTheOthers) {
    Open();
    windows.SetCapture(receiver.window);
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(-20, -20), face->mapToGlobal(QPointF(-20, -20)), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(face, &event);
    EXPECT_EQ(receiver.Count(tavrik::kWmLButtonDown), 0);
    EXPECT_TRUE(face->IsCapturing());
}

TEST_F(QtWindowsTest, TimerRingsUntilItIsKilled) {
    Open();
    windows.SetTimer(receiver.window, tavrik::kTimerId, 5);
    ASSERT_TRUE(QTest::qWaitFor([&] { return receiver.Count(tavrik::kWmTimer) >= 3; }));
    windows.KillTimer(receiver.window, tavrik::kTimerId);
    const int rings = receiver.Count(tavrik::kWmTimer);
    QTest::qWait(40);
    EXPECT_EQ(receiver.Count(tavrik::kWmTimer), rings);
    EXPECT_EQ(receiver.Last(tavrik::kWmTimer).wParam, tavrik::kTimerId);
}

TEST_F(QtWindowsTest, RingLeftOverFromAKilledTimerIsDropped) {
    Open();
    windows.SetTimer(receiver.window, tavrik::kTimerId, 10'000);
    windows.KillTimer(receiver.window, tavrik::kTimerId);
    for (int id = 0; id < 200; ++id) {
        QTimerEvent event(id);
        QApplication::sendEvent(face, &event);
    }
    EXPECT_EQ(receiver.Count(tavrik::kWmTimer), 0);
}

TEST_F(QtWindowsTest, TimerThatIsSetAgainHasTheNewPeriod) {
    Open();
    windows.SetTimer(receiver.window, tavrik::kTimerId, 60'000);
    windows.SetTimer(receiver.window, tavrik::kTimerId, 5);
    EXPECT_TRUE(QTest::qWaitFor([&] { return receiver.Count(tavrik::kWmTimer) >= 2; }));
}

TEST_F(QtWindowsTest, CloseIsOnlyAsked) {
    Open();
    face->close();
    EXPECT_EQ(receiver.Count(tavrik::kWmClose), 1);
    EXPECT_TRUE(face->isVisible());
}

TEST_F(QtWindowsTest, WindowMayBeDestroyedFromWithinItsOwnMessage) {
    Open();
    receiver.onMessage = [&](std::uint32_t message) {
        if (message == tavrik::kWmKeyDown) windows.DestroyWindow(receiver.window);
    };
    const QPointer<FaceWindow> watched(face);
    QTest::keyPress(face, Qt::Key_W);
    EXPECT_EQ(windows.Face(WindowKind::Drive), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(watched.isNull());
    windows.GetDC(receiver.window);  // what is drawn on a window that is gone goes nowhere
    windows.ReleaseDC(receiver.window);
    EXPECT_EQ(receiver.Count(tavrik::kWmKeyUp), 0);
}

TEST_F(QtWindowsTest, AcceleratorsAreCounted) {
    QSignalSpy changes(&windows, &QtWindows::AcceleratorsChanged);
    Open();
    windows.DisableAccelerators();
    windows.DisableAccelerators();
    windows.EnableAccelerators();
    EXPECT_FALSE(windows.AcceleratorsEnabled());
    EXPECT_EQ(changes.size(), 1);
    windows.EnableAccelerators();
    EXPECT_TRUE(windows.AcceleratorsEnabled());
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(QtWindowsTest, ShortcutsComeBackWithTheLastWindow) {
    Open();
    windows.DisableAccelerators();
    windows.DestroyWindow(receiver.window);
    EXPECT_TRUE(windows.AcceleratorsEnabled());
}

TEST_F(QtWindowsTest, MessageBoxShowsTextAndTitle) {
    QString text, title;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QTimer::singleShot(0, &windows, [&] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        text = box->text();
        title = box->windowTitle();
        icon = box->icon();
        box->accept();
    });
    windows.ShowMessageBox(0, "Two\nlines.", "Tavrik", tavrik::kMessageBoxError);
    EXPECT_EQ(text, "Two\nlines.");
    EXPECT_EQ(title, "Tavrik");
    EXPECT_EQ(icon, QMessageBox::Critical);
}

TEST_F(QtWindowsTest, WindowGoesWithTheMainOne) {
    auto owner = std::make_unique<QWidget>();
    QtWindows others(owner.get());
    const tavrik::WindowId window = others.CreateDialogWindow(WindowKind::Drive, receiver);
    others.RegisterDlgWnd(window);
    owner.reset();
    EXPECT_EQ(others.Face(WindowKind::Drive), nullptr);
    others.SetTimer(window, tavrik::kTimerId, 5);
    others.DestroyWindow(window);
}

}  // namespace
}  // namespace tavrik_studio

#include "studio/driving/stand_dialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "drive/damper_drawing.h"
#include "host/rig_objects.h"
#include "host/sdk/panels.h"
#include "rig/parameter_tables.h"
#include "tests/studio/driving_scene.h"

namespace tavrik_studio {
namespace {

using tavrik::SuspensionParam;

constexpr int kStandButton = 1013;
constexpr std::int32_t kSpringSpinner = 1092, kOilSpinner = 1036, kMassSpinner = 1090, kShiftSpinner = 1042;

class StandDialogTest : public test::DrivingScene {
 protected:
    /// Presses the button of the suspension's page and, while the dialog runs, does `work`, which has to close it.
    void Open(const std::function<void(StandDialog&)>& work) {
        editor.Select(&Suspension());
        bool opened = false;
        QTimer::singleShot(0, &desk, [&] {
            StandDialog* const dialog = desk.Stand().Dialog();
            if (dialog == nullptr) return;
            opened = true;
            work(*dialog);
            if (desk.Stand().Dialog() != nullptr && dialog->isVisible()) {
                ADD_FAILURE() << "the dialog was left open";
                dialog->reject();
            }
        });
        PressButton(0, kStandButton);
        EXPECT_TRUE(opened);
    }
    static void Click(StandDialog& dialog, std::int32_t button) { QTest::mouseClick(&dialog.ButtonOf(button), Qt::LeftButton); }
    static void Type(StandSpinBox& spinner, const QString& text) {
        spinner.setFocus();
        spinner.selectAll();
        QTest::keyClicks(&spinner, text);
    }
    float Spring() const { return tavrik_host::FloatParam(Suspension(), SuspensionParam::Ruggedness); }
};

TEST_F(StandDialogTest, ShowsTheSuspensionsValues) {
    const float spring = Spring();
    Open([&](StandDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Additional Damper Settings");
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(dialog.SpinnerOf(kSpringSpinner).GetFVal(), spring);
        EXPECT_EQ(dialog.SpinnerOf(kMassSpinner).GetFVal(), 400.0f);
        EXPECT_EQ(dialog.SpinnerOf(kMassSpinner).accessibleName(), "Mass per Damper:");
        EXPECT_EQ(dialog.SpinnerOf(kShiftSpinner).minimum(), -1000000.0);
        Click(dialog, tavrik::kStandCancelControl);
    });
}

TEST_F(StandDialogTest, PictureLivesAndHasItsSize) {
    Open([&](StandDialog& dialog) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return !dialog.Picture().Shown().isNull(); }));
        const QImage first = dialog.Picture().Shown();
        EXPECT_EQ(first.size(), QSize(tavrik::kStandPictureWidth, tavrik::kStandPictureHeight) * first.devicePixelRatio());
        EXPECT_EQ(dialog.Picture().size(), QSize(tavrik::kStandPictureWidth, tavrik::kStandPictureHeight));
        EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.Picture().Shown() != first; }));
        dialog.reject();
    });
}

TEST_F(StandDialogTest, EnterTakesAValueAndSetupWritesIt) {
    Open([&](StandDialog& dialog) {
        StandSpinBox& spinner = dialog.SpinnerOf(kSpringSpinner);
        Type(spinner, "31000");
        QTest::keyClick(&spinner, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        Click(dialog, tavrik::kStandSetupControl);
    });
    EXPECT_EQ(Spring(), 31000.0f);
}

TEST_F(StandDialogTest, SpunValueIsWritten) {
    const float before = tavrik_host::FloatParam(Suspension(), SuspensionParam::Damping);
    float spun = 0.0f;
    Open([&](StandDialog& dialog) {
        StandSpinBox& spinner = dialog.SpinnerOf(kOilSpinner);
        spinner.setFocus();
        QTest::keyClick(&spinner, Qt::Key_Up);
        spun = spinner.GetFVal();
        Click(dialog, tavrik::kStandSetupControl);
    });
    EXPECT_GT(spun, before);
    EXPECT_EQ(tavrik_host::FloatParam(Suspension(), SuspensionParam::Damping), spun);
}

TEST_F(StandDialogTest, SpinnersStepGrowsWithItsValue) {
    Open([&](StandDialog& dialog) {
        StandSpinBox& spinner = dialog.SpinnerOf(kSpringSpinner);
        spinner.SetValue(20000.0f, false);
        spinner.stepUp();
        EXPECT_EQ(spinner.GetFVal(), 21000.0f);
        spinner.SetValue(2.0f, false);
        spinner.stepUp();
        EXPECT_EQ(spinner.GetFVal(), 2.1f);
        dialog.reject();
    });
}

TEST_F(StandDialogTest, CancelEscapeAndCloseWriteNothing) {
    const float before = Spring();
    for (int way = 0; way < 3; ++way) {
        Open([&](StandDialog& dialog) {
            StandSpinBox& spinner = dialog.SpinnerOf(kSpringSpinner);
            Type(spinner, "12");
            QTest::keyClick(&spinner, Qt::Key_Return);
            if (way == 0) Click(dialog, tavrik::kStandCancelControl);
            if (way == 1) QTest::keyClick(&dialog, Qt::Key_Escape);
            if (way == 2) dialog.close();
        });
        EXPECT_EQ(Spring(), before) << way;
    }
}

TEST_F(StandDialogTest, StandsOwnSettingsOutliveTheDialog) {
    Open([&](StandDialog& dialog) {
        StandSpinBox& spinner = dialog.SpinnerOf(kMassSpinner);
        Type(spinner, "555");
        QTest::keyClick(&spinner, Qt::Key_Return);
        Click(dialog, tavrik::kStandCancelControl);
    });
    Open([&](StandDialog& dialog) {
        EXPECT_EQ(dialog.SpinnerOf(kMassSpinner).GetFVal(), 555.0f);
        dialog.reject();
    });
}

TEST_F(StandDialogTest, LargeValuesAreShownInFullAndSmallOnesToo) {
    Open([&](StandDialog& dialog) {
        StandSpinBox& spinner = dialog.SpinnerOf(kMassSpinner);
        spinner.SetValue(10000000.0f, false);
        EXPECT_EQ(spinner.text(), "10000000");
        spinner.SetValue(0.25f, false);
        EXPECT_EQ(spinner.text(), "0.25");
        spinner.SetValue(0.0f, false);
        EXPECT_EQ(spinner.text(), "0");
        dialog.reject();
    });
}

TEST_F(StandDialogTest, ProgramThatEndsTakesTheDialogDownInOrder) {
    const float before = Spring();
    Open([&](StandDialog& dialog) { dialog.QDialog::reject(); });
    EXPECT_EQ(Spring(), before);
    EXPECT_EQ(desk.Stand().Dialog(), nullptr);
}

/// The dialog's thread is busy; the stand draws on.
TEST_F(StandDialogTest, PictureDoesNotWaitForTheDialog) {
    Open([&](StandDialog& dialog) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return !dialog.Picture().Shown().isNull(); }));
        const QImage first = dialog.Picture().Shown();
        for (int i = 0; i < 200 && dialog.Picture().Shown() == first; ++i) QThread::msleep(20);  // no events meanwhile
        EXPECT_NE(dialog.Picture().Shown(), first);
        dialog.reject();
    });
}

}  // namespace
}  // namespace tavrik_studio

/// What every dialog owes to small screens, to the keyboard, and to those who can't see it.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <functional>
#include <memory>
#include <set>

#include "studio/dialogs/bake_tracks_dialog.h"
#include "studio/dialogs/export_film_dialog.h"
#include "studio/dialogs/garage_dialog.h"
#include "studio/dialogs/import_ground_dialog.h"
#include "studio/dialogs/render_dialog.h"
#include "studio/dialogs/rig_wizard_dialog.h"
#include "studio/dialogs/sample_ground_dialog.h"
#include "tests/studio/dialogs_scene.h"

namespace tavrik_studio {
namespace {

using MakeDialog = std::unique_ptr<QDialog> (*)(Editor&);

struct NamedDialog {
    const char* name;
    MakeDialog make;
};

const NamedDialog kDialogs[] = {
    {"BakeTracks", [](Editor& editor) -> std::unique_ptr<QDialog> { return std::make_unique<BakeTracksDialog>(editor); }},
    {"ExportFilm", [](Editor& editor) -> std::unique_ptr<QDialog> { return std::make_unique<ExportFilmDialog>(editor); }},
    {"Garage", [](Editor& editor) -> std::unique_ptr<QDialog> { return std::make_unique<GarageDialog>(editor, nullptr); }},
    {"ImportCar",
     [](Editor& editor) -> std::unique_ptr<QDialog> { return std::make_unique<RigWizardDialog>(editor, std::string()); }},
    {"ImportGround",
     [](Editor& editor) -> std::unique_ptr<QDialog> { return std::make_unique<ImportGroundDialog>(editor, std::string()); }},
    {"Render", [](Editor& editor) -> std::unique_ptr<QDialog> { return std::make_unique<RenderDialog>(editor); }},
    {"SampleGround", [](Editor& editor) -> std::unique_ptr<QDialog> { return std::make_unique<SampleGroundDialog>(editor); }},
};

bool IsInput(const QWidget& widget) {
    return qobject_cast<const QLineEdit*>(&widget) != nullptr || qobject_cast<const QComboBox*>(&widget) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(&widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(&widget) != nullptr;
}

class DialogManners : public test::DialogScene, public testing::WithParamInterface<NamedDialog> {
 protected:
    void SetUp() override {
        AddCar(AddPlane());
        dialog = GetParam().make(editor);
        dialog->show();
    }
    /// The widgets that the Tab key comes by, from the one that has the focus at first.
    std::vector<QWidget*> TabOrder() const {
        std::vector<QWidget*> order;
        QWidget* const first = dialog->focusWidget() != nullptr ? dialog->focusWidget() : dialog->nextInFocusChain();
        QWidget* at = first;
        do {
            const bool stops = (at->focusPolicy() & Qt::TabFocus) != 0 && at->isVisible() && at->isEnabled() &&
                               at->focusProxy() == nullptr && at != dialog.get();
            if (stops) order.push_back(at);
            at = at->nextInFocusChain();
        } while (at != first);
        return order;
    }

    std::unique_ptr<QDialog> dialog;
};

TEST_P(DialogManners, FitsASmallScreen) {
    EXPECT_LE(dialog->width(), 1200);
    EXPECT_LE(dialog->height(), 660);
    EXPECT_LE(dialog->minimumSizeHint().width(), 1200);
    EXPECT_LE(dialog->minimumSizeHint().height(), 660);
}

TEST_P(DialogManners, EveryFieldHasAName) {
    int fields = 0;
    for (QWidget* const widget : TabOrder()) {
        if (!IsInput(*widget)) continue;
        ++fields;
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
    }
    EXPECT_GT(fields, 0);
}

TEST_P(DialogManners, NoTwoFieldsTakeTheSameLetter) {
    std::set<QString> taken;
    const auto take = [&taken](const QString& text) {
        const QKeySequence keys = QKeySequence::mnemonic(text);
        if (!keys.isEmpty()) {
            EXPECT_TRUE(taken.insert(keys.toString()).second) << text.toStdString();
        }
    };
    for (const QLabel* const label : dialog->findChildren<QLabel*>()) {
        if (label->buddy() != nullptr) take(label->text());
    }
    for (const QAbstractButton* const button : dialog->findChildren<QAbstractButton*>()) {
        take(button->text());
    }
    EXPECT_FALSE(taken.empty());
}

TEST_P(DialogManners, TabComesByTheFieldsFromTopToBottom) {
    int y = -1000, fields = 0;
    for (const QWidget* const widget : TabOrder()) {
        if (qobject_cast<const QTableView*>(widget) != nullptr) break;  // beside the form
        if (!IsInput(*widget) || qobject_cast<const QAbstractItemView*>(widget) != nullptr) continue;
        const int at = widget->mapTo(dialog.get(), QPoint(0, 0)).y();
        EXPECT_GE(at, y - 4) << widget->accessibleName().toStdString();
        y = at;
        ++fields;
    }
    EXPECT_GT(fields, 0);
}

TEST_P(DialogManners, EscapeClosesItAndChangesNothing) {
    const std::uint64_t before = editor.Revision();
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(editor.Revision(), before);
}

INSTANTIATE_TEST_SUITE_P(All, DialogManners, testing::ValuesIn(kDialogs),
                         [](const testing::TestParamInfo<NamedDialog>& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace tavrik_studio

#include "studio/panel/control_widgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <vector>

#include "host/sdk/standin.h"
#include "host/sdk/texture_maps.h"
#include "host/wide_text.h"
#include "studio/panel/number_box.h"

namespace tavrik_studio {
namespace {

using tavrik_host::ControlKind;
using tavrik_host::PanelControl;
using tavrik_host::PanelWindow;
using tavrik_host::UnitKind;

QString Tr(const char* text) { return QCoreApplication::translate("Panel", text); }

QString Text(const std::wstring& text) { return QString::fromStdWString(text); }

/// What an undo entry calls a control: its label without what stands behind it.
QString NameOf(const PanelControl& control) {
    QString name = Text(control.label.empty() ? control.text : control.label).simplified();
    if (name.isEmpty()) name = Text(control.paramName);
    while (name.endsWith(':')) name.chop(1);
    return name;
}

QString KeyOf(const PanelWindow& page, const PanelControl& control) {
    return QString("%1.%2").arg(reinterpret_cast<std::uintptr_t>(&page)).arg(control.id);
}

/// A unit of one tick is shown in frames, degrees and lengths as they are.
double ShownUnit(UnitKind unit) { return unit == UnitKind::Time ? double(GetTicksPerFrame()) : 1.0; }

QString UnitText(UnitKind unit) {
    switch (unit) {
        case UnitKind::Length: {
            const double metres = tavrik_host::MetresPerUnit();
            return metres == 0.01 ? " cm" : metres == 1.0 ? " m" : metres == 0.001 ? " mm" : QString();
        }
        case UnitKind::Time:
            return Tr(" frames");
        case UnitKind::Angle:
            return QString(QChar(0x00b0));
        case UnitKind::Plain:
            return {};
    }
    return {};
}

QLabel* MakeLabel(const PanelControl& control, QWidget* parent) {
    auto* const label = new QLabel(Text(control.label), parent);
    label->setWordWrap(control.label.find(L'\n') != std::wstring::npos);
    return label;
}

class StaticTextWidget final : public ControlWidget {
 public:
    StaticTextWidget(const PanelControl& control, QWidget* parent) : text_(new QLabel(parent)) {
        text_->setWordWrap(true);
        text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
        widget = text_;
        Show(control);
    }
    void Show(const PanelControl& control) override {
        text_->setText(Text(control.text.empty() ? control.label : control.text));
        text_->setEnabled(control.enabled);
    }

 private:
    QLabel* text_;
};

class SpinnerWidget final : public ControlWidget {
 public:
    SpinnerWidget(PanelWindow& page, const PanelControl& control, const DoIt& doIt, QWidget* parent)
        : box_(new NumberBox(parent)), unit_(ShownUnit(control.unit)) {
        auto* const text = MakeLabel(control, parent);
        text->setBuddy(box_);
        label = text;
        widget = box_;
        // A label such as "Force (Mn):" tells the unit itself.
        if (!control.label.ends_with(L"):")) box_->setSuffix(UnitText(control.unit));
        box_->setAccessibleName(NameOf(control));
        const QString name = NameOf(control), key = KeyOf(page, control);
        const double unit = unit_;
        QObject::connect(box_, &NumberBox::Set, box_, [=, this, &page](double value) {
            doIt(name, key, [&] { return tavrik_host::SetControl(page, editId_, value * unit); });
        });
        Show(control);
    }
    void Show(const PanelControl& control) override {
        // A greyed spinner may have a field that isn't, which goes by its own number.
        editId_ = control.enabled ? control.id : control.edit;
        const bool isWhole = control.editType == EDITTYPE_INT && unit_ == 1.0;
        box_->Show(control.value / unit_, control.low / unit_, control.high / unit_, tavrik_host::ClickOf(control) / unit_,
                   isWhole);
        box_->setEnabled(control.enabled || control.editEnabled);
        label->setEnabled(control.labelEnabled);
        QFont font = box_->font();
        font.setBold(control.isAnimated);
        box_->setFont(font);
        box_->setToolTip(control.isAnimated ? Tr("Keyed: typing sets a key at the current time") : QString());
    }

 private:
    NumberBox* box_;
    double unit_;
    int editId_ = 0;
};

class CheckBoxWidget final : public ControlWidget {
 public:
    CheckBoxWidget(PanelWindow& page, const PanelControl& control, const DoIt& doIt, QWidget* parent)
        : box_(new QCheckBox(Text(control.label.empty() ? control.text : control.label), parent)) {
        widget = box_;
        const QString name = NameOf(control);
        const int id = control.id;
        QObject::connect(box_, &QCheckBox::clicked, box_, [=, &page](bool on) {
            doIt(name, {}, [&] { return tavrik_host::SetControl(page, id, on ? 1.0 : 0.0); });
        });
        Show(control);
    }
    void Show(const PanelControl& control) override {
        box_->setChecked(control.value != 0.0);
        box_->setEnabled(control.enabled);
    }

 private:
    QCheckBox* box_;
};

class RadioWidget final : public ControlWidget {
 public:
    RadioWidget(PanelWindow& page, const PanelControl& control, const DoIt& doIt, QWidget* parent) {
        widget = new QWidget(parent);
        auto* const column = new QVBoxLayout(widget);
        column->setContentsMargins(0, 0, 0, 0);
        if (!control.label.empty()) column->addWidget(MakeLabel(control, widget));
        const QString name = NameOf(control);
        for (std::size_t i = 0; i < control.buttons.size(); ++i) {
            auto* const button = new QRadioButton(Text(control.buttons[i].label), widget);
            const int id = control.id;
            QObject::connect(button, &QRadioButton::clicked, button, [=, &page] {
                doIt(name.isEmpty() ? button->text() : name, {}, [&] { return tavrik_host::SetControl(page, id, double(i)); });
            });
            column->addWidget(button);
            buttons_.push_back(button);
        }
        Show(control);
    }
    void Show(const PanelControl& control) override {
        for (std::size_t i = 0; i < buttons_.size() && i < control.buttons.size(); ++i) {
            buttons_[i]->setAutoExclusive(false);
            buttons_[i]->setChecked(double(i) == control.value);
            buttons_[i]->setAutoExclusive(true);
            buttons_[i]->setEnabled(control.enabled && control.buttons[i].enabled);
        }
    }

 private:
    std::vector<QRadioButton*> buttons_;
};

class ButtonWidget final : public ControlWidget {
 public:
    ButtonWidget(PanelWindow& page, const PanelControl& control, const DoIt& doIt, QWidget* parent)
        : button_(new QPushButton(parent)) {
        if (!control.label.empty()) label = MakeLabel(control, parent);
        widget = button_;
        button_->setAutoDefault(false);
        button_->setCheckable(control.kind == ControlKind::CheckButton);
        const int id = control.id;
        QObject::connect(button_, &QPushButton::clicked, button_, [this, id, doIt, &page] {
            doIt(button_->text().simplified(), {}, [&] { return tavrik_host::ClickControl(page, id); });
        });
        Show(control);
    }
    void Show(const PanelControl& control) override {
        button_->setText(Text(control.text));
        button_->setEnabled(control.enabled);
        if (button_->isCheckable()) button_->setChecked(control.checked);
    }

 private:
    QPushButton* button_;
};

class PickWidget final : public ControlWidget {
 public:
    PickWidget(PanelWindow& page, const PanelControl& control, const DoIt& doIt, QWidget* parent)
        : button_(new QPushButton(parent)), clear_(new QToolButton(parent)) {
        if (!control.label.empty()) label = MakeLabel(control, parent);
        widget = new QWidget(parent);
        auto* const row = new QHBoxLayout(widget);
        row->setContentsMargins(0, 0, 0, 0);
        row->addWidget(button_, 1);
        row->addWidget(clear_);
        button_->setCheckable(true);
        button_->setAutoDefault(false);
        button_->setToolTip(Tr("Press, then click a node in a view or in the tree"));
        clear_->setText(QString(QChar(0x00d7)));
        clear_->setToolTip(Tr("Let go of the node"));
        clear_->setAccessibleName(Tr("Let go of the node"));
        const int id = control.id;
        const QString name = NameOf(control);
        QObject::connect(button_, &QPushButton::clicked, button_,
                         [=, &page] { doIt(name, {}, [&] { return tavrik_host::ClickControl(page, id); }); });
        QObject::connect(clear_, &QToolButton::clicked, clear_,
                         [=, &page] { doIt(name, {}, [&] { return tavrik_host::PickForControl(page, id, nullptr); }); });
        Show(control);
    }
    void Show(const PanelControl& control) override {
        button_->setText(control.checked ? Tr("Click a node...") : Text(control.text));
        button_->setChecked(control.checked);
        button_->setEnabled(control.enabled);
        clear_->setEnabled(control.enabled && control.node != nullptr);
    }

 private:
    QPushButton* button_;
    QToolButton* clear_;
};

class MapWidget final : public ControlWidget {
 public:
    MapWidget(PanelWindow& page, const PanelControl& control, const DoIt& doIt, QWidget* parent)
        : button_(new QPushButton(parent)) {
        if (!control.label.empty()) label = MakeLabel(control, parent);
        widget = button_;
        auto* const menu = new QMenu(button_);
        const int id = control.id;
        const QString name = NameOf(control);
        const auto set = [=, &page](Texmap* map) { doIt(name, {}, [&] { return tavrik_host::SetControlMap(page, id, map); }); };
        menu->addAction(Tr("&Picture..."), button_, [=, this] {
            const QString file =
                QFileDialog::getOpenFileName(button_, Tr("Picture of the tread"), {}, Tr("Pictures (*.png *.jpg *.jpeg)"));
            if (file.isEmpty()) return;
            auto* const map = static_cast<tavrik_host::BitmapMap*>(tavrik_host::BitmapMapClass().Create(FALSE));
            map->SetFile(file.toStdString());
            map->LoadMapFiles(GetCOREInterface()->GetTime());
            set(map);
        });
        menu->addAction(Tr("&Checker"), button_,
                        [=] { set(static_cast<Texmap*>(tavrik_host::CheckerMapClass().Create(FALSE))); });
        menu->addAction(Tr("&None"), button_, [=] { set(nullptr); });
        button_->setMenu(menu);
        Show(control);
    }
    void Show(const PanelControl& control) override {
        QString text = Text(control.text);
        if (const auto* const picture = dynamic_cast<tavrik_host::BitmapMap*>(control.map)) {
            text = QFileInfo(QString::fromStdString(picture->File().string())).fileName();
            button_->setToolTip(QString::fromStdString(picture->Problem()));
        }
        button_->setText(text);
        button_->setEnabled(control.enabled);
    }

 private:
    QPushButton* button_;
};

class ComboWidget final : public ControlWidget {
 public:
    ComboWidget(PanelWindow& page, const PanelControl& control, const DoIt& doIt, QWidget* parent)
        : box_(new QComboBox(parent)) {
        if (!control.label.empty()) {
            auto* const text = MakeLabel(control, parent);
            text->setBuddy(box_);
            label = text;
        }
        widget = box_;
        box_->setFocusPolicy(Qt::StrongFocus);
        box_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box_->setMinimumContentsLength(8);
        const int id = control.id;
        const QString name = NameOf(control);
        QObject::connect(box_, &QComboBox::activated, box_, [=, &page](int item) {
            doIt(name.isEmpty() ? Tr("Choice") : name, {}, [&] { return tavrik_host::SetControl(page, id, item); });
        });
        Show(control);
    }
    void Show(const PanelControl& control) override {
        if (box_->count() != int(control.items.size())) {
            box_->clear();
            for (const std::wstring& item : control.items) box_->addItem(Text(item));
        }
        box_->setCurrentIndex(int(control.value));
        box_->setEnabled(control.enabled);
    }

 private:
    QComboBox* box_;
};

}  // namespace

std::unique_ptr<ControlWidget> MakeControlWidget(PanelWindow& page, const PanelControl& control, const DoIt& doIt,
                                                 QWidget* parent) {
    switch (control.kind) {
        case ControlKind::StaticText:
            return std::make_unique<StaticTextWidget>(control, parent);
        case ControlKind::EditField:
        case ControlKind::Spinner:
            return std::make_unique<SpinnerWidget>(page, control, doIt, parent);
        case ControlKind::CheckBox:
            return std::make_unique<CheckBoxWidget>(page, control, doIt, parent);
        case ControlKind::RadioGroup:
            return std::make_unique<RadioWidget>(page, control, doIt, parent);
        case ControlKind::Button:
        case ControlKind::CheckButton:
            return std::make_unique<ButtonWidget>(page, control, doIt, parent);
        case ControlKind::PickButton:
            return std::make_unique<PickWidget>(page, control, doIt, parent);
        case ControlKind::MapButton:
            return std::make_unique<MapWidget>(page, control, doIt, parent);
        case ControlKind::ComboBox:
            return std::make_unique<ComboWidget>(page, control, doIt, parent);
        case ControlKind::Frame:
        case ControlKind::Bitmap:
            return nullptr;
    }
    return nullptr;
}

}  // namespace tavrik_studio

#include "studio/dialogs/sample_ground_dialog.h"

#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrik_studio {

using tavrik::SampleGroundKind;

SampleGroundDialog::SampleGroundDialog(Editor& editor, QWidget* parent)
    : QDialog(parent),
      editor_(editor),
      kind_(new QComboBox(this)),
      size_(new QDoubleSpinBox(this)),
      triangles_(new QSpinBox(this)),
      seed_(new QSpinBox(this)),
      message_(new MessageLine(this)),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this)) {
    setWindowTitle(tr("Sample Ground"));
    const tavrik::SampleGround usual;
    kind_->addItem(tr("Plane"), int(SampleGroundKind::Plane));
    kind_->addItem(tr("Kerb"), int(SampleGroundKind::Kerb));
    kind_->addItem(tr("Hills"), int(SampleGroundKind::Hills));
    kind_->addItem(tr("Course"), int(SampleGroundKind::Course));
    kind_->setCurrentIndex(kind_->findData(int(usual.kind)));
    size_->setRange(10.0, 10'000.0);
    size_->setDecimals(0);
    size_->setSingleStep(50.0);
    size_->setSuffix(tr(" m"));
    size_->setValue(usual.sizeMetres);
    triangles_->setRange(2, 2'000'000);
    triangles_->setSingleStep(10'000);
    triangles_->setGroupSeparatorShown(true);
    triangles_->setValue(usual.triangles);
    seed_->setRange(1, 1'000'000);
    seed_->setValue(int(usual.seed));
    auto* const form = new QFormLayout;
    AddRow(*form, tr("&Kind:"), kind_);
    AddRow(*form, tr("Each &side:"), size_);
    AddRow(*form, tr("&Triangles:"), triangles_);
    AddRow(*form, tr("S&hape of the hills:"), seed_);
    auto* const whole = new QVBoxLayout(this);
    whole->addLayout(form);
    whole->addWidget(message_);
    whole->addStretch(1);
    whole->addWidget(buttons_);
    OkButton().setText(tr("Add"));
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(kind_, &QComboBox::currentIndexChanged, this, &SampleGroundDialog::Describe);
    Describe();
    resize(sizeHint().expandedTo({420, 0}));
}

void SampleGroundDialog::Describe() {
    const auto kind = SampleGroundKind(kind_->currentData().toInt());
    seed_->setEnabled(kind == SampleGroundKind::Hills || kind == SampleGroundKind::Course);
    switch (kind) {
        case SampleGroundKind::Plane:
            return message_->Tell(tr("Level, without anything on it."));
        case SampleGroundKind::Kerb:
            return message_->Tell(tr("Level, with a step of 12 cm across the way 20 m ahead of the middle."));
        case SampleGroundKind::Hills:
            return message_->Tell(tr("Rolling hills, level around the middle."));
        case SampleGroundKind::Course:
            return message_->Tell(tr("Hills with speed bumps, a washboard, a tabletop and a kerb island on the way."));
    }
}

void SampleGroundDialog::accept() {
    tavrik::SampleGround wanted;
    wanted.kind = SampleGroundKind(kind_->currentData().toInt());
    wanted.sizeMetres = size_->value();
    wanted.triangles = triangles_->value();
    wanted.seed = std::uint64_t(seed_->value());
    QString problem;
    if (AddGround(editor_, tr("Sample Ground"), tavrik::MakeSampleGround(wanted), "ground", problem) == nullptr) {
        message_->Complain(problem);
        return;
    }
    QDialog::accept();
}

}  // namespace tavrik_studio

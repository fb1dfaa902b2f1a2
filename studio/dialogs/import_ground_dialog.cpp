#include "studio/dialogs/import_ground_dialog.h"

#include <QFormLayout>
#include <QGuiApplication>
#include <QPushButton>
#include <algorithm>

namespace tavrik_studio {
namespace {

constexpr double kSmallGround = 5.0, kLargeGround = 50'000.0;  // metres; beyond them the unit is most likely another

}  // namespace

ImportGroundDialog::ImportGroundDialog(Editor& editor, const std::filesystem::path& file, QWidget* parent)
    : QDialog(parent),
      editor_(editor),
      file_(new FileField(FileField::Kind::Open, tr("Choose a Ground"), MeshFilter(), this)),
      unit_(new UnitBox(tr("From the file"), this)),
      up_(new QComboBox(this)),
      message_(new MessageLine(this)),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this)) {
    setWindowTitle(tr("Import Ground"));
    up_->addItem(tr("From the file"), int(tavrik::UpAxis::FromFile));
    up_->addItem(tr("Y is up"), int(tavrik::UpAxis::Y));
    up_->addItem(tr("Z is up"), int(tavrik::UpAxis::Z));
    auto* const form = new QFormLayout;
    AddRow(*form, tr("&Mesh:"), file_);
    AddRow(*form, tr("One &unit is:"), unit_);
    AddRow(*form, tr("U&p axis:"), up_);
    auto* const whole = new QVBoxLayout(this);
    whole->addLayout(form);
    whole->addWidget(message_);
    whole->addStretch(1);
    whole->addWidget(buttons_);
    OkButton().setText(tr("Import"));
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(file_, &FileField::Changed, this, &ImportGroundDialog::Read);
    connect(unit_, &UnitBox::Changed, this, &ImportGroundDialog::Read);
    connect(up_, &QComboBox::currentIndexChanged, this, &ImportGroundDialog::Read);
    Read();
    file_->SetPath(file);
    resize(sizeHint().expandedTo({560, 0}));
}

void ImportGroundDialog::Read() {
    mesh_ = {};
    OkButton().setEnabled(false);
    const std::filesystem::path file = file_->Path();
    if (file.empty()) {
        message_->Tell(tr("Choose a mesh of the formats %1.").arg(Text(tavrik::KnownMeshExtensions())));
        return;
    }
    tavrik::GroundImport import;
    import.up = tavrik::UpAxis(up_->currentData().toInt());
    import.metresPerUnit = unit_->Metres().value_or(0.0);
    std::string problem;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const bool isRead = ReadGround(file, import, mesh_, problem);
    QGuiApplication::restoreOverrideCursor();
    if (!isRead) {
        message_->Complain(Text(problem));
        return;
    }
    OkButton().setEnabled(true);
    const MeshSize size = SizeOf(mesh_);
    const double side = std::max(size.width, size.length);
    if (side < kSmallGround || side > kLargeGround) {
        message_->Complain(tr("%1: is the unit right?").arg(SizeText(size)));
    } else {
        message_->Tell(SizeText(size) + ".");
    }
}

void ImportGroundDialog::accept() {
    if (!OkButton().isEnabled()) return;
    QString problem;
    const std::filesystem::path file = file_->Path();
    if (AddGround(editor_, tr("Import Ground"), mesh_, TextOf(file.stem()), problem) == nullptr) {
        message_->Complain(problem);
        return;
    }
    RememberFolder(file.parent_path());
    QDialog::accept();
}

}  // namespace tavrik_studio

#include "studio/dialogs/rig_wizard_dialog.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

#include "host/mesh_import.h"

namespace tavrik_studio {
namespace {

constexpr int kPlanAfter = 250;  // ms without another letter

void SetRow(QTableWidget& table, int row, const QStringList& texts) {
    for (int column = 0; column < texts.size(); ++column) {
        auto* const item = new QTableWidgetItem(texts[column]);
        item->setToolTip(texts[column]);
        table.setItem(row, column, item);
    }
}

}  // namespace

RigWizardDialog::RigWizardDialog(Editor& editor, const std::filesystem::path& model, QWidget* parent)
    : QDialog(parent),
      editor_(editor),
      form_(new RigWizardForm(editor, this)),
      vehicleLabel_(new QLabel(tr("&Vehicle:"), this)),
      vehicle_(new QComboBox(this)),
      decisions_(MakeTable(tr("What was decided"), {tr("What"), tr("Decided"), tr("Why")})),
      wheels_(MakeTable(tr("Wheels"), {tr("Wheel"), tr("Load, kg"), tr("Frequency, Hz"), tr("Damping"), tr("Suspension")})),
      message_(new MessageLine(this)),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this)) {
    setWindowTitle(tr("Import Car"));
    vehicleLabel_->setBuddy(vehicle_);
    vehicle_->setAccessibleName(tr("Vehicle"));
    OkButton().setText(tr("Import"));
    Lay();
    due_.setSingleShot(true);
    due_.setInterval(kPlanAfter);
    connect(&due_, &QTimer::timeout, this, &RigWizardDialog::PlanNow);
    connect(form_, &RigWizardForm::ModelChanged, this, &RigWizardDialog::Read);
    connect(form_, &RigWizardForm::WishesChanged, this, &RigWizardDialog::PlanSoon);
    connect(vehicle_, &QComboBox::currentIndexChanged, this, &RigWizardDialog::ShowTables);
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Read();
    form_->model->SetPath(model);
}

QTableWidget* RigWizardDialog::MakeTable(const QString& name, const QStringList& titles) {
    auto* const table = new QTableWidget(0, int(titles.size()), this);
    table->setHorizontalHeaderLabels(titles);
    table->setAccessibleName(name);
    table->setItemDelegate(new RoomyRows(table));
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return table;
}

void RigWizardDialog::Lay() {
    auto* const left = new QVBoxLayout;
    left->addWidget(form_);
    left->addStretch(1);
    auto* const choice = new QHBoxLayout;
    choice->addWidget(vehicleLabel_);
    choice->addWidget(vehicle_, 1);
    auto* const right = new QVBoxLayout;
    right->addLayout(choice);
    right->addWidget(decisions_, 2);
    right->addWidget(wheels_, 1);
    auto* const upper = new QHBoxLayout;
    upper->addLayout(left, 2);
    upper->addLayout(right, 3);
    auto* const whole = new QVBoxLayout(this);
    whole->addLayout(upper, 1);
    whole->addWidget(message_);
    whole->addWidget(buttons_);
    resize(1080, 600);
}

void RigWizardDialog::Read() {
    QString problem;
    const std::filesystem::path file = form_->model->Path();
    if (file.empty()) {
        wizard_ = {};
        Show();
        message_->Tell(tr("Choose a model of the formats %1.").arg(Text(tavrik::KnownMeshExtensions())));
        return;
    }
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const bool isRead = wizard_.Read(file, form_->Up(), problem);
    QGuiApplication::restoreOverrideCursor();
    if (isRead) return PlanNow();
    due_.stop();
    Show();
    message_->Complain(problem);
}

void RigWizardDialog::PlanSoon() {
    if (wizard_.IsRead()) due_.start();
}

void RigWizardDialog::PlanNow() {
    due_.stop();
    RigWishes wishes;
    QString problem;
    const bool isPlanned = form_->Wishes(wishes, problem) && wizard_.Plan(wishes, problem);
    if (!isPlanned) {
        // The last plan stays to be seen, but can't be taken.
        OkButton().setEnabled(false);
        message_->Complain(problem);
        return;
    }
    Show();
    const std::vector<QString> missed = wizard_.Missed();
    if (!missed.empty()) {
        message_->Complain(missed.front());
    } else {
        message_->Tell(tr("The model can be driven; what is wrong in the table can be set on the left."));
    }
}

void RigWizardDialog::Show() {
    OkButton().setEnabled(wizard_.IsPlanned());
    const std::vector<QString> names = wizard_.Vehicles();
    const int shown = std::max(0, vehicle_->currentIndex());
    {
        const QSignalBlocker quiet(vehicle_);
        vehicle_->clear();
        for (const QString& name : names) vehicle_->addItem(name);
        vehicle_->setCurrentIndex(std::min(shown, vehicle_->count() - 1));
    }
    vehicle_->setVisible(names.size() > 1);
    vehicleLabel_->setVisible(names.size() > 1);
    ShowTables();
}

void RigWizardDialog::ShowTables() {
    const auto vehicle = std::size_t(std::max(0, vehicle_->currentIndex()));
    const std::vector<RigDecision> decisions = wizard_.Decisions(vehicle);
    decisions_->setRowCount(int(decisions.size()));
    for (int i = 0; i < int(decisions.size()); ++i) {
        const RigDecision& row = decisions[std::size_t(i)];
        SetRow(*decisions_, i, {row.key, row.value, row.why});
    }
    const std::vector<RigWheelRow> wheels = wizard_.Wheels(vehicle);
    wheels_->setRowCount(int(wheels.size()));
    for (int i = 0; i < int(wheels.size()); ++i) {
        const RigWheelRow& row = wheels[std::size_t(i)];
        SetRow(*wheels_, i, {row.wheel, row.load, row.frequency, row.damping, row.suspension});
    }
    decisions_->resizeColumnToContents(0);
    decisions_->setColumnWidth(1, 160);
    for (int column = 0; column < 4; ++column) wheels_->resizeColumnToContents(column);
}

void RigWizardDialog::accept() {
    if (IsPlanDue()) PlanNow();
    if (!wizard_.IsPlanned() || !OkButton().isEnabled()) return;
    QString problem;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const bool done = wizard_.PutInto(editor_, form_->ground->Node(), problem);
    QGuiApplication::restoreOverrideCursor();
    if (!done) {
        message_->Complain(problem);
        return;
    }
    RememberFolder(form_->model->Path().parent_path());
    QDialog::accept();
}

}  // namespace tavrik_studio

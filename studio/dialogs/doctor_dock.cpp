#include "studio/dialogs/doctor_dock.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

namespace tavrik_studio {
namespace {

enum Column { kSentence, kMend };

}  // namespace

DoctorDock::DoctorDock(Editor& editor, QWidget* parent)
    : QDockWidget(tr("Doctor"), parent),
      editor_(editor),
      doctor_(editor),
      table_(new QTableWidget(0, 2, this)),
      look_(new QPushButton(tr("&Look Again"), this)),
      summary_(new MessageLine(this)) {
    setObjectName("doctor");
    table_->setAccessibleName(tr("Findings"));
    table_->setItemDelegate(new RoomyRows(table_));
    table_->horizontalHeader()->hide();
    table_->horizontalHeader()->setSectionResizeMode(kSentence, QHeaderView::Stretch);
    table_->horizontalHeader()->setSectionResizeMode(kMend, QHeaderView::ResizeToContents);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setTabKeyNavigation(false);
    table_->setWordWrap(true);
    table_->setShowGrid(false);
    table_->setAlternatingRowColors(true);
    look_->setToolTip(tr("Examine the scene as it is now"));

    auto* const content = new QWidget(this);
    auto* const top = new QHBoxLayout;
    top->addWidget(summary_, 1);
    top->addWidget(look_, 0, Qt::AlignTop);
    auto* const whole = new QVBoxLayout(content);
    whole->addLayout(top);
    whole->addWidget(table_, 1);
    setWidget(content);
    QWidget::setTabOrder(look_, table_);

    connect(look_, &QPushButton::clicked, this, &DoctorDock::LookAgain);
    connect(table_, &QTableWidget::cellClicked, this, &DoctorDock::SelectCulprit);
    connect(table_, &QTableWidget::cellActivated, this, &DoctorDock::SelectCulprit);
    connect(&editor, &Editor::SceneReplaced, this, &DoctorDock::Clear);
    connect(&editor, &Editor::StateChanged, this, &DoctorDock::SetStale);
    connect(&editor, &Editor::NodesChanged, this, &DoctorDock::SetStale);
    summary_->Tell(tr("Nobody has looked at the scene yet."));
}

QPushButton* DoctorDock::MendButton(int row) const {
    const QWidget* const cell = table_->cellWidget(row, kMend);
    return cell != nullptr ? cell->findChild<QPushButton*>() : nullptr;
}

void DoctorDock::showEvent(QShowEvent* event) {
    QDockWidget::showEvent(event);
    // Not before whoever has opened it had a chance to ask for a look as well: it takes its time.
    const auto look = [this] {
        if (!hasLooked_) LookAgain();
    };
    if (!hasLooked_) QTimer::singleShot(0, this, look);
}

void DoctorDock::LookAgain() {
    QString problem;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const bool done = doctor_.Look(problem);
    QGuiApplication::restoreOverrideCursor();
    hasLooked_ = true;
    Fill();
    if (!done) summary_->Complain(problem);
}

void DoctorDock::Fill() {
    isStale_ = false;
    table_->clearContents();
    table_->setRowCount(int(doctor_.Ailments().size()));
    for (int row = 0; row < table_->rowCount(); ++row) AddFinding(row, doctor_.Ailments()[std::size_t(row)]);
    summary_->Tell(doctor_.Summary());
}

void DoctorDock::AddFinding(int row, const Ailment& ailment) {
    const bool isError = ailment.severity == tavrik::Severity::Error;
    const auto sign = isError ? QStyle::SP_MessageBoxCritical : QStyle::SP_MessageBoxWarning;
    auto* const item = new QTableWidgetItem(style()->standardIcon(sign, nullptr, this), ailment.sentence);
    item->setData(Qt::AccessibleTextRole, (isError ? tr("Error: %1") : tr("Warning: %1")).arg(ailment.sentence));
    table_->setItem(row, kSentence, item);
    if (ailment.mend.isEmpty()) return;
    auto* const cell = new QWidget(table_);
    auto* const button = new QPushButton(tr("Mend"), cell);
    button->setToolTip(ailment.mend);
    button->setAccessibleName(tr("Mend: %1").arg(ailment.mend));
    auto* const around = new QVBoxLayout(cell);
    around->setContentsMargins(4, 2, 4, 2);
    around->addWidget(button, 0, Qt::AlignCenter);
    table_->setCellWidget(row, kMend, cell);
    // Mending fills the table anew, so the button must have done its part by then.
    connect(
        button, &QPushButton::clicked, this, [this, row] { Mend(row); }, Qt::QueuedConnection);
}

void DoctorDock::Mend(int row) {
    if (std::size_t(row) >= doctor_.Ailments().size()) return;
    QString problem;
    isBusy_ = true;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const bool done = doctor_.Mend(std::size_t(row), problem);
    QGuiApplication::restoreOverrideCursor();
    isBusy_ = false;
    Fill();
    if (!done) summary_->Complain(problem);
    table_->setFocus();
}

void DoctorDock::SelectCulprit(int row) {
    if (std::size_t(row) >= doctor_.Ailments().size()) return;
    const ULONG handle = doctor_.Ailments()[std::size_t(row)].node;
    INode* const node = handle != 0 ? GetCOREInterface()->GetINodeByHandle(handle) : nullptr;
    if (node != nullptr) editor_.Select(node);
}

void DoctorDock::SetStale() {
    if (isBusy_ || isStale_ || !hasLooked_) return;
    isStale_ = true;
    summary_->Tell(doctor_.Summary() + " " + tr("The scene has changed since then."));
}

void DoctorDock::Clear() {
    if (isBusy_ || !hasLooked_) return;
    doctor_.Forget();
    table_->clearContents();
    table_->setRowCount(0);
    isStale_ = true;
    summary_->Tell(tr("The scene is another one than before; look again."));
}

}  // namespace tavrik_studio

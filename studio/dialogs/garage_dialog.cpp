#include "studio/dialogs/garage_dialog.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

#include "studio/dialogs/garage_entry.h"
#include "studio/dialogs/scene_grounds.h"

namespace tavrik_studio {
namespace {

QString Sentence(QString text) {
    if (!text.isEmpty()) text[0] = text[0].toUpper();
    return text;
}

}  // namespace

GarageDialog::GarageDialog(Editor& editor, std::function<bool()> mayReplace, QWidget* parent)
    : QDialog(parent),
      editor_(editor),
      mayReplace_(std::move(mayReplace)),
      list_(new QListWidget(this)),
      ground_(new NodeBox(this)),
      open_(new QPushButton(tr("&Open as New Scene"), this)),
      put_(new QPushButton(tr("&Put into This Scene"), this)),
      message_(new MessageLine(this)) {
    setWindowTitle(tr("Garage"));
    list_->setAccessibleName(tr("Scenes of the garage"));
    list_->setAlternatingRowColors(true);
    for (const tavrik_host::GarageScene& scene : tavrik_host::GarageScenes()) {
        auto* const item = new QListWidgetItem(Sentence(tr(scene.what)), list_);
        item->setData(Qt::UserRole, QString(scene.name));
        item->setSizeHint({0, 2 * fontMetrics().lineSpacing()});
    }
    const std::vector<INode*> grounds = GroundNodes();
    INode* const usual = UsualGround(editor);
    ground_->Fill(grounds, usual != nullptr || grounds.empty() ? usual : grounds.front(), tr("A new sample ground"));
    ground_->setAccessibleName(tr("Ground"));

    auto* const label = new QLabel(tr("o&nto"), this);
    label->setBuddy(ground_);
    auto* const putting = new QHBoxLayout;
    putting->addWidget(put_);
    putting->addWidget(label);
    putting->addWidget(ground_, 1);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    buttons->addButton(open_, QDialogButtonBox::AcceptRole);
    auto* const whole = new QVBoxLayout(this);
    whole->addWidget(list_, 1);
    whole->addLayout(putting);
    whole->addWidget(message_);
    whole->addWidget(buttons);
    open_->setDefault(true);
    put_->setAutoDefault(false);

    connect(list_, &QListWidget::currentRowChanged, this, &GarageDialog::Describe);
    connect(list_, &QListWidget::itemDoubleClicked, this, &GarageDialog::Open);
    connect(open_, &QPushButton::clicked, this, &GarageDialog::Open);
    connect(put_, &QPushButton::clicked, this, &GarageDialog::Put);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    list_->setCurrentRow(0);
    list_->setFocus();
    resize(560, 400);
}

const tavrik_host::GarageScene* GarageDialog::Chosen() const {
    const QListWidgetItem* const item = list_->currentItem();
    return item != nullptr ? tavrik_host::FindGarageScene(item->data(Qt::UserRole).toString().toStdString()) : nullptr;
}

void GarageDialog::Describe() {
    const tavrik_host::GarageScene* const scene = Chosen();
    open_->setEnabled(scene != nullptr);
    put_->setEnabled(scene != nullptr);
    message_->Tell(tr("A new scene comes with a ground of its own; a vehicle is put beside those that stand there."));
}

void GarageDialog::Open() {
    const tavrik_host::GarageScene* const scene = Chosen();
    if (scene == nullptr || (mayReplace_ && !mayReplace_())) return;
    QString problem;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const bool done = OpenGarageScene(editor_, *scene, problem);
    QGuiApplication::restoreOverrideCursor();
    if (done) return accept();
    message_->Complain(problem);
}

void GarageDialog::Put() {
    const tavrik_host::GarageScene* const scene = Chosen();
    if (scene == nullptr) return;
    QString problem;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const bool done = PutGarageVehicles(editor_, *scene, ground_->Node(), problem);
    QGuiApplication::restoreOverrideCursor();
    if (done) return accept();
    message_->Complain(problem);
}

}  // namespace tavrik_studio

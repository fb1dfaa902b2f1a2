#include "studio/dialogs/job_dialog.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrik_studio {
namespace {

constexpr int kSteps = 1000;
constexpr qint64 kBreathEvery = 40;  // ms

}  // namespace

QString TimeLeftText(double gone, double part) {
    constexpr double kLeastGone = 0.5, kLongest = 359'999.0;  // seconds; more is anybody's guess
    if (gone < kLeastGone || !(part > 0.0)) return {};
    const int left = int(std::min(kLongest, gone * (1.0 - part) / part) + 0.5);
    const QString seconds = QString("%1").arg(left % 60, 2, 10, QChar('0'));
    if (left < 3600) return JobDialog::tr("%1:%2 left").arg(left / 60).arg(seconds);
    return JobDialog::tr("%1:%2:%3 left").arg(left / 3600).arg(left / 60 % 60, 2, 10, QChar('0')).arg(seconds);
}

JobDialog::JobDialog(const QString& title, QWidget* parent)
    : QDialog(parent),
      what_(new QLabel(this)),
      left_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      cancel_(new QPushButton(tr("Cancel"), this)) {
    setWindowTitle(title);
    setWindowModality(Qt::ApplicationModal);
    bar_->setRange(0, kSteps);
    bar_->setFormat("%p %");
    bar_->setAccessibleName(tr("Progress"));
    left_->setMinimumWidth(left_->fontMetrics().horizontalAdvance("00:00:00 left"));
    auto* const below = new QHBoxLayout;
    below->addWidget(left_, 1);
    below->addWidget(cancel_);
    auto* const whole = new QVBoxLayout(this);
    whole->addWidget(what_);
    whole->addWidget(bar_);
    whole->addLayout(below);
    connect(cancel_, &QPushButton::clicked, this, &JobDialog::reject);
    resize(sizeHint().expandedTo({420, 0}));
}

void JobDialog::Begin(const QString& what) {
    what_->setText(what);
    bar_->setValue(0);
    left_->clear();
    running_.start();
    shown_.invalidate();
    show();
    QCoreApplication::processEvents();
}

void JobDialog::Show(double part) {
    if (shown_.isValid() && shown_.elapsed() < kBreathEvery) return;
    shown_.start();
    bar_->setValue(int(std::clamp(part, 0.0, 1.0) * kSteps));
    if (!isStopped_) left_->setText(TimeLeftText(double(running_.elapsed()) * 1e-3, part));
    QCoreApplication::processEvents();
}

void JobDialog::reject() {
    isStopped_ = true;
    cancel_->setEnabled(false);
    left_->setText(tr("Stopping…"));
}

}  // namespace tavrik_studio

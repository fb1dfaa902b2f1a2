#pragma once
/// A long job in front of everything: how far it has come, how long it will take, and a way out.

#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <atomic>

namespace tavrik_studio {

/// The job runs on the thread of the windows and lives by `Show`: there the windows breathe. Everything else is blocked
/// meanwhile.
class JobDialog final : public QDialog {
    Q_OBJECT
 public:
    JobDialog(const QString& title, QWidget* parent);

    /// Appears, with nothing done yet.
    void Begin(const QString& what);
    /// @param part  0..1
    void Show(double part);
    bool IsStopped() const { return isStopped_; }
    const std::atomic<bool>& Stopped() const { return isStopped_; }

    const QProgressBar& Bar() const { return *bar_; }
    QPushButton& CancelButton() { return *cancel_; }
    QString TimeLeft() const { return left_->text(); }

    /// Asks the job to stop; it ends the dialog itself.
    void reject() override;

 private:
    QLabel *what_, *left_;
    QProgressBar* bar_;
    QPushButton* cancel_;
    QElapsedTimer running_, shown_;
    std::atomic<bool> isStopped_{false};
};

/// "0:12 left", when `gone` seconds have done `part`; empty where nothing can be told yet.
QString TimeLeftText(double gone, double part);

}  // namespace tavrik_studio

#pragma once
/// A page of the panel that folds away under its title.

#include <QToolButton>
#include <QWidget>

namespace tavrik_studio {

class Rollout final : public QWidget {
    Q_OBJECT
 public:
    /// @param content  becomes this one's
    Rollout(const QString& title, QWidget* content, QWidget* parent = nullptr);

    bool IsOpen() const { return header_->isChecked(); }
    void SetOpen(bool open);

 signals:
    void Toggled(bool open);

 private:
    QToolButton* header_;
    QWidget* content_;
};

}  // namespace tavrik_studio

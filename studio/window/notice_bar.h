#pragma once
/// A line for what the studio has to say: it stays until it is read, and keeps nobody from working.

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <functional>

namespace tavrik_studio {

class NoticeBar final : public QFrame {
    Q_OBJECT
 public:
    explicit NoticeBar(QWidget* parent = nullptr);

    /// Shows a sentence in the place of the one before.
    /// @param action  what a button beside it says; empty: there is none
    void Say(const QString& sentence, const QString& action = {}, std::function<void()> run = {});
    void Clear();
    QString Sentence() const { return isHidden() ? QString() : text_->text(); }
    QPushButton& Action() { return *action_; }

 private:
    QLabel* text_;
    QPushButton* action_;
    QToolButton* close_;
    std::function<void()> run_;
};

}  // namespace tavrik_studio

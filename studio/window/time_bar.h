#pragma once
/// The timeline: where the scene stands, how far it goes, what of it is recorded, and playing it.

#include <QElapsedTimer>
#include <QLabel>
#include <QSlider>
#include <QSpinBox>
#include <QTimer>
#include <QToolButton>
#include <QWidget>
#include <vector>

#include "studio/model/commands.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

/// Registers the commands "time.*".
class TimeBar final : public QWidget {
    Q_OBJECT
 public:
    TimeBar(Editor& editor, Commands& commands, QWidget* parent = nullptr);

    /// Plays in real time: frames that would come late are left out. From the end it begins anew.
    void Play();
    void Pause();
    bool IsPlaying() const { return clock_.isActive(); }
    int Frame() const;
    void SetFrame(int frame);

 private:
    void Show();
    void ShowRange();
    void ShowNext();
    void SetLastFrame(int frame);
    void AddCommands(Commands& commands);

    Editor& editor_;
    QSlider* slider_;
    QSpinBox* frame_;
    QSpinBox* last_;
    QLabel* seconds_;
    QToolButton* play_;
    class RecordedStrip;
    RecordedStrip* recorded_;
    QTimer clock_;
    QElapsedTimer since_;
    int from_ = 0;
    bool isShowing_ = false;
};

}  // namespace tavrik_studio

#include "studio/window/time_bar.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "host/scene_file.h"
#include "host/sdk/standin.h"

namespace tavrik_studio {
namespace {

constexpr int kMostFrames = 1'000'000;

int FrameOf(TimeValue tick) { return tick / GetTicksPerFrame(); }

Interval Range() { return GetCOREInterface()->GetAnimRange(); }

}  // namespace

/// Which part of the range has been driven.
class TimeBar::RecordedStrip final : public QWidget {
 public:
    explicit RecordedStrip(QWidget* parent) : QWidget(parent) {
        setFixedHeight(4);
        setToolTip(TimeBar::tr("What is recorded"));
    }
    void Refresh() {
        const std::vector<TimeValue> ticks = tavrik_host::RecordedTicks();
        hasAny_ = !ticks.empty();
        if (hasAny_) {
            first_ = ticks.front();
            last_ = ticks.back();
        }
        update();
    }

 protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Mid));
        const double length = Range().End() - Range().Start();
        if (!hasAny_ || length <= 0.0) return;
        const auto at = [&](TimeValue tick) { return int((tick - Range().Start()) / length * width()); };
        painter.fillRect(QRect(at(first_), 0, std::max(2, at(last_) - at(first_)), height()),
                         palette().color(QPalette::Highlight));
    }

 private:
    bool hasAny_ = false;
    TimeValue first_ = 0, last_ = 0;
};

TimeBar::TimeBar(Editor& editor, Commands& commands, QWidget* parent)
    : QWidget(parent),
      editor_(editor),
      slider_(new QSlider(Qt::Horizontal, this)),
      frame_(new QSpinBox(this)),
      last_(new QSpinBox(this)),
      seconds_(new QLabel(this)),
      play_(new QToolButton(this)),
      recorded_(new RecordedStrip(this)) {
    AddCommands(commands);
    slider_->setAccessibleName(tr("Time"));
    frame_->setAccessibleName(tr("Frame"));
    frame_->setToolTip(tr("Frame that is shown"));
    last_->setAccessibleName(tr("Last frame"));
    last_->setToolTip(tr("Last frame of the timeline"));
    last_->setRange(1, kMostFrames);
    last_->setKeyboardTracking(false);
    frame_->setKeyboardTracking(false);
    seconds_->setMinimumWidth(fontMetrics().horizontalAdvance("00:00.00 "));
    auto* const row = new QHBoxLayout;
    for (const char* name : {"time.first", "time.back", "time.play", "time.on", "time.last"}) {
        QToolButton* const button = name == QString("time.play") ? play_ : new QToolButton(this);
        button->setDefaultAction(commands.Find(name));
        button->setAutoRaise(true);
        row->addWidget(button);
    }
    auto* const line = new QVBoxLayout;
    line->setSpacing(0);
    line->addWidget(slider_);
    line->addWidget(recorded_);
    row->addLayout(line, 1);
    row->addWidget(seconds_);
    row->addWidget(frame_);
    row->addWidget(new QLabel(tr("of"), this));
    row->addWidget(last_);
    row->setContentsMargins(6, 2, 6, 2);
    setLayout(row);
    clock_.setTimerType(Qt::PreciseTimer);
    clock_.callOnTimeout(this, &TimeBar::ShowNext);
    connect(slider_, &QSlider::valueChanged, this, &TimeBar::SetFrame);
    connect(frame_, &QSpinBox::valueChanged, this, &TimeBar::SetFrame);
    connect(last_, &QSpinBox::valueChanged, this, &TimeBar::SetLastFrame);
    connect(&editor_, &Editor::TimeChanged, this, &TimeBar::Show);
    connect(&editor_, &Editor::StateChanged, this, &TimeBar::ShowRange);
    connect(&editor_, &Editor::SceneReplaced, this, [this] {
        Pause();
        ShowRange();
    });
    ShowRange();
}

void TimeBar::AddCommands(Commands& commands) {
    const auto icon = [this](QStyle::StandardPixmap which) { return style()->standardIcon(which); };
    commands.Add("time.first", tr("To the &First Frame"), Qt::Key_Home, [this] { SetFrame(FrameOf(Range().Start())); })
        .setIcon(icon(QStyle::SP_MediaSkipBackward));
    commands.Add("time.back", tr("A Frame &Back"), QKeySequence(Qt::Key_Comma), [this] { SetFrame(Frame() - 1); })
        .setIcon(icon(QStyle::SP_MediaSeekBackward));
    commands.Add("time.play", tr("&Play"), QKeySequence(Qt::Key_Space), [this] { IsPlaying() ? Pause() : Play(); })
        .setIcon(icon(QStyle::SP_MediaPlay));
    commands.Add("time.on", tr("A Frame &On"), QKeySequence(Qt::Key_Period), [this] { SetFrame(Frame() + 1); })
        .setIcon(icon(QStyle::SP_MediaSeekForward));
    commands.Add("time.last", tr("To the &Last Frame"), Qt::Key_End, [this] { SetFrame(FrameOf(Range().End())); })
        .setIcon(icon(QStyle::SP_MediaSkipForward));
}

void TimeBar::Play() {
    if (Range().End() <= Range().Start()) return;
    from_ = Frame() >= FrameOf(Range().End()) ? FrameOf(Range().Start()) : Frame();
    SetFrame(from_);
    since_.start();
    clock_.start(int(1000.0 * GetTicksPerFrame() / TIME_TICKSPERSEC));
    play_->defaultAction()->setText(tr("&Pause"));
    play_->defaultAction()->setIcon(style()->standardIcon(QStyle::SP_MediaPause));
}

void TimeBar::Pause() {
    clock_.stop();
    play_->defaultAction()->setText(tr("&Play"));
    play_->defaultAction()->setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
}

int TimeBar::Frame() const { return FrameOf(editor_.Time()); }

void TimeBar::SetFrame(int frame) {
    if (!isShowing_) editor_.SetTime(frame * GetTicksPerFrame());
}

void TimeBar::ShowNext() {
    const int frame = from_ + int(double(since_.elapsed()) / 1000.0 * TIME_TICKSPERSEC / GetTicksPerFrame());
    SetFrame(frame);
    if (frame >= FrameOf(Range().End())) Pause();
}

void TimeBar::Show() {
    isShowing_ = true;
    slider_->setValue(Frame());
    frame_->setValue(Frame());
    seconds_->setText(tr("%1 s").arg(double(editor_.Time()) / TIME_TICKSPERSEC, 0, 'f', 2));
    isShowing_ = false;
}

void TimeBar::ShowRange() {
    isShowing_ = true;
    const int first = FrameOf(Range().Start()), last = FrameOf(Range().End());
    slider_->setRange(first, last);
    slider_->setPageStep(std::max(1, (last - first) / 20));
    frame_->setRange(first, last);
    last_->setValue(last);
    isShowing_ = false;
    recorded_->Refresh();
    Show();
}

void TimeBar::SetLastFrame(int frame) {
    if (isShowing_ || frame <= FrameOf(Range().Start())) return;
    Change change(editor_, tr("Length of the Timeline"), "time.range");
    GetCOREInterface()->SetAnimRange(Interval(Range().Start(), frame * GetTicksPerFrame()));
    change.Keep();
    editor_.SetTime(editor_.Time());
}

}  // namespace tavrik_studio

#include "studio/dialogs/bake_tracks_dialog.h"

#include "studio/dialogs/scene_choices.h"

namespace tavrik_studio {
namespace {

constexpr double kStrongest = 1000.0;

QDoubleSpinBox* MakeStrength(double value, QWidget* parent) {
    auto* const spin = new QDoubleSpinBox(parent);
    spin->setRange(0.0, kStrongest);
    spin->setDecimals(2);
    spin->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
    spin->setValue(value);
    return spin;
}

}  // namespace

BakeTracksDialog::BakeTracksDialog(Editor& editor, QWidget* parent)
    : ExportDialog(editor, tr("Bake Tracks"), tr("Bake"), tr("Baking tracks"), parent),
      color_(new FileField(FileField::Kind::Save, tr("Bake Tracks to"), tr("Pictures (*.png)"), this)),
      withBump_(new QCheckBox(tr("A &normal map of their depth, too"), this)),
      bump_(new FileField(FileField::Kind::Save, tr("Bake the Normal Map to"), tr("Pictures (*.png)"), this)),
      when_(new QComboBox(this)),
      size_(new QComboBox(this)),
      roll_(MakeStrength(double(tavrik_host::TrackLook().roll), this)),
      skid_(MakeStrength(double(tavrik_host::TrackLook().skid), this)) {
    FillChoices();
    roll_->setToolTip(tr("How dark a rolling tyre colours"));
    skid_->setToolTip(tr("How much a sliding tyre adds"));
    AddRow(Form(), tr("&Picture:"), color_);
    Form().addRow(withBump_);
    AddRow(Form(), tr("Normal &map:"), bump_);
    AddRow(Form(), tr("&Tracks:"), when_);
    AddRow(Form(), tr("&Size:"), size_);
    AddRow(Form(), tr("&Rolling tyres:"), roll_);
    AddRow(Form(), tr("S&liding tyres:"), skid_);
    ChainTabs({color_, withBump_, bump_, when_, size_, roll_, skid_, &FolderButton(), &StartButton()});
    SuggestNames();
    bump_->setEnabled(false);
    connect(withBump_, &QCheckBox::toggled, bump_, &QWidget::setEnabled);
    connect(withBump_, &QCheckBox::toggled, this, &BakeTracksDialog::TellForecast);
    connect(size_, &QComboBox::currentIndexChanged, this, &BakeTracksDialog::TellForecast);
    connect(when_, &QComboBox::currentIndexChanged, this, [this] {
        SuggestNames();
        TellForecast();
    });
    TellForecast();
    resize(sizeHint().expandedTo({580, 0}));
}

void BakeTracksDialog::FillChoices() {
    when_->addItem(tr("Up to the end of the timeline"), int(When::End));
    when_->addItem(tr("Up to frame %1, where the time stands").arg(TheEditor().Time() / GetTicksPerFrame()), int(When::Now));
    when_->addItem(tr("One picture for each frame"), int(When::EachFrame));
    for (const int size : {512, 1024, 2048, 4096, 8192}) size_->addItem(tr("%1 × %1 pixels").arg(size), size);
    size_->setCurrentIndex(size_->findData(2048));
}

/// A sequence needs numbers in its names; one picture looks better without.
void BakeTracksDialog::SuggestNames() {
    const bool isSequence = when_->currentData().toInt() == int(When::EachFrame);
    color_->SetPath(isSequence ? Beside("_tracks") / "%04d.png" : Beside("_tracks.png"));
    bump_->SetPath(isSequence ? Beside("_tracks") / "bump_%04d.png" : Beside("_tracks_bump.png"));
}

QString BakeTracksDialog::Forecast() const {
    const FrameSpan span = TimelineFrames();
    if (when_->currentData().toInt() == int(When::EachFrame)) {
        return tr("%1 frames; the ground's colour is to be multiplied by the picture.").arg(span.last - span.first + 1);
    }
    return tr("The ground's colour is to be multiplied by the picture, which is white where no tyre was.");
}

JobResult BakeTracksDialog::Run(const JobWatch& watch) {
    TracksOrder order;
    order.color = color_->Path().string();
    if (withBump_->isChecked()) order.bump = bump_->Path().string();
    order.size = size_->currentData().toInt();
    order.look.roll = float(roll_->value());
    order.look.skid = float(skid_->value());
    const FrameSpan span = TimelineFrames();
    order.first = order.last = span.last;
    const auto when = When(when_->currentData().toInt());
    if (when == When::Now) order.first = order.last = TheEditor().Time() / GetTicksPerFrame();
    if (when == When::EachFrame) order.first = span.first;
    return BakeTracks(TheEditor().Document(), order, watch);
}

}  // namespace tavrik_studio

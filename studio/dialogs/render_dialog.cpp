#include "studio/dialogs/render_dialog.h"

#include <QHBoxLayout>
#include <algorithm>

#include "host/rig_objects.h"
#include "studio/dialogs/scene_grounds.h"

namespace tavrik_studio {
namespace {

constexpr const char *kFollow = "follow", *kTop = "top";
constexpr int kMostPixels = 16'384;

QSpinBox* MakeSpin(int low, int high, int value, QWidget* parent) {
    auto* const spin = new QSpinBox(parent);
    spin->setRange(low, high);
    spin->setValue(value);
    return spin;
}

/// Two numbers in one row, with a word between them.
QWidget* Pair(QSpinBox* a, const QString& between, QSpinBox* b) {
    auto* const pair = new QWidget(a->parentWidget());
    auto* const row = new QHBoxLayout(pair);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(a);
    row->addWidget(new QLabel(between, pair));
    row->addWidget(b);
    row->addStretch(1);
    pair->setFocusProxy(a);
    return pair;
}

}  // namespace

RenderDialog::RenderDialog(Editor& editor, QWidget* parent)
    : ExportDialog(editor, tr("Render Pictures"), tr("Render"), tr("Rendering pictures"), parent),
      names_(new FileField(FileField::Kind::Save, tr("Render Pictures to"), tr("Pictures (*.png)"), this)),
      camera_(new QComboBox(this)),
      car_(new NodeBox(this)),
      tracks_(new QCheckBox(tr("&Tyre tracks on the ground"), this)),
      resume_(new QCheckBox(tr("&Keep pictures that are there already"), this)) {
    const FrameSpan span = TimelineFrames();
    const tavrik_host::RenderSettings usual;
    first_ = MakeSpin(span.first, span.last, span.first, this);
    last_ = MakeSpin(span.first, span.last, span.last, this);
    width_ = MakeSpin(1, kMostPixels, usual.width, this);
    height_ = MakeSpin(1, kMostPixels, usual.height, this);
    samples_ = MakeSpin(1, 4096, usual.samples, this);
    tracks_->setChecked(true);
    FillChoices();
    Lay();
    names_->SetPath(Beside("_frames") / "%04d.png");
    connect(names_, &FileField::Changed, this, &RenderDialog::TellForecast);
    connect(camera_, &QComboBox::currentIndexChanged, this, &RenderDialog::TellForecast);
    for (QSpinBox* const spin : {first_, last_, width_, height_}) {
        connect(spin, &QSpinBox::valueChanged, this, &RenderDialog::TellForecast);
    }
    TellForecast();
    resize(sizeHint().expandedTo({580, 0}));
}

void RenderDialog::FillChoices() {
    camera_->addItem(tr("Behind the car"), QString(kFollow));
    camera_->addItem(tr("From above"), QString(kTop));
    for (const QString& name : CameraNames(TheEditor().Document())) {
        if (name != kFollow && name != kTop) camera_->addItem(tr("Camera \"%1\"").arg(name), name);
    }
    const std::vector<INode*> masters = tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik);
    car_->Fill(masters, masters.empty() ? nullptr : masters.front());
    car_->setEnabled(masters.size() > 1);
}

void RenderDialog::Lay() {
    samples_->setToolTip(tr("More of them give smoother shadows and edges, and take longer"));
    names_->setToolTip(tr("%04d stands for the frame's number in four digits"));
    last_->setAccessibleName(tr("Last frame"));
    height_->setAccessibleName(tr("Height"));
    AddRow(Form(), tr("&Files:"), names_);
    AddRow(Form(), tr("F&rames:"), Pair(first_, tr("to"), last_));
    AddRow(Form(), tr("&Size:"), Pair(width_, "×", height_));
    AddRow(Form(), tr("Sa&mples of a pixel:"), samples_);
    AddRow(Form(), tr("&Camera:"), camera_);
    AddRow(Form(), tr("C&ar:"), car_);
    Form().addRow(tracks_);
    Form().addRow(resume_);
    ChainTabs(
        {names_, first_, last_, width_, height_, samples_, camera_, car_, tracks_, resume_, &FolderButton(), &StartButton()});
}

QString RenderDialog::Forecast() const {
    const int count = std::max(0, last_->value() - first_->value() + 1);
    if (count == 0) return tr("The last frame lies before the first one.");
    const QString pictures = count == 1 ? tr("1 picture") : tr("%1 pictures").arg(count);
    return tr("%1 of %2 × %3 pixels.").arg(pictures).arg(width_->value()).arg(height_->value());
}

JobResult RenderDialog::Run(const JobWatch& watch) {
    if (last_->value() < first_->value()) {
        JobResult result;
        result.sentence = Forecast();
        return result;
    }
    using Kind = tavrik_host::CameraWish::Kind;
    RenderOrder order;
    order.pattern = names_->Path().string();
    order.frames.first = first_->value();
    order.frames.last = last_->value();
    order.frames.resume = resume_->isChecked();
    order.frames.settings.width = width_->value();
    order.frames.settings.height = height_->value();
    order.frames.settings.samples = samples_->value();
    const QString camera = camera_->currentData().toString();
    order.frames.camera.kind = camera == kFollow ? Kind::Follow : camera == kTop ? Kind::Top : Kind::Node;
    order.frames.camera.node = camera.toStdString();
    order.frames.master = car_->Node();
    order.frames.tracks = tracks_->isChecked();
    return RenderPictures(TheEditor().Document(), std::move(order), watch);
}

}  // namespace tavrik_studio

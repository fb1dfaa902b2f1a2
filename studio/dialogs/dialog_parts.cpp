#include "studio/dialogs/dialog_parts.h"

#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QSettings>
#include <QSignalBlocker>
#include <QStyle>
#include <cmath>

#include "host/mesh_import.h"

namespace tavrik_studio {
namespace {

constexpr const char* kLastFolder = "dialogs/lastFolder";

struct Unit {
    const char* name;
    double metres;
};
constexpr Unit kUnits[] = {{QT_TRANSLATE_NOOP("tavrik_studio::UnitBox", "Metres"), 1.0},
                           {QT_TRANSLATE_NOOP("tavrik_studio::UnitBox", "Centimetres"), 0.01},
                           {QT_TRANSLATE_NOOP("tavrik_studio::UnitBox", "Millimetres"), 0.001},
                           {QT_TRANSLATE_NOOP("tavrik_studio::UnitBox", "Inches"), 0.0254},
                           {QT_TRANSLATE_NOOP("tavrik_studio::UnitBox", "Feet"), 0.3048}};
constexpr double kOther = -1.0;

}  // namespace

QString Text(const std::string& text) { return QString::fromStdString(text); }

QString TextOf(const std::filesystem::path& file) { return QFile::decodeName(QByteArray::fromStdString(file.string())); }

std::filesystem::path PathOf(const QString& text) { return QFile::encodeName(text).toStdString(); }

QString Breakable(QString text) { return text.replace('/', QStringLiteral("/\u200B")); }

QString Number(double value, int most) {
    const QLocale locale;
    QString text = locale.toString(value, 'f', most);
    if (most == 0 || !text.contains(locale.decimalPoint())) return text;
    while (text.endsWith(locale.zeroDigit())) text.chop(1);
    if (text.endsWith(locale.decimalPoint())) text.chop(locale.decimalPoint().size());
    return text;
}

std::filesystem::path LastFolder() { return PathOf(QSettings().value(kLastFolder, QDir::homePath()).toString()); }

void RememberFolder(const std::filesystem::path& folder) {
    if (!folder.empty()) QSettings().setValue(kLastFolder, TextOf(folder));
}

QString MeshFilter() {
    QStringList patterns;
    for (QString extension : Text(tavrik::KnownMeshExtensions()).split(',')) {
        extension = extension.trimmed();
        patterns << "*" + extension << "*" + extension.toUpper();
    }
    return QObject::tr("Meshes (%1)").arg(patterns.join(' '));
}

void ChainTabs(std::initializer_list<QWidget*> widgets) {
    QWidget* before = nullptr;
    const auto add = [&before](QWidget* widget) {
        if (before != nullptr) QWidget::setTabOrder(before, widget);
        before = widget;
    };
    for (QWidget* const widget : widgets) {
        // A field of several parts hands its focus to one of them; left to itself, the chain would pass the others by.
        const bool hasParts = widget->focusProxy() != nullptr && widget->focusProxy()->parentWidget() == widget;
        if (!hasParts) {
            add(widget);
            continue;
        }
        for (QWidget* const part : widget->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if ((part->focusPolicy() & Qt::TabFocus) != 0) add(part);
        }
    }
}

void AddRow(QFormLayout& form, const QString& label, QWidget* widget) {
    auto* const text = new QLabel(label, form.parentWidget());
    text->setBuddy(widget);
    QString name = label;
    name.remove('&');
    if (name.endsWith(':')) name.chop(1);
    widget->setAccessibleName(name);
    if (widget->focusProxy() != nullptr) widget->focusProxy()->setAccessibleName(name);
    form.addRow(text, widget);
}

QSize RoomyRows::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, option.fontMetrics.height() / 2);
}

// ------------------------------------------------------------------------------------------------------------- the message

MessageLine::MessageLine(QWidget* parent) : QWidget(parent), sign_(new QLabel(this)), text_(new QLabel(this)) {
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    sign_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(size, size));
    sign_->setVisible(false);
    text_->setWordWrap(true);
    text_->setTextFormat(Qt::PlainText);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    text_->setMinimumWidth(1);  // a long word must not widen the dialog
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(sign_, 0, Qt::AlignTop);
    row->addWidget(text_, 1);
    setMinimumHeight(2 * fontMetrics().lineSpacing());
    setAccessibleName(tr("Message"));
}

void MessageLine::Set(const QString& sentence, bool complains) {
    sentence_ = sentence;
    complains_ = complains && !sentence.isEmpty();
    sign_->setVisible(complains_);
    text_->setText(Breakable(sentence));
    setAccessibleDescription(sentence);
}

// ---------------------------------------------------------------------------------------------------------------- the file

FileField::FileField(Kind kind, const QString& caption, const QString& filter, QWidget* parent)
    : QWidget(parent),
      kind_(kind),
      caption_(caption),
      filter_(filter),
      edit_(new QLineEdit(this)),
      browse_(new QPushButton(tr("Browse…"), this)) {
    edit_->setMinimumWidth(fontMetrics().averageCharWidth() * 34);
    browse_->setAutoDefault(false);
    browse_->setAccessibleName(caption);
    setFocusProxy(edit_);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(edit_, 1);
    row->addWidget(browse_);
    connect(edit_, &QLineEdit::editingFinished, this, &FileField::TellIfOther);
    connect(browse_, &QPushButton::clicked, this, &FileField::Browse);
}

std::filesystem::path FileField::Path() const { return PathOf(edit_->text().trimmed()); }

void FileField::SetPath(const std::filesystem::path& file) {
    edit_->setText(TextOf(file));
    TellIfOther();
}

void FileField::Browse() {
    const QString from = Path().empty() ? TextOf(LastFolder()) : TextOf(Path());
    const QString file = kind_ == Kind::Open ? QFileDialog::getOpenFileName(this, caption_, from, filter_)
                                             : QFileDialog::getSaveFileName(this, caption_, from, filter_);
    if (file.isEmpty()) return;
    RememberFolder(PathOf(file).parent_path());
    SetPath(PathOf(file));
}

void FileField::TellIfOther() {
    if (edit_->text() == told_) return;
    told_ = edit_->text();
    emit Changed();
}

// ---------------------------------------------------------------------------------------------------------------- the unit

UnitBox::UnitBox(const QString& unset, QWidget* parent)
    : QWidget(parent), unit_(new QComboBox(this)), other_(new QDoubleSpinBox(this)) {
    unit_->addItem(unset, 0.0);
    for (const Unit& unit : kUnits) unit_->addItem(tr(unit.name), unit.metres);
    unit_->addItem(tr("Another length"), kOther);
    other_->setDecimals(6);
    other_->setRange(0.000001, 1'000'000.0);
    other_->setValue(1.0);
    other_->setSuffix(tr(" m"));
    other_->setAccessibleName(tr("Metres to one unit"));
    other_->setVisible(false);
    setFocusProxy(unit_);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(unit_, 1);
    row->addWidget(other_);
    connect(unit_, &QComboBox::currentIndexChanged, this, [this] {
        other_->setVisible(unit_->currentData().toDouble() == kOther);
        emit Changed();
    });
    connect(other_, &QDoubleSpinBox::valueChanged, this, &UnitBox::Changed);
}

std::optional<double> UnitBox::Metres() const {
    const double metres = unit_->currentData().toDouble();
    if (metres == kOther) return other_->value();
    return metres > 0.0 ? std::optional(metres) : std::nullopt;
}

void UnitBox::SetMetres(const std::optional<double>& metres) {
    int entry = metres ? unit_->findData(*metres) : 0;
    if (entry < 0) entry = unit_->count() - 1;
    if (metres) {
        const QSignalBlocker quiet(other_);
        other_->setValue(*metres);
    }
    unit_->setCurrentIndex(entry);
}

// ----------------------------------------------------------------------------------------------------- the optional number

OptionalNumber::OptionalNumber(const QString& unset, double most, int decimals, const QString& suffix, QWidget* parent)
    : QDoubleSpinBox(parent) {
    setDecimals(decimals);
    setRange(0.0, most);
    setSpecialValueText(unset);
    setSuffix(suffix);
    setStepType(AdaptiveDecimalStepType);
    setKeyboardTracking(false);
}

std::optional<double> OptionalNumber::Number() const { return value() > 0.0 ? std::optional(value()) : std::nullopt; }

}  // namespace tavrik_studio

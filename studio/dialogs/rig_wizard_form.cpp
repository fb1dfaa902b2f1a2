#include "studio/dialogs/rig_wizard_form.h"

#include <QFormLayout>

#include "studio/dialogs/scene_grounds.h"

namespace tavrik_studio {
namespace {

struct Direction {
    const char* name;
    tavrik::DPoint3 axis;
};
constexpr Direction kDirections[] = {{"+X", {1, 0, 0}},  {"−X", {-1, 0, 0}}, {"+Y", {0, 1, 0}},
                                     {"−Y", {0, -1, 0}}, {"+Z", {0, 0, 1}},  {"−Z", {0, 0, -1}}};

constexpr double kMostMass = 1'000'000.0, kMostFrequency = 20.0, kMostDamping = 2.0;

}  // namespace

RigWizardForm::RigWizardForm(Editor& editor, QWidget* parent)
    : QWidget(parent),
      model(new FileField(FileField::Kind::Open, tr("Choose a Car Model"), MeshFilter(), this)),
      places(new FileField(FileField::Kind::Open, tr("Choose a File of Places"), tr("Places (*.json)"), this)),
      up(new QComboBox(this)),
      forward(new QComboBox(this)),
      bike(new QComboBox(this)),
      name(MakeLine(tr("as the file"))),
      wheels(MakeLine(tr("found by name and shape"))),
      steered(MakeLine(tr("found, such as 1"))),
      driven(MakeLine(tr("found, such as 2, 3"))),
      unit(new UnitBox(tr("Guessed"), this)),
      mass(new OptionalNumber(tr("Guessed"), kMostMass, 1, tr(" kg"), this)),
      frequency(new OptionalNumber(tr("Guessed"), kMostFrequency, 2, tr(" Hz"), this)),
      damping(new OptionalNumber(tr("Guessed"), kMostDamping, 2, {}, this)),
      ground(new NodeBox(this)) {
    FillChoices();
    const std::vector<INode*> grounds = GroundNodes();
    INode* const usual = UsualGround(editor);
    ground->Fill(grounds, usual != nullptr || grounds.empty() ? usual : grounds.front(), tr("A new sample ground"));
    wheels->setToolTip(tr("Names of parts with commas between; * stands for any text, ? for a letter"));
    steered->setToolTip(tr("Axles counted from 1 at the front, or none"));
    driven->setToolTip(steered->toolTip());
    damping->setToolTip(tr("1 stops the swing altogether, 0.3 is usual"));
    places->setToolTip(tr("Where parts go that the model keeps without places, such as a truck's and its trailer's"));
    for (FileField* const field : {model, places}) field->Edit().setMinimumWidth(field->fontMetrics().averageCharWidth() * 18);
    Lay();
    Connect();
}

QLineEdit* RigWizardForm::MakeLine(const QString& hint) {
    auto* const line = new QLineEdit(this);
    line->setPlaceholderText(hint);
    return line;
}

void RigWizardForm::FillChoices() {
    up->addItem(tr("From the file"), int(tavrik::UpAxis::FromFile));
    up->addItem(tr("Y is up"), int(tavrik::UpAxis::Y));
    up->addItem(tr("Z is up"), int(tavrik::UpAxis::Z));
    forward->addItem(tr("Guessed"), -1);
    int number = 0;
    for (const Direction& direction : kDirections) forward->addItem(tr("%1 in its file").arg(direction.name), number++);
    bike->addItem(tr("Guessed"), -1);
    bike->addItem(tr("It is a motorcycle"), 1);
    bike->addItem(tr("It is none"), 0);
}

void RigWizardForm::Lay() {
    auto* const form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    AddRow(*form, tr("&Model:"), model);
    AddRow(*form, tr("U&p axis:"), up);
    AddRow(*form, tr("Pla&ces:"), places);
    AddRow(*form, tr("Car's &name:"), name);
    AddRow(*form, tr("One &unit is:"), unit);
    AddRow(*form, tr("&Forward:"), forward);
    AddRow(*form, tr("&Wheels:"), wheels);
    AddRow(*form, tr("Whole m&ass:"), mass);
    AddRow(*form, tr("&Steered axles:"), steered);
    AddRow(*form, tr("&Driven axles:"), driven);
    AddRow(*form, tr("F&requency:"), frequency);
    AddRow(*form, tr("Dampin&g:"), damping);
    AddRow(*form, tr("Motorc&ycle:"), bike);
    AddRow(*form, tr("Put &onto:"), ground);
    ChainTabs({model, up, places, name, unit, forward, wheels, mass, steered, driven, frequency, damping, bike, ground});
}

void RigWizardForm::Connect() {
    connect(model, &FileField::Changed, this, &RigWizardForm::ModelChanged);
    connect(up, &QComboBox::currentIndexChanged, this, &RigWizardForm::ModelChanged);
    connect(places, &FileField::Changed, this, &RigWizardForm::WishesChanged);
    connect(unit, &UnitBox::Changed, this, &RigWizardForm::WishesChanged);
    for (QComboBox* const box : {forward, bike}) {
        connect(box, &QComboBox::currentIndexChanged, this, &RigWizardForm::WishesChanged);
    }
    for (QLineEdit* const line : {name, wheels, steered, driven}) {
        connect(line, &QLineEdit::textChanged, this, &RigWizardForm::WishesChanged);
    }
    for (OptionalNumber* const number : {mass, frequency, damping}) {
        connect(number, &QDoubleSpinBox::valueChanged, this, &RigWizardForm::WishesChanged);
    }
}

bool RigWizardForm::Wishes(RigWishes& wishes, QString& problem) const {
    wishes = {};
    wishes.name = name->text().trimmed();
    wishes.places = places->Path();
    tavrik::WizardOptions& options = wishes.options;
    options.unit = unit->Metres();
    if (const int direction = forward->currentData().toInt(); direction >= 0) options.forward = kDirections[direction].axis;
    for (const QString& wheel : wheels->text().split(',', Qt::SkipEmptyParts)) {
        if (!wheel.trimmed().isEmpty()) options.wheelNames.push_back(wheel.trimmed().toStdString());
    }
    options.mass = mass->Number();
    options.frequency = frequency->Number();
    options.dampingRatio = damping->Number();
    if (const int isBike = bike->currentData().toInt(); isBike >= 0) options.bike = isBike == 1;
    return ParseAxles(steered->text(), options.steeredAxles, problem) &&
           ParseAxles(driven->text(), options.drivenAxles, problem);
}

}  // namespace tavrik_studio

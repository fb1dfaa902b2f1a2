#include "studio/dialogs/rig_wizard.h"

#include <QCoreApplication>
#include <QStringList>
#include <array>
#include <cmath>

#include "host/placed_parts.h"
#include "host/train.h"
#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/placed_car.h"

namespace tavrik_studio {
namespace {

struct WizardTexts {
    Q_DECLARE_TR_FUNCTIONS(WizardTexts)
};

/// What stands in the table of the wheels isn't told a second time.
bool IsOfOneWheel(const tavrik::Decision& decision) {
    return decision.key.starts_with("spring.") || decision.key.starts_with("tyre.");
}

/// A direction in the axes of the model's file: "−Z", or three numbers.
QString AxisText(tavrik::DPoint3 d, bool stoodUp) {
    if (stoodUp) d = {d.x, d.z, -d.y};
    const std::array numbers{d.x, d.y, d.z};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (std::abs(numbers[i]) > 0.9999) return QString(numbers[i] > 0.0 ? "+" : "−") + QChar("XYZ"[i]);
    }
    return Number(d.x, 3) + ", " + Number(d.y, 3) + ", " + Number(d.z, 3);
}

QString SuspensionText(const tavrik::PlannedUnit& unit) {
    QStringList words{unit.suspension.Suspension_Type == tavrik::kWishbone ? WizardTexts::tr("wishbone")
                                                                           : WizardTexts::tr("telescopic")};
    if (unit.suspension.Steering != 0) words << WizardTexts::tr("steers");
    if (unit.suspension.Drive != 0) words << WizardTexts::tr("drives");
    return words.join(", ");
}

}  // namespace

bool ParseAxles(const QString& words, std::optional<std::vector<int>>& axles, QString& problem) {
    axles.reset();
    if (words.trimmed().isEmpty()) return true;
    std::vector<int> found;
    if (words.trimmed().compare(WizardTexts::tr("none"), Qt::CaseInsensitive) != 0) {
        for (const QString& word : words.split(',')) {
            bool isNumber = false;
            const int axle = word.trimmed().toInt(&isNumber);
            if (!isNumber || axle < 1) {
                problem =
                    WizardTexts::tr("Axles are counted from 1 at the front, such as 1 or 2, 3, or none; \"%1\" isn't one.")
                        .arg(word.trimmed());
                return false;
            }
            found.push_back(axle);
        }
    }
    axles = std::move(found);
    return true;
}

bool RigWizard::Read(const std::filesystem::path& model, tavrik::UpAxis up, QString& problem) {
    tavrik_host::RigWish wish;
    wish.model = model;
    wish.import.up = up;
    job_ = {};
    isPlanned_ = false;
    std::string fault;
    isRead_ = ReadRigJob(wish, job_, fault);
    if (!isRead_) problem = Text(fault);
    return isRead_;
}

bool RigWizard::Plan(const RigWishes& wishes, QString& problem) {
    isPlanned_ = false;
    if (!isRead_) return false;
    std::vector<tavrik::VehicleWish> vehicles{{"", wishes.options}};
    std::string fault;
    if (!wishes.places.empty() && !ReadPlaces(wishes.places, wishes.options, vehicles, fault)) {
        problem = Text(fault);
        return false;
    }
    job_.vehicles.clear();
    for (tavrik::VehicleWish& vehicle : vehicles) {
        if (job_.model.stoodUp) StandUpWish(vehicle);
        const bool isOnly = vehicles.size() == 1;
        if (isOnly && !wishes.name.isEmpty()) vehicle.name = wishes.name.toStdString();
        if (vehicle.name.empty()) vehicle.name = job_.file.stem().string();
        job_.vehicles.push_back({vehicle, {}});
    }
    isPlanned_ = PlanRigJob(job_, fault);
    if (!isPlanned_) problem = Text(fault);
    return isPlanned_;
}

std::vector<QString> RigWizard::Vehicles() const {
    std::vector<QString> names;
    for (const tavrik_host::PlannedVehicle& vehicle : job_.vehicles) names.push_back(Text(vehicle.wish.name));
    return names;
}

std::vector<RigDecision> RigWizard::Decisions(std::size_t vehicle) const {
    std::vector<RigDecision> rows;
    if (!isPlanned_ || vehicle >= job_.vehicles.size()) return rows;
    const tavrik::WizardResult& result = job_.vehicles[vehicle].result;
    for (const tavrik::Decision& decision : result.decisions) {
        if (IsOfOneWheel(decision)) continue;
        const QString value = decision.key == "forward"
                                  ? WizardTexts::tr("%1 in its file").arg(AxisText(result.frame.row[1], job_.model.stoodUp))
                                  : Text(decision.value);
        rows.push_back({Text(decision.key), value, Text(decision.why)});
    }
    return rows;
}

std::vector<RigWheelRow> RigWizard::Wheels(std::size_t vehicle) const {
    std::vector<RigWheelRow> rows;
    if (!isPlanned_ || vehicle >= job_.vehicles.size()) return rows;
    const tavrik::WizardResult& result = job_.vehicles[vehicle].result;
    for (std::size_t i = 0; i < result.wheels.size(); ++i) {
        const tavrik::RiggedWheel& wheel = result.wheels[i];
        rows.push_back({Text(wheel.label), Number(wheel.load / result.massScale, 1), Number(wheel.frequency, 2),
                        Number(wheel.dampingRatio, 2), SuspensionText(result.plan.units[i])});
    }
    return rows;
}

std::vector<QString> RigWizard::Missed() const {
    std::vector<QString> sentences;
    for (const std::string& missed : job_.looks.missed) sentences.push_back(Text(missed));
    return sentences;
}

bool RigWizard::PutInto(Editor& editor, INode* ground, QString& problem) const {
    if (!isPlanned_) return false;
    std::vector<tavrik_host::DressedCar> cars;
    std::string fault;
    if (!DressRigJob(job_, cars, fault)) {
        problem = Text(fault);
        return false;
    }
    CarOrder order;
    order.what = WizardTexts::tr("Import Car");
    order.plan = &cars.front().plan;
    order.vehicles = int(cars.size());
    order.fill = [&](const tavrik::DMatrix3& frame, INode& node, const tavrik::SurfaceTree& surface, std::string&) {
        return AddTrain(editor.Document(), cars, frame, node, surface);
    };
    return PutCar(editor, order, ground, problem);
}

}  // namespace tavrik_studio

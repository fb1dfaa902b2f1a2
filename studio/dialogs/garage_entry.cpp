#include "studio/dialogs/garage_entry.h"

#include <QCoreApplication>

#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/placed_car.h"

namespace tavrik_studio {
namespace {

struct GarageTexts {
    Q_DECLARE_TR_FUNCTIONS(GarageTexts)
};

using tavrik_host::GarageScene;

bool Put(Editor& editor, const GarageScene& scene, const QString& what, INode* ground, QString& problem) {
    const std::vector<tavrik_host::GarageVehicle> vehicles = scene.vehicles();
    CarOrder order;
    order.what = what;
    order.plan = &vehicles.front().plan;
    order.vehicles = int(vehicles.size());
    order.spot = scene.start;
    order.fill = [&](const tavrik::DMatrix3& frame, INode& node, const tavrik::SurfaceTree& surface, std::string& fault) {
        return FillGarageScene(editor.Document(), scene, frame, node, surface, fault);
    };
    return PutCar(editor, order, ground, problem);
}

}  // namespace

bool OpenGarageScene(Editor& editor, const GarageScene& scene, QString& problem) {
    editor.New();
    const QString what = GarageTexts::tr("Garage");
    Change change(editor, what);
    std::string fault;
    INode* const ground = tavrik_host::AddGroundNode(editor.Document(), scene.ground(), "The garage's ground", fault);
    if (ground == nullptr) {
        problem = Text(fault);
        return false;
    }
    if (!Put(editor, scene, what, ground, problem)) return false;
    change.Keep();
    return true;
}

bool PutGarageVehicles(Editor& editor, const GarageScene& scene, INode* ground, QString& problem) {
    return Put(editor, scene, GarageTexts::tr("Put in from the Garage"), ground, problem);
}

}  // namespace tavrik_studio

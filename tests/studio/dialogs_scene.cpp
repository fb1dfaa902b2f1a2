#include "tests/studio/dialogs_scene.h"

#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "host/rig_scene.h"
#include "host/sdk/desktop.h"
#include "rig/stock_car.h"
#include "studio/dialogs/scene_grounds.h"
#include "tests/support/test_random.h"

namespace tavrik_studio::test {

using tavrik::ObjectClass;

DialogScene::DialogScene() {
    tavrik::Desktop& desktop = tavrik::TheDesktop();
    desktop.windows = &windows;
    desktop.devices = &pad;
    desktop.controls = &controls;
}

DialogScene::~DialogScene() {
    editor.New();
    tavrik::TheDesktop() = {};
}

INode& DialogScene::AddPlane(const char* name) {
    tavrik::SampleGround wanted;
    wanted.kind = tavrik::SampleGroundKind::Plane;
    wanted.sizeMetres = 200.0;
    wanted.triangles = 200;
    QString problem;
    return *AddGround(editor, "Ground", tavrik::MakeSampleGround(wanted), name, problem);
}

INode& DialogScene::AddCar(INode& ground) {
    Change change(editor, "Car");
    const tavrik::CarPlan plan = tavrik::StockCarPlan();
    tavrik::DMatrix3 frame = tavrik::IdentityDMatrix3();
    frame.row[3].z = plan.standingHeight;
    INode& master = *tavrik_host::AddPlannedCar(editor.Document(), plan, tavrik_host::StockCarDress(), frame, &ground).master;
    change.Keep();
    return master;
}

void DialogScene::Lock(INode& master) { tavrik_host::MasterPanel(master).LockComponents(); }

INode& DialogScene::Only(ObjectClass objectClass) const { return *tavrik_host::NodesOf(objectClass).at(0); }

std::size_t DialogScene::Count(ObjectClass objectClass) const { return tavrik_host::NodesOf(objectClass).size(); }

std::string DialogScene::Scene() const {
    std::string bytes, problem;
    EXPECT_TRUE(tavrik_host::MakeSnapshot(editor.Document(), bytes, problem)) << problem;
    return bytes;
}

void DialogScene::Picture(QWidget& widget, const char* name) {
    const QString pictures = qEnvironmentVariable("TAVRIK_PICTURES");
    if (!pictures.isEmpty()) widget.grab().save(pictures + "/" + name + ".png");
}

std::string DataFile(const char* name) { return tavrik::test::DataFolder() + "/" + name; }

}  // namespace tavrik_studio::test

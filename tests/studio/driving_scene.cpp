#include "tests/studio/driving_scene.h"

#include <QTest>
#include <vector>

#include "drive/input_modes.h"
#include "host/rig_objects.h"
#include "host/rig_scene.h"
#include "host/scene_file.h"
#include "host/sdk/panels.h"
#include "host/sdk/standin.h"
#include "host/shape.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"
#include "samples/sample_ground.h"

namespace tavrik_studio::test {
namespace {

constexpr int kPatience = 60'000;  // ms

INode& AddGround(Editor& editor) {
    tavrik::SampleGround wanted;
    wanted.kind = tavrik::SampleGroundKind::Plane;
    const tavrik::ShapePart part = tavrik::GroundShape(tavrik::MakeSampleGround(wanted));
    return *tavrik_host::AddMeshNode(editor.Document(), {&part, 1}, "ground");
}

}  // namespace

DrivingScene::DrivingScene() {
    mainWindow.resize(400, 300);
    mainWindow.show();
    desk.Windows().showMessage = [this](const QString& text, const QString&, std::uint32_t) { boxes << text; };
    QObject::connect(&desk, &DriveDesk::Complained, &desk, [this](const QString& sentence) { complaints << sentence; });
    const tavrik::CarPlan plan = tavrik::StockCarPlan();
    tavrik::DMatrix3 frame = tavrik::IdentityDMatrix3();
    frame.row[3].z = plan.standingHeight;
    tavrik_host::AddPlannedCar(editor.Document(), plan, tavrik_host::StockCarDress(), frame, &AddGround(editor));
    tavrik_host::SetParam(Master(), tavrik::MasterParam::Driving_Type, std::int32_t(tavrik::kDriveByKeyboard));
    tavrik_host::SetParam(Master(), tavrik::MasterParam::Time_Delay, 5);
}

DrivingScene::~DrivingScene() {
    panel.reset();
    tavrik_host::ClosePanel();
}

INode& DrivingScene::Master() const { return *tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik).at(0); }
INode& DrivingScene::Suspension() const { return *tavrik_host::NodesOf(tavrik::ObjectClass::Suspension).at(0); }

void DrivingScene::OpenDrive() {
    panel = std::make_unique<tavrik_host::MasterPanel>(Master());
    panel->LockComponents();
    panel->UpdateSurface();
    panel->Drive();
    ASSERT_NE(desk.Windows().Face(tavrik::WindowKind::Drive), nullptr) << boxes.join("; ").toStdString();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Face()));
}

FaceWindow& DrivingScene::Face() const { return *const_cast<DriveDesk&>(desk).Windows().Face(tavrik::WindowKind::Drive); }

void DrivingScene::Press(int key) { QTest::keyPress(&Face(), Qt::Key(key)); }
void DrivingScene::Release(int key) { QTest::keyRelease(&Face(), Qt::Key(key)); }

void DrivingScene::Enter() {
    Press(Qt::Key_Return);
    Release(Qt::Key_Return);
}

bool DrivingScene::WaitForFrames(int frames) const {
    const TimeValue wanted = frames * GetTicksPerFrame();
    return QTest::qWaitFor([&] { return editor.Time() >= wanted; }, kPatience);
}

Point3 DrivingScene::CarAt(TimeValue tick) const {
    return tavrik_host::NodesOf(tavrik::ObjectClass::Chassis).at(0)->GetNodeTM(tick).GetTrans();
}

Point3 DrivingScene::CarForward() const {
    return tavrik_host::NodesOf(tavrik::ObjectClass::Chassis).at(0)->GetNodeTM(0).GetRow(1);
}

std::string DrivingScene::Recording() const {
    const std::vector<tavrik_host::Chunk> chunks = tavrik_host::SaveChunks(*Master().GetObjectRef());
    return chunks.empty() ? std::string() : chunks.front().bytes;
}

void DrivingScene::PressButton(MapID page, int control) {
    tavrik_host::PanelWindow* const window = tavrik_host::PageOf(page);
    ASSERT_NE(window, nullptr);
    tavrik_host::PressControl(*window, control);
}

}  // namespace tavrik_studio::test

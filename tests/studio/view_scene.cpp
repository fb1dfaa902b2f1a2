#include "tests/studio/view_scene.h"

#include <QCoreApplication>
#include <QMouseEvent>

#include "host/scene_file.h"
#include "host/shape.h"

namespace tavrik_studio::test {

Matrix3 At(float x, float y, float z) {
    Matrix3 place(TRUE);
    place.SetTrans(Point3(x, y, z));
    return place;
}

INode* Again(ULONG handle) { return GetCOREInterface()->GetINodeByHandle(handle); }

ViewScene::ViewScene() {
    QObject::connect(&view, &ViewWidget::Said, &view, [this](const QString& sentence) { said = sentence; });
    view.resize(400, 300);
    view.show();
    QCoreApplication::processEvents();
}

INode& ViewScene::AddBlock(const Point3& middle, float size, const Point3& color) {
    tavrik::ShapePart part;
    part.material = {"paint", color.x, color.y, color.z, 0.0f, 0.9f};
    const float h = 0.5f * size;
    tavrik::Box3 box;
    box.pmin = {-h, -h, -h};
    box.pmax = {h, h, h};
    tavrik::AddBlock(part, box);
    INode* const node = tavrik_host::AddMeshNode(editor.Document(), {&part, 1}, "block");
    Matrix3 place = At(middle.x, middle.y, middle.z);
    node->SetNodeTM(0, place);
    editor.TouchNodes();
    return *node;
}

INode& ViewScene::Add(tavrik::ObjectClass objectClass, float x, float y, float z) {
    INode& node = tavrik_host::AddRigNode(objectClass, At(x, y, z));
    editor.TouchNodes();
    return node;
}

void ViewScene::LookDown(float scale) {
    view.SetSide(tavrik_host::ViewSide::Top);
    tavrik_host::ViewState state = view.State();
    state.target = Point3(0, 0, 0);
    // Half the height is this many units: see `CameraOf`.
    state.distance = 150.0f / scale / std::tan(0.5f * state.lens * 0.017453293f);
    view.SetState(state);
}

QPoint ViewScene::PixelOf(const Point3& world) {
    tavrik_host::Pixel pixel{};
    EXPECT_TRUE(Project(view.Lines().Camera(), world, pixel));
    return {int(std::lround(pixel.x)), int(std::lround(pixel.y))};
}

QColor ViewScene::ColorAt(const Point3& world) { return view.GrabScene().pixelColor(PixelOf(world)); }

void ViewScene::Press(const QPoint& at, Qt::KeyboardModifiers keys, Qt::MouseButton button) {
    QTest::mousePress(&view, button, keys, at);
}

void ViewScene::Move(const QPoint& at, Qt::KeyboardModifiers keys) {
    QMouseEvent event(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, Qt::LeftButton, keys);
    QCoreApplication::sendEvent(&view, &event);
}

void ViewScene::Release(const QPoint& at, Qt::KeyboardModifiers keys, Qt::MouseButton button) {
    QTest::mouseRelease(&view, button, keys, at);
}

void ViewScene::Click(const QPoint& at, Qt::KeyboardModifiers keys) {
    Press(at, keys);
    Release(at, keys);
}

void ViewScene::Drag(const QPoint& from, const QPoint& to, Qt::KeyboardModifiers keys, Qt::MouseButton button) {
    Press(from, keys, button);
    Move((from + to) / 2, keys);
    Move(to, keys);
    Release(to, keys, button);
}

}  // namespace tavrik_studio::test

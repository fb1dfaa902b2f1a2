#include "tests/plugin/plugin_scene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "drive/window_messages.h"
#include "host/sdk/desktop.h"
#include "rig/recording_bytes.h"
#include "rig/stock_car.h"

namespace plugin_test {
namespace {

constexpr USHORT kRecordingChunk = 20;
constexpr int kKeyW = 87, kEnter = 13;

void LoadOnce() {
    static const bool loaded = [] {
        std::string problem;
        const bool ok = tavrik_host::LoadPlugin(PluginFile(), problem);
        if (!ok) std::fprintf(stderr, "%s\n", problem.c_str());
        return ok;
    }();
    if (!loaded) std::exit(1);
}

Matrix3 Narrow(const tavrik::DMatrix3& frame) {
    Matrix3 narrow(TRUE);
    for (int i = 0; i < 4; ++i) {
        const tavrik::DPoint3& row = frame.row[i];
        narrow.SetRow(i, Point3(float(row.x), float(row.y), float(row.z)));
    }
    return narrow;
}

void SetChassis(INode& node, const tavrik::ChassisValues& values) {
    Set(node, 0, values.Width);
    Set(node, 1, values.Length);
    Set(node, 2, values.Height);
    Set(node, 3, values.Mass);
    Set(node, 4, values.Solidity);
    Set(node, 5, values.Rotation_Center_Shift);
}

void SetSuspension(INode& node, const tavrik::SuspensionValues& values) {
    Set(node, 11, values.Suspension_Type);
    Set(node, 0, values.Length);
    Set(node, 12, values.Wheel_Shift);
    Set(node, 1, values.Ruggedness_Factor);
    Set(node, 2, values.Ruggedness);
    Set(node, 3, values.Damping);
    Set(node, 6, values.Shift);
    Set(node, 10, values.Buffer_Ruggedness);
    Set(node, 4, values.Top_Stop);
    Set(node, 5, values.Bottom_Stop);
    Set(node, 8, int(values.Drive));
    Set(node, 7, int(values.Steering));
    Set(node, 9, int(values.Handbrake));
}

void SetWheel(INode& node, const tavrik::WheelValues& values) {
    Set(node, 0, values.Radius);
    Set(node, 1, values.Width);
    Set(node, 2, values.Mass);
    Set(node, 3, values.Ruggedness);
    Set(node, 4, values.Grip);
}

void AddParts(Car& car, const tavrik::CarPlan& plan, const Matrix3& place) {
    for (const tavrik::PlannedUnit& unit : plan.units) {
        const Matrix3 rest = Narrow(tavrik::RestFrame(unit)) * place;
        SetWheel(*car.wheels.emplace_back(&AddNode(kWheelClass, rest)), unit.wheel);
        SetSuspension(*car.suspensions.emplace_back(&AddNode(kSuspensionClass, rest)), unit.suspension);
    }
    for (const tavrik::PlannedSphere& sphere : plan.spheres) {
        const tavrik::DPoint3& p = sphere.centre;
        INode& node = AddNode(kSphereClass, At(float(p.x), float(p.y), float(p.z)) * place);
        Set(node, 0, sphere.values.Radius);
        car.spheres.push_back(&node);
    }
}

}  // namespace

std::string PluginFile() { return TAVRIK_PLUGIN_FILE; }

Matrix3 At(float x, float y, float z) {
    Matrix3 place(TRUE);
    place.SetTrans(Point3(x, y, z));
    return place;
}

std::string Text(const Matrix3& frame) {
    std::string text;
    for (int i = 0; i < 4; ++i) {
        const Point3 row = frame.GetRow(i);
        char line[96];
        std::snprintf(line, sizeof line, "(%.2f %.2f %.2f)", double(row.x), double(row.y), double(row.z));
        text += line;
    }
    return text;
}

INode& AddNode(Class_ID id, const Matrix3& place, INode* parent) {
    INode* const node = GetCOREInterface()->CreateObjectNode(static_cast<Object*>(CreateInstance(HELPER_CLASS_ID, id)));
    if (parent != nullptr) parent->AttachChild(node);
    Move(*node, place);
    return *node;
}

IParamBlock2& BlockOf(INode& node) { return *node.GetObjectRef()->GetParamBlockByID(0); }

Control* ControlOf(INode& node) {
    Control* const control = node.GetTMController();
    return control->ClassID() == kControlClass ? control : nullptr;
}

IParamBlock2& ControlBlockOf(INode& node) { return *ControlOf(node)->GetParamBlockByID(0); }

void Set(INode& node, ParamID id, float value, int entry) { ASSERT_TRUE(BlockOf(node).SetValue(id, 0, value, entry)) << id; }
void Set(INode& node, ParamID id, int value) { ASSERT_TRUE(BlockOf(node).SetValue(id, 0, value)) << id; }
void Set(INode& node, ParamID id, INode* value) { ASSERT_TRUE(BlockOf(node).SetValue(id, 0, value)) << id; }
float FloatOf(INode& node, ParamID id, int entry) { return BlockOf(node).GetFloat(id, 0, entry); }
int IntOf(INode& node, ParamID id) { return BlockOf(node).GetInt(id); }

Matrix3 PlaceOf(INode& node, TimeValue t) { return node.GetNodeTM(t); }

void Move(INode& node, const Matrix3& place) {
    Matrix3 frame = place;
    node.SetNodeTM(0, frame);
}

std::vector<INode*> Car::Parts() const {
    std::vector<INode*> parts{chassis};
    parts.insert(parts.end(), wheels.begin(), wheels.end());
    parts.insert(parts.end(), suspensions.begin(), suspensions.end());
    parts.insert(parts.end(), spheres.begin(), spheres.end());
    return parts;
}

Car AddCar(const Point3& at) {
    const tavrik::CarPlan plan = tavrik::StockCarPlan();
    const Matrix3 place = At(at.x, at.y, at.z + float(plan.standingHeight));
    Car car{&AddNode(kMasterClass, place), &AddNode(kChassisClass, place), {}, {}, {}};
    SetChassis(*car.chassis, plan.chassis);
    AddParts(car, plan, place);
    const float half[] = {120.0f, 300.0f, 100.0f};
    for (int i = 0; i < 3; ++i) Set(*car.master, kDummySize, half[i], i);
    Set(*car.master, 6, 30.0f);    // steering
    Set(*car.master, 8, 5000.0f);  // throttle
    return car;
}

Car AddBody(const Point3& at) {
    const Matrix3 place = At(at.x, at.y, at.z);
    Car body{&AddNode(kMasterClass, place), &AddNode(kChassisClass, place), {}, {}, {}};
    Set(*body.chassis, 3, float(kBodyMass));
    for (int i = 0; i < 3; ++i) Set(*body.master, kDummySize, 300.0f, i);
    return body;
}

INode& AddGround() {
    constexpr int kCells = 40;
    constexpr float kSpacing = 250.0f;
    TriObject* const object = CreateNewTriObject();
    Mesh& mesh = object->GetMesh();
    mesh.setNumVerts((kCells + 1) * (kCells + 1));
    mesh.setNumFaces(kCells * kCells * 2);
    for (int j = 0; j <= kCells; ++j) {
        for (int i = 0; i <= kCells; ++i) {
            const int x = i - kCells / 2, y = j - kCells / 2;
            const float z = std::abs(x) <= 3 && std::abs(y) <= 3 ? 0.0f : float((x * x + 3 * y * y) % 4) * 2.0f;
            mesh.setVert(j * (kCells + 1) + i, Point3(float(x) * kSpacing, float(y) * kSpacing, z));
        }
    }
    int face = 0;
    for (int j = 0; j < kCells; ++j) {
        for (int i = 0; i < kCells; ++i) {
            const DWORD a = DWORD(j * (kCells + 1) + i), b = a + 1, c = a + kCells + 1, d = c + 1;
            mesh.faces[face++].setVerts(a, b, d);
            mesh.faces[face++].setVerts(a, d, c);
        }
    }
    return *tavrik_host::CreateNode(object, L"Ground");
}

std::string RecordingOf(INode& master) {
    const std::vector<tavrik_host::Chunk> chunks = tavrik_host::SaveChunks(*master.GetObjectRef());
    EXPECT_EQ(chunks.size(), 1u);
    EXPECT_EQ(chunks.at(0).id, kRecordingChunk);
    return chunks.at(0).bytes;
}

std::unique_ptr<tavrik::RecordedMotion> MotionOf(INode& master) {
    auto motion = std::make_unique<tavrik::RecordedMotion>();
    std::string problem;
    EXPECT_TRUE(tavrik::LoadRecording(RecordingOf(master), *motion, problem)) << problem;
    return motion;
}

testing::AssertionResult SameBytes(const std::string& found, const std::string& wanted) {
    if (found == wanted) return testing::AssertionSuccess();
    const auto [a, b] = std::mismatch(found.begin(), found.end(), wanted.begin(), wanted.end());
    return testing::AssertionFailure() << found.size() << " bytes for " << wanted.size() << ", the first difference at byte "
                                       << a - found.begin();
}

bool LoadRecording(INode& master, const std::string& bytes) {
    const tavrik_host::Chunk chunks[] = {{kRecordingChunk, bytes}};
    tavrik_host::SceneLoad load;
    tavrik::TheDesktop().complaint.clear();
    const bool loaded = load.LoadChunks(*master.GetObjectRef(), chunks);
    if (loaded) load.RunCallbacks();
    return loaded && tavrik::TheDesktop().complaint.empty();
}

tavrik::FileState MemoryFile::Read(std::size_t limit, std::vector<std::byte>& out) {
    if (!exists) return tavrik::FileState::Missing;
    out.assign(bytes.begin(), bytes.begin() + std::ptrdiff_t(std::min(limit, bytes.size())));
    return tavrik::FileState::Read;
}

bool MemoryFile::Write(std::span<const std::byte> image) {
    bytes.assign(image.begin(), image.end());
    return exists = true;
}

PluginScene::PluginScene() {
    LoadOnce();
    tavrik::Desktop& desktop = tavrik::TheDesktop();
    desktop = {};
    desktop.windows = &windows;
    desktop.devices = &pad;
    desktop.controls = &controls;
    tavrik_host::ResetScene();
}

PluginScene::~PluginScene() {
    tavrik_host::SetDefaultController({});
    tavrik_host::ResetScene();
    tavrik::TheDesktop() = {};
}

void PluginScene::Press(INode& node, MapID map, int control) {
    tavrik_host::OpenPanel(node);
    tavrik_host::PanelWindow* const page = tavrik_host::PageOf(map);
    ASSERT_NE(page, nullptr) << "no page " << map;
    tavrik_host::PressControl(*page, control);
}

void PluginScene::MakeReady(const Car& car, INode& ground) {
    Set(*car.master, kSurfaceNode, &ground);
    Press(*car.master, kParameters, kUpdateSurface);
    Press(*car.master, kCarSetup, kLock);
    EXPECT_TRUE(windows.messages.empty()) << windows.messages.front();
    EXPECT_EQ(tavrik::TheDesktop().complaint, "");
}

void PluginScene::Start(const Car& car) {
    Press(*car.master, kDriving, kDrive);
    ASSERT_TRUE(windows.IsOpen()) << (windows.messages.empty() ? "" : windows.messages.front());
    Enter();
    ASSERT_TRUE(windows.TimerRuns());
    KeyDown(kKeyW);
}

void PluginScene::DriveFrames(int frames) {
    for (int i = 0; i < frames && windows.TimerRuns(); ++i) windows.Send(tavrik::kWmTimer, 1, 0);
}

void PluginScene::KeyDown(int key) { windows.Send(tavrik::kWmKeyDown, std::uint64_t(key), 0); }
void PluginScene::KeyUp(int key) { windows.Send(tavrik::kWmKeyUp, std::uint64_t(key), 0); }
void PluginScene::Enter() { KeyUp(kEnter); }

}  // namespace plugin_test

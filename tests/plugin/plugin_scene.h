#pragma once
/// The plug-in as the host loads it, a scene to use it in, and a car as an artist puts it together. Everything goes by the
/// numbers that saved scenes and users' scripts know, and nothing by way of the plug-in's own sources.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "drive/file_store.h"
#include "drive/null_canvas.h"
#include "drive/virtual_desktop.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/max.h"
#include "host/sdk/panels.h"
#include "host/sdk/standin.h"
#include "rig/recorded_motion.h"

namespace plugin_test {

constexpr Class_ID kMasterClass{0x727C1135, 0x5E2E3307}, kWheelClass{0x795B5018, 0x46716D27},
    kSuspensionClass{0x3D5B5E1A, 0x47F7793F}, kControlClass{0x04F21D66, 0x68861A61}, kChassisClass{0x1DA02DE5, 0x66EB5108},
    kStartClass{0x473254E9, 0x0E1C306B}, kTextureClass{0x162E3EC8, 0x4D88768C}, kHitchClass{0x5D574EF9, 0x722236A8},
    kTongueClass{0x547D5C37, 0x78F502AA}, kPushClass{0x69F24B11, 0x401D0DF1}, kSphereClass{0x7F092351, 0x2D247095};
constexpr Class_ID kHelperClasses[] = {kMasterClass, kWheelClass,  kSuspensionClass, kChassisClass, kStartClass,
                                       kHitchClass,  kTongueClass, kPushClass,       kSphereClass};

// Parameters, by number.
constexpr ParamID kDummySize = 0, kSurfaceNode = 2, kStartNode = 3, kFrameStep = 4, kDrivingType = 11, kDrivingTarget = 12,
                  kKeyThrottle = 18;                                                     // of a master
constexpr ParamID kControlMaster = 0, kObjectType = 1, kAxleNum = 2, kSlotPosition = 3;  // of a control

// Pages of a master, and their buttons.
constexpr MapID kCarSetup = 0, kParameters = 1, kAnimation = 2, kDriving = 3, kControllers = 4;
constexpr int kLock = 1102, kUnlock = 1103, kUpdateSurface = 1023, kResetAnimation = 1107, kDrive = 1015;

/// The file that the build made.
std::string PluginFile();

Matrix3 At(float x, float y, float z);
/// The frame in hundredths of a unit, for texts.
std::string Text(const Matrix3& frame);

/// A new helper on a node of its own.
INode& AddNode(Class_ID id, const Matrix3& place, INode* parent = nullptr);
/// The parameters of what a node carries.
IParamBlock2& BlockOf(INode& node);
/// The node's controller if it is the plug-in's, else null.
Control* ControlOf(INode& node);
/// The parameters of the node's controller, which is the plug-in's.
IParamBlock2& ControlBlockOf(INode& node);
void Set(INode& node, ParamID id, float value, int entry = 0);
void Set(INode& node, ParamID id, int value);
void Set(INode& node, ParamID id, INode* value);
float FloatOf(INode& node, ParamID id, int entry = 0);
int IntOf(INode& node, ParamID id);

/// Where a node shows at a tick, and where its controller is told to put it.
Matrix3 PlaceOf(INode& node, TimeValue t = 0);
void Move(INode& node, const Matrix3& place);

/// A car as loose parts in the box of a master, standing on a level ground at height 0. Two of its wheels steer, the other two
/// drive it.
struct Car {
    INode *master, *chassis;
    std::vector<INode*> wheels, suspensions, spheres;

    std::vector<INode*> Parts() const;  // all but the master
};
Car AddCar(const Point3& at = {0, 0, 0});
/// A car without wheels, which weighs `kBodyMass` and falls freely from where it stands.
Car AddBody(const Point3& at);
constexpr double kBodyMass = 1000.0;
/// A ground of 100 x 100 m: level around the middle, bumpy farther out.
INode& AddGround();

/// The piece of the file in which a master keeps its recording.
std::string RecordingOf(INode& master);
std::unique_ptr<tavrik::RecordedMotion> MotionOf(INode& master);
/// The same bytes; a recording that differs is too long to be shown.
testing::AssertionResult SameBytes(const std::string& found, const std::string& wanted);
/// Gives a master such a piece, as a scene file does.
/// @return false when it is refused, which is told in a sentence
bool LoadRecording(INode& master, const std::string& bytes);

/// A user's file in memory; not there until it is written.
class MemoryFile final : public tavrik::FileStore {
 public:
    std::vector<std::byte> bytes;
    bool exists = false;

    tavrik::FileState Read(std::size_t limit, std::vector<std::byte>& out) override;
    bool Write(std::span<const std::byte> image) override;
};

/// An empty scene with the plug-in loaded, and a desktop with one window and no pad.
class PluginScene : public testing::Test {
 public:
    PluginScene();
    ~PluginScene() override;
    PluginScene(const PluginScene&) = delete;
    PluginScene& operator=(const PluginScene&) = delete;

    /// Opens the pages of a node, unless they are open, and presses a button.
    static void Press(INode& node, MapID map, int control);
    /// Locks the parts and takes the ground over; there must be no complaint.
    void MakeReady(const Car& car, INode& ground);
    /// Opens the drive window of a car that is ready and starts a run with the throttle key down.
    void Start(const Car& car);
    /// Lets the window's timer ring, as long as it runs.
    void DriveFrames(int frames);
    void KeyDown(int key);
    void KeyUp(int key);
    /// Starts or stops the run.
    void Enter();

    tavrik::NullCanvas canvas;
    tavrik::VirtualWindows windows{canvas};
    tavrik::VirtualPad pad;
    MemoryFile controls;
};

}  // namespace plugin_test

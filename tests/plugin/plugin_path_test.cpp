// A car that drives itself: after a node that moves, and along a spline.

#include <algorithm>
#include <cmath>

#include "drive/drive_session.h"
#include "host/sdk/desktop.h"
#include "host/sdk/line_shape.h"
#include "host/sdk/prs_control.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

using tavrik_host::LineShape;

constexpr int kByTarget = 3, kKeyW = 87, kKeyA = 65;

LineShape* Circle(float radius) {
    auto* const shape = new LineShape;
    tavrik_host::ShapeLine& line = shape->lines.emplace_back();
    line.closed = true;
    for (int i = 0; i < 120; ++i) {
        const float angle = 6.2831853f * float(i) / 120.0f;
        line.points.push_back(Point3(radius * std::cos(angle), radius * std::sin(angle), 0));
    }
    return shape;
}

/// A spline of some other plug-in: can become a shape, but keeps its lines to itself unless it is asked to become a line.
class OtherSpline final : public ShapeObject {
 public:
    bool becomesALine = true;
    std::vector<Point3> points;
    static inline int alive = 0;

    /// What it becomes.
    class AsLine final : public ShapeObject {
     public:
        explicit AsLine(std::vector<Point3> line) : points_(std::move(line)) { ++alive; }
        ~AsLine() override { --alive; }
        AsLine(const AsLine&) = delete;
        AsLine& operator=(const AsLine&) = delete;
        Class_ID ClassID() override { return splineShapeClassID; }
        RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
        CreateMouseCallBack* GetCreateMouseCallBack() override { return nullptr; }
        ObjectState Eval(TimeValue) override { return ObjectState(this); }
        void InitNodeName(MSTR& s) override { s = L"AsLine"; }
        void MakePolyShape(TimeValue t, PolyShape& shape, int steps, BOOL optimize) override {
            EXPECT_EQ(t, 0);
            EXPECT_EQ(steps, -2);
            EXPECT_EQ(optimize, FALSE);
            shape.SetNumLines(1);
            shape.lines[0].SetNumPts(int(points_.size()));
            for (std::size_t i = 0; i < points_.size(); ++i) shape.lines[0].pts[i].p = points_[i];
            shape.lines[0].Close();
        }

     private:
        std::vector<Point3> points_;
    };

    Class_ID ClassID() override { return {1, 2}; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    CreateMouseCallBack* GetCreateMouseCallBack() override { return nullptr; }
    ObjectState Eval(TimeValue) override { return ObjectState(this); }
    void InitNodeName(MSTR& s) override { s = L"OtherSpline"; }
    int CanConvertToType(Class_ID id) override {
        return id == genericShapeClassID || (becomesALine && id == splineShapeClassID) ? 1 : 0;
    }
    Object* ConvertToType(TimeValue, Class_ID id) override {
        return id == splineShapeClassID ? static_cast<Object*>(new AsLine(points)) : nullptr;
    }
    void MakePolyShape(TimeValue, PolyShape&, int, BOOL) override { ADD_FAILURE() << "asked without being converted"; }
};

/// Counts what it is asked.
class CountingDriver final : public tavrik::TargetDriver {
 public:
    int towards = 0;
    bool HasTarget() const override { return true; }
    bool TargetIsShape() const override { return false; }
    void BuildPath() override {}
    void DriveToTarget(tavrik::DriveSession&) override { ++towards; }
    void DriveAlongPath(tavrik::DriveSession&) override {}
};

class PluginPath : public PluginScene {
 public:
    PluginPath() {
        GetCOREInterface()->SetAnimRange(Interval(0, 400 * 160));
        MakeReady(car, ground);
        Set(*car.master, kDrivingType, kByTarget);
    }
    void OpenAndEnter() {
        Press(*car.master, kDriving, kDrive);
        ASSERT_TRUE(windows.IsOpen());
        Enter();
        ASSERT_TRUE(windows.TimerRuns());
    }
    Point3 CarAt() const { return PlaceOf(*car.chassis, Now()).GetTrans(); }
    static TimeValue Now() { return GetCOREInterface()->GetTime(); }
    double LastSteer() const { return MotionOf(*car.master)->steer.back().steerValue; }
    /// A node without an object that moves on a straight way.
    static INode& Hare(const Point3& from, const Point3& to, TimeValue arrival) {
        INode& node = *tavrik_host::CreateNode(nullptr, L"hare");
        auto& control = dynamic_cast<tavrik_host::PrsControl&>(*node.GetTMController());
        control.position.keys = {{0, from}, {arrival, to}};
        control.KeysChanged();
        return node;
    }
    /// Holds the throttle key while the car is slower than `speed`, and looks after each frame.
    template <typename Look>
    void DriveAt(float speed, int frames, Look look) {
        Point3 before = CarAt();
        for (int i = 0; i < frames && windows.TimerRuns(); ++i) {
            DriveFrames(1);
            const float now = Length(CarAt() - before) * 30.0f;
            before = CarAt();
            now < speed ? KeyDown(kKeyW) : KeyUp(kKeyW);
            look(i);
        }
    }

    Car car = AddCar();
    INode& ground = AddGround();
};

TEST_F(PluginPath, CarFollowsAMovingNodeForTenSeconds) {
    INode& hare = Hare(Point3(0, 250, 0), Point3(800, 4000, 0), 300 * 160);
    Set(*car.master, kDrivingTarget, &hare);
    OpenAndEnter();
    float worst = 0.0f;
    for (int i = 0; i < 299; ++i) {
        DriveFrames(1);
        const Point3 apart = CarAt() - PlaceOf(hare, Now()).GetTrans();
        worst = std::max(worst, std::hypot(apart.x, apart.y));
    }
    EXPECT_LT(worst, 500.0f);
    EXPECT_GT(CarAt().y, 3300.0f);
    EXPECT_GT(CarAt().x, 400.0f);
}

TEST_F(PluginPath, CarDrivesAlongACircleForTenSeconds) {
    constexpr float kRadius = 1500.0f;
    INode& road = *tavrik_host::CreateNode(Circle(kRadius), L"road");
    Move(road, At(-kRadius + 100.0f, 0, 0));  // the car stands a metre beside it
    Set(*car.master, kDrivingTarget, &road);
    OpenAndEnter();
    float worst = 0.0f, far = 0.0f;
    DriveAt(500.0f, 300, [&](int i) {
        const Point3 p = CarAt() - Point3(-kRadius + 100.0f, 0, 0);
        if (i > 60) worst = std::max(worst, std::abs(std::hypot(p.x, p.y) - kRadius));
        far = std::max(far, p.y);
    });
    EXPECT_LT(worst, 200.0f);
    EXPECT_GT(far, 1300.0f);
}

TEST_F(PluginPath, WithoutAKeyACarOnAPathRollsWithoutDrive) {
    Set(*car.master, kDrivingTarget, tavrik_host::CreateNode(Circle(1500.0f), L"road"));
    OpenAndEnter();
    DriveFrames(30);
    EXPECT_LT(Length(CarAt() - PlaceOf(*car.chassis, 0).GetTrans()), 10.0f);
}

TEST_F(PluginPath, SteeringKeyOverrulesThePath) {
    Set(*car.master, kDrivingTarget, tavrik_host::CreateNode(Circle(1500.0f), L"road"));
    OpenAndEnter();
    KeyDown(kKeyA);
    DriveFrames(30);
    EXPECT_NEAR(LastSteer(), -0.785398, 1e-3);  // 45 degrees, which no path asks for at once
}

TEST_F(PluginPath, WithoutATargetNothingIsAskedOfTheCar) {
    OpenAndEnter();
    DriveFrames(10);
    EXPECT_LT(Length(CarAt() - PlaceOf(*car.chassis, 0).GetTrans()), 5.0f);
    EXPECT_EQ(LastSteer(), 0.0);
}

TEST_F(PluginPath, DriverOfTheProcessComesBeforeTheScenesTarget) {
    CountingDriver driver;
    tavrik::TheDesktop().driver = &driver;
    Set(*car.master, kDrivingTarget, &Hare(Point3(0, 250, 0), Point3(0, 4000, 0), 300 * 160));
    OpenAndEnter();
    DriveFrames(2);
    EXPECT_EQ(driver.towards, 12);  // once a tick, and once for each of five samples
    EXPECT_LT(CarAt().y, 5.0f);
    tavrik::TheDesktop().driver = nullptr;
}

TEST_F(PluginPath, ATargetThatIsDeletedInMidRunIsFollowedNoMore) {
    INode& hare = Hare(Point3(0, 250, 0), Point3(0, 4000, 0), 300 * 160);
    Set(*car.master, kDrivingTarget, &hare);
    OpenAndEnter();
    DriveFrames(20);
    GetCOREInterface()->DeleteNode(&hare);
    DriveFrames(20);
    EXPECT_EQ(MotionOf(*car.master)->frames, 201);
}

TEST_F(PluginPath, AnotherTargetCountsFromTheNextStart) {
    INode& hare = Hare(Point3(0, 3000, 0), Point3(0, 4000, 0), 300 * 160);
    Set(*car.master, kDrivingTarget, &hare);
    OpenAndEnter();
    Set(*car.master, kDrivingTarget, &Hare(Point3(0, -3000, 0), Point3(0, -4000, 0), 300 * 160));
    DriveFrames(20);
    const float ahead = CarAt().y;
    EXPECT_GT(ahead, 10.0f);
    Enter();
    Enter();
    DriveFrames(200);
    EXPECT_LT(CarAt().y, 0.0f);
}

TEST_F(PluginPath, AnObjectThatBecomesALineIsDrivenAlongAndTheLineIsDeleted) {
    auto* const spline = new OtherSpline;
    LineShape* const circle = Circle(1500.0f);
    spline->points = circle->lines[0].points;
    circle->DeleteThis();
    INode& road = *tavrik_host::CreateNode(spline, L"road");
    Move(road, At(-1600.0f, 0, 0));
    Set(*car.master, kDrivingTarget, &road);
    OpenAndEnter();
    EXPECT_EQ(OtherSpline::alive, 0);
    DriveFrames(60);
    EXPECT_LT(LastSteer(), -0.02);  // the road lies to the left
}

TEST_F(PluginPath, AShapeThatCannotBecomeALineMakesARunWithoutARoad) {
    auto* const spline = new OtherSpline;
    spline->becomesALine = false;
    Set(*car.master, kDrivingTarget, tavrik_host::CreateNode(spline, L"road"));
    OpenAndEnter();
    DriveFrames(60);
    // Every candidate costs nothing, so the leftmost is taken, tick after tick, up to the lock.
    EXPECT_NEAR(LastSteer(), -0.785398, 1e-3);
}

TEST_F(PluginPath, RoadIsThatOfTheStartOfTheRun) {
    INode& road = *tavrik_host::CreateNode(Circle(1500.0f), L"road");
    Move(road, At(-1600.0f, 0, 0));
    Set(*car.master, kDrivingTarget, &road);
    OpenAndEnter();
    Move(road, At(1600.0f, 0, 0));  // would lie to the right
    DriveFrames(60);
    EXPECT_LT(LastSteer(), -0.02);
}

TEST_F(PluginPath, TheSameRunGivesTheSameRecording) {
    INode& hare = Hare(Point3(0, 250, 0), Point3(800, 4000, 0), 300 * 160);
    Set(*car.master, kDrivingTarget, &hare);
    OpenAndEnter();
    DriveFrames(30);
    const std::string first = RecordingOf(*car.master);
    Enter();
    GetCOREInterface()->SetTime(0);
    Press(*car.master, kCarSetup, kLock);
    OpenAndEnter();
    DriveFrames(30);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), first));
}

}  // namespace
}  // namespace plugin_test

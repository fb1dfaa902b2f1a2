// What the objects look like in a view, and what a mouse finds of them.

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "host/sdk/line_view.h"
#include "rig/gizmos/gizmos.h"
#include "rig/gizmos/suspension_lines.h"
#include "rig/suspension_unit.h"
#include "solver/random_stream.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

using tavrik_host::LineView;
using tavrik_host::ViewCamera;
using tavrik_host::ViewLine;

using Rgb = std::array<float, 3>;
constexpr Rgb kWhite{1, 1, 1}, kBlue{0, 0, 1}, kGreen{0, 1, 0}, kBlack{0, 0, 0};
constexpr DWORD kWire = 0x00336699;  // red 0x99, green 0x66, blue 0x33
const Rgb kWireRgb{153.0f / 255.0f, 102.0f / 255.0f, 51.0f / 255.0f};

/// Looks down on the ground plane; a pixel is a unit.
ViewCamera FromAbove() {
    ViewCamera camera;
    camera.frame.SetTrans(Point3(0, 0, 1000));
    camera.centre = IPoint2(500, 500);
    return camera;
}

class PluginGizmo : public PluginScene {
 public:
    std::vector<ViewLine> Drawn(INode& node, TimeValue t = 0) {
        view.Window().Clear();
        EXPECT_EQ(node.GetObjectRef()->Display(t, &node, &view, 0), 0);
        return view.Window().Lines();
    }
    std::set<Rgb> Colours(INode& node) {
        std::set<Rgb> colours;
        for (const ViewLine& line : Drawn(node)) colours.insert({line.color.r, line.color.g, line.color.b});
        return colours;
    }
    int HitAt(INode& node, IPoint2 pixel, int flags = 0) {
        view.ClearHits();
        return node.GetObjectRef()->HitTest(0, &node, HITTYPE_POINT, 0, flags, &pixel, &view);
    }
    /// An object with a size, so that there is something to see, and with a wire colour of its own.
    static INode& Sized(Class_ID id, const Matrix3& place = Matrix3(TRUE)) {
        INode& node = AddNode(id, place);
        if (id == kPushClass || id == kStartClass) Set(node, 0, 20.0f);
        node.SetWireColor(kWire);
        return node;
    }
    static void Select(INode& node) { GetCOREInterface()->SelectNode(&node); }

    LineView view{FromAbove()};
};

/// Compares to the last bit: the object stands at the origin.
testing::AssertionResult SameLines(std::span<const ViewLine> found, const tavrik::GizmoLines& wanted) {
    if (found.size() != wanted.size()) return testing::AssertionFailure() << found.size() << " lines for " << wanted.size();
    const auto same = [](const Point3& a, const tavrik::Point3& b) { return a.x == b.x && a.y == b.y && a.z == b.z; };
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (!same(found[i].from, wanted[i].from) || !same(found[i].to, wanted[i].to)) {
            return testing::AssertionFailure() << "line " << i << " differs";
        }
    }
    return testing::AssertionSuccess();
}

// --------------------------------------------------------------------------------------------------------------------- shapes

TEST_F(PluginGizmo, AMasterIsTheBoxOfItsSize) {
    INode& node = AddNode(kMasterClass, Matrix3(TRUE));
    tavrik::GizmoLines box;
    tavrik::DrawBox(box, 20, 20, 20);
    EXPECT_TRUE(SameLines(Drawn(node), box));
}

TEST_F(PluginGizmo, AChassisIsDrawnFromItsDefaults) {
    EXPECT_TRUE(SameLines(Drawn(AddNode(kChassisClass, Matrix3(TRUE))), tavrik::ChassisLines(70, 200, 50, -70.0f / 100.0f)));
}

TEST_F(PluginGizmo, AWheelIsDrawnWithItsRadiusAndHalfWidth) {
    INode& node = AddNode(kWheelClass, Matrix3(TRUE));
    Set(node, 0, 33.0f);
    Set(node, 1, 12.0f);
    EXPECT_TRUE(SameLines(Drawn(node), tavrik::WheelLines(33, 12)));
}

TEST_F(PluginGizmo, ANewSphereHasARadiusOfFifty) {
    EXPECT_TRUE(SameLines(Drawn(AddNode(kSphereClass, Matrix3(TRUE))), tavrik::SphereLines(50)));
}

TEST_F(PluginGizmo, HitchesAndTonguesAreDrawnWithTheirRadius) {
    INode &hitch = AddNode(kHitchClass, Matrix3(TRUE)), &tongue = AddNode(kTongueClass, Matrix3(TRUE));
    Set(hitch, 0, 6.0f);
    Set(tongue, 0, 7.0f);
    EXPECT_TRUE(SameLines(Drawn(hitch), tavrik::HitchLines(6)));
    EXPECT_TRUE(SameLines(Drawn(tongue), tavrik::TongueLines(7)));
}

TEST_F(PluginGizmo, APushShowsTheSameRaysInEveryViewAndEveryRedraw) {
    INode& node = Sized(kPushClass);
    tavrik::RandomStream random(tavrik::kBurstSeed);
    const tavrik::GizmoLines wanted = tavrik::PushLines(20, [&] { return random.Rand01(); });
    EXPECT_TRUE(SameLines(Drawn(node), wanted));
    EXPECT_TRUE(SameLines(Drawn(node, 4800), wanted));
    LineView other(ViewCamera{});
    node.GetObjectRef()->Display(0, &node, &other, 0);
    EXPECT_TRUE(SameLines(other.Window().Lines(), wanted));
}

TEST_F(PluginGizmo, ANewPushAndANewStartAreAPointAtTheirPlace) {
    for (const Class_ID id : {kPushClass, kStartClass}) {
        const std::vector<ViewLine> lines = Drawn(AddNode(id, At(3, 4, 5)));
        EXPECT_FALSE(lines.empty());
        for (const ViewLine& line : lines) {
            EXPECT_EQ(line.from, Point3(3, 4, 5));
            EXPECT_EQ(line.to, Point3(3, 4, 5));
        }
    }
}

TEST_F(PluginGizmo, AStartIsAnArrowOfItsSize) { EXPECT_TRUE(SameLines(Drawn(Sized(kStartClass)), tavrik::StartLines(20))); }

TEST_F(PluginGizmo, AnIdleSuspensionIsDrawnAfterItsType) {
    for (const int type : {tavrik::kWishbone, tavrik::kTelescopic}) {
        INode& node = AddNode(kSuspensionClass, Matrix3(TRUE));
        Set(node, 11, type);
        tavrik::GizmoLines wanted = tavrik::HubCarrierLines(50);
        const tavrik::GizmoLines moving = tavrik::MovingPartLines(type, 50, tavrik::IdleReach(type, 50));
        wanted.insert(wanted.end(), moving.begin(), moving.end());
        EXPECT_TRUE(SameLines(Drawn(node), wanted));
    }
}

TEST_F(PluginGizmo, DrawingsFollowAChangeAtOnce) {
    INode& node = AddNode(kSphereClass, Matrix3(TRUE));
    Drawn(node);
    Set(node, 0, 8.0f);
    EXPECT_TRUE(SameLines(Drawn(node), tavrik::SphereLines(8)));
}

TEST_F(PluginGizmo, DrawingsStandWhereTheirNodesStand) {
    for (const Class_ID id : kHelperClasses) {
        INode& node = Sized(id);
        const std::vector<ViewLine> here = Drawn(node);
        Move(node, At(100, 200, 300));
        const std::vector<ViewLine> there = Drawn(node);
        ASSERT_EQ(here.size(), there.size());
        for (std::size_t i = 0; i < here.size(); ++i) EXPECT_EQ(there[i].from, here[i].from + Point3(100, 200, 300));
    }
}

TEST_F(PluginGizmo, NothingIsDrawnInAViewThatIsGone) {
    class DeadView final : public ViewExp {
     public:
        LineView inner{FromAbove()};
        Point3 SnapPoint(const IPoint2&, IPoint2&, Matrix3*, DWORD) override { return {0, 0, 0}; }
        void SnapPreview(const IPoint2&, IPoint2&, Matrix3*, DWORD) override {}
        bool IsAlive() const override { return false; }
        GraphicsWindow* getGW() override { return inner.getGW(); }
    };
    DeadView dead;
    IPoint2 p(500, 500);
    for (const Class_ID id : kHelperClasses) {
        INode& node = Sized(id);
        for (ViewExp* const gone : {static_cast<ViewExp*>(&dead), static_cast<ViewExp*>(nullptr)}) {
            EXPECT_EQ(node.GetObjectRef()->Display(0, &node, gone, 0), 0);
            EXPECT_EQ(node.GetObjectRef()->HitTest(0, &node, HITTYPE_POINT, 0, 0, &p, gone), 0);
        }
    }
    EXPECT_TRUE(dead.inner.Window().Lines().empty());
}

// -------------------------------------------------------------------------------------------------------------------- colours

TEST_F(PluginGizmo, AnUnselectedObjectHasItsWireColour) {
    for (const Class_ID id : kHelperClasses) {
        if (id == kMasterClass || id == kSuspensionClass) continue;
        EXPECT_EQ(Colours(Sized(id)), std::set{kWireRgb});
    }
}

TEST_F(PluginGizmo, AMasterIsGreenWhateverItsWireColour) { EXPECT_EQ(Colours(Sized(kMasterClass)), std::set{kGreen}); }

TEST_F(PluginGizmo, AnIdleSuspensionHasABlackMovingPart) {
    INode& node = Sized(kSuspensionClass);
    const std::vector<ViewLine> lines = Drawn(node);
    const std::size_t fixed = tavrik::HubCarrierLines(50).size();
    ASSERT_GT(lines.size(), fixed);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const Color& c = lines[i].color;
        EXPECT_EQ((Rgb{c.r, c.g, c.b}), i < fixed ? kWireRgb : kBlack) << i;
    }
}

TEST_F(PluginGizmo, ASelectedObjectIsWhite) {
    for (const Class_ID id : kHelperClasses) {
        INode& node = Sized(id);
        Select(node);
        EXPECT_EQ(Colours(node), std::set{kWhite});
    }
}

/// A car that is locked, with a hitch and a tongue on it.
class PluginLockedGizmo : public PluginGizmo {
 public:
    PluginLockedGizmo() {
        for (const std::size_t i : {0u, 1u}) Set(*car.suspensions[i], 11, tavrik::kWishbone);
        for (const std::size_t i : {2u, 3u}) Set(*car.suspensions[i], 11, tavrik::kTelescopic);
        MakeReady(car, AddGround());
        parts = car.Parts();
        parts.push_back(&hitch);
        parts.push_back(&tongue);
        for (INode* const part : parts) part->SetWireColor(kWire);
    }

    Car car = AddCar();
    INode& hitch = AddNode(kHitchClass, At(0, -279, 51));
    INode& tongue = AddNode(kTongueClass, At(0, 279, 51));
    std::vector<INode*> parts;
};

TEST_F(PluginLockedGizmo, ALockedPartIsBlueWhateverItsWireColour) {
    for (INode* const part : parts) EXPECT_EQ(Colours(*part), std::set{kBlue});
}

TEST_F(PluginLockedGizmo, ALockedPartThatIsSelectedIsWhite) {
    for (INode* const part : parts) {
        Select(*part);
        EXPECT_EQ(Colours(*part), std::set{kWhite});
    }
}

TEST_F(PluginLockedGizmo, AnUnlockedCarHasItsWireColoursBack) {
    Press(*car.master, kCarSetup, kUnlock);
    EXPECT_EQ(Colours(*car.chassis), std::set{kWireRgb});
    EXPECT_EQ(Colours(*car.wheels[0]), std::set{kWireRgb});
    EXPECT_EQ(Colours(*car.suspensions[0]), (std::set{kWireRgb, kBlack}));
}

TEST_F(PluginLockedGizmo, AControlWithoutAMasterLocksNothing) {
    ASSERT_TRUE(ControlBlockOf(*car.chassis).SetValue(kControlMaster, 0, static_cast<INode*>(nullptr)));
    EXPECT_EQ(Colours(*car.chassis), std::set{kWireRgb});
}

TEST_F(PluginLockedGizmo, ANumberThatNoPartCanHaveLocksNothing) {
    ASSERT_TRUE(ControlBlockOf(*car.wheels[0]).SetValue(kAxleNum, 0, 199));
    EXPECT_EQ(Colours(*car.wheels[0]), std::set{kBlue});
    ASSERT_TRUE(ControlBlockOf(*car.wheels[0]).SetValue(kAxleNum, 0, 200));
    EXPECT_EQ(Colours(*car.wheels[0]), std::set{kWireRgb});
}

TEST_F(PluginLockedGizmo, TheMasterItselfStaysGreen) {
    GetCOREInterface()->ClearNodeSelection();
    EXPECT_EQ(Colours(*car.master), std::set{kGreen});
}

TEST_F(PluginLockedGizmo, APushAndAStartAreNeverBlue) {
    Control* const control = car.chassis->GetTMController();
    for (const Class_ID id : {kPushClass, kStartClass}) {
        INode& node = Sized(id);
        ASSERT_TRUE(node.SetTMController(control));
        ASSERT_EQ(ControlOf(node), control);
        EXPECT_EQ(Colours(node), std::set{kWireRgb});
    }
}

TEST_F(PluginLockedGizmo, ALiveSuspensionReachesToWhereTheBodyHoldsIt) {
    Start(car);
    DriveFrames(20);
    const std::size_t fixed = tavrik::HubCarrierLines(50).size();
    float most = 0.0f, apart = 0.0f;
    for (INode* const node : car.suspensions) {
        for (const TimeValue t : {0, 10 * 160, 19 * 160}) {
            const std::vector<ViewLine> lines = Drawn(*node, t);
            // The body's end is the unit's slot, carried along by the chassis.
            Matrix3 slot(TRUE);
            Interval valid = FOREVER;
            ASSERT_TRUE(ControlBlockOf(*node).GetValue(kSlotPosition, 0, slot, valid));
            const Matrix3 frame = PlaceOf(*node, t);
            const Point3 held = (slot * PlaceOf(*car.chassis, t)).GetTrans() * Inverse(frame);
            const float length = FloatOf(*node, 0);
            const tavrik::GizmoLines wanted =
                tavrik::MovingPartLines(IntOf(*node, 11), length, tavrik::LiveReach({held.x, held.y, held.z}));
            ASSERT_EQ(lines.size(), fixed + wanted.size());
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                const tavrik::Point3& p = wanted[i].to;
                apart = std::max(apart, Length(lines[fixed + i].to - Point3(p.x, p.y, p.z) * frame));
            }
            most = std::max(most, std::abs(held.x));
        }
    }
    EXPECT_LT(apart, 1e-3f);  // measured 3e-5
    EXPECT_GT(most, 0.5f);    // the springs have moved
}

// ----------------------------------------------------------------------------------------------------------------------- hits

TEST_F(PluginGizmo, AMouseOnALineReportsOneHitWhateverTheFlags) {
    for (const Class_ID id : kHelperClasses) {
        INode& node = Sized(id);
        const Point3 on = Drawn(node).at(0).from;  // at height 0 or not, from above it is at this pixel
        const IPoint2 pixel(500 + int(std::lround(on.x)), 500 - int(std::lround(on.y)));
        for (const int flags : {0, 1, 4, 8, 13, -1}) {
            EXPECT_EQ(HitAt(node, pixel, flags), 1);
            ASSERT_EQ(view.Hits().size(), 1u);
            EXPECT_EQ(view.Hits()[0].node, &node);
        }
    }
}

TEST_F(PluginGizmo, AMouseBesideTheLinesReportsNothing) {
    for (const Class_ID id : kHelperClasses) {
        EXPECT_EQ(HitAt(Sized(id), {5, 5}), 0);
        EXPECT_TRUE(view.Hits().empty());
    }
}

TEST_F(PluginGizmo, AMouseMayBeFourPixelsOff) {
    INode& node = AddNode(kSphereClass, Matrix3(TRUE));
    EXPECT_EQ(HitAt(node, {554, 500}), 1);
    EXPECT_EQ(HitAt(node, {555, 500}), 0);
}

TEST_F(PluginGizmo, AHitTestLeavesTheWindowAsItWasAndDrawsNothing) {
    for (const DWORD limits : {DWORD(GW_ILLUM), DWORD(0x40), DWORD(GW_ILLUM | 0x40)}) {
        view.Window().Clear();
        view.Window().setRndLimits(limits);
        EXPECT_EQ(HitAt(AddNode(kSphereClass, Matrix3(TRUE)), {550, 500}), 1);
        EXPECT_EQ(view.Window().getRndLimits(), limits);
        EXPECT_FALSE(view.Window().checkHitCode());
        EXPECT_TRUE(view.Window().Lines().empty());
    }
}

TEST_F(PluginGizmo, AMasterBeneathAModifierIsNotHit) {
    INode& node = AddNode(kMasterClass, Matrix3(TRUE));
    IPoint2 corner(520, 520);
    EXPECT_EQ(HitAt(node, corner), 1);
    view.ClearHits();
    EXPECT_EQ(node.GetObjectRef()->HitTest(0, &node, HITTYPE_POINT, 0, 0, &corner, &view, nullptr), 0);
    EXPECT_TRUE(view.Hits().empty());
}

TEST_F(PluginGizmo, TheSuspensionsMovingPartIsHitToo) {
    INode& node = AddNode(kSuspensionClass, Matrix3(TRUE));
    // From above X is across; both wishbones' links stand 10 units beside the middle, and 16 along Y.
    EXPECT_EQ(HitAt(node, {510, 516}), 1);
    Set(node, 11, tavrik::kTelescopic);
    EXPECT_EQ(HitAt(node, {550, 500}), 1);  // the strut's end
}

TEST_F(PluginGizmo, ARectangleTakesWhatItHolds) {
    INode &inside = AddNode(kSphereClass, At(-100, 0, 0)), &across = AddNode(kSphereClass, At(100, 0, 0));
    IPoint2 corners[] = {{340, 440}, {600, 560}};
    EXPECT_EQ(view.HitScene(0, HITTYPE_RECT, 0, corners), std::vector<INode*>{&inside});
    EXPECT_EQ(view.HitScene(0, HITTYPE_RECT, 1, corners).size(), 2u);
    EXPECT_NE(std::ranges::find(view.Hits(), &across, &tavrik_host::LoggedHit::node), view.Hits().end());
}

TEST_F(PluginGizmo, OfTwoObjectsTheUpperOneIsNearer) {
    AddNode(kSphereClass, At(0, 0, 0));
    INode& upper = AddNode(kSphereClass, At(0, 0, 300));
    AddNode(kSphereClass, At(0, 0, -300));
    IPoint2 p(550, 500);
    EXPECT_EQ(view.HitScene(0, HITTYPE_POINT, 0, &p).at(0), &upper);
    EXPECT_EQ(view.GetClosestHit(), &upper);
}

TEST_F(PluginGizmo, AViewDrawsTheWholeScene) {
    std::size_t lines = 0;
    for (const Class_ID id : kHelperClasses) lines += Drawn(Sized(id)).size();
    tavrik_host::CreateNode(nullptr, L"Empty");
    view.Window().Clear();
    view.DrawScene(0);
    EXPECT_EQ(view.Window().Lines().size(), lines);
}

}  // namespace
}  // namespace plugin_test

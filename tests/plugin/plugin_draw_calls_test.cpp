// What the objects ask of a view's window, call by call: hosts draw and hit by these calls, and by none besides.

#include <string>
#include <vector>

#include "host/sdk/line_view.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

/// Writes down what is called. Lines that are longer than from one point to another stand out.
class CallWindow final : public GraphicsWindow {
 public:
    std::vector<std::string> calls;  // lines as one "lines" for as many as follow each other
    int lines = 0, longLines = 0;
    DWORD limits = 0x40 | GW_ILLUM;
    bool hit = true;
    HitRegion region;

    void setTransform(const Matrix3& m) override {
        transform_ = m;
        calls.emplace_back("transform");
    }
    Matrix3 getTransform() override { return transform_; }
    void setColor(ColorType, float, float, float) override { calls.emplace_back("colour"); }
    void startSegments() override { calls.emplace_back("start"); }
    void segment(Point3*, int) override { calls.emplace_back("segment"); }
    void endSegments() override { calls.emplace_back("end"); }
    void polyline(int ct, Point3*, Point3* rgb, Point3* uvw, int closed, int* es) override {
        ++lines;
        if (ct != 2 || rgb != nullptr || uvw != nullptr || closed != 0 || es != nullptr) ++longLines;
        if (calls.empty() || calls.back() != "lines") calls.emplace_back("lines");
    }
    void startTriangles() override { calls.emplace_back("triangles"); }
    void triangle(Point3*, Point3*) override { calls.emplace_back("triangle"); }
    void endTriangles() override { calls.emplace_back("end of triangles"); }
    DWORD getRndLimits() override { return limits; }
    void setRndLimits(DWORD to) override {
        limits = to;
        calls.push_back("limits " + std::to_string(to));
    }
    void setHitRegion(HitRegion* to) override {
        region = *to;
        calls.emplace_back("region");
    }
    void clearHitCode() override { calls.emplace_back("clear"); }
    BOOL checkHitCode() override {
        calls.emplace_back("check");
        return hit ? TRUE : FALSE;
    }
    DWORD getHitDistance() override { return 77; }

 private:
    Matrix3 transform_{TRUE};
};

class CallView final : public ViewExp {
 public:
    struct Logged {
        INode* node;
        ModContext* context;
        DWORD distance;
        ULONG info;
        HitData* data;
    };
    CallWindow window;
    std::vector<Logged> logged;

    Point3 SnapPoint(const IPoint2&, IPoint2&, Matrix3*, DWORD) override { return {0, 0, 0}; }
    void SnapPreview(const IPoint2&, IPoint2&, Matrix3*, DWORD) override {}
    bool IsAlive() const override { return true; }
    GraphicsWindow* getGW() override { return &window; }
    void LogHit(INode* node, ModContext* context, DWORD distance, ULONG info, HitData* data) override {
        logged.push_back({node, context, distance, info, data});
    }
};

class PluginDrawCalls : public PluginScene {
 public:
    CallView view;
    CallWindow& window = view.window;
    IPoint2 pixel{12, 34};
};

using Calls = std::vector<std::string>;

TEST_F(PluginDrawCalls, EveryLineIsACallOfItsOwnBetweenStartAndEnd) {
    for (const Class_ID id : kHelperClasses) {
        window.calls.clear();
        INode& node = AddNode(id, Matrix3(TRUE));
        EXPECT_EQ(node.GetObjectRef()->Display(0, &node, &view, 0), 0);
        Calls wanted{"transform", "colour", "start", "lines", "end"};
        // A suspension's two pieces differ in colour.
        if (id == kSuspensionClass)
            wanted = {"transform", "colour", "colour", "start", "lines", "end", "colour", "start", "lines", "end"};
        EXPECT_EQ(window.calls, wanted);
    }
    EXPECT_GT(window.lines, 1000);
    EXPECT_EQ(window.longLines, 0);
}

TEST_F(PluginDrawCalls, AHitTestDrawsWithPickingOnAndLightOffAndPutsBothBack) {
    for (const Class_ID id : kHelperClasses) {
        window.calls.clear();
        INode& node = AddNode(id, Matrix3(TRUE));
        EXPECT_EQ(node.GetObjectRef()->HitTest(0, &node, HITTYPE_POINT, 0, 0, &pixel, &view), 1);
        ASSERT_GE(window.calls.size(), 8u);
        const std::string picking = "limits " + std::to_string(0x40 | GW_PICK),
                          back = "limits " + std::to_string(0x40 | GW_ILLUM);
        EXPECT_EQ(Calls(window.calls.begin(), window.calls.begin() + 4), (Calls{"region", picking, "clear", "transform"}));
        EXPECT_EQ(Calls(window.calls.end() - 4, window.calls.end()), (Calls{"end", "check", "clear", back}));
    }
}

TEST_F(PluginDrawCalls, AHitTestLooksInABoxOfFourPixelsAroundTheMouse) {
    INode& node = AddNode(kWheelClass, Matrix3(TRUE));
    node.GetObjectRef()->HitTest(0, &node, HITTYPE_POINT, 1, 0, &pixel, &view);
    EXPECT_EQ(window.region.type, POINT_RGN);
    EXPECT_EQ(window.region.crossing, 1);
    EXPECT_EQ(window.region.epsilon, 4);
    EXPECT_EQ(window.region.pt, pixel);
}

TEST_F(PluginDrawCalls, AHitIsLoggedOnceWithItsDistanceAndNothingElse) {
    for (const Class_ID id : kHelperClasses) {
        INode& node = AddNode(id, Matrix3(TRUE));
        for (int flags = 0; flags < 16; ++flags) {
            view.logged.clear();
            EXPECT_EQ(node.GetObjectRef()->HitTest(0, &node, HITTYPE_POINT, 0, flags, &pixel, &view), 1);
            ASSERT_EQ(view.logged.size(), 1u);
            EXPECT_EQ(view.logged[0].node, &node);
            EXPECT_EQ(view.logged[0].context, nullptr);
            EXPECT_EQ(view.logged[0].distance, 77u);
            EXPECT_EQ(view.logged[0].info, 0u);
            EXPECT_EQ(view.logged[0].data, nullptr);
        }
    }
}

TEST_F(PluginDrawCalls, AMissIsNotLogged) {
    window.hit = false;
    for (const Class_ID id : kHelperClasses) {
        INode& node = AddNode(id, Matrix3(TRUE));
        EXPECT_EQ(node.GetObjectRef()->HitTest(0, &node, HITTYPE_POINT, 0, 0, &pixel, &view), 0);
    }
    EXPECT_TRUE(view.logged.empty());
}

}  // namespace
}  // namespace plugin_test

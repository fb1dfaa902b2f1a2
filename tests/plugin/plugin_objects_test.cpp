// What all helpers have in common, and the boxes of each.

#include <cmath>

#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

class PluginObjects : public PluginScene {
 public:
    static Box3 OwnBox(INode& node) {
        Box3 box;
        node.GetObjectRef()->GetDeformBBox(0, box);
        return box;
    }
    static Box3 WorldBox(INode& node) {
        Box3 box;
        node.GetObjectRef()->GetWorldBoundBox(0, &node, nullptr, box);
        return box;
    }
    static Box3 LocalBox(INode& node) {
        Box3 box;
        node.GetObjectRef()->GetLocalBoundBox(0, &node, nullptr, box);
        return box;
    }
};

void ExpectBox(const Box3& box, const Point3& low, const Point3& high) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_FLOAT_EQ(box.pmin[i], low[i]) << "axis " << i;
        EXPECT_FLOAT_EQ(box.pmax[i], high[i]) << "axis " << i;
    }
}

TEST_F(PluginObjects, HaveTheirThreeNames) {
    const struct {
        Class_ID id;
        const wchar_t *className, *objectName, *stem;
    } kNames[] = {
        {kMasterClass, L"Tavrik", L"Tavrik", L"Tavrik_"},
        {kChassisClass, L"Chassis", L"Chassis", L"Chassis_"},
        {kSuspensionClass, L"Suspension", L"Suspension", L"Suspension_"},
        {kWheelClass, L"Wheel", L"Wheel", L"Wheel_"},
        {kSphereClass, L"Col. Sphere", L"Col. Sphere", L"Col. Sphere_"},
        {kHitchClass, L"Trailer Hitch", L"Trailer Hitch", L"Trailer Hitch_"},
        {kTongueClass, L"Trailer Tongue", L"Trailer Tongue", L"Trailer Tongue_"},
        {kPushClass, L"Push", L"Push", L"Push_"},
        {kStartClass, L"Start", L"StartPosition", L"StartPosition_"},
    };
    for (const auto& [id, className, objectName, stem] : kNames) {
        INode& node = AddNode(id, Matrix3(TRUE));
        Object& object = *node.GetObjectRef();
        MSTR name;
        object.GetClassName(name);
        EXPECT_STREQ(name.data(), className);
        EXPECT_STREQ(object.GetObjectName(), objectName);
        object.InitNodeName(name);
        EXPECT_STREQ(name.data(), stem);
        EXPECT_EQ(std::wstring(node.GetName()).find(stem), 0u);
    }
}

TEST_F(PluginObjects, ShowOneBlockWhateverTheIndex) {
    for (const Class_ID id : kHelperClasses) {
        Object& object = *AddNode(id, Matrix3(TRUE)).GetObjectRef();
        EXPECT_EQ(object.SuperClassID(), HELPER_CLASS_ID);
        EXPECT_EQ(object.NumRefs(), 1);
        EXPECT_EQ(object.NumSubs(), 1);
        EXPECT_EQ(object.NumParamBlocks(), 1);
        IParamBlock2* const block = object.GetParamBlockByID(0);
        ASSERT_NE(block, nullptr);
        for (const int i : {0, 1, 7, -1}) {
            EXPECT_EQ(object.GetReference(i), block);
            EXPECT_EQ(object.SubAnim(i), block);
            EXPECT_EQ(object.GetParamBlock(i), block);
            EXPECT_STREQ(object.SubAnimName(i).data(), L"Parameters");
        }
        EXPECT_EQ(object.GetParamBlockByID(1), nullptr);
        EXPECT_EQ(block->GetOwner(), &object);
    }
}

TEST_F(PluginObjects, AreTheirOwnPipelineAndNeverRender) {
    for (const Class_ID id : kHelperClasses) {
        INode& node = AddNode(id, Matrix3(TRUE));
        Object& object = *node.GetObjectRef();
        EXPECT_EQ(object.Eval(0).obj, &object);
        EXPECT_EQ(node.EvalWorldState(77).obj, &object);
        EXPECT_EQ(object.IsRenderable(), 0);
        Tab<Class_ID> types;
        Tab<MSTR*> names;
        object.GetCollapseTypes(types, names);
        EXPECT_EQ(types.Count(), 0);
    }
}

TEST_F(PluginObjects, AreValidForAnInstant) {
    for (const Class_ID id : kHelperClasses) {
        EXPECT_EQ(AddNode(id, Matrix3(TRUE)).GetObjectRef()->ObjectValidity(480), Interval(480, 480));
    }
}

TEST_F(PluginObjects, ClaimToBecomeNothingElse) {
    for (const Class_ID id : kHelperClasses) {
        Object& object = *AddNode(id, Matrix3(TRUE)).GetObjectRef();
        EXPECT_EQ(object.CanConvertToType(triObjectClassID), 0);
        if (id != kMasterClass) {
            EXPECT_EQ(object.ConvertToType(0, triObjectClassID), nullptr);
        }
        EXPECT_EQ(object.ConvertToType(0, kWheelClass), nullptr);
    }
}

TEST_F(PluginObjects, AMasterBecomesAnEmptyMeshAllTheSame) {
    Object& object = *AddNode(kMasterClass, Matrix3(TRUE)).GetObjectRef();
    auto* const mesh = static_cast<TriObject*>(object.ConvertToType(320, triObjectClassID));
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->ClassID(), triObjectClassID);
    EXPECT_EQ(mesh->GetMesh().getNumVerts(), 0);
    EXPECT_EQ(mesh->GetMesh().getNumFaces(), 0);
    EXPECT_EQ(mesh->ChannelValidity(320, TOPO_CHAN_NUM), Interval(320, 320));
    EXPECT_EQ(mesh->ChannelValidity(320, GEOM_CHAN_NUM), Interval(320, 320));
    mesh->MaybeAutoDelete();
}

// ------------------------------------------------------------------------------------------------------------------------
// boxes

TEST_F(PluginObjects, AChassisBoxHasItsThreeHalfSizes) {
    ExpectBox(OwnBox(AddNode(kChassisClass, Matrix3(TRUE))), {-70, -200, -50}, {70, 200, 50});
}

TEST_F(PluginObjects, AMastersBoxFollowsItsParametersOnceItIsValidated) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    ExpectBox(OwnBox(master), {-20, -20, -20}, {20, 20, 20});
    Set(master, kDummySize, 30.0f, 0);
    Set(master, kDummySize, 40.0f, 1);
    Set(master, kDummySize, 50.0f, 2);
    master.GetObjectRef()->ObjectValidity(0);
    ExpectBox(OwnBox(master), {-30, -40, -50}, {30, 40, 50});
}

TEST_F(PluginObjects, ASuspensionsBoxIsAsWideAsItsArmIsLong) {
    INode& node = AddNode(kSuspensionClass, Matrix3(TRUE));
    ExpectBox(OwnBox(node), {-50, -50, -50}, {50, 50, 50});
    Set(node, 12, 8.0f);  // wheel shift
    ExpectBox(OwnBox(node), {-58, -50, -50}, {42, 50, 50});
}

TEST_F(PluginObjects, AWheelsBoxLiesAroundItsAxle) {
    ExpectBox(OwnBox(AddNode(kWheelClass, Matrix3(TRUE))), {-50, -50, -15}, {50, 50, 15});
}

TEST_F(PluginObjects, ASpheresBoxIsItsRadiusEachWay) {
    ExpectBox(OwnBox(AddNode(kSphereClass, Matrix3(TRUE))), {-50, -50, -50}, {50, 50, 50});
}

TEST_F(PluginObjects, AHitchsBoxReachesForwardAndDown) {
    ExpectBox(OwnBox(AddNode(kHitchClass, Matrix3(TRUE))), {-50, -50, -125}, {50, 250, 50});
}

TEST_F(PluginObjects, ATonguesBoxReachesBackward) {
    ExpectBox(OwnBox(AddNode(kTongueClass, Matrix3(TRUE))), {-60, -300, 0}, {60, 60, 60});
}

TEST_F(PluginObjects, APushsBoxGrowsWithItsSize) {
    INode& node = AddNode(kPushClass, Matrix3(TRUE));
    ExpectBox(OwnBox(node), {0, 0, 0}, {0, 0, 0});
    Set(node, 0, 10.0f);
    ExpectBox(OwnBox(node), {-30, -70, -30}, {30, 70, 30});
}

TEST_F(PluginObjects, AStartsBoxIsFlat) {
    INode& node = AddNode(kStartClass, Matrix3(TRUE));
    ExpectBox(OwnBox(node), {0, 0, 0}, {0, 0, 0});
    Set(node, 0, 100.0f);
    ExpectBox(OwnBox(node), {-50, -100, -10}, {50, 100, 10});
}

TEST_F(PluginObjects, WorldAndLocalBoxesBothGoByTheNodesPlace) {
    INode& node = AddNode(kSphereClass, At(1000, 2000, 3000));
    ExpectBox(WorldBox(node), {950, 1950, 2950}, {1050, 2050, 3050});
    ExpectBox(LocalBox(node), {950, 1950, 2950}, {1050, 2050, 3050});
    ExpectBox(OwnBox(node), {-50, -50, -50}, {50, 50, 50});
}

TEST_F(PluginObjects, ABoxTurnsWithItsNode) {
    Matrix3 turned(TRUE);  // a quarter about Z
    turned.SetRow(0, Point3(0, 1, 0));
    turned.SetRow(1, Point3(-1, 0, 0));
    ExpectBox(WorldBox(AddNode(kChassisClass, turned)), {-200, -70, -50}, {200, 70, 50});
}

}  // namespace
}  // namespace plugin_test

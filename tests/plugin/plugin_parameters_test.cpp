// The tables of parameters as the host gets them, against what saved scenes and scripts rely on.

#include <dlfcn.h>

#include <memory>

#include "tests/plugin/change_counter.h"
#include "tests/plugin/golden_blocks.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

/// Controls come with the first object of some classes, so there has to be one.
void MakeOneOfEach() {
    for (const Class_ID id : kHelperClasses) AddNode(id, Matrix3(TRUE));
}

const ParamBlockDesc2& TableOf(const GoldenBlock& golden) {
    auto* const desc = dynamic_cast<ClassDesc2*>(tavrik_host::FindClass(golden.superClass, golden.id));
    return *desc->Blocks().at(0);
}

int HostKind(Kind kind) {
    switch (kind) {
        case Kind::None:
            return 0;
        case Kind::Spinner:
            return TYPE_SPINNER;
        case Kind::Radio:
            return TYPE_RADIO;
        case Kind::Check:
            return TYPE_SINGLECHEKBOX;
        case Kind::Pick:
            return TYPE_PICKNODEBUTTON;
        case Kind::Map:
            return TYPE_TEXMAPBUTTON;
    }
    return -1;
}

bool IsFloat(const GoldenParam& golden) { return golden.type == 0 || (golden.type & 0xff) == 7; }

/// A number as the table keeps it, in single precision where the parameter is.
double NumberOf(const PB2Value& value, const GoldenParam& golden) { return IsFloat(golden) ? double(value.f) : value.i; }
double Kept(double golden, const GoldenParam& param) { return IsFloat(param) ? double(float(golden)) : golden; }

void ExpectControl(const ParamDef& param, const GoldenControl& golden) {
    EXPECT_EQ(param.ui.type, HostKind(golden.kind));
    EXPECT_EQ(param.ui.ids, golden.ids);
    if (golden.kind == Kind::None) return;
    EXPECT_EQ(param.ui.map, golden.map);
    if (golden.kind != Kind::Spinner) return;
    EXPECT_EQ(param.ui.edit, golden.edit);
    EXPECT_EQ(param.ui.scale, golden.scale);
}

void ExpectParam(const ParamDef& param, const GoldenParam& golden) {
    EXPECT_EQ(param.ID, golden.id);
    EXPECT_STREQ(param.int_name, golden.name);
    EXPECT_EQ(param.type, golden.type);
    EXPECT_EQ(param.tabSize, golden.entries);
    EXPECT_EQ(param.flags, golden.flags);
    EXPECT_EQ(param.local_name, 0);
    EXPECT_EQ(param.hasDefault, golden.byDefault.has_value());
    EXPECT_EQ(param.hasRange, golden.low.has_value());
    if (golden.byDefault) {
        EXPECT_EQ(NumberOf(param.def, golden), Kept(*golden.byDefault, golden));
    }
    if (golden.low) {
        EXPECT_EQ(NumberOf(param.rangeLow, golden), Kept(*golden.low, golden));
    }
    if (golden.high) {
        EXPECT_EQ(NumberOf(param.rangeHigh, golden), Kept(*golden.high, golden));
    }
}

class PluginParameters : public PluginScene {
 public:
    PluginParameters() { MakeOneOfEach(); }
};

TEST_F(PluginParameters, EveryClassHasOneBlockWithItsHeader) {
    for (const GoldenBlock& golden : GoldenBlocks()) {
        SCOPED_TRACE(testing::Message() << golden.className);
        auto* const desc = dynamic_cast<ClassDesc2*>(tavrik_host::FindClass(golden.superClass, golden.id));
        ASSERT_NE(desc, nullptr);
        ASSERT_EQ(desc->Blocks().size(), 1u);
        const ParamBlockDesc2& table = *desc->Blocks()[0];
        EXPECT_EQ(table.ID, 0);
        EXPECT_STREQ(table.int_name, L"parameters");
        EXPECT_EQ(table.local_name, 0);
        EXPECT_EQ(table.cd, desc);
        EXPECT_EQ(table.flags, golden.flags);
        EXPECT_EQ(table.ref_no, 0);
    }
}

TEST_F(PluginParameters, EveryBlockOpensItsPagesInOrder) {
    for (const GoldenBlock& golden : GoldenBlocks()) {
        SCOPED_TRACE(testing::Message() << golden.className);
        const std::vector<ParamMapDef>& maps = TableOf(golden).Maps();
        ASSERT_EQ(maps.size(), golden.pages.size());
        for (std::size_t i = 0; i < maps.size(); ++i) {
            EXPECT_EQ(maps[i].map, golden.pages[i].map);
            EXPECT_EQ(maps[i].dialog, golden.pages[i].dialog);
            EXPECT_EQ(maps[i].title, golden.pages[i].title);
            EXPECT_EQ(maps[i].testFlags, 0u);
            EXPECT_EQ(maps[i].rollupFlags, 0u);
            EXPECT_EQ(maps[i].dlgProc, nullptr);
        }
    }
}

TEST_F(PluginParameters, EveryParameterIsDeclaredInItsPlace) {
    for (const GoldenBlock& golden : GoldenBlocks()) {
        const ParamBlockDesc2& table = TableOf(golden);
        ASSERT_EQ(table.Count(), int(golden.params.size())) << golden.className;
        for (int i = 0; i < table.Count(); ++i) {
            const GoldenParam& param = golden.params[std::size_t(i)];
            SCOPED_TRACE(testing::Message() << golden.className << " " << param.name);
            ExpectParam(table.ParamAt(i), param);
        }
    }
}

TEST_F(PluginParameters, EveryParameterHasItsControl) {
    for (const GoldenBlock& golden : GoldenBlocks()) {
        for (const GoldenParam& param : golden.params) {
            SCOPED_TRACE(testing::Message() << golden.className << " " << param.name);
            const ParamDef* const found = TableOf(golden).FindParam(ParamID(param.id));
            ASSERT_NE(found, nullptr);
            ExpectControl(*found, param.control);
            EXPECT_EQ(found->validator != nullptr, param.control.picky);
        }
    }
}

TEST_F(PluginParameters, ANewObjectHasEveryDefaultInEveryEntry) {
    for (const GoldenBlock& golden : GoldenBlocks()) {
        auto* const thing = static_cast<ReferenceTarget*>(CreateInstance(golden.superClass, golden.id));
        ASSERT_NE(thing, nullptr) << golden.className;
        IParamBlock2* const block = thing->GetParamBlockByID(0);
        for (const GoldenParam& param : golden.params) {
            SCOPED_TRACE(testing::Message() << golden.className << " " << param.name);
            const ParamID id = ParamID(param.id);
            EXPECT_EQ(block->Count(id), param.entries);
            if (!param.byDefault) continue;
            for (int entry = 0; entry < param.entries; ++entry) {
                const double value =
                    IsFloat(param) ? double(block->GetFloat(id, 0, entry)) : double(block->GetInt(id, 0, entry));
                EXPECT_EQ(value, Kept(*param.byDefault, param));
            }
        }
        thing->MaybeAutoDelete();
    }
}

TEST_F(PluginParameters, AJoystickButtonIsStoredBeyondItsOwnRange) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    EXPECT_EQ(IntOf(master, 25), 32768);  // range 0..255
    Set(master, 25, 4096);
    EXPECT_EQ(IntOf(master, 25), 4096);
}

TEST_F(PluginParameters, ANewMastersBoxIsTwentyEachWay) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    for (int entry = 0; entry < 3; ++entry) EXPECT_EQ(FloatOf(master, kDummySize, entry), 20.0f);
}

TEST_F(PluginParameters, ANewPushIsAPointUntilItIsDragged) { EXPECT_EQ(FloatOf(AddNode(kPushClass, Matrix3(TRUE)), 0), 0.0f); }

TEST_F(PluginParameters, OnlyThePercentageOfAPushCanBeAnimated) {
    int animatable = 0;
    for (const GoldenBlock& golden : GoldenBlocks()) {
        for (int i = 0; i < TableOf(golden).Count(); ++i) animatable += TableOf(golden).ParamAt(i).flags & P_ANIMATABLE;
    }
    EXPECT_EQ(animatable, 1);
}

// ------------------------------------------------------------------------------------------------- functions that attach
// controls

class OwnClass final : public ClassDesc2 {
 public:
    int IsPublic() override { return 0; }
    void* Create(BOOL) override { return nullptr; }
    const MCHAR* ClassName() override { return L"Own"; }
    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    Class_ID ClassID() override { return {1, 2}; }
    const MCHAR* Category() override { return L""; }
};

/// A table with the parameters of a class, and no controls.
std::unique_ptr<ParamBlockDesc2> BareTable(const GoldenBlock& golden, OwnClass& owner) {
    constexpr ParamMap2UserDlgProc* kNoProc = nullptr;
    constexpr USHORT kOnePage = P_AUTO_UI, kPages = P_AUTO_UI | P_MULTIMAP;
    auto table =
        golden.pages.size() == 1
            ? std::make_unique<ParamBlockDesc2>(BlockID(0), L"parameters", 0, &owner, kOnePage, 129, 4, 0, 0, kNoProc, p_end)
            : std::make_unique<ParamBlockDesc2>(BlockID(0), L"parameters", 0, &owner, kPages, 5,       //
                                                0, 130, 23, 0, 0, kNoProc, 1, 131, 4, 0, 0, kNoProc,   //
                                                2, 132, 31, 0, 0, kNoProc, 3, 124, 32, 0, 0, kNoProc,  //
                                                4, 142, 11, 0, 0, kNoProc, p_end);
    for (const GoldenParam& param : golden.params) {
        const ParamID id = ParamID(param.id);
        if (param.entries == 1) {
            table->AddParam(id, param.name, param.type, param.flags, 0, p_end);
        } else {
            table->AddParam(id, param.name, param.type, param.entries, param.flags, 0, p_end);
        }
    }
    return table;
}

TEST_F(PluginParameters, ExportedFunctionsAttachTheControlsOfFourClassesAgainAndAgain) {
    void* const library = dlopen(PluginFile().c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr);
    const struct {
        const char* function;
        const wchar_t* className;
    } kCases[] = {{"SetupTavrik_param_blk", L"Tavrik"},
                  {"SetupChassisObject_param_blk", L"Chassis"},
                  {"SetupSuspension_param_blk", L"Suspension"},
                  {"SetupWheel_param_blk", L"Wheel"}};
    for (const auto& [function, className] : kCases) {
        SCOPED_TRACE(function);
        auto* const setup = reinterpret_cast<void (*)(ParamBlockDesc2*)>(dlsym(library, function));
        ASSERT_NE(setup, nullptr);
        const GoldenBlock& golden = GoldenBlockOf(className);
        OwnClass owner;
        const auto table = BareTable(golden, owner);
        for (int call = 0; call < 3; ++call) {
            setup(table.get());
            for (const GoldenParam& param : golden.params) {
                SCOPED_TRACE(testing::Message() << param.name);
                ExpectControl(*table->FindParam(ParamID(param.id)), param.control);
            }
        }
    }
    dlclose(library);
}

// --------------------------------------------------------------------------------------------------------------------
// validators

class PluginPicking : public PluginScene {
 public:
    INode& NodeWithout() { return *tavrik_host::CreateNode(nullptr, L"Empty"); }
};

TEST_F(PluginPicking, AHitchTakesATongueAlone) {
    INode& hitch = AddNode(kHitchClass, Matrix3(TRUE));
    INode& tongue = AddNode(kTongueClass, Matrix3(TRUE));
    IParamBlock2& block = BlockOf(hitch);
    for (const Class_ID id : kHelperClasses) {
        if (id == kTongueClass) continue;
        EXPECT_FALSE(tavrik_host::PickNode(block, 2, &AddNode(id, Matrix3(TRUE))));
        EXPECT_EQ(block.GetINode(2), nullptr);
    }
    EXPECT_FALSE(tavrik_host::PickNode(block, 2, &NodeWithout()));
    EXPECT_TRUE(tavrik_host::PickNode(block, 2, &tongue));
    EXPECT_EQ(block.GetINode(2), &tongue);
}

TEST_F(PluginPicking, APushTakesAMasterAlone) {
    INode& push = AddNode(kPushClass, Matrix3(TRUE));
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    IParamBlock2& block = BlockOf(push);
    for (const Class_ID id : kHelperClasses) {
        if (id == kMasterClass) continue;
        EXPECT_FALSE(tavrik_host::PickNode(block, 6, &AddNode(id, Matrix3(TRUE))));
        EXPECT_EQ(block.GetINode(6), nullptr);
    }
    EXPECT_FALSE(tavrik_host::PickNode(block, 6, &NodeWithout()));
    EXPECT_TRUE(tavrik_host::PickNode(block, 6, &master));
    EXPECT_EQ(block.GetINode(6), &master);
}

TEST_F(PluginPicking, ClearingIsAlwaysAllowed) {
    INode& hitch = AddNode(kHitchClass, Matrix3(TRUE));
    INode& push = AddNode(kPushClass, Matrix3(TRUE));
    ASSERT_TRUE(tavrik_host::PickNode(BlockOf(hitch), 2, &AddNode(kTongueClass, Matrix3(TRUE))));
    ASSERT_TRUE(tavrik_host::PickNode(BlockOf(push), 6, &AddNode(kMasterClass, Matrix3(TRUE))));
    EXPECT_TRUE(tavrik_host::PickNode(BlockOf(hitch), 2, nullptr));
    EXPECT_TRUE(tavrik_host::PickNode(BlockOf(push), 6, nullptr));
    EXPECT_EQ(BlockOf(hitch).GetINode(2), nullptr);
    EXPECT_EQ(BlockOf(push).GetINode(6), nullptr);
}

TEST_F(PluginPicking, AMasterTakesAnyNodeAsGroundStartAndTarget) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    for (const ParamID id : {kSurfaceNode, kStartNode, kDrivingTarget}) {
        INode& any = NodeWithout();
        EXPECT_TRUE(tavrik_host::PickNode(BlockOf(master), id, &any));
        EXPECT_EQ(BlockOf(master).GetINode(id), &any);
    }
}

TEST_F(PluginPicking, AMasterHearsNothingOfAChangeToItsGround) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    INode& ground = AddGround();
    ASSERT_TRUE(tavrik_host::PickNode(BlockOf(master), kSurfaceNode, &ground));
    ChangeCounter ear(master.GetObjectRef());
    ground.GetObjectRef()->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    Move(ground, At(0, 0, 5));
    EXPECT_EQ(ear.changes, 0);
}

TEST_F(PluginPicking, AMasterHearsOfAChangeToItsTarget) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    INode& target = AddNode(kStartClass, Matrix3(TRUE));
    ASSERT_TRUE(tavrik_host::PickNode(BlockOf(master), kDrivingTarget, &target));
    ChangeCounter ear(master.GetObjectRef());
    target.GetObjectRef()->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    EXPECT_GT(ear.changes, 0);
}

TEST_F(PluginPicking, APartThatIsLockedToAMasterCantBecomeItsTarget) {
    const Car car = AddCar();
    Press(*car.master, kCarSetup, kLock);
    ASSERT_NE(ControlOf(*car.chassis), nullptr);
    EXPECT_FALSE(tavrik_host::PickNode(BlockOf(*car.master), kDrivingTarget, car.chassis));
    EXPECT_EQ(BlockOf(*car.master).GetINode(kDrivingTarget), nullptr);
}

}  // namespace
}  // namespace plugin_test

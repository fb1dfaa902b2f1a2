// What the host finds when it opens the library.

#include <dlfcn.h>
#include <elf.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>

#include "host/sdk/notify.h"
#include "rig/parameter_tables.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

struct GoldenClass {
    SClass_ID superClass;
    ULONG a, b;
    const wchar_t *className, *category, *internalName;
};
constexpr GoldenClass kClasses[] = {
    {0x50, 0x727C1135, 0x5E2E3307, L"Tavrik", L"Tavrik", L"Tavrik"},
    {0x50, 0x795B5018, 0x46716D27, L"Wheel", L"Tavrik", L"Wheel"},
    {0x50, 0x3D5B5E1A, 0x47F7793F, L"Suspension", L"Tavrik", L"Suspension"},
    {0x9008, 0x04F21D66, 0x68861A61, L"TavrikControl", L"Tavrik", L"FWheel"},
    {0x50, 0x1DA02DE5, 0x66EB5108, L"Chassis", L"Tavrik", L"Chassis"},
    {0x50, 0x473254E9, 0x0E1C306B, L"Start Position", L"Tavrik", L"Start"},
    {0xC10, 0x162E3EC8, 0x4D88768C, L"TavrikTrackTexture", L"", L"TavrikTrackTexture"},
    {0x50, 0x5D574EF9, 0x722236A8, L"Trailer Hitch", L"Tavrik", L"Trailer Hitch"},
    {0x50, 0x547D5C37, 0x78F502AA, L"Trailer Tongue", L"Tavrik", L"Trailer Tongue"},
    {0x50, 0x69F24B11, 0x401D0DF1, L"Push", L"Tavrik", L"Push"},
    {0x50, 0x7F092351, 0x2D247095, L"Col. Sphere", L"Tavrik", L"Col. Sphere"},
};

class PluginLibrary : public PluginScene {
 public:
    PluginLibrary() : library_(dlopen(PluginFile().c_str(), RTLD_NOW | RTLD_NOLOAD)) {}
    ~PluginLibrary() override { dlclose(library_); }

    template <typename Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(library_, name));
    }

 private:
    void* library_;
};

TEST_F(PluginLibrary, IsBuiltForThisHost) { EXPECT_EQ(Find<ULONG()>("LibVersion")(), 0x55F03700u); }

TEST_F(PluginLibrary, DescribesItself) { EXPECT_STREQ(Find<const MCHAR*()>("LibDescription")(), L"Tavrik"); }

TEST_F(PluginLibrary, OffersElevenClasses) { EXPECT_EQ(Find<int()>("LibNumberClasses")(), 11); }

TEST_F(PluginLibrary, GivesEachClassItsIdentityInOrder) {
    auto* const classDesc = Find<ClassDesc*(int)>("LibClassDesc");
    for (int i = 0; i < int(std::size(kClasses)); ++i) {
        SCOPED_TRACE(i);
        const GoldenClass& golden = kClasses[i];
        ClassDesc* const desc = classDesc(i);
        ASSERT_NE(desc, nullptr);
        EXPECT_EQ(desc->SuperClassID(), golden.superClass);
        EXPECT_EQ(desc->ClassID(), Class_ID(golden.a, golden.b));
        EXPECT_STREQ(desc->ClassName(), golden.className);
        EXPECT_STREQ(desc->Category(), golden.category);
        EXPECT_STREQ(desc->InternalName(), golden.internalName);
        EXPECT_EQ(desc->IsPublic(), 1);
    }
}

TEST_F(PluginLibrary, HasNoClassOutsideOfItsTable) {
    auto* const classDesc = Find<ClassDesc*(int)>("LibClassDesc");
    for (const int i : {-1, 11, 12, 1000, -2147483647 - 1, 2147483647}) EXPECT_EQ(classDesc(i), nullptr) << i;
}

TEST_F(PluginLibrary, AnswersWithTheSameDescriptorEachTime) {
    auto* const classDesc = Find<ClassDesc*(int)>("LibClassDesc");
    for (int i = 0; i < 11; ++i) EXPECT_EQ(classDesc(i), classDesc(i));
}

TEST_F(PluginLibrary, ClassesBecomeTheHostsInTheSameOrder) {
    const std::vector<ClassDesc*>& classes = tavrik_host::Classes();
    ASSERT_GE(classes.size(), std::size(kClasses));
    const auto first = std::ranges::find(classes, Class_ID(kClasses[0].a, kClasses[0].b), &ClassDesc::ClassID);
    ASSERT_GE(classes.end() - first, std::ptrdiff_t(std::size(kClasses)));
    for (std::size_t i = 0; i < std::size(kClasses); ++i) {
        EXPECT_EQ(first[std::ptrdiff_t(i)]->ClassID(), Class_ID(kClasses[i].a, kClasses[i].b)) << i;
    }
}

TEST_F(PluginLibrary, EveryClassMakesObjectsOfItsOwnIdentity) {
    for (const GoldenClass& golden : kClasses) {
        ClassDesc* const desc = tavrik_host::FindClass(golden.superClass, Class_ID(golden.a, golden.b));
        ASSERT_NE(desc, nullptr) << golden.a;
        for (const BOOL loading : {FALSE, TRUE}) {
            auto* const thing = static_cast<ReferenceTarget*>(desc->Create(loading));
            ASSERT_NE(thing, nullptr) << golden.a;
            EXPECT_EQ(thing->ClassID(), desc->ClassID());
            EXPECT_EQ(thing->SuperClassID(), golden.superClass);
            thing->MaybeAutoDelete();
        }
    }
}

/// The names that a library shows to whoever loads it.
std::vector<std::string> ExportedNames(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    const std::string image((std::istreambuf_iterator<char>(in)), {});
    const auto at = [&]<typename T>(std::size_t offset, T* record) {
        std::memcpy(record, image.data() + offset, sizeof *record);
    };
    Elf64_Ehdr head;
    at(0, &head);
    std::vector<Elf64_Shdr> sections(head.e_shnum);
    for (std::size_t i = 0; i < sections.size(); ++i) at(head.e_shoff + i * sizeof(Elf64_Shdr), &sections[i]);
    std::vector<std::string> names;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNSYM) continue;
        const Elf64_Shdr& strings = sections[section.sh_link];
        for (std::size_t i = 0; i < section.sh_size / sizeof(Elf64_Sym); ++i) {
            Elf64_Sym symbol;
            at(section.sh_offset + i * sizeof symbol, &symbol);
            if (symbol.st_shndx == SHN_UNDEF || symbol.st_name == 0) continue;
            names.emplace_back(image.data() + strings.sh_offset + symbol.st_name);
        }
    }
    std::ranges::sort(names);
    return names;
}

TEST_F(PluginLibrary, ExportsWhatTheHostCallsAndNothingElse) {
    std::vector<std::string> names = ExportedNames(PluginFile());
    // Watched builds put marks of their own into every library.
    std::erase_if(names, [](const std::string& name) { return name.starts_with("__"); });
    const std::vector<std::string> wanted = {"LibClassDesc",
                                             "LibDescription",
                                             "LibInitialize",
                                             "LibNumberClasses",
                                             "LibResources",
                                             "LibShutdown",
                                             "LibVersion",
                                             "SetupChassisObject_param_blk",
                                             "SetupSuspension_param_blk",
                                             "SetupTavrik_param_blk",
                                             "SetupWheel_param_blk"};
    EXPECT_EQ(names, wanted);
}

TEST_F(PluginLibrary, LoadingItAgainChangesNothing) {
    const std::size_t classes = tavrik_host::Classes().size();
    std::string problem;
    EXPECT_TRUE(tavrik_host::LoadPlugin(PluginFile(), problem)) << problem;
    EXPECT_EQ(tavrik_host::Classes().size(), classes);
}

TEST_F(PluginLibrary, ARenderOfASceneWithoutWheelsChangesNothing) {
    INode& node = AddNode(kChassisClass, At(1, 2, 3));
    tavrik_host::CreateNode(nullptr, L"Empty");
    BroadcastNotification(NOTIFY_PRE_RENDER);
    EXPECT_EQ(PlaceOf(node), At(1, 2, 3));
    EXPECT_EQ(tavrik_host::AllNodes().size(), 2u);
}

TEST_F(PluginLibrary, ARenderOfAnEmptySceneIsHarmless) {
    BroadcastNotification(NOTIFY_PRE_RENDER);
    EXPECT_TRUE(tavrik_host::AllNodes().empty());
}

TEST_F(PluginLibrary, ARenderLeavesCarsAsTheyAre) {
    const Car car = AddCar();
    MakeReady(car, AddGround());
    const std::string before = RecordingOf(*car.master);
    BroadcastNotification(NOTIFY_PRE_RENDER);
    EXPECT_TRUE(SameBytes(RecordingOf(*car.master), before));
}

// The texts of the library's string table, which titles of pages are found in by number.
TEST_F(PluginLibrary, StringsStandUnderTheirNumbers) {
    const struct {
        int id;
        const char* text;
    } kStrings[] = {{1, "Tavrik"},
                    {2, "Dynamics Objects"},
                    {3, "Tavrik"},
                    {4, "Parameters"},
                    {5, "Throttle"},
                    {6, "Rudder"},
                    {7, "Back Brake"},
                    {8, "Total Brake"},
                    {9, "Gear"},
                    {10, "Dummy Size"},
                    {11, "Controller Setup"},
                    {22, "Dumping"},
                    {23, "Car Setup"},
                    {24, "Surface Resist"},
                    {25, "Air Resist"},
                    {26, "Surface Cohesion"},
                    {27, "Back Mass"},
                    {28, "Back Rigidity"},
                    {29, "Front Mass"},
                    {30, "Front Rigidity"},
                    {31, "Animation"},
                    {32, "Driving Parameters"}};
    // Whatever else stands there nobody reads; these six are shown.
    for (const auto& [id, text] : kStrings) {
        const bool shown = id == 1 || id == 4 || id == 11 || id == 23 || id == 31 || id == 32;
        const std::string_view found = tavrik::ParamString(id);
        if (shown || !found.empty()) {
            EXPECT_EQ(found, text) << id;
        }
    }
}

}  // namespace
}  // namespace plugin_test

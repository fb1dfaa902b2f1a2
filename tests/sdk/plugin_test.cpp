#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>

#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"

namespace tavrik_host::test {
namespace {

constexpr Class_ID kPluggedObject(0x7e57, 2), kPluggedControl(0x7e57, 3);

int Running() {
    void* const image = dlopen(TEST_PLUGIN_GOOD, RTLD_NOW | RTLD_NOLOAD);
    if (image == nullptr) return 0;
    const auto running = reinterpret_cast<int (*)()>(dlsym(image, "TestPluginRunning"));
    const int result = running();
    dlclose(image);
    return result;
}

class Plugins : public ::testing::Test {
 protected:
    void TearDown() override {
        ResetScene();
        ShutDownPlugins();
        EXPECT_EQ(Running(), 0);
        EXPECT_EQ(FindClass(HELPER_CLASS_ID, kPluggedObject), nullptr);
    }
    /// The sentence, or nothing where it loads.
    std::string Load(const std::filesystem::path& file) {
        std::string problem;
        return LoadPlugin(file, problem) ? std::string() : problem;
    }
};

TEST_F(Plugins, ClassesComeAfterTheHostsOwn) {
    const std::vector<ClassDesc*> own = Classes();
    EXPECT_EQ(Load(TEST_PLUGIN_GOOD), "");
    ASSERT_EQ(Classes().size(), own.size() + 2);
    EXPECT_EQ(Classes()[0], own[0]);
    EXPECT_EQ(Classes()[own.size()], FindClass(HELPER_CLASS_ID, kPluggedObject));
    EXPECT_EQ(FindClass(HELPER_CLASS_ID, L"Plugged"), FindClass(HELPER_CLASS_ID, kPluggedObject));
    EXPECT_EQ(FindClass(GEOMOBJECT_CLASS_ID, kPluggedObject), nullptr);
}

TEST_F(Plugins, LibraryIsNotLoadedTwice) {
    EXPECT_EQ(Load(TEST_PLUGIN_GOOD), "");
    const std::size_t count = Classes().size();
    EXPECT_EQ(Load(TEST_PLUGIN_GOOD), "");
    EXPECT_EQ(Classes().size(), count);
    EXPECT_EQ(Running(), 1);
}

TEST_F(Plugins, LibraryThatWasShutDownStartsAgain) {
    EXPECT_EQ(Load(TEST_PLUGIN_GOOD), "");
    ShutDownPlugins();
    EXPECT_EQ(Running(), 0);
    EXPECT_EQ(Load(TEST_PLUGIN_GOOD), "");
    EXPECT_EQ(Running(), 1);
}

TEST_F(Plugins, InstancesAreMadeByIdentity) {
    EXPECT_EQ(CreateInstance(HELPER_CLASS_ID, kPluggedObject), nullptr);
    EXPECT_EQ(Load(TEST_PLUGIN_GOOD), "");
    auto* const object = static_cast<Object*>(GetCOREInterface()->CreateInstance(HELPER_CLASS_ID, kPluggedObject));
    ASSERT_NE(object, nullptr);
    EXPECT_STREQ(GetCOREInterface()->CreateObjectNode(object)->GetName(), L"Test001");
}

TEST_F(Plugins, DefaultControllerIsTheHostsOwnUntilAnotherIsChosen) {
    EXPECT_EQ(Load(TEST_PLUGIN_GOOD), "");
    EXPECT_EQ(GetDefaultController(CTRL_MATRIX3_CLASS_ID), &PrsControlClass());
    EXPECT_EQ(GetDefaultController(HELPER_CLASS_ID), nullptr);
    SetDefaultController(kPluggedControl);
    EXPECT_EQ(GetDefaultController(CTRL_MATRIX3_CLASS_ID)->ClassID(), kPluggedControl);
    SetDefaultController({});
    EXPECT_EQ(GetDefaultController(CTRL_MATRIX3_CLASS_ID), &PrsControlClass());
}

TEST_F(Plugins, MissingFileIsNamed) {
    EXPECT_EQ(Load("/nowhere/tavrik.dlo"), "/nowhere/tavrik.dlo: there is no such plug-in.");
}

TEST_F(Plugins, FileThatIsNoLibraryIsRefused) {
    const std::filesystem::path file = std::filesystem::path(::testing::TempDir()) / "no_library.dlo";
    std::ofstream(file) << "no library";
    EXPECT_NE(Load(file).find("no_library.dlo can't be loaded: "), std::string::npos) << Load(file);
    std::filesystem::remove(file);
}

TEST_F(Plugins, LibraryForAnotherVersionIsRefused) {
    EXPECT_EQ(Load(TEST_PLUGIN_OLD), TEST_PLUGIN_OLD " is built for host version 0x55F03600, but this one is 0x55F03700.");
}

TEST_F(Plugins, LibraryWithoutAFunctionIsRefused) {
    EXPECT_EQ(Load(TEST_PLUGIN_ENDLESS), TEST_PLUGIN_ENDLESS " is no plug-in: it doesn't export LibShutdown.");
}

TEST_F(Plugins, LibraryThatCannotInitialiseIsRefused) {
    EXPECT_EQ(Load(TEST_PLUGIN_REFUSING), TEST_PLUGIN_REFUSING " could not initialise itself.");
}

TEST_F(Plugins, LibraryThatLacksAnAnnouncedClassIsRefusedWithAllItsClasses) {
    const std::size_t count = Classes().size();
    EXPECT_EQ(Load(TEST_PLUGIN_LACKING), TEST_PLUGIN_LACKING " announces 3 classes, but has no class 2.");
    EXPECT_EQ(Classes().size(), count);
}

TEST_F(Plugins, LibraryWithAnothersIdentityIsRefused) {
    EXPECT_EQ(Load(TEST_PLUGIN_IMPOSTOR), TEST_PLUGIN_IMPOSTOR " gives its class 1 the identity of another class.");
}

}  // namespace
}  // namespace tavrik_host::test

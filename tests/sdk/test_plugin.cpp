/// A plug-in library for tests, built once for each way in which one may be wrong.

#include "host/sdk/istdplug.h"
#include "host/sdk/prs_control.h"
#include "tests/sdk/test_target.h"

namespace {

using tavrik_host::test::TestObject;

class ObjectDesc final : public ClassDesc {
 public:
    int IsPublic() override { return 1; }
    void* Create(BOOL) override { return new TestObject; }
    const MCHAR* ClassName() override { return L"Plugged"; }
    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    Class_ID ClassID() override { return {0x7e57, 2}; }
    const MCHAR* Category() override { return L"Tests"; }
};

class ControlDesc final : public ClassDesc {
 public:
    int IsPublic() override { return 1; }
    void* Create(BOOL) override { return new tavrik_host::PrsControl; }
    const MCHAR* ClassName() override { return L"Plugged Control"; }
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
#ifdef TEST_PLUGIN_TAKES_ANOTHERS_IDENTITY
    Class_ID ClassID() override { return {PRS_CONTROL_CLASS_ID, 0}; }
#else
    Class_ID ClassID() override { return {0x7e57, 3}; }
#endif
    const MCHAR* Category() override { return L"Tests"; }
};

ObjectDesc objectDesc;
ControlDesc controlDesc;
int running = 0;

}  // namespace

#define TEST_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

TEST_PLUGIN_EXPORT const TCHAR* LibDescription() { return _T("A plug-in for tests"); }
TEST_PLUGIN_EXPORT int LibNumberClasses() {
#ifdef TEST_PLUGIN_LACKS_A_CLASS
    return 3;
#else
    return 2;
#endif
}
TEST_PLUGIN_EXPORT ClassDesc* LibClassDesc(int i) {
    if (i == 0) return &objectDesc;
    return i == 1 ? &controlDesc : nullptr;
}
TEST_PLUGIN_EXPORT ULONG LibVersion() {
#ifdef TEST_PLUGIN_IS_OLD
    return VERSION_3DSMAX - 256;
#else
    return VERSION_3DSMAX;
#endif
}
TEST_PLUGIN_EXPORT int LibInitialize() {
#ifdef TEST_PLUGIN_REFUSES
    return 0;
#else
    ++running;
    return 1;
#endif
}
#ifndef TEST_PLUGIN_CANNOT_END
TEST_PLUGIN_EXPORT int LibShutdown() {
    --running;
    return 1;
}
#endif
/// How often it was started without having been shut down.
TEST_PLUGIN_EXPORT int TestPluginRunning() { return running; }

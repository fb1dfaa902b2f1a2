/// Classes for scenes in tests: one with a parameter of each kind, a map, a controller around another one, and one that stands
/// in for a master object with its recording.

#include <cstring>
#include <new>
#include <string>

#include "host/sdk/desktop.h"
#include "host/sdk/imtl.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/max.h"
#include "tests/host/scene_test_ids.h"

namespace tavrik_test {
namespace {

using namespace tavrik_host::test;  // the identities

template <typename Base>
class WithBlock : public Base {
 public:
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int i) override { return i == 0 ? block_ : nullptr; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle target, PartID&, RefMessage message, BOOL) override {
        if (message == REFMSG_TARGET_DELETED && target == block_) block_ = nullptr;
        return REF_SUCCEED;
    }

 protected:
    void SetReference(int i, RefTargetHandle target) override {
        if (i == 0) block_ = static_cast<IParamBlock2*>(target);
    }
    IParamBlock2* block_ = nullptr;
};

class Callback final : public PostLoadCallback {
 public:
    explicit Callback(int& calls) : calls_(calls) {}
    void proc(ILoad*) override {
        ++calls_;
        delete this;
    }

 private:
    int& calls_;
};

int callbackCalls = 0;

/// Keeps its chunks as they come. One that begins with "bad" is refused.
class Thing final : public WithBlock<HelperObject> {
 public:
    Thing(ClassDesc2& desc, Class_ID id, const wchar_t* name) : id_(id), name_(name) { desc.MakeAutoParamBlocks(this); }
    Class_ID ClassID() override { return id_; }
    void GetClassName(MSTR& s) override { s = name_; }
    void InitNodeName(MSTR& s) override { s = name_; }
    CreateMouseCallBack* GetCreateMouseCallBack() override { return nullptr; }
    ObjectState Eval(TimeValue) override { return ObjectState(this); }
    IOResult Save(ISave* save) override {
        if (data_.empty()) return IO_OK;
        save->BeginChunk(20);
        ULONG done = 0;
        save->Write(data_.data(), ULONG(data_.size()), &done);
        if (ReadsTooLittle()) save->Write("and more", 8, &done);
        save->EndChunk();
        return IO_OK;
    }
    IOResult Load(ILoad* load) override {
        while (load->OpenChunk() == IO_OK) {
            char buffer[7];
            ULONG got = 0;
            do {
                load->Read(buffer, sizeof buffer, &got);
                data_.append(buffer, got);
            } while (got == sizeof buffer && !ReadsTooLittle());
            load->CloseChunk();
        }
        load->RegisterPostLoadCallback(new Callback(callbackCalls));
        if (!data_.starts_with("bad")) return IO_OK;
        tavrik::TheDesktop().complaint = "the thing doesn't like it.";
        return IO_ERROR;
    }
    void SetData(const char* bytes, std::size_t size) { data_.assign(bytes, size); }

 private:
    bool ReadsTooLittle() const { return data_ == "short, "; }

    Class_ID id_;
    const wchar_t* name_;
    std::string data_;
};

class Map final : public WithBlock<Texmap> {
 public:
    explicit Map(ClassDesc2& desc) { desc.MakeAutoParamBlocks(this); }
    Class_ID ClassID() override { return kMapClass; }
    void GetClassName(MSTR& s) override { s = L"TestMap"; }
    AColor EvalColor(ShadeContext&) override { return {}; }
    Point3 EvalNormalPerturb(ShadeContext&) override { return {0, 0, 0}; }
    void Update(TimeValue, Interval&) override {}
    void Reset() override {}
    Interval Validity(TimeValue) override { return FOREVER; }
    ParamDlg* CreateParamDlg(HWND, IMtlParams*) override { return nullptr; }
};

/// Moves its node by what it wraps.
class Wrapper final : public WithBlock<Control> {
 public:
    explicit Wrapper(ClassDesc2& desc) { desc.MakeAutoParamBlocks(this); }
    Class_ID ClassID() override { return kWrapperClass; }
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    void GetClassName(MSTR& s) override { s = L"TestWrapper"; }
    int NumRefs() override { return 2; }
    RefTargetHandle GetReference(int i) override { return i == 1 ? wrapped_ : WithBlock::GetReference(i); }
    void GetValue(TimeValue t, void* val, Interval& valid, GetSetMethod method) override {
        if (wrapped_ != nullptr) wrapped_->GetValue(t, val, valid, method);
    }
    void SetValue(TimeValue t, void* val, int commit, GetSetMethod method) override {
        if (wrapped_ != nullptr) wrapped_->SetValue(t, val, commit, method);
    }
    void Copy(Control* from) override { ReplaceReference(1, from); }

 protected:
    void SetReference(int i, RefTargetHandle target) override {
        if (i == 1) {
            wrapped_ = static_cast<Control*>(target);
        } else {
            WithBlock::SetReference(i, target);
        }
    }

 private:
    Control* wrapped_ = nullptr;
};

class Desc final : public ClassDesc2 {
 public:
    Desc(const wchar_t* name, SClass_ID superClass, Class_ID id, void* (*create)(ClassDesc2&))
        : name_(name), superClass_(superClass), id_(id), create_(create) {}
    int IsPublic() override { return 1; }
    void* Create(BOOL) override { return create_(*this); }
    const MCHAR* ClassName() override { return name_; }
    SClass_ID SuperClassID() override { return superClass_; }
    Class_ID ClassID() override { return id_; }
    const MCHAR* Category() override { return L"Test"; }

 private:
    const wchar_t* name_;
    SClass_ID superClass_;
    Class_ID id_;
    void* (*create_)(ClassDesc2&);
};

// Whoever takes a `void*` from a descriptor takes it as a target.
Desc thingDesc(L"TestThing", HELPER_CLASS_ID, kThingClass, [](ClassDesc2& desc) -> void* {
    return static_cast<ReferenceTarget*>(new Thing(desc, kThingClass, L"TestThing"));
});
Desc masterDesc(L"TestMaster", HELPER_CLASS_ID, kMasterClass, [](ClassDesc2& desc) -> void* {
    return static_cast<ReferenceTarget*>(new Thing(desc, kMasterClass, L"TestMaster"));
});
Desc mapDesc(L"TestMap", TEXMAP_CLASS_ID, kMapClass,
             [](ClassDesc2& desc) -> void* { return static_cast<ReferenceTarget*>(new Map(desc)); });
Desc wrapperDesc(L"TestWrapper", CTRL_MATRIX3_CLASS_ID, kWrapperClass,
                 [](ClassDesc2& desc) -> void* { return static_cast<ReferenceTarget*>(new Wrapper(desc)); });

ParamBlockDesc2 thingBlock(0, L"parameters", 0, &thingDesc, P_AUTO_CONSTRUCT, 0,                                    //
                           kSize, L"Size", TYPE_WORLD, 0, 0, p_default, 20.0, p_range, 0.0001, 100000.0, p_end,     //
                           kSizes, L"Sizes", TYPE_WORLD_TAB, 3, 0, 0, p_default, 20.0, p_range, 0.0, 100.0, p_end,  //
                           kKey, L"Key", TYPE_INT, 0, 0, p_default, 32768, p_range, 0, 255, p_end,                  //
                           kSteps, L"Steps", TYPE_INT, 0, 0, p_default, 5, p_range, 2, 100, p_end,                  //
                           kFlag, L"Flag", TYPE_BOOL, 0, 0, p_default, 0, p_end,                                    //
                           kFriend, L"Friend Node", TYPE_INODE, 0, 0, p_end,                                        //
                           kPointer, L"Pointer", TYPE_INODE, P_NO_REF, 0, p_end,                                    //
                           kPattern, L"Pattern", TYPE_TEXMAP, 0, 0, p_end,                                          //
                           kFrame, L"Frame", TYPE_MATRIX3, 0, 0, p_end,                                             //
                           kPush, L"Push", TYPE_FLOAT, P_ANIMATABLE, 0, p_default, 0.0, p_range, -1000.0, 1000.0, p_end, p_end);
ParamBlockDesc2 masterBlock(0, L"parameters", 0, &masterDesc, P_AUTO_CONSTRUCT, 0, p_end);
ParamBlockDesc2 mapBlock(0, L"parameters", 0, &mapDesc, P_AUTO_CONSTRUCT, 0, kSize, L"Strength", TYPE_FLOAT, 0, 0, p_default,
                         1.0, p_end, p_end);
ParamBlockDesc2 wrapperBlock(0, L"parameters", 0, &wrapperDesc, P_AUTO_CONSTRUCT, 0, kSize, L"Leader", TYPE_INODE, 0, 0, p_end,
                             p_end);

ClassDesc* const kClasses[] = {&thingDesc, &masterDesc, &mapDesc, &wrapperDesc};

}  // namespace
}  // namespace tavrik_test

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED const wchar_t* LibDescription() { return L"Classes for scenes in tests"; }
EXPORTED int LibNumberClasses() { return int(std::size(tavrik_test::kClasses)); }
EXPORTED ClassDesc* LibClassDesc(int i) { return tavrik_test::kClasses[i]; }
EXPORTED ULONG LibVersion() { return VERSION_3DSMAX; }
EXPORTED int LibInitialize() { return 1; }
EXPORTED int LibShutdown() { return 1; }
/// How often post-load callbacks ran.
EXPORTED int TestCallbackCalls() { return tavrik_test::callbackCalls; }

#include "tests/sdk/edited_object.h"

// Every float that goes through the dots of a table is promoted: that is how such calls work.
#pragma GCC diagnostic ignored "-Wdouble-promotion"

namespace edited {
namespace {

class EditedClass final : public ClassDesc2 {
 public:
    int IsPublic() override { return 1; }
    void* Create(BOOL) override { return new EditedObject; }
    const MCHAR* ClassName() override { return L"Edited"; }
    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    Class_ID ClassID() override { return {0x1234, 0x5678}; }
    const MCHAR* Category() override { return L"Tests"; }
};

INT_PTR SilentPage(HWND, UINT, WPARAM, LPARAM) { return 0; }

}  // namespace

OnlyThisNode& GuestValidator() {
    static OnlyThisNode validator;
    return validator;
}

ClassDesc2& Class() {
    static EditedClass instance;
    return instance;
}

ParamBlockDesc2& Table() {
    // clang-format off
    static ParamBlockDesc2 table(
        0, L"parameters", 0, &Class(), P_AUTO_CONSTRUCT | P_AUTO_UI | P_MULTIMAP, 0,
        2,
        0, 130, 23, 0, 0, nullptr,
        1, 131, 4, 0, 0, nullptr,
        kSize, L"Dummy_Size", TYPE_WORLD_TAB, 3, 0, 0,
            p_default, 20.0f, p_range, 0.0001f, 100000.0f,
            p_ui, 0, TYPE_SPINNER, EDITTYPE_UNIVERSE, 1096, 1097, 1098, 1099, 1100, 1101, SPIN_AUTOSCALE, p_end,
        kGravity, L"Gravity", TYPE_WORLD, 0, 0, p_default, 980.0f, p_range, 0.0001f, 1000000.0f, p_end,
        kSurface, L"Surface_Node", TYPE_INODE, P_NO_REF, 0, p_ui, 1, TYPE_PICKNODEBUTTON, 1022, p_end,
        kTarget, L"Driving_Target", TYPE_INODE, 0, 0, p_ui, 1, TYPE_PICKNODEBUTTON, 1024, p_end,
        kButton, L"CtrlJoyForward", TYPE_INT, 0, 0, p_default, 32768, p_range, 0, 255, p_end,
        kFlag, L"Bike_Drive", TYPE_BOOL, 0, 0, p_default, 1, p_ui, 1, TYPE_SINGLECHEKBOX, 1124, p_end,
        kMult, L"Push_Anim_Mult", TYPE_FLOAT, P_ANIMATABLE, 0, p_default, 5.0f, p_range, -1000.0f, 1000.0f, p_end,
        kSlot, L"Slot_Position", TYPE_MATRIX3, 0, 0, p_end,
        kMap, L"Pattern_Map", TYPE_TEXMAP, 0, 0, p_ui, 1, TYPE_TEXMAPBUTTON, 1117, p_end,
        kOther, L"Other", TYPE_REFTARG, 0, 0, p_end,
        kKind, L"Driving_Type", TYPE_INT, 0, 0, p_default, 1, p_range, 0, 3,
            p_ui, 1, TYPE_RADIO, 4, 1086, 1087, 1090, 1091, p_end,
        kGuest, L"Connection Node", TYPE_INODE, 0, 0, p_ui, 1, TYPE_PICKNODEBUTTON, 1121, p_validator, &GuestValidator(), p_end,
        p_end);
    // clang-format on
    return table;
}

EditedObject::EditedObject() {
    Table();
    Class().MakeAutoParamBlocks(this);
}

RefTargetHandle EditedObject::Clone(RemapDir& remap) {
    auto* copy = new EditedObject;
    copy->ReplaceReference(0, remap.CloneRef(block));
    BaseClone(this, copy, remap);
    return copy;
}

void EditedObject::BeginEditParams(IObjParam* ip, ULONG flags, Animatable* prev) {
    ++begun;
    cameFrom = prev;
    Class().BeginEditParams(ip, this, flags, prev);
    if (procOfSecond != nullptr) Table().SetUserDlgProc(1, procOfSecond);
    if (withAbout) about = ip->AddRollupPage(nullptr, MAKEINTRESOURCEW(115), SilentPage, L"About", 0, 0, 4000);
}

void EditedObject::EndEditParams(IObjParam* ip, ULONG flags, Animatable* next) {
    ++ended;
    wentTo = next;
    Class().EndEditParams(ip, this, flags, next);
    if (about != nullptr) ip->DeleteRollupPage(about);
    about = nullptr;
}

}  // namespace edited

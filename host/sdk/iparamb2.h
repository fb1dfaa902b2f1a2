#pragma once
/// Parameter blocks: typed values by number, declared once for each class in a table.

#include <memory>

#include "matrix3.h"
#include "plugapi.h"

class INode;
class IParamMap2;
class ParamMap2UserDlgProc;
class PBValidator;
class ParamBlockDesc2;
class Texmap;
class IMtlParams;
class IAutoMParamDlg;

enum ParamType2 : int {
    TYPE_FLOAT = 0,
    TYPE_INT = 1,
    TYPE_RGBA = 2,
    TYPE_POINT3 = 3,
    TYPE_BOOL = 4,
    TYPE_WORLD = 7,
    TYPE_TEXMAP = 15,
    TYPE_INODE = 17,
    TYPE_REFTARG = 18,
    TYPE_MATRIX3 = 20,
    TYPE_TAB = 0x0800,
    TYPE_WORLD_TAB = TYPE_WORLD | TYPE_TAB,
};

// Of a block.
constexpr USHORT P_AUTO_CONSTRUCT = 2, P_AUTO_UI = 4, P_MULTIMAP = 0x20;
// Of a parameter.
constexpr int P_ANIMATABLE = 1, P_NO_REF = 0x100;

/// Tags between the values that describe a parameter. The values of a tag follow it; `p_end` closes a parameter and the list.
enum ParamTag : int { p_default = 0x2000, p_range, p_ui, p_validator, p_end = -1 };

enum ControlType2 : int {
    TYPE_SPINNER = 0x4000,  // EditSpinnerType, edit and spinner of each entry, scale
    TYPE_RADIO,             // count, buttons
    TYPE_SINGLECHEKBOX,     // control
    TYPE_PICKNODEBUTTON,    // control
    TYPE_TEXMAPBUTTON,      // control
};
enum EditSpinnerType : int { EDITTYPE_INT = 0, EDITTYPE_FLOAT = 1, EDITTYPE_UNIVERSE = 2, EDITTYPE_TIME = 6 };
constexpr float SPIN_AUTOSCALE = -1.0f;

/// One value as a validator sees it.
struct PB2Value {
    union {
        int i;
        float f;
        Point3* p;
        const MCHAR* s;
        ReferenceTarget* r;
    };
    PB2Value() : r(nullptr) {}
};

class PBValidator {
 public:
    virtual ~PBValidator() = default;
    virtual BOOL Validate(PB2Value& v) = 0;
    virtual BOOL Validate(PB2Value& v, ReferenceMaker* /*owner*/, ParamID /*id*/, int /*tabIndex*/) { return Validate(v); }
    virtual void DeleteThis() {}
};

/// The control of a parameter as its table declares it.
struct ParamControlDef {
    int map = 0;   // of the rollout
    int type = 0;  // a ControlType2; 0: none
    int edit = 0;  // of a spinner, an EditSpinnerType
    std::vector<int> ids;
    float scale = SPIN_AUTOSCALE;  // of a spinner
};

/// One parameter as its table declares it. Numbers of float types are kept as floats, of integer types as integers.
struct ParamDef {
    ParamID ID = 0;
    const MCHAR* int_name = nullptr;
    int type = TYPE_FLOAT;
    int tabSize = 1;  // entries
    int flags = 0;
    StringResID local_name = 0;
    bool hasDefault = false, hasRange = false;
    PB2Value def, rangeLow, rangeHigh;
    ParamControlDef ui;
    PBValidator* validator = nullptr;
};

/// One rollout of a block.
struct ParamMapDef {
    MapID map = 0;
    int dialog = 0;         // template
    StringResID title = 0;  // string table entry
    ULONG testFlags = 0, rollupFlags = 0;
    ParamMap2UserDlgProc* dlgProc = nullptr;
};

class ClassDesc2 : public ClassDesc {
 public:
    /// Makes each block of this class that makes itself, with its defaults, and gives it to `owner` as the reference that its
    /// table names. May be called from a constructor.
    void MakeAutoParamBlocks(ReferenceMaker* owner);
    /// Opens a rollout for each map of `obj`'s block.
    virtual void BeginEditParams(IObjParam* ip, ReferenceMaker* obj, ULONG flags, Animatable* prev);
    virtual void EndEditParams(IObjParam* ip, ReferenceMaker* obj, ULONG flags, Animatable* next);

    /// Opens a map's rollouts in the material editor. They close when what is returned is deleted, which is before the map is.
    virtual IAutoMParamDlg* CreateParamDlgs(HWND hwMtlEdit, IMtlParams* imp, ReferenceTarget* obj);

    const std::vector<ParamBlockDesc2*>& Blocks() const { return blocks_; }

 private:
    friend class ParamBlockDesc2;
    std::vector<ParamBlockDesc2*> blocks_;
};

/// The table of a block. It is read with the types that its parameters declare, and ends the program at a tag that it doesn't
/// know: a slip there would otherwise turn up as a wrong number somewhere in a scene.
class ParamBlockDesc2 {
 public:
    /// After `flags`, in this order: the reference number if P_AUTO_CONSTRUCT; for P_AUTO_UI dialog template, title, flag mask,
    /// rollup flags and a ParamMap2UserDlgProc*, or with P_MULTIMAP a count and for each rollout its MapID and those five; then
    /// the parameters as `AddParam` takes them, each closed by p_end; then p_end.
    ParamBlockDesc2(BlockID id, const MCHAR* int_name, StringResID local_name, ClassDesc2* cd, USHORT flags, ...);
    ParamBlockDesc2(const ParamBlockDesc2&) = delete;
    ParamBlockDesc2& operator=(const ParamBlockDesc2&) = delete;
    virtual ~ParamBlockDesc2();

    /// `int_name`, type, [entries of a table type], flags, local name, then tags with their values, then p_end.
    void AddParam(ParamID id, ...);
    /// One tag with its values, then p_end.
    void ParamOption(ParamID id, int option_tag, ...);

    void SetUserDlgProc(MapID map, ParamMap2UserDlgProc* proc);
    void SetUserDlgProc(ParamMap2UserDlgProc* proc = nullptr) { SetUserDlgProc(0, proc); }
    void InvalidateUI();
    void InvalidateUI(ParamID id, int tabIndex = -1);
    ParamDef& GetParamDef(ParamID id);

    int Count() const { return int(params_.size()); }
    const ParamDef& ParamAt(int i) const { return *params_[std::size_t(i)]; }
    /// @return null for an unknown number
    const ParamDef* FindParam(ParamID id) const;
    const std::vector<ParamMapDef>& Maps() const { return maps_; }

    BlockID ID = 0;
    const MCHAR* int_name = nullptr;
    StringResID local_name = 0;
    ClassDesc2* cd = nullptr;
    USHORT flags = 0;
    int ref_no = -1;

 private:
    friend class ParamListReader;
    std::vector<std::unique_ptr<ParamDef>> params_;
    std::vector<ParamMapDef> maps_;
};

/// The values of one object. Values are stored as they are given: ranges are for what is typed or spun, and a default may lie
/// outside of its own.
class IParamBlock2 : public ReferenceTarget {
 public:
    /// Each narrows `valid` to the span for which the value holds. FALSE for an unknown number, another type or an entry that
    /// isn't there; `v` then stays as it was.
    virtual BOOL GetValue(ParamID id, TimeValue t, float& v, Interval& valid, int tabIndex = 0) = 0;
    virtual BOOL GetValue(ParamID id, TimeValue t, int& v, Interval& valid, int tabIndex = 0) = 0;
    virtual BOOL GetValue(ParamID id, TimeValue t, Matrix3& v, Interval& valid, int tabIndex = 0) = 0;
    virtual BOOL GetValue(ParamID id, TimeValue t, INode*& v, Interval& valid, int tabIndex = 0) = 0;
    virtual BOOL GetValue(ParamID id, TimeValue t, Texmap*& v, Interval& valid, int tabIndex = 0) = 0;
    virtual BOOL GetValue(ParamID id, TimeValue t, ReferenceTarget*& v, Interval& valid, int tabIndex = 0) = 0;

    /// Each tells the dependents of the change. FALSE as above, and where a reference would close a loop; nothing changes then.
    virtual BOOL SetValue(ParamID id, TimeValue t, float v, int tabIndex = 0) = 0;
    virtual BOOL SetValue(ParamID id, TimeValue t, int v, int tabIndex = 0) = 0;
    virtual BOOL SetValue(ParamID id, TimeValue t, Matrix3& v, int tabIndex = 0) = 0;
    virtual BOOL SetValue(ParamID id, TimeValue t, INode* v, int tabIndex = 0) = 0;
    virtual BOOL SetValue(ParamID id, TimeValue t, Texmap* v, int tabIndex = 0) = 0;
    virtual BOOL SetValue(ParamID id, TimeValue t, ReferenceTarget* v, int tabIndex = 0) = 0;

    virtual float GetFloat(ParamID id, TimeValue t = 0, int tabIndex = 0) = 0;
    virtual int GetInt(ParamID id, TimeValue t = 0, int tabIndex = 0) = 0;
    virtual INode* GetINode(ParamID id, TimeValue t = 0, int tabIndex = 0) = 0;

    virtual BlockID ID() = 0;
    virtual ParamBlockDesc2* GetDesc() = 0;
    virtual ReferenceMaker* GetOwner() = 0;
    /// The open rollouts of this block, if any.
    virtual IParamMap2* GetMap(MapID map = 0) = 0;
    virtual int Count(ParamID id) = 0;
};

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "host/sdk/panel_pages.h"
#include "host/sdk/param_types.h"

using tavrik_host::EntryType;
using tavrik_host::IsFloatType;
using tavrik_host::IsIntType;
using tavrik_host::IsTargetType;

// The count of arguments goes by the parameter before the dots. Its type is the host's, and narrower than what clang wants
// there; every calling convention that this is built for passes it like an int all the same.
#ifdef __clang__
#pragma clang diagnostic ignored "-Wvarargs"
#endif

namespace {

constexpr USHORT kBlockFlags = P_AUTO_CONSTRUCT | P_AUTO_UI | P_MULTIMAP;
constexpr int kParamFlags = P_ANIMATABLE | P_NO_REF;
// Far more than any table has; what lies above is a slip in the list.
constexpr int kMaxEntries = 4096, kMaxMaps = 64, kMaxButtons = 64;

bool IsKnownType(int type) { return IsFloatType(type) || IsIntType(type) || IsTargetType(type) || type == TYPE_MATRIX3; }

/// For a terminal: tables are written in plain letters, anything else shows as a question mark.
std::string Plain(const MCHAR* text) {
    std::string plain;
    for (; text != nullptr && *text != 0; ++text) plain += *text >= 32 && *text < 127 ? char(*text) : '?';
    return plain;
}

}  // namespace

/// Walks the untyped list of a table. The types of the values follow from what came before them.
class ParamListReader {
 public:
    ParamListReader(ParamBlockDesc2& desc, std::va_list* args) : desc_(desc), args_(args) {}
    ParamListReader(const ParamListReader&) = delete;
    ParamListReader& operator=(const ParamListReader&) = delete;

    void ReadHeader();
    void ReadParams();
    void ReadParam(int id);
    void ReadOption(ParamDef& def, int tag);
    [[noreturn]] void Stop(const std::string& fault) const;
    void Naming(const ParamDef& def) { current_ = &def; }

 private:
    // Numbers of strings may be passed in either width; both lie in the low half of the same slot.
    // The analyzer loses track of a list behind a pointer.
    int Int() { return va_arg(*args_, int); }                // NOLINT(clang-analyzer-valist.Uninitialized)
    float Float() { return float(va_arg(*args_, double)); }  // NOLINT(clang-analyzer-valist.Uninitialized)
    template <typename T>
    T* Pointer() {
        return va_arg(*args_, T*);  // NOLINT(clang-analyzer-valist.Uninitialized)
    }

    void ReadMap(MapID map);
    void ReadType(ParamDef& def);
    void ReadDefault(ParamDef& def);
    void ReadRange(ParamDef& def);
    void ReadControl(ParamDef& def);
    void ReadControlIds(const ParamDef& def, ParamControlDef& ui);
    void CheckControl(const ParamDef& def, const ParamControlDef& ui) const;
    PB2Value Number(const ParamDef& def);

    ParamBlockDesc2& desc_;
    std::va_list* args_;
    const ParamDef* current_ = nullptr;
};

void ParamListReader::Stop(const std::string& fault) const {
    std::string where = "parameter block \"" + Plain(desc_.int_name) + "\"";
    if (desc_.cd != nullptr) where += " of " + Plain(desc_.cd->ClassName());
    if (current_ != nullptr) where += ", parameter " + std::to_string(current_->ID) + " \"" + Plain(current_->int_name) + "\"";
    std::fprintf(stderr, "%s: %s\n", where.c_str(), fault.c_str());
    std::abort();
}

void ParamListReader::ReadHeader() {
    if ((desc_.flags & ~kBlockFlags) != 0) Stop("unknown block flags " + std::to_string(desc_.flags));
    if ((desc_.flags & P_AUTO_CONSTRUCT) != 0) {
        desc_.ref_no = Int();
        if (desc_.ref_no < 0) Stop("reference number " + std::to_string(desc_.ref_no) + " is negative");
    }
    if ((desc_.flags & P_AUTO_UI) == 0) return;
    if ((desc_.flags & P_MULTIMAP) == 0) {
        ReadMap(0);
        return;
    }
    const int count = Int();
    if (count < 1 || count > kMaxMaps) Stop("can't have " + std::to_string(count) + " rollouts");
    for (int i = 0; i < count; ++i) ReadMap(MapID(Int()));
}

void ParamListReader::ReadMap(MapID map) {
    for (const ParamMapDef& other : desc_.maps_) {
        if (other.map == map) Stop("rollout " + std::to_string(map) + " is declared twice");
    }
    ParamMapDef def;
    def.map = map;
    def.dialog = Int();
    def.title = Int();
    def.testFlags = ULONG(Int());
    def.rollupFlags = ULONG(Int());
    def.dlgProc = Pointer<ParamMap2UserDlgProc>();
    desc_.maps_.push_back(def);
}

void ParamListReader::ReadParams() {
    for (int id = Int(); id != p_end; id = Int()) {
        ReadParam(id);
        current_ = nullptr;
    }
}

void ParamListReader::ReadParam(int id) {
    auto owned = std::make_unique<ParamDef>();
    ParamDef& def = *owned;
    def.ID = ParamID(id);
    current_ = &def;
    if (id < 0 || id > 0x7fff) Stop("number " + std::to_string(id) + " is none that a parameter can have");
    def.int_name = Pointer<const MCHAR>();
    if (def.int_name == nullptr) Stop("has no name");
    for (const auto& other : desc_.params_) {
        if (other->ID == def.ID) Stop("the number is taken by \"" + Plain(other->int_name) + "\"");
        if (std::wcscmp(other->int_name, def.int_name) == 0) Stop("the name is taken by " + std::to_string(other->ID));
    }
    ReadType(def);
    for (int tag = Int(); tag != p_end; tag = Int()) ReadOption(def, tag);
    desc_.params_.push_back(std::move(owned));
}

void ParamListReader::ReadType(ParamDef& def) {
    def.type = Int();
    const int base = EntryType(def);
    if (!IsKnownType(base)) Stop("unknown type " + std::to_string(def.type));
    if ((def.type & TYPE_TAB) != 0) {
        def.tabSize = Int();
        if (def.tabSize < 1 || def.tabSize > kMaxEntries) Stop("can't have " + std::to_string(def.tabSize) + " entries");
    }
    def.flags = Int();
    if ((def.flags & ~kParamFlags) != 0) Stop("unknown flags " + std::to_string(def.flags));
    if ((def.flags & P_NO_REF) != 0 && base != TYPE_INODE) Stop("P_NO_REF is for nodes");
    def.local_name = Int();
}

void ParamListReader::ReadOption(ParamDef& def, int tag) {
    switch (tag) {
        case p_default:
            return ReadDefault(def);
        case p_range:
            return ReadRange(def);
        case p_ui:
            return ReadControl(def);
        case p_validator:
            def.validator = Pointer<PBValidator>();
            return;
        default:
            Stop("unknown tag " + std::to_string(tag));
    }
}

PB2Value ParamListReader::Number(const ParamDef& def) {
    PB2Value value;
    const int base = EntryType(def);
    if (IsFloatType(base)) {
        value.f = Float();
        if (!std::isfinite(value.f)) Stop("a number isn't finite: is it written without a point?");
    } else if (IsIntType(base)) {
        value.i = Int();
    } else {
        Stop("its type takes no default and no range");
    }
    return value;
}

/// It may lie outside of the range: that is for what is typed or spun.
void ParamListReader::ReadDefault(ParamDef& def) {
    def.def = Number(def);
    def.hasDefault = true;
}

void ParamListReader::ReadRange(ParamDef& def) {
    def.rangeLow = Number(def);
    def.rangeHigh = Number(def);
    const bool rising = IsFloatType(EntryType(def)) ? def.rangeLow.f <= def.rangeHigh.f : def.rangeLow.i <= def.rangeHigh.i;
    if (!rising) Stop("the range ends below its start");
    def.hasRange = true;
}

void ParamListReader::ReadControl(ParamDef& def) {
    ParamControlDef ui;
    if ((desc_.flags & P_MULTIMAP) != 0) ui.map = Int();
    bool declared = false;
    for (const ParamMapDef& map : desc_.maps_) declared = declared || map.map == ui.map;
    if (!declared) Stop("there is no rollout " + std::to_string(ui.map));
    ui.type = Int();
    ReadControlIds(def, ui);
    CheckControl(def, ui);
    def.ui = std::move(ui);
}

void ParamListReader::ReadControlIds(const ParamDef& def, ParamControlDef& ui) {
    switch (ui.type) {
        case TYPE_SPINNER:
            ui.edit = Int();
            for (int i = 0; i < 2 * def.tabSize; ++i) ui.ids.push_back(Int());
            ui.scale = Float();
            return;
        case TYPE_RADIO: {
            const int count = Int();
            if (count < 1 || count > kMaxButtons) Stop("can't have " + std::to_string(count) + " buttons");
            for (int i = 0; i < count; ++i) ui.ids.push_back(Int());
            return;
        }
        case TYPE_SINGLECHEKBOX:
        case TYPE_PICKNODEBUTTON:
        case TYPE_TEXMAPBUTTON:
            ui.ids.push_back(Int());
            return;
        default:
            Stop("unknown control type " + std::to_string(ui.type));
    }
}

void ParamListReader::CheckControl(const ParamDef& def, const ParamControlDef& ui) const {
    const int base = EntryType(def);
    bool fits = false;
    switch (ui.type) {
        case TYPE_SPINNER:
            fits = IsFloatType(base) || base == TYPE_INT;
            break;
        case TYPE_RADIO:
            fits = def.type == TYPE_INT;
            break;
        case TYPE_SINGLECHEKBOX:
            fits = def.type == TYPE_BOOL || def.type == TYPE_INT;
            break;
        case TYPE_PICKNODEBUTTON:
            fits = def.type == TYPE_INODE;
            break;
        case TYPE_TEXMAPBUTTON:
            fits = def.type == TYPE_TEXMAP;
            break;
        default:
            break;
    }
    if (!fits) Stop("its type can't have a control of type " + std::to_string(ui.type));
    if (ui.type != TYPE_SPINNER) return;
    const bool knownEdit =
        ui.edit == EDITTYPE_INT || ui.edit == EDITTYPE_FLOAT || ui.edit == EDITTYPE_UNIVERSE || ui.edit == EDITTYPE_TIME;
    if (!knownEdit) Stop("unknown edit type " + std::to_string(ui.edit));
    if (!std::isfinite(ui.scale)) Stop("the spinner's scale isn't finite: is it written without a point?");
}

ParamBlockDesc2::ParamBlockDesc2(BlockID id, const MCHAR* int_name_, StringResID local_name_, ClassDesc2* cd_, USHORT flags_,
                                 ...)
    : ID(id), int_name(int_name_), local_name(local_name_), cd(cd_), flags(flags_) {
    std::va_list args;
    va_start(args, flags_);
    ParamListReader reader(*this, &args);
    if (cd != nullptr) {
        for (const ParamBlockDesc2* other : cd->blocks_) {
            if (other->ID == ID) reader.Stop("block number " + std::to_string(ID) + " is taken");
        }
    }
    reader.ReadHeader();
    reader.ReadParams();
    va_end(args);
    if (cd != nullptr) cd->blocks_.push_back(this);
}

ParamBlockDesc2::~ParamBlockDesc2() {
    if (cd != nullptr) std::erase(cd->blocks_, this);
}

void ParamBlockDesc2::AddParam(ParamID id, ...) {
    std::va_list args;
    va_start(args, id);
    ParamListReader(*this, &args).ReadParam(id);
    va_end(args);
}

void ParamBlockDesc2::ParamOption(ParamID id, int option_tag, ...) {
    ParamDef& def = GetParamDef(id);
    std::va_list args;
    va_start(args, option_tag);
    ParamListReader reader(*this, &args);
    reader.Naming(def);
    reader.ReadOption(def, option_tag);  // what follows isn't looked at: not every table closes a single option
    va_end(args);
}

void ParamBlockDesc2::SetUserDlgProc(MapID map, ParamMap2UserDlgProc* proc) { tavrik_host::SetPageProc(*this, map, proc); }

void ParamBlockDesc2::InvalidateUI() { tavrik_host::CountInvalidate(*this); }

void ParamBlockDesc2::InvalidateUI(ParamID, int) { InvalidateUI(); }

ParamDef& ParamBlockDesc2::GetParamDef(ParamID id) {
    for (const auto& param : params_) {
        if (param->ID == id) return *param;
    }
    ParamListReader(*this, nullptr).Stop("there is no parameter " + std::to_string(id));
}

const ParamDef* ParamBlockDesc2::FindParam(ParamID id) const {
    for (const auto& param : params_) {
        if (param->ID == id) return param.get();
    }
    return nullptr;
}

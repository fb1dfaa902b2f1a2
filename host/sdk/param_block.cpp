#include "host/sdk/param_block.h"

#include <algorithm>
#include <cmath>

#include "host/sdk/imtl.h"
#include "host/sdk/panel_pages.h"
#include "host/sdk/param_types.h"

namespace tavrik_host {
namespace {

bool IsNode(ReferenceTarget* target) { return dynamic_cast<INode*>(target) != nullptr; }

float ValueOfKeys(const FloatKeys& keys, TimeValue t) {
    const auto after =
        std::upper_bound(keys.begin(), keys.end(), t, [](TimeValue tick, const auto& key) { return tick < key.first; });
    if (after == keys.begin()) return after->second;
    const auto before = after - 1;
    if (after == keys.end() || before->first == t) return before->second;
    // In double: ticks may lie further apart than their type can tell, values further than theirs.
    const double a = double(before->second), b = double(after->second);
    const double part = (double(t) - double(before->first)) / (double(after->first) - double(before->first));
    return float(a + (b - a) * part);
}

}  // namespace

ParamBlock::ParamBlock(ParamBlockDesc2& desc) : desc_(desc) {
    for (int i = 0; i < desc.Count(); ++i) {
        const ParamDef& def = desc.ParamAt(i);
        const int base = EntryType(def);
        Entry entry{&def, Matrix3(), {}, -1};  // a matrix has no default: it is undefined until it is set
        if (IsFloatType(base)) entry.value = def.hasDefault ? def.def.f : 0.0f;
        if (IsIntType(base)) entry.value = def.hasDefault ? def.def.i : 0;
        if (IsTargetType(base)) entry.value = static_cast<ReferenceTarget*>(nullptr);
        const bool refers = IsTargetType(base) && (def.flags & P_NO_REF) == 0;
        for (int tab = 0; tab < def.tabSize; ++tab) {
            if (refers) {
                entry.reference = int(referring_.size());
                referring_.push_back(int(entries_.size()));
            }
            entries_.push_back(entry);
        }
    }
}

ParamBlock::~ParamBlock() {
    CloseMapPages(*this);
    for (const Entry& entry : entries_) {
        if (entry.reference >= 0) Refer(entry, nullptr);
    }
}

const ParamBlock::Entry* ParamBlock::Find(ParamID id, int tabIndex) const {
    const auto first = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.def->ID == id; });
    if (first == entries_.end() || tabIndex < 0 || tabIndex >= first->def->tabSize) return nullptr;
    return &first[tabIndex];
}

ParamBlock::Entry* ParamBlock::Find(ParamID id, int tabIndex) {
    return const_cast<Entry*>(std::as_const(*this).Find(id, tabIndex));
}

template <typename T>
const T* ParamBlock::Constant(ParamID id, int tabIndex) const {
    const Entry* entry = Find(id, tabIndex);
    return entry == nullptr ? nullptr : std::get_if<T>(&entry->value);
}

// Constants hold for all time: narrowing an interval by that leaves it as it is.

BOOL ParamBlock::GetValue(ParamID id, TimeValue t, float& v, Interval& valid, int tabIndex) {
    const float* constant = Constant<float>(id, tabIndex);
    if (constant == nullptr) return FALSE;
    const FloatKeys& keys = Keys(id, tabIndex);
    v = keys.empty() ? *constant : ValueOfKeys(keys, t);
    if (!keys.empty()) valid &= Interval(t, t);
    return TRUE;
}

BOOL ParamBlock::GetValue(ParamID id, TimeValue, int& v, Interval&, int tabIndex) {
    const int* constant = Constant<int>(id, tabIndex);
    if (constant == nullptr) return FALSE;
    v = *constant;
    return TRUE;
}

BOOL ParamBlock::GetValue(ParamID id, TimeValue, Matrix3& v, Interval&, int tabIndex) {
    const Matrix3* constant = Constant<Matrix3>(id, tabIndex);
    if (constant == nullptr) return FALSE;
    v = *constant;
    return TRUE;
}

BOOL ParamBlock::GetValue(ParamID id, TimeValue, INode*& v, Interval&, int tabIndex) {
    const Entry* entry = Find(id, tabIndex);
    if (entry == nullptr || EntryType(*entry->def) != TYPE_INODE) return FALSE;
    v = static_cast<INode*>(std::get<ReferenceTarget*>(entry->value));
    return TRUE;
}

BOOL ParamBlock::GetValue(ParamID id, TimeValue, Texmap*& v, Interval&, int tabIndex) {
    const Entry* entry = Find(id, tabIndex);
    if (entry == nullptr || EntryType(*entry->def) != TYPE_TEXMAP) return FALSE;
    v = static_cast<Texmap*>(std::get<ReferenceTarget*>(entry->value));
    return TRUE;
}

BOOL ParamBlock::GetValue(ParamID id, TimeValue, ReferenceTarget*& v, Interval&, int tabIndex) {
    const Entry* entry = Find(id, tabIndex);
    if (entry == nullptr || (EntryType(*entry->def) != TYPE_REFTARG && EntryType(*entry->def) != TYPE_TEXMAP)) return FALSE;
    v = std::get<ReferenceTarget*>(entry->value);
    return TRUE;
}

template <typename T>
BOOL ParamBlock::SetConstant(ParamID id, int tabIndex, const T& v) {
    Entry* entry = Find(id, tabIndex);
    if (entry == nullptr || !std::holds_alternative<T>(entry->value)) return FALSE;
    entry->value = v;
    entry->keys.clear();
    NotifyChange();
    return TRUE;
}

BOOL ParamBlock::SetValue(ParamID id, TimeValue, float v, int tabIndex) { return SetConstant(id, tabIndex, v); }
BOOL ParamBlock::SetValue(ParamID id, TimeValue, int v, int tabIndex) { return SetConstant(id, tabIndex, v); }
BOOL ParamBlock::SetValue(ParamID id, TimeValue, Matrix3& v, int tabIndex) { return SetConstant(id, tabIndex, v); }

BOOL ParamBlock::SetValue(ParamID id, TimeValue, INode* v, int tabIndex) {
    Entry* entry = Find(id, tabIndex);
    if (entry == nullptr || EntryType(*entry->def) != TYPE_INODE) return FALSE;
    if (entry->reference < 0) {
        entry->value = static_cast<ReferenceTarget*>(v);
    } else if (Refer(*entry, v) == FALSE) {
        return FALSE;
    }
    NotifyChange();
    return TRUE;
}

BOOL ParamBlock::SetValue(ParamID id, TimeValue t, Texmap* v, int tabIndex) {
    const Entry* entry = Find(id, tabIndex);
    if (entry == nullptr || EntryType(*entry->def) != TYPE_TEXMAP) return FALSE;
    return SetValue(id, t, static_cast<ReferenceTarget*>(v), tabIndex);
}

BOOL ParamBlock::SetValue(ParamID id, TimeValue, ReferenceTarget* v, int tabIndex) {
    Entry* entry = Find(id, tabIndex);
    if (entry == nullptr) return FALSE;
    const int base = EntryType(*entry->def);
    const bool fits = base == TYPE_REFTARG || (base == TYPE_TEXMAP && (v == nullptr || v->SuperClassID() == TEXMAP_CLASS_ID));
    if (!fits || Refer(*entry, v) == FALSE) return FALSE;
    NotifyChange();
    return TRUE;
}

float ParamBlock::GetFloat(ParamID id, TimeValue t, int tabIndex) {
    float v = 0.0f;
    Interval valid = FOREVER;
    GetValue(id, t, v, valid, tabIndex);
    return v;
}

int ParamBlock::GetInt(ParamID id, TimeValue t, int tabIndex) {
    int v = 0;
    Interval valid = FOREVER;
    GetValue(id, t, v, valid, tabIndex);
    return v;
}

INode* ParamBlock::GetINode(ParamID id, TimeValue t, int tabIndex) {
    INode* v = nullptr;
    Interval valid = FOREVER;
    GetValue(id, t, v, valid, tabIndex);
    return v;
}

/// The one of its dependents that holds it where its table says: others may look at it too.
ReferenceMaker* ParamBlock::GetOwner() {
    for (ReferenceMaker* maker : Dependents()) {
        if (desc_.ref_no >= 0 && desc_.ref_no < maker->NumRefs() && maker->GetReference(desc_.ref_no) == this) return maker;
    }
    return nullptr;
}

IParamMap2* ParamBlock::GetMap(MapID map) { return OpenMap(*this, map); }

int ParamBlock::Count(ParamID id) {
    const Entry* entry = Find(id, 0);
    return entry == nullptr ? 0 : entry->def->tabSize;
}

bool ParamBlock::SetKeys(ParamID id, FloatKeys keys, int tabIndex) {
    Entry* entry = Find(id, tabIndex);
    if (entry == nullptr || !IsFloatType(EntryType(*entry->def)) || (entry->def->flags & P_ANIMATABLE) == 0) return false;
    const auto notRising = [](const auto& a, const auto& b) { return a.first >= b.first; };
    if (std::adjacent_find(keys.begin(), keys.end(), notRising) != keys.end()) return false;
    for (const auto& key : keys) {
        if (!std::isfinite(key.second)) return false;
    }
    entry->keys = std::move(keys);
    NotifyChange();
    return true;
}

const FloatKeys& ParamBlock::Keys(ParamID id, int tabIndex) const {
    static const FloatKeys kNone;
    const Entry* entry = Find(id, tabIndex);
    return entry == nullptr ? kNone : entry->keys;
}

RefTargetHandle ParamBlock::GetReference(int i) {
    if (i < 0 || i >= NumRefs()) return nullptr;
    return std::get<ReferenceTarget*>(entries_[std::size_t(referring_[std::size_t(i)])].value);
}

void ParamBlock::SetReference(int i, RefTargetHandle target) {
    if (i >= 0 && i < NumRefs()) entries_[std::size_t(referring_[std::size_t(i)])].value = target;
}

BOOL ParamBlock::Refer(const Entry& entry, ReferenceTarget* target) {
    return ReplaceReference(entry.reference, target) == REF_FAIL ? FALSE : TRUE;
}

/// Without a word to the dependents: whoever keeps a mere pointer doesn't want to hear of its node.
void ParamBlock::ForgetNode(INode* node) {
    for (Entry& entry : entries_) {
        if (EntryType(*entry.def) != TYPE_INODE || entry.reference >= 0) continue;
        auto& value = std::get<ReferenceTarget*>(entry.value);
        if (value != node) continue;
        value = nullptr;
        PanelChanged();
    }
}

/// Nodes are never cloned along with what points at them. Anything else is, if only this block refers to it.
RefTargetHandle ParamBlock::Clone(RemapDir& remap) {
    auto* copy = new ParamBlock(desc_);
    for (std::size_t i = 0; i < std::min(entries_.size(), copy->entries_.size()); ++i) {
        const Entry& entry = entries_[i];
        Entry& copied = copy->entries_[i];
        copied.keys = entry.keys;
        if (entry.reference < 0) {
            copied.value = entry.value;
            continue;
        }
        auto* target = std::get<ReferenceTarget*>(entry.value);
        if (target == nullptr) continue;
        const auto& users = target->Dependents();
        const bool ours = !IsNode(target) && std::all_of(users.begin(), users.end(), [&](auto* user) { return user == this; });
        ReferenceTarget* clone = ours ? remap.CloneRef(target) : remap.FindMapping(target);
        copy->Refer(copied, clone == nullptr ? target : clone);
    }
    copy->RemapNodePointers(remap);
    BaseClone(this, copy, remap);
    return copy;
}

void ParamBlock::RemapNodePointers(RemapDir& remap) {
    for (Entry& entry : entries_) {
        if (EntryType(*entry.def) != TYPE_INODE || entry.reference >= 0) continue;
        auto& value = std::get<ReferenceTarget*>(entry.value);
        ReferenceTarget* clone = value == nullptr ? nullptr : remap.FindMapping(value);
        if (clone != nullptr) value = clone;
    }
}

void ParamBlock::NotifyChange() {
    PanelChanged();
    NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
}

}  // namespace tavrik_host

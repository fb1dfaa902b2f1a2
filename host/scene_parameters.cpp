#include "host/scene_parameters.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/scene_axes.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

enum class Kind { Number, Whole, Node, Object, Frame, Unknown };

Kind KindOf(const ParamDef& def) {
    switch (def.type & ~TYPE_TAB) {
        case TYPE_FLOAT:
        case TYPE_WORLD:
            return Kind::Number;
        case TYPE_INT:
        case TYPE_BOOL:
            return Kind::Whole;
        case TYPE_INODE:
            return Kind::Node;
        case TYPE_TEXMAP:
        case TYPE_REFTARG:
            return Kind::Object;
        case TYPE_MATRIX3:
            return Kind::Frame;
        default:
            return Kind::Unknown;
    }
}

bool IsTable(const ParamDef& def) { return (def.type & TYPE_TAB) != 0; }

template <typename Value>
void CheckRange(Value value, Value low, Value high, Value standard, const ParamDef& def, const std::string& what) {
    if (!def.hasRange || (value >= low && value <= high)) return;
    if (def.hasDefault && !(standard >= low && standard <= high)) return;
    Refuse(fmt::format("{} is {}, but goes from {} to {}.", what, value, low, high));
}

void CheckNumber(float value, const ParamDef& def, const std::string& what) {
    if (!std::isfinite(value)) Refuse(fmt::format("{} is not a finite number.", what));
    CheckRange(value, def.rangeLow.f, def.rangeHigh.f, def.def.f, def, what);
}

void CheckWhole(int value, const ParamDef& def, const std::string& what) {
    CheckRange(value, def.rangeLow.i, def.rangeHigh.i, def.def.i, def, what);
}

FloatKeys ReadKeys(const Json& json, const ParamDef& def, const std::string& what) {
    if ((def.flags & P_ANIMATABLE) == 0) Refuse(fmt::format("{} can't have keys.", what));
    FloatKeys keys;
    for (const Json& key : ListOf(Need(json, "keys", what), "\"keys\" of " + what)) {
        ListOf(key, 2, "a key of " + what);
        const TimeValue tick = Int32(key[0], "the tick of a key of " + what);
        if (!keys.empty() && tick <= keys.back().first) Refuse(fmt::format("the keys of {} don't follow one another.", what));
        keys.emplace_back(tick, Single(key[1], "a key of " + what));
        CheckNumber(keys.back().second, def, "a key of " + what);
    }
    if (keys.empty()) Refuse(fmt::format("{} has an empty list of keys.", what));
    return keys;
}

EntryRecord ReadEntry(const Json& json, const ParamDef& def, std::size_t objects, const std::string& what) {
    EntryRecord entry;
    switch (KindOf(def)) {
        case Kind::Number:
            if (json.is_object()) {
                entry.keys = ReadKeys(json, def, what);
            } else {
                entry.number = Single(json, what);
                CheckNumber(entry.number, def, what);
            }
            break;
        case Kind::Whole:
            entry.whole = Int32(json, what);
            CheckWhole(entry.whole, def, what);
            break;
        case Kind::Node:
            if (!json.is_null()) entry.node = ULONG(WholeNumber(json, 1, 0xffffffff, what));
            break;
        case Kind::Object:
            if (!json.is_null()) entry.object = int(IndexInto(Need(json, "object", what), objects, "objects", what));
            break;
        case Kind::Frame:
            if (!json.is_null()) entry.frame = MatrixFromJson(json, what);
            break;
        case Kind::Unknown:
            Refuse(fmt::format("{} is of a type that a scene file can't hold.", what));
    }
    return entry;
}

/// The block of `thing` that was made from a table, or null.
IParamBlock2* BlockOf(ReferenceMaker& thing, const ParamBlockDesc2* desc) {
    for (int i = 0; i < thing.NumRefs(); ++i) {
        auto* const block = dynamic_cast<IParamBlock2*>(thing.GetReference(i));
        if (block != nullptr && (desc == nullptr || block->GetDesc() == desc)) return block;
    }
    return nullptr;
}

const FloatKeys& KeysOf(IParamBlock2& block, ParamID id, int entry) {
    static const FloatKeys kConstant;
    auto* const own = dynamic_cast<ParamBlock*>(&block);
    return own == nullptr ? kConstant : own->Keys(id, entry);
}

Json WriteNumber(IParamBlock2& block, const ParamDef& def, int entry, const std::string& what) {
    const FloatKeys& keys = KeysOf(block, def.ID, entry);
    if (keys.empty()) {
        const float value = block.GetFloat(def.ID, 0, entry);
        CheckNumber(value, def, what);
        return SingleToJson(value);
    }
    Json list = Json::array();
    for (const auto& [tick, value] : keys) {
        CheckNumber(value, def, "a key of " + what);
        list.push_back({tick, SingleToJson(value)});
    }
    return {{"keys", std::move(list)}};
}

Json WriteEntry(IParamBlock2& block, const ParamDef& def, int entry, const ReferenceNumbers& numbers, const std::string& what) {
    Interval valid = FOREVER;
    switch (KindOf(def)) {
        case Kind::Number:
            return WriteNumber(block, def, entry, what);
        case Kind::Whole: {
            const int value = block.GetInt(def.ID, 0, entry);
            CheckWhole(value, def, what);
            return value;
        }
        case Kind::Node: {
            INode* const node = block.GetINode(def.ID, 0, entry);
            return node == nullptr ? Json() : Json(numbers.node(*node));
        }
        case Kind::Object: {
            ReferenceTarget* target = nullptr;
            block.GetValue(def.ID, 0, target, valid, entry);
            if (target == nullptr) return {};
            return {{"object", numbers.object(*target)}};
        }
        case Kind::Frame: {
            Matrix3 frame;
            block.GetValue(def.ID, 0, frame, valid, entry);
            // A frame that was never set is all NaN.
            bool unset = true;
            for (int r = 0; r < 4; ++r) {
                for (int c = 0; c < 3; ++c) unset = unset && std::isnan(frame.GetRow(r)[c]);
            }
            return unset ? Json() : MatrixToJson(frame, what);
        }
        case Kind::Unknown:
            break;
    }
    Refuse(fmt::format("{} is of a type that a scene file can't hold.", what));
}

template <typename Set>
void ForEachEntry(ReferenceMaker& thing, const std::vector<ParamRecord>& parameters, Set set) {
    for (const ParamRecord& param : parameters) {
        IParamBlock2* const block = BlockOf(thing, param.block);
        if (block == nullptr) continue;
        for (std::size_t i = 0; i < param.entries.size(); ++i) set(*block, *param.def, param.entries[i], int(i));
    }
}

}  // namespace

Json MatrixToJson(const Matrix3& m, const std::string& what) {
    Json list = Json::array();
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 3; ++c) list.push_back(FiniteToJson(m.GetRow(r)[c], what));
    }
    return list;
}

Matrix3 MatrixFromJson(const Json& json, const std::string& what) {
    ListOf(json, 12, what);
    Matrix3 m(FALSE);
    for (int r = 0; r < 4; ++r) {
        const std::size_t at = std::size_t(r) * 3;
        m.SetRow(r, Point3(Single(json[at], what), Single(json[at + 1], what), Single(json[at + 2], what)));
    }
    return m;
}

std::vector<ParamRecord> ReadParameters(const Json& json, ClassDesc* desc, std::size_t objects, const std::string& thing) {
    std::vector<ParamRecord> parameters;
    auto* const blocks = dynamic_cast<ClassDesc2*>(desc);
    for (const auto& [name, value] : ObjectOf(json, "\"parameters\" of " + thing).items()) {
        ParamRecord record;
        if (blocks != nullptr) {
            for (const ParamBlockDesc2* block : blocks->Blocks()) {
                for (int i = 0; i < block->Count() && record.def == nullptr; ++i) {
                    if (ToUtf8(block->ParamAt(i).int_name) == name) record = {block, &block->ParamAt(i), {}};
                }
            }
        }
        if (record.def == nullptr) Refuse(fmt::format("{} has no parameter \"{}\".", thing, name.substr(0, 80)));
        const std::string what = fmt::format("\"{}\" of {}", name, thing);
        if (IsTable(*record.def)) {
            for (const Json& entry : ListOf(value, std::size_t(record.def->tabSize), what)) {
                record.entries.push_back(ReadEntry(entry, *record.def, objects, what));
            }
        } else {
            record.entries.push_back(ReadEntry(value, *record.def, objects, what));
        }
        parameters.push_back(std::move(record));
    }
    return parameters;
}

Json WriteParameters(ReferenceMaker& thing, const ReferenceNumbers& numbers, const std::string& name) {
    Json json = Json::object();
    for (int i = 0; i < thing.NumRefs(); ++i) {
        auto* const block = dynamic_cast<IParamBlock2*>(thing.GetReference(i));
        if (block == nullptr) continue;
        const ParamBlockDesc2& desc = *block->GetDesc();
        for (int p = 0; p < desc.Count(); ++p) {
            const ParamDef& def = desc.ParamAt(p);
            const std::string paramName = ToUtf8(def.int_name);
            const std::string what = fmt::format("\"{}\" of {}", paramName, name);
            if (!IsTable(def)) {
                json[paramName] = WriteEntry(*block, def, 0, numbers, what);
                continue;
            }
            Json list = Json::array();
            for (int entry = 0; entry < block->Count(def.ID); ++entry) {
                list.push_back(WriteEntry(*block, def, entry, numbers, what));
            }
            json[paramName] = std::move(list);
        }
    }
    return json;
}

void SetPlainParameters(ReferenceMaker& thing, const std::vector<ParamRecord>& parameters,
                        const std::vector<ReferenceTarget*>& objects, const std::string& name) {
    ForEachEntry(thing, parameters, [&](IParamBlock2& block, const ParamDef& def, const EntryRecord& entry, int tab) {
        BOOL set = TRUE;
        switch (KindOf(def)) {
            case Kind::Number:
                if (entry.keys.empty()) {
                    set = block.SetValue(def.ID, 0, entry.number, tab);
                } else {
                    auto* const own = dynamic_cast<ParamBlock*>(&block);
                    set = own != nullptr && own->SetKeys(def.ID, entry.keys, tab) ? TRUE : FALSE;
                }
                break;
            case Kind::Whole:
                set = block.SetValue(def.ID, 0, int(entry.whole), tab);
                break;
            case Kind::Object: {
                ReferenceTarget* const target = entry.object == kNone ? nullptr : objects[std::size_t(entry.object)];
                set = block.SetValue(def.ID, 0, target, tab);
                break;
            }
            case Kind::Frame: {
                Matrix3 frame = entry.frame.value_or(Matrix3());
                if (entry.frame) set = block.SetValue(def.ID, 0, frame, tab);
                break;
            }
            case Kind::Node:
            case Kind::Unknown:
                break;
        }
        if (set == FALSE) Refuse(fmt::format("\"{}\" of {} didn't take its value.", ToUtf8(def.int_name), name));
    });
}

void SetNodeParameters(ReferenceMaker& thing, const std::vector<ParamRecord>& parameters) {
    ForEachEntry(thing, parameters, [&](IParamBlock2& block, const ParamDef& def, const EntryRecord& entry, int tab) {
        if (KindOf(def) != Kind::Node) return;
        INode* const node = entry.node == 0 ? nullptr : GetCOREInterface()->GetINodeByHandle(entry.node);
        block.SetValue(def.ID, 0, node, tab);
    });
}

}  // namespace tavrik_host

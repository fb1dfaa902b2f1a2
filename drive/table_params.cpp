#include "drive/table_params.h"

#include <cassert>

namespace tavrik {

TableParams::TableParams(const ParamTable& table) {
    for (const ParamRow& row : table.rows) {
        switch (row.type) {
            case ParamType::Float:
            case ParamType::World:
            case ParamType::WorldTable:
                floats_[row.id] = row.hasDefault ? float(row.defaultValue) : 0.0f;
                break;
            case ParamType::Int:
            case ParamType::Bool:
                ints_[row.id] = row.hasDefault ? std::int32_t(row.defaultValue) : 0;
                break;
            default:
                break;  // nodes, maps and frames need a scene
        }
    }
}

float TableParams::GetFloat(std::int32_t id) const {
    assert(floats_.contains(id));
    return floats_.at(id);
}

std::int32_t TableParams::GetInt(std::int32_t id) const {
    assert(ints_.contains(id));
    return ints_.at(id);
}

void TableParams::SetFloat(std::int32_t id, float value) {
    assert(floats_.contains(id));
    floats_[id] = value;
}

void TableParams::SetInt(std::int32_t id, std::int32_t value) {
    assert(ints_.contains(id));
    ints_[id] = value;
}

}  // namespace tavrik

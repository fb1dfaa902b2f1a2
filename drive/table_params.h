#pragma once

#include <map>

#include "drive/param_block.h"
#include "rig/parameter_tables.h"

namespace tavrik {

/// The parameters of one object as plain values, for programs without a scene. They start as a new object's do; a parameter
/// without a default starts at 0.
class TableParams final : public ParamBlock {
 public:
    explicit TableParams(const ParamTable& table);

    /// The number must be one of the table's (asserted); a float is asked of a float and an integer of an integer.
    float GetFloat(std::int32_t id) const override;
    std::int32_t GetInt(std::int32_t id) const override;
    void SetFloat(std::int32_t id, float value) override;
    void SetInt(std::int32_t id, std::int32_t value) override;

 private:
    std::map<std::int32_t, float> floats_;
    std::map<std::int32_t, std::int32_t> ints_;
};

}  // namespace tavrik

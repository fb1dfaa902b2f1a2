#pragma once

#include <cstdint>

namespace tavrik {

/// The parameters of one object at time 0, by number. Values are stored as they are given, not clamped to their ranges.
class ParamBlock {
 public:
    virtual ~ParamBlock() = default;
    virtual float GetFloat(std::int32_t id) const = 0;
    virtual std::int32_t GetInt(std::int32_t id) const = 0;
    virtual void SetFloat(std::int32_t id, float value) = 0;
    virtual void SetInt(std::int32_t id, std::int32_t value) = 0;
};

}  // namespace tavrik

#pragma once
/// Values of parameter blocks by number, as our tables number them. A block that is gone answers 0 and takes nothing.

#include <iparamb2.h>
#include <max.h>

#include "drive/param_block.h"

namespace tavrik_plugin {

inline float FloatOf(IParamBlock2* block, int id, TimeValue t = 0, int entry = 0) {
    float value = 0.0f;
    Interval valid = FOREVER;
    if (block != nullptr) block->GetValue(ParamID(id), t, value, valid, entry);
    return value;
}

inline int IntOf(IParamBlock2* block, int id, TimeValue t = 0) {
    int value = 0;
    Interval valid = FOREVER;
    if (block != nullptr) block->GetValue(ParamID(id), t, value, valid);
    return value;
}

inline INode* NodeOf(IParamBlock2* block, int id, TimeValue t = 0) {
    INode* value = nullptr;
    Interval valid = FOREVER;
    if (block != nullptr) block->GetValue(ParamID(id), t, value, valid);
    return value;
}

inline void SetFloat(IParamBlock2* block, int id, float value, int entry = 0) {
    if (block != nullptr) block->SetValue(ParamID(id), 0, value, entry);
}

inline void SetInt(IParamBlock2* block, int id, int value) {
    if (block != nullptr) block->SetValue(ParamID(id), 0, value);
}

/// The block of some object for those who know no host.
class BlockParams final : public tavrik::ParamBlock {
 public:
    /// @param block  the object's own pointer, which may change; outlives this
    explicit BlockParams(IParamBlock2*& block) : block_(block) {}
    float GetFloat(std::int32_t id) const override { return FloatOf(block_, id); }
    std::int32_t GetInt(std::int32_t id) const override { return IntOf(block_, id); }
    void SetFloat(std::int32_t id, float value) override { tavrik_plugin::SetFloat(block_, id, value); }
    void SetInt(std::int32_t id, std::int32_t value) override { tavrik_plugin::SetInt(block_, id, value); }

 private:
    IParamBlock2*& block_;
};

}  // namespace tavrik_plugin

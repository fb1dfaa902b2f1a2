#include "tests/sdk/test_target.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace tavrik_host::test {

int TestTarget::Count(RefMessage message) const {
    return int(std::count_if(heard.begin(), heard.end(), [&](const Heard& one) { return one.message == message; }));
}

RefResult TestTarget::NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) {
    heard.push_back({hTarget, message});
    return answer ? answer(hTarget, message) : REF_SUCCEED;
}

RefTargetHandle TestTarget::Clone(RemapDir& remap) {
    auto* const copy = new TestTarget;
    for (int i = 0; i < 4; ++i) copy->ReplaceReference(i, i < 2 ? remap.CloneRef(targets[i]) : targets[i]);
    BaseClone(this, copy, remap);
    return copy;
}

RefTargetHandle TestObject::Clone(RemapDir& remap) {
    auto* const copy = new TestObject;
    copy->ReplaceReference(0, node_);
    BaseClone(this, copy, remap);
    return copy;
}

bool SameBits(const Matrix3& a, const Matrix3& b) {
    for (int row = 0; row < 4; ++row) {
        const Point3 p = a.GetRow(row), q = b.GetRow(row);
        for (int i = 0; i < 3; ++i) {
            if (std::bit_cast<std::uint32_t>(p[i]) != std::bit_cast<std::uint32_t>(q[i])) return false;
        }
    }
    return true;
}

}  // namespace tavrik_host::test

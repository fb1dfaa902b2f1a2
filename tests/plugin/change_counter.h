#pragma once

#include "host/sdk/maxapi.h"

namespace plugin_test {

/// Counts how often a target says that it has changed.
class ChangeCounter final : public ReferenceMaker {
 public:
    explicit ChangeCounter(ReferenceTarget* target) { ReplaceReference(0, target); }
    ~ChangeCounter() override { DeleteAllRefsFromMe(); }
    int changes = 0;
    SClass_ID SuperClassID() override { return 0; }
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return target_; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage message, BOOL) override {
        if (message == REFMSG_CHANGE) ++changes;
        return REF_SUCCEED;
    }

 protected:
    void SetReference(int, RefTargetHandle target) override { target_ = target; }

 private:
    RefTargetHandle target_ = nullptr;
};

}  // namespace plugin_test

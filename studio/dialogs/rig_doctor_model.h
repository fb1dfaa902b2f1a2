#pragma once
/// The doctor of the open scene: what it has found, and what it mends.

#include <QString>
#include <vector>

#include "studio/dialogs/doctor_mends.h"

namespace tavrik_studio {

class RigDoctor {
 public:
    explicit RigDoctor(Editor& editor) : editor_(editor) {}

    /// Looks at the scene; nothing in it is changed. @param problem  on false: one sentence, and nothing was found
    bool Look(QString& problem);
    const std::vector<Ailment>& Ailments() const { return ailments_; }
    /// "2 errors, 1 warning: this will not drive as it is."
    QString Summary() const;
    /// Mends one of them as one step and looks again. What doesn't help is taken back.
    /// @param problem  on false: one sentence
    bool Mend(std::size_t which, QString& problem);
    void Forget() { ailments_.clear(); }

 private:
    Editor& editor_;
    std::vector<Ailment> ailments_;
};

}  // namespace tavrik_studio

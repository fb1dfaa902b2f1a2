#pragma once
/// What a machine can mend of what the doctor finds, without guessing what the artist meant.

#include <QString>
#include <vector>

#include "host/scene_doctor.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

/// A finding that outlives the look at the scene: nodes by handle, 0 for none.
struct Ailment {
    tavrik::Severity severity = tavrik::Severity::Warning;
    tavrik::FindingKind kind = tavrik::FindingKind::NoMaster;
    ULONG node = 0, other = 0;
    double found = 0.0, limit = 0.0;
    QString sentence;
    QString mend;  // what a button would do, such as "Clear the Link"; empty: that is left to the artist
};

/// @param findings  of the scene as it is
std::vector<Ailment> AilmentsOf(const std::vector<tavrik::Finding>& findings);

/// Does what `ailment.mend` says. To be called within a change.
/// @param problem  on false: one sentence
bool ApplyMend(Editor& editor, const Ailment& ailment, QString& problem);

/// Whether `ailment` is among these.
bool IsAmong(const std::vector<Ailment>& ailments, const Ailment& ailment);

}  // namespace tavrik_studio

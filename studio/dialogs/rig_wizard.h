#pragma once
/// What the wizard for cars does, without its window.

#include <QString>
#include <filesystem>
#include <vector>

#include "host/rig_job.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

/// What a user may decide otherwise.
struct RigWishes {
    QString name;                  // empty: the file's
    std::filesystem::path places;  // of parts, in a file; empty: none
    tavrik::WizardOptions options;
};

/// "1, 3", "none", or nothing for what is found out. @param problem  on false: one sentence
bool ParseAxles(const QString& words, std::optional<std::vector<int>>& axles, QString& problem);

/// One row of the tables.
struct RigDecision {
    QString key, value, why;
};
struct RigWheelRow {
    QString wheel, load, frequency, damping, suspension;  // kg, Hz, ratio
};

class RigWizard {
 public:
    /// Reads a model, which can then be planned again and again.
    /// @param problem  on false: one sentence; there is no model then
    bool Read(const std::filesystem::path& model, tavrik::UpAxis up, QString& problem);
    /// Plans the cars of the model. @param problem  on false: one sentence; there is no plan then
    bool Plan(const RigWishes& wishes, QString& problem);
    bool IsRead() const { return isRead_; }
    bool IsPlanned() const { return isPlanned_; }

    /// Of the plan: the names of its vehicles, and what was decided about one of them.
    std::vector<QString> Vehicles() const;
    std::vector<RigDecision> Decisions(std::size_t vehicle) const;
    std::vector<RigWheelRow> Wheels(std::size_t vehicle) const;
    /// What of the model's looks couldn't be had.
    std::vector<QString> Missed() const;

    /// Puts the planned cars into the scene, as one step.
    /// @param ground   null: a sample ground is added
    /// @param problem  on false: one sentence; the scene stays as it was
    bool PutInto(Editor& editor, INode* ground, QString& problem) const;

 private:
    tavrik_host::RigJob job_;
    bool isRead_ = false, isPlanned_ = false;
};

}  // namespace tavrik_studio

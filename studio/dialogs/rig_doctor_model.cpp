#include "studio/dialogs/rig_doctor_model.h"

#include <QCoreApplication>
#include <algorithm>

#include "host/rig_objects.h"
#include "studio/dialogs/dialog_parts.h"

namespace tavrik_studio {
namespace {

struct DoctorTexts {
    Q_DECLARE_TR_FUNCTIONS(DoctorTexts)
};

QString Errors(int count) { return count == 1 ? DoctorTexts::tr("1 error") : DoctorTexts::tr("%1 errors").arg(count); }
QString Warnings(int count) { return count == 1 ? DoctorTexts::tr("1 warning") : DoctorTexts::tr("%1 warnings").arg(count); }

}  // namespace

bool RigDoctor::Look(QString& problem) {
    ailments_.clear();
    tavrik_host::SceneDiagnosis diagnosis;
    std::string fault;
    if (!ExamineOpenScene(diagnosis, fault)) {
        problem = Text(fault);
        return false;
    }
    ailments_ = AilmentsOf(diagnosis.findings);
    return true;
}

QString RigDoctor::Summary() const {
    if (ailments_.empty()) {
        return tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik).size() == 1
                   ? DoctorTexts::tr("Nothing will go wrong with the car.")
                   : DoctorTexts::tr("Nothing will go wrong with the cars.");
    }
    const auto isError = [](const Ailment& ailment) { return ailment.severity == tavrik::Severity::Error; };
    const int errors = int(std::ranges::count_if(ailments_, isError)), warnings = int(ailments_.size()) - errors;
    if (errors == 0) return DoctorTexts::tr("%1: it will drive.").arg(Warnings(warnings));
    const QString counts = warnings == 0 ? Errors(errors) : Errors(errors) + ", " + Warnings(warnings);
    return DoctorTexts::tr("%1: this will not drive as it is.").arg(counts);
}

bool RigDoctor::Mend(std::size_t which, QString& problem) {
    const Ailment ailment = ailments_.at(which);
    bool done = false;
    {
        Change change(editor_, ailment.mend);
        done = ApplyMend(editor_, ailment, problem) && Look(problem);
        if (done && IsAmong(ailments_, ailment)) {
            problem = DoctorTexts::tr("It can't be mended here, since something else holds it: a motion with keys, or a lock.");
            done = false;
        }
        if (done) change.Keep();
    }
    if (done) {
        editor_.TouchNodes();
        return true;
    }
    QString fault;  // the first one tells more
    Look(fault);
    return false;
}

}  // namespace tavrik_studio

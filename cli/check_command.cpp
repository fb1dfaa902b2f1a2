#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "host/rig_objects.h"
#include "host/scene_doctor.h"

namespace tavrik_cli {
namespace {

using tavrik::Finding;
using tavrik::Severity;

bool IsError(const Finding& finding) { return finding.severity == Severity::Error; }

std::string Count(std::ptrdiff_t count, const char* what) { return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s"); }

void PrintFindings(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        fmt::print("{:<9} {}\n", IsError(finding) ? "Error" : "Warning", finding.sentence);
    }
    const std::ptrdiff_t errors = std::ranges::count_if(findings, IsError), all = std::ssize(findings);
    if (all == 0) {
        const std::size_t cars = tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik).size();
        fmt::print("Checked   nothing will go wrong with {}\n", cars == 1 ? "the car" : Count(std::ptrdiff_t(cars), "car"));
        return;
    }
    fmt::print("Checked   {}, {}: {}\n", Count(errors, "error"), Count(all - errors, "warning"),
               errors > 0 ? "this will not drive as it is" : "it will drive");
}

bool Check(const tavrik::CheckOrder& order, bool& drives, std::string& problem) {
    tavrik_host::SceneDocument document;
    tavrik_host::SceneDiagnosis diagnosis;
    if (!OpenScene(order.scene, document, problem) || !ExamineOpenScene(diagnosis, problem)) return false;
    PrintFindings(diagnosis.findings);
    drives = !StopsDrive(diagnosis.findings);
    return true;
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunCheck(const CheckOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    bool drives = false;
    std::string problem;
    if (!tavrik_cli::Check(order, drives, problem)) return tavrik_cli::Fail(problem);
    return drives ? kExitOk : kExitBadInput;
}

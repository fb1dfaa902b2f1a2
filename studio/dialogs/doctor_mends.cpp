#include "studio/dialogs/doctor_mends.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <optional>

#include "host/car_placement.h"
#include "host/ground_node.h"
#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "host/scene_rig.h"
#include "host/sdk/desktop.h"
#include "rig/assembly_report.h"
#include "rig/node_values.h"
#include "rig/parameter_tables.h"
#include "studio/dialogs/dialog_parts.h"
#include "studio/dialogs/scene_grounds.h"

namespace tavrik_studio {
namespace {

using tavrik::DMatrix3;
using tavrik::DPoint3;
using tavrik::FindingKind;
using tavrik::MasterParam;
using tavrik::ObjectClass;
using tavrik_host::SceneView;

struct MendTexts {
    Q_DECLARE_TR_FUNCTIONS(MendTexts)
};

INode* NodeOf(ULONG handle) { return handle != 0 ? GetCOREInterface()->GetINodeByHandle(handle) : nullptr; }

ULONG HandleOf(tavrik::SceneNode* node) { return node != nullptr ? SceneView::HostNode(*node).GetHandle() : 0; }

// ----------------------------------------------------------------------------------------------------------------- the cars

/// The cars as an assembly would find them.
class Cars {
 public:
    Cars() {
        for (INode* const master : tavrik_host::NodesOf(ObjectClass::Tavrik)) {
            rigs_.push_back(std::make_unique<tavrik::CarRig>());
            view.SetRig(*master, *rigs_.back());
            tavrik::SceneNode& node = view.Of(*master);
            found_.push_back({master, ReportAssembly(*rigs_.back(), view.Root(), node, ReadBoxSize(node))});
        }
    }

    struct Car {
        INode* master;
        tavrik::AssemblyReport report;
    };
    /// The car of a master or of a part in its box; of several boxes, the last, which takes the part.
    const Car* With(INode& node) const {
        const Car* found = nullptr;
        for (const Car& car : found_) {
            const auto isIt = [&node](const tavrik::FoundComponent& part) { return &SceneView::HostNode(*part.node) == &node; };
            if (car.master == &node || std::ranges::any_of(car.report.components, isIt)) found = &car;
        }
        return found;
    }

    SceneView view;

 private:
    std::vector<std::unique_ptr<tavrik::CarRig>> rigs_;
    std::vector<Car> found_;
};

/// What stands on the ground, and where it starts.
struct Stance {
    std::vector<DPoint3> wheels;  // at rest, in chassis space
    double height = 0.0;          // of the chassis above a level ground
    DMatrix3 start;
    float length = 0.0f;  // of the chassis
};

std::optional<Stance> StanceOf(const Cars::Car& car) {
    const tavrik::SceneNode* chassis = nullptr;
    for (const tavrik::FoundComponent& part : car.report.components) {
        if (part.objectClass == ObjectClass::Chassis && chassis == nullptr) chassis = part.node;
    }
    if (chassis == nullptr || car.report.pairs.empty()) return std::nullopt;
    Stance stance;
    stance.length = chassis->GetFloat(tavrik::ChassisParam::Length);
    stance.start = tavrik::FromMatrix3(chassis->GetObjectTM());
    for (const tavrik::MatchedPair& pair : car.report.pairs) {
        const tavrik::Matrix3 inChassis = pair.suspension->GetObjectTM() * Inverse(chassis->GetObjectTM());
        stance.wheels.push_back(tavrik::FromPoint3(inChassis.row[3]));
        const double height = double(pair.wheel->GetFloat(tavrik::WheelParam::Radius)) - stance.wheels.back().z;
        stance.height = stance.wheels.size() == 1 ? height : std::max(stance.height, height);
    }
    return stance;
}

// ------------------------------------------------------------------------------------------------------------- the remedies

bool StandOnItsGround(const Ailment& ailment, QString& problem) {
    INode* const node = NodeOf(ailment.node);
    Cars cars;
    const Cars::Car* const car = node != nullptr ? cars.With(*node) : nullptr;
    std::optional<Stance> stance = car != nullptr ? StanceOf(*car) : std::nullopt;
    INode* const ground = car != nullptr ? tavrik_host::NodeParam(*car->master, MasterParam::Surface_Node) : nullptr;
    if (!stance || ground == nullptr) return false;
    INode* start = tavrik_host::NodeParam(*car->master, MasterParam::Start_Node);
    if (start != nullptr) stance->start = tavrik::FromMatrix3(cars.view.Of(*start).GetObjectTM());

    const DPoint3 ahead = stance->start.row[1], place = stance->start.row[3];
    const tavrik::CarSpot spot{place.x, place.y, std::atan2(ahead.x, ahead.y) * 180.0 / std::numbers::pi};
    tavrik::SurfaceTree surface;
    DMatrix3 frame;
    std::string fault;
    if (!tavrik_host::BuildGround(*ground, NameOf(*ground).toStdString(), surface, fault) ||
        !StandOnGround(surface, spot, stance->wheels, stance->height, frame, fault)) {
        problem = Text(fault);
        return false;
    }
    constexpr double kElsewhere = 100.0;  // further than slopes and springs explain
    if (std::abs(frame.row[3].z - place.z) > std::abs(ailment.found) + kElsewhere) {
        problem = MendTexts::tr("There is more than one ground at that place; move the start by hand.");
        return false;
    }
    Matrix3 standing = tavrik_host::SceneFrame(frame);
    if (start == nullptr) {
        start = &tavrik_host::AddRigNode(ObjectClass::Start, standing);
        tavrik_host::SetParam(*start, tavrik::StartParam::Size, stance->length);
        tavrik_host::SetParam(*car->master, MasterParam::Start_Node, start);
    }
    start->SetNodeTM(0, standing);
    return true;
}

/// The same axes at length 1; where `unmirror`, one of them is turned round. @return false where one has no direction
bool UnitFrame(INode& node, DMatrix3& frame, bool unmirror) {
    for (int i = 0; i < 3; ++i) {
        const double length = Length(frame.row[i]);
        if (!(length > 1e-9) || !std::isfinite(length)) return false;
        frame.row[i] = frame.row[i] * (1.0 / length);
    }
    const bool isMirrored = Dot(Cross(frame.row[0], frame.row[1]), frame.row[2]) < 0.0;
    // What decides about a part stays: where a suspension travels and where its wheel is; ahead and up for all others.
    const int turned = tavrik_host::ClassOf(node) == ObjectClass::Suspension ? 1 : 0;
    if (isMirrored && unmirror) frame.row[turned] = -frame.row[turned];
    return true;
}

/// What hangs below keeps its place in the world: the artist sees it where it is.
bool ResetScale(const Ailment& ailment, QString& problem) {
    INode* const node = NodeOf(ailment.node);
    if (node == nullptr) return false;
    SceneView view;
    DMatrix3 frame = tavrik::FromMatrix3(view.Of(*node).GetObjectTM());
    if (!UnitFrame(*node, frame, ailment.kind == FindingKind::MirroredNode)) {
        problem = MendTexts::tr("An axis of \"%1\" has no length, so nothing tells where it pointed.").arg(NameOf(*node));
        return false;
    }
    std::vector<std::pair<INode*, Matrix3>> children;
    for (int i = 0; i < node->NumberOfChildren(); ++i) {
        INode* const child = node->GetChildNode(i);
        if (!tavrik_host::HasTavrikControl(*child)) children.emplace_back(child, child->GetNodeTM(0));
    }
    Matrix3 unit = tavrik_host::SceneFrame(frame);
    node->SetNodeTM(0, unit);
    for (auto& [child, place] : children) child->SetNodeTM(0, place);
    return true;
}

bool ClearLink(const Ailment& ailment, std::int32_t param) {
    INode* const node = NodeOf(ailment.node);
    if (node != nullptr) tavrik_host::SetParam(*node, param, static_cast<INode*>(nullptr));
    return node != nullptr;
}

bool PickOnlyMaster(const Ailment& ailment) {
    INode* const push = NodeOf(ailment.node);
    const std::vector<INode*> masters = tavrik_host::NodesOf(ObjectClass::Tavrik);
    if (push == nullptr || masters.size() != 1) return false;
    tavrik_host::SetParam(*push, tavrik::PushParam::Tavrik, masters.front());
    return true;
}

bool PickOnlyGround(const Ailment& ailment) {
    INode* const master = NodeOf(ailment.node);
    const std::vector<INode*> grounds = GroundNodes();
    if (master == nullptr || grounds.size() != 1) return false;
    tavrik_host::SetParam(*master, MasterParam::Surface_Node, grounds.front());
    return true;
}

bool LockTongue(Editor& editor, const Ailment& ailment) {
    INode* const tongue = NodeOf(ailment.other);
    if (tongue == nullptr || tavrik::TheDesktop().windows == nullptr) return false;
    INode* master = nullptr;
    {
        const Cars cars;
        if (const Cars::Car* const car = cars.With(*tongue)) master = car->master;
    }
    if (master == nullptr) return false;
    const std::vector<INode*> selection = editor.Selection();
    editor.Select(nullptr);  // whoever shows the pages of another node lets go of them first
    tavrik_host::MasterPanel(*master).LockComponents();
    editor.Select(selection);
    return true;
}

bool Same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

/// The parameter is told by its value and by the end that it passes.
bool ClampParameter(const Ailment& ailment) {
    INode* const node = NodeOf(ailment.node);
    const tavrik::ClassIdentity* const identity = node != nullptr ? tavrik::FindClass(tavrik_host::ClassOf(*node)) : nullptr;
    const tavrik::ParamTable* const table = identity != nullptr ? tavrik::FindParamTable(identity->objectClass) : nullptr;
    if (table == nullptr) return false;
    for (const tavrik::ParamRow& row : table->rows) {
        if (!row.hasRange || (ailment.limit != row.low && ailment.limit != row.high)) continue;
        if (row.type == tavrik::ParamType::Int) {
            if (!Same(double(tavrik_host::IntParam(*node, row.id)), ailment.found)) continue;
            tavrik_host::SetParam(*node, row.id, std::int32_t(ailment.limit));
            return true;
        }
        if (row.type == tavrik::ParamType::Bool) continue;
        for (int i = 0; i < row.entries; ++i) {
            if (!Same(double(tavrik_host::FloatParam(*node, row.id, i)), ailment.found)) continue;
            tavrik_host::SetParam(*node, row.id, float(ailment.limit), i);
            return true;
        }
    }
    return false;
}

QString MendText(const Ailment& ailment) {
    switch (ailment.kind) {
        case FindingKind::ScaledNode:
        case FindingKind::MirroredNode:
            return MendTexts::tr("Reset the Scale");
        case FindingKind::OutOfRange:
            return MendTexts::tr("Set to %1").arg(QLocale().toString(ailment.limit, 'g', 6));
        case FindingKind::NoGroundPicked:
            return GroundNodes().size() == 1 ? MendTexts::tr("Pick \"%1\"").arg(NameOf(*GroundNodes().front())) : QString();
        case FindingKind::WheelBelowGround:
        case FindingKind::StartInAir:
            return MendTexts::tr("Stand It on the Ground");
        case FindingKind::HitchToNoTongue:
        case FindingKind::HitchToItself:
            return MendTexts::tr("Clear the Link");
        case FindingKind::HitchUnlocked:
            return tavrik::TheDesktop().windows != nullptr ? MendTexts::tr("Lock Its Car") : QString();
        case FindingKind::PushNowhere: {
            const std::vector<INode*> masters = tavrik_host::NodesOf(ObjectClass::Tavrik);
            return masters.size() == 1 ? MendTexts::tr("Pick \"%1\"").arg(NameOf(*masters.front())) : QString();
        }
        default:
            return {};
    }
}

bool Apply(Editor& editor, const Ailment& ailment, QString& problem) {
    switch (ailment.kind) {
        case FindingKind::ScaledNode:
        case FindingKind::MirroredNode:
            return ResetScale(ailment, problem);
        case FindingKind::OutOfRange:
            return ClampParameter(ailment);
        case FindingKind::NoGroundPicked:
            return PickOnlyGround(ailment);
        case FindingKind::WheelBelowGround:
        case FindingKind::StartInAir:
            return StandOnItsGround(ailment, problem);
        case FindingKind::HitchToNoTongue:
        case FindingKind::HitchToItself:
            return ClearLink(ailment, tavrik::HitchParam::Connection_Node);
        case FindingKind::HitchUnlocked:
            return LockTongue(editor, ailment);
        case FindingKind::PushNowhere:
            return PickOnlyMaster(ailment);
        default:
            return false;
    }
}

}  // namespace

std::vector<Ailment> AilmentsOf(const std::vector<tavrik::Finding>& findings) {
    std::vector<Ailment> ailments;
    for (const tavrik::Finding& finding : findings) {
        Ailment ailment{finding.severity, finding.kind,  HandleOf(finding.node), HandleOf(finding.other),
                        finding.found,    finding.limit, Text(finding.sentence), {}};
        ailment.mend = MendText(ailment);
        const bool isHarmless = finding.kind == FindingKind::DegenerateFaces || finding.kind == FindingKind::DuplicateFaces;
        if (isHarmless) ailment.sentence += " " + MendTexts::tr("It is harmless to a drive.");
        ailments.push_back(std::move(ailment));
    }
    return ailments;
}

bool ApplyMend(Editor& editor, const Ailment& ailment, QString& problem) {
    problem.clear();
    if (Apply(editor, ailment, problem)) return true;
    if (problem.isEmpty()) problem = MendTexts::tr("The scene isn't what it was any more; look again.");
    return false;
}

bool IsAmong(const std::vector<Ailment>& ailments, const Ailment& ailment) {
    return std::ranges::any_of(ailments, [&ailment](const Ailment& one) {
        const bool isValue = one.kind == FindingKind::OutOfRange;
        return one.kind == ailment.kind && one.node == ailment.node && one.other == ailment.other &&
               (!isValue || (Same(one.found, ailment.found) && one.limit == ailment.limit));
    });
}

}  // namespace tavrik_studio

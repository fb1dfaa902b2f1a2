#pragma once
/// What will go wrong with the cars of a scene, told before anybody drives them. Pure rules: whoever has a scene supplies its
/// nodes and what their meshes tell.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "rig/assembly_report.h"
#include "solver/double_maths.h"

namespace tavrik {

/// An error keeps a drive from starting, ends it early, or leaves behind a part that was meant to come along. With warnings a
/// drive goes, though perhaps not as the artist thinks.
enum class Severity : std::uint8_t { Warning, Error };

enum class FindingKind : std::uint8_t {
    NoMaster,
    SharedParts,  // node and other: two masters; found: how many parts stand in both boxes
    // What assembly leaves out; `found` and `limit` as in the report's records.
    NoCar,              // no chassis in the box, or one that is scaled to nothing
    TooManyParts,       // more of one class than a car can hold
    OutsideBox,         // a part in no master's box
    FurtherChassis,     // other: the chassis that is used
    WheelLeftOut,       // other: the suspension it comes nearest to, if any
    SuspensionLeftOut,  // other: the wheel it comes nearest to, if any
    SuspensionShared,   // other: the suspension
    NoUnits,            // a car without any wheel on a suspension
    // Places of nodes.
    ScaledNode,   // found: the length of the axis that is furthest from 1
    ShearedNode,  // found: the product of two axes that ought to be 0
    MirroredNode,
    WheelMeshOff,  // found: how far the mesh's middle is from the axle; limit
    // Parameters.
    OutOfRange,  // found: the value; limit: the end of the range that it passes
    NothingDriven,
    NothingSteered,
    TooStiff,  // found: the strain of a step; limit: what it should stay below
    // Ground and start.
    NoGroundPicked,
    GroundWithoutMesh,
    GroundEmpty,
    GroundRefused,     // it can't be built
    DegenerateFaces,   // found: how many
    DuplicateFaces,    // found: how many
    NoGroundBelow,     // node: a wheel, or the master where it holds for all of them
    WheelBelowGround,  // found: how deep
    StartInAir,        // found: how high the lowest wheel hangs
    GroundMoved,       // found: second of the recording from which it no longer fits the ground
    // Couplings and pushes.
    HitchToNoTongue,  // other: what it is connected to
    HitchUnlocked,    // other: the tongue, which is locked to no master
    HitchToItself,    // both ends on one car
    HitchFar,         // other: the tongue; found: distance
    PushNowhere,      // a push that names no master
};

/// One thing that will go wrong.
struct Finding {
    Severity severity;
    FindingKind kind;
    SceneNode* node;  // null for the scene as a whole
    SceneNode* other = nullptr;
    double found = 0.0;  // lengths in scene units
    double limit = 0.0;
    std::string sentence;  // what, why, and the remedy
};

/// The ground straight below and above a point: heights, world. Empty where there is none.
struct GroundSides {
    std::optional<double> below, above;
};

/// What is known of the ground that one master has picked.
struct GroundFacts {
    enum class State : std::uint8_t { Whole, NonePicked, NoMesh, Empty, Refused };
    State state = State::NonePicked;
    SceneNode* node = nullptr;
    std::string problem;                               // of Refused, without a full stop
    std::size_t degenerate = 0;                        // faces without an area
    std::size_t duplicates = 0;                        // faces on the corners of an earlier one
    std::function<GroundSides(const DPoint3&)> sides;  // of Whole
};

/// One spring or damper against the solver's step.
struct StepStrain {
    SceneNode* node;    // whose parameter it is
    std::string what;   // such as "tyre's damping"
    std::string param;  // the parameter to lower
    double found;       // dt * sqrt(k / m) or dt * c / m
    double limit;       // what leaves room
    double breaks;      // what no step survives
};

struct CarFacts {
    SceneNode* master;  // answers with its rig; the recording in it is that of the scene
    GroundFacts ground;
    std::vector<StepStrain> strains;
};

/// The middle of all meshes that hang under a wheel, in the wheel's axes.
struct WheelMesh {
    SceneNode* wheel;
    Point3 middle;
};

struct SceneFacts {
    SceneNode& root;
    std::vector<CarFacts> cars;  // all masters, in the order of the scene
    std::vector<WheelMesh> wheelMeshes;
    std::int32_t ticksPerFrame = 160;
    std::function<std::string(const SceneNode&)> name;
};

/// Looks at everything as a drive from the start would find it: nodes show where their own controllers put them, whatever is
/// recorded. The scene's own faults come first, then each car's. Nothing is different afterwards; meanwhile the recordings are
/// set aside, and nobody else may ask for them.
std::vector<Finding> ExamineScene(const SceneFacts& facts);

/// Whether any of them keeps a drive from going.
bool StopsDrive(const std::vector<Finding>& findings);

/// Seconds of a solver step under these settings of a master.
double StepSeconds(const SceneNode& master, std::int32_t ticksPerFrame);

/// The car that an assembly would make of a report's pairs and parts, without places: for whoever weighs its springs.
struct ReportedCar {
    ChassisParams chassis;
    std::vector<SuspensionUnit> units;     // beside the report's pairs
    std::vector<CollisionSphere> spheres;  // beside `sphereNodes`
    std::vector<SceneNode*> sphereNodes;
    SceneNode* chassisNode = nullptr;  // null: there is none
};
ReportedCar CarOfReport(const AssemblyReport& report);

}  // namespace tavrik

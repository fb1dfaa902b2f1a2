#pragma once
/// What a master finds in its box, and which wheel goes with which suspension: shared by the assembly, which acts on it, and by
/// the report, which only tells.

#include <cstdint>
#include <string>
#include <vector>

#include "rig/scene_walk.h"

namespace tavrik {

struct CollectedNode {
    SceneNode* node = nullptr;
    Matrix3 transform = IdentityMatrix3();  // world, at time 0
};

/// A node beyond the box that matters nevertheless: a part of some car, or something that is still locked to the master.
struct OutsideNode {
    SceneNode* node;
    ObjectClass objectClass;
    Point3 place;  // in the master's axes, scene units
    bool held;     // its control names the master
};

/// The working record of one assembly. Lists are in the order of the scene.
struct RigCollector {
    std::vector<CollectedNode> wheels;
    std::vector<CollectedNode> suspensions;
    std::vector<CollectedNode> chassis;  // only the first is used
    std::vector<CollectedNode> hitches;  // and tongues, mixed
    std::vector<CollectedNode> spheres;
    std::vector<OutsideNode> outside;
    SceneNode* masterNode = nullptr;
    Point3 boxSize{};  // half sizes along the master's axes, scene units
    Matrix3 masterInverse = IdentityMatrix3();
};

/// The list that takes nodes of a class; null for a class that is no part of a car.
std::vector<CollectedNode>* ListOf(RigCollector& collector, ObjectClass objectClass);

/// Whether a node has a control that names `master`.
bool IsHeldBy(const SceneNode& node, const SceneNode& master);

/// Fills the lists from everything under `root`. A node is inside if it lies nearer than the box's half size along each of the
/// master's axes, so one that stands exactly on a face is outside. Changes nothing in the scene.
///
/// @return false if the master has no inverse, and so no inside; the lists are empty then
bool GatherComponents(RigCollector& collector, SceneNode& root, SceneNode& master, const Point3& boxSize);

/// What keeps a car from being made of the lists, as a sentence about the first list that holds more than a car can; empty if
/// there is none.
std::string OverfullSentence(const RigCollector& collector);

/// How a wheel and a suspension stand to each other. They belong together if the suspension is nearer than the wheel's Width
/// and their Z axes point the same way.
struct UnitFit {
    float distanceSquared;  // between their origins, scene units squared
    float alignment;        // product of their Z axes: the cosine between them if neither is scaled
    bool isNear;
    bool isAligned;
};

// Axes may lean about 37 degrees apart. They are taken as they stand: scaled by 2 both, a pair matches at wider angles.
constexpr float kLeastAlignment = 0.8f;

/// @param width  of the wheel, scene units
UnitFit FitUnit(const CollectedNode& wheel, float width, const CollectedNode& suspension);

constexpr std::int32_t kNoSuspension = -1;

/// The index of the first suspension that fits, whether or not another wheel has it already, or `kNoSuspension`.
std::int32_t FindSuspension(const RigCollector& collector, const CollectedNode& wheel);

}  // namespace tavrik

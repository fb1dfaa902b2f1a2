#pragma once
/// Nodes that a car can follow.

#include <string>
#include <vector>

#include "host/road_progress.h"
#include "host/sdk/max.h"

namespace tavrik_host {

enum class FollowKind {
    Nothing,
    Road,       // its spline gives the way
    Timetable,  // it moves: its place gives way and speed
};

/// What a node is to a car that follows it. A node with a spline is a road, whether it moves or not.
FollowKind KindOf(INode& node);

/// The longest line of a road, as it lies at time 0.
tavrik::FollowedLine LineOf(INode& road);

/// The chassis that is locked to a master; null where the car isn't locked.
INode* LockedChassis(INode& master);

/// Looks for a node by its name among those that a car can follow; its own parts are none of them.
/// @param problem  on false: one sentence, without the scene's name, that tells what there is to follow
bool FindFollowed(INode& master, const std::string& name, INode*& node, FollowKind& kind, std::string& problem);

}  // namespace tavrik_host

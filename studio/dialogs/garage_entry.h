#pragma once
/// Scenes of the garage in the editor.

#include <QString>

#include "host/garage.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

/// Replaces the scene by one of the garage; it has no file yet and counts as changed.
/// @param problem  on false: one sentence; the scene is then empty
bool OpenGarageScene(Editor& editor, const tavrik_host::GarageScene& scene, QString& problem);

/// Puts the vehicles of a garage scene, and what pushes or leads them, onto a ground of the open scene, as one step.
/// @param ground   null: a sample ground is added
/// @param problem  on false: one sentence; the scene stays as it was
bool PutGarageVehicles(Editor& editor, const tavrik_host::GarageScene& scene, INode* ground, QString& problem);

}  // namespace tavrik_studio

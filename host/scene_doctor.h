#pragma once
/// The open scene, looked at before anybody drives in it.

#include <memory>
#include <string>
#include <vector>

#include "host/scene_nodes.h"
#include "rig/rig_doctor.h"

namespace tavrik_host {

/// Findings, with what their nodes belong to: they mean something for as long as this lives and nobody changes the scene.
struct SceneDiagnosis {
    std::unique_ptr<SceneView> view;
    std::vector<std::unique_ptr<tavrik::CarRig>> rigs;  // with the recordings, beside the masters
    std::vector<tavrik::Finding> findings;
};

/// Looks at every car of the scene, its ground, its couplings and its pushes. Nothing in the scene is changed. Grounds are
/// built for it, which takes its time.
///
/// @param problem  on false: a recording that can't be read
bool ExamineOpenScene(SceneDiagnosis& diagnosis, std::string& problem);

}  // namespace tavrik_host

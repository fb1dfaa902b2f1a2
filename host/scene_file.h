#pragma once
/// Scenes on disk: glTF 2.0, with the rig in the extension NORVANE_tavrik, for which docs/NORVANE_tavrik.schema.json stands.

#include <filesystem>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/sdk/max.h"
#include "host/shape.h"

namespace tavrik_host {

/// What a scene's file holds that the host doesn't look into: meshes as they were drawn, materials, images, cameras, lights. It
/// goes with the scene from loading to saving, so that nothing of a user's model is lost.
struct SceneDocument {
    // Everything but nodes, scenes, ours and the motion of nodes. Nodes that it speaks of, as skins do, are named by handle.
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    std::string binary;                                               // the one buffer that `json` speaks of
    std::map<ULONG, nlohmann::ordered_json> nodeParts;                // by handle: "mesh", "skin", "camera", "extras", ...
    nlohmann::ordered_json scene = nlohmann::ordered_json::object();  // name, extras and extensions of the one scene
    TimeValue secondZero = 0;                                         // tick of second 0 of the animations in `json`
};

/// What a written scene says of its timeline, in its "extras".
inline constexpr const char* kSceneExtras[] = {"frameRate", "firstFrame", "lastFrame", "ticksPerSecond", "firstKeyTick"};

/// Replaces the scene by that of a file. A file without our extension is a scene too: its nodes get controllers from their
/// places and animations.
///
/// @param problem  on false: one sentence that names file and fault. Scene and document are then as they were
bool LoadScene(const std::filesystem::path& file, SceneDocument& document, std::string& problem);
/// As `LoadScene`, from bytes at hand; `file` names them in messages, and its folder is where a .gltf's files are looked for.
bool LoadSceneBytes(const std::filesystem::path& file, std::string_view bytes, SceneDocument& document, std::string& problem);

/// What the animation in a written file is made of.
enum class BakedKeys { EverySample, EveryFrame, None };

/// The scene as bytes of a .glb: nodes, document, extension, and the motion of every node that moves as plain glTF animation.
/// The same scene gives the same bytes.
/// @param problem  on false: what can't be written, without a file's name
bool MakeSceneFile(const SceneDocument& document, std::string& bytes, std::string& problem);

/// The same without the animation, which follows from the rest: for programs that come back to the scene, and in a hurry.
bool MakeSnapshot(const SceneDocument& document, std::string& bytes, std::string& problem);

/// The same without the extension: for programs that show and play. Helpers without a mesh below them stay as empty nodes.
/// @param goesOn  told how much of the motion is done, 0..1; answers whether to go on. May be null
bool MakeFilmFile(const SceneDocument& document, BakedKeys keys, std::string& bytes, std::string& problem,
                  const std::function<bool(double)>& goesOn = {});

/// Gives bytes that the two above made the form that the file's name asks for: .glb stays, .gltf becomes text with its data
/// inside.
/// @param problem  on false: one sentence that names file and fault
bool ToFileForm(const std::filesystem::path& file, std::string& bytes, std::string& problem);

/// Writes bytes that the two above made, in the form that the name asks for. The file appears whole or not at all.
/// @param problem  on false: one sentence that names file and fault
bool WriteSceneFile(const std::filesystem::path& file, std::string bytes, std::string& problem);

/// Adds a node with a mesh under `parent` (null: the root) and the mesh, in parts with their materials, to the document.
/// Vertices are those that the scene has after saving and loading: the file's metres, in single precision, decide.
/// @return null when a number isn't finite
INode* AddMeshNode(SceneDocument& document, std::span<const tavrik::ShapePart> parts, const std::string& name,
                   INode* parent = nullptr);

/// The ticks at which recordings in the scene have samples, without repeats, ascending; the pose before the first driven one is
/// none of them.
std::vector<TimeValue> RecordedTicks();

}  // namespace tavrik_host

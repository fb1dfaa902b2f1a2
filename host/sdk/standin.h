#pragma once
/// The stand-in host from its programs' side: the library of plug-ins, the scene, and the chunks that things in it save. One
/// scene to a process, and all of it on one thread.

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/sdk/max.h"

namespace tavrik_host {

/// Loads a plug-in library as the host does at its start: asks for its version, lets it initialise, takes over its classes.
/// A library that is loaded already is not loaded again.
///
/// @param problem  on false: one sentence that names file and fault
bool LoadPlugin(const std::filesystem::path& file, std::string& problem);
/// Lets every loaded library shut down. The scene must be empty; libraries stay mapped until the process ends.
void ShutDownPlugins();

/// All classes: the host's own, then those of the plug-ins in their order.
const std::vector<ClassDesc*>& Classes();
/// @return null for an unknown one
ClassDesc* FindClass(SClass_ID superClass, Class_ID id);
/// By the name that its descriptor gives, among those of a super class. @return null for an unknown one
ClassDesc* FindClass(SClass_ID superClass, const std::wstring& className);
/// Makes the class with this identity what `GetDefaultController` answers; an empty identity brings the host's own back.
void SetDefaultController(Class_ID id);

/// Closes the panel and deletes all nodes. Time, range, rate and unit go back to what a new scene has: time 0, 100 frames of
/// 160 ticks, centimetres.
void ResetScene();

void SetTicksPerFrame(int ticks);
double MetresPerUnit();
/// Of one scene unit; above zero.
void SetMetresPerUnit(double metres);

constexpr ULONG kAnyHandle = 0;
/// Puts a new node under `parent`, or under the root where that is null.
///
/// @param object  null for a node without one
/// @param handle  its identity, or `kAnyHandle`. A taken one is refused
/// @return null when refused
INode* CreateNode(Object* object, const std::wstring& name, INode* parent = nullptr, ULONG handle = kAnyHandle);
/// The handle that the next node gets. Handles are never given twice, also not to nodes that follow a deleted one.
ULONG NextHandle();
void SetNextHandle(ULONG handle);
/// All nodes but the root, each before its children, children in order.
std::vector<INode*> AllNodes();
/// Clones nodes with all that hangs on them and only on them; links among them lead to the clones. @return beside `nodes`
std::vector<INode*> CloneNodes(std::span<INode* const> nodes);

/// A piece of data that a thing in the scene keeps in the file.
struct Chunk {
    USHORT id;
    std::string bytes;
    bool operator==(const Chunk&) const = default;
};

/// What `thing` saves.
std::vector<Chunk> SaveChunks(ReferenceMaker& thing);

/// Loading of one file: things get their chunks once their references stand, and the callbacks that they registered run at the
/// end, by priority.
class SceneLoad {
 public:
    SceneLoad() = default;
    SceneLoad(const SceneLoad&) = delete;
    SceneLoad& operator=(const SceneLoad&) = delete;
    /// Callbacks that were never run are dropped without being called.
    ~SceneLoad();
    /// @return false when the thing refused its data
    bool LoadChunks(ReferenceMaker& thing, std::span<const Chunk> chunks);
    /// The last chunk of that thing which goes on behind what was read of it; it is longer than its class knows.
    std::optional<USHORT> PartlyRead() const { return partlyRead_; }
    void RunCallbacks();

 private:
    friend class ChunkReader;
    std::vector<PostLoadCallback*> callbacks_;
    std::optional<USHORT> partlyRead_;
};

/// How often views were asked to redraw since the start of the process.
int RedrawCount();

}  // namespace tavrik_host

#include "host/drive_scene.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <utility>

#include "host/car_shape.h"
#include "host/glb_writer.h"
#include "host/run_samples.h"
#include "host/shape.h"

namespace tavrik {
namespace {

using Json = nlohmann::ordered_json;

// The file has Y up where the scene has Z up: (x, y, z) is written as (x, z, -y). That is a rotation, so quaternions follow it
// with their vector part alone and no mirroring comes in.
void AppendVector(std::vector<float>& out, const DPoint3& p, double scale) {
    out.insert(out.end(), {float(p.x * scale), float(p.z * scale), float(-p.y * scale)});
}

int AddMaterial(GlbWriter& glb, std::map<std::string, int>& known, const ShapeMaterial& material) {
    const auto found = known.find(material.name);
    if (found != known.end()) return found->second;
    // Seven digits show every single-precision colour; the double behind it would print seventeen.
    const auto number = [](float value) { return std::round(double(value) * 1e6) / 1e6; };
    Json json = {{"name", material.name},
                 {"pbrMetallicRoughness",
                  {{"baseColorFactor", {number(material.red), number(material.green), number(material.blue), 1.0}},
                   {"metallicFactor", number(material.metallic)},
                   {"roughnessFactor", number(material.roughness)}}}};
    if (material.doubleSided) json["doubleSided"] = true;
    return known[material.name] = glb.Add("materials", std::move(json));
}

/// Gathers nodes, meshes and keys of one file.
class SceneBuilder {
 public:
    explicit SceneBuilder(double kilometresPerUnit) : metres_(kilometresPerUnit * 1000.0) {}

    int AddMesh(const std::string& name, std::span<const ShapePart> parts) {
        Json primitives = Json::array();
        for (const ShapePart& part : parts) {
            if (part.indices.empty()) continue;
            std::vector<float> positions, normals;
            positions.reserve(part.positions.size() * 3);
            normals.reserve(part.normals.size() * 3);
            for (const Point3& p : part.positions) AppendVector(positions, FromPoint3(p), metres_);
            for (const Point3& n : part.normals) AppendVector(normals, FromPoint3(n), 1.0);
            const int position = glb_.AddFloats(positions, 3, GlbWriter::Use::Vertices, /*bounds=*/true);
            const int normal = glb_.AddFloats(normals, 3, GlbWriter::Use::Vertices, /*bounds=*/false);
            const int indices = glb_.AddIndices(part.indices);
            primitives.push_back({{"attributes", {{"POSITION", position}, {"NORMAL", normal}}},
                                  {"indices", indices},
                                  {"material", AddMaterial(glb_, materials_, part.material)}});
        }
        return glb_.Add("meshes", {{"name", name}, {"primitives", std::move(primitives)}});
    }

    int AddNode(const std::string& name, int mesh) {
        const int node = glb_.Add("nodes", {{"name", name}, {"mesh", mesh}});
        roots_.push_back(node);
        return node;
    }

    void SetTimes(std::span<const float> seconds) {
        times_ = glb_.AddFloats(seconds, 1, GlbWriter::Use::Keys, /*bounds=*/true);
    }

    /// Gives a node its keys, and the first of them as its pose at rest.
    bool Animate(int node, const std::string& name, std::span<const DMatrix3> frames, std::string& problem) {
        std::vector<float> translations, rotations;
        Turn before{0, 0, 0, 0};
        for (const DMatrix3& frame : frames) {
            AppendVector(translations, frame.row[3], metres_);
            Turn turn;
            if (!NearestTurn(frame, turn)) {
                problem = fmt::format("the axes of {} span no space any more; its motion can't be written.", name);
                return false;
            }
            // Both signs mean the same turn, but only the nearer one is reached the short way.
            const double cosine = turn.x * before.x + turn.y * before.y + turn.z * before.z + turn.w * before.w;
            if (cosine < 0.0) turn = {-turn.x, -turn.y, -turn.z, -turn.w};
            before = turn;
            AppendVector(rotations, {turn.x, turn.y, turn.z}, 1.0);
            rotations.push_back(float(turn.w));
        }
        const bool mirrored = Dot(Cross(frames[0].row[0], frames[0].row[1]), frames[0].row[2]) < 0.0;
        Json& json = glb_.json["nodes"][std::size_t(node)];
        json["translation"] = {translations[0], translations[1], translations[2]};
        json["rotation"] = {rotations[0], rotations[1], rotations[2], rotations[3]};
        if (mirrored) json["scale"] = {1, -1, 1};  // the scene's Z is the file's Y
        AddChannel(node, "translation", glb_.AddFloats(translations, 3, GlbWriter::Use::Keys, /*bounds=*/false));
        AddChannel(node, "rotation", glb_.AddFloats(rotations, 4, GlbWriter::Use::Keys, /*bounds=*/false));
        return true;
    }

    bool Finish(const std::string& name, Json extras, std::string& glb, std::string& problem) {
        Json scene = {{"name", name}, {"nodes", roots_}};
        if (!extras.empty()) scene["extras"] = std::move(extras);
        glb_.json["scene"] = 0;
        glb_.Add("scenes", std::move(scene));
        if (!channels_.empty()) {
            glb_.Add("animations", {{"name", name}, {"samplers", std::move(samplers_)}, {"channels", std::move(channels_)}});
        }
        return glb_.Finish(glb, problem);
    }

 private:
    void AddChannel(int node, const char* path, int output) {
        samplers_.push_back({{"input", times_}, {"output", output}, {"interpolation", "LINEAR"}});
        channels_.push_back({{"sampler", samplers_.size() - 1}, {"target", {{"node", node}, {"path", path}}}});
    }

    GlbWriter glb_;
    double metres_;
    std::map<std::string, int> materials_;
    Json roots_ = Json::array(), samplers_ = Json::array(), channels_ = Json::array();
    int times_ = -1;
};

/// Frames of the recording that become keys, with their times. Times that single precision can't tell apart would not ascend in
/// the file, so the later one is left out.
void ChooseKeys(const RecordedMotion& motion, const DriveSceneOptions& options, std::vector<std::size_t>& frames,
                std::vector<float>& seconds) {
    std::int64_t frame = 0;  // of the animation, the next one without a key
    for (std::size_t i = 1; i < std::size_t(motion.frames); ++i) {
        const std::int64_t ticks = std::int64_t(motion.times[i]) - motion.times[1];
        if (options.keys == KeyChoice::EveryFrame && ticks < frame * options.ticksPerFrame) continue;
        frame = ticks / options.ticksPerFrame + 1;
        const float time = float(double(ticks) / kTicksPerSecond);
        if (!seconds.empty() && time <= seconds.back()) continue;
        frames.push_back(i);
        seconds.push_back(time);
    }
}

std::vector<DMatrix3> FramesOf(std::span<const MotionSample> samples, std::span<const std::size_t> frames) {
    std::vector<DMatrix3> result;
    result.reserve(frames.size());
    for (const std::size_t frame : frames) result.push_back(samples[frame].frame);
    return result;
}

}  // namespace

bool MakeDriveScene(const CarRig& rig, const TriangleMesh& ground, const DriveSceneOptions& options, std::string& glb,
                    std::string& problem) {
    if (!rig.motion.valid || rig.motion.frames < 2) {
        problem = "the car was not driven, so there is no motion to write.";
        return false;
    }
    SceneBuilder scene(options.kilometresPerUnit);
    if (!ground.faces.empty()) {
        const ShapePart part = GroundShape(ground);
        scene.AddNode("ground", scene.AddMesh("ground", {&part, 1}));
    }
    std::vector<std::size_t> frames;
    std::vector<float> seconds;
    ChooseKeys(rig.motion, options, frames, seconds);
    scene.SetTimes(seconds);
    const int body = scene.AddNode("body", scene.AddMesh("body", BodyShape(rig).parts));
    if (!scene.Animate(body, "the body", FramesOf(rig.motion.chassis, frames), problem)) return false;
    const std::vector<std::string> names = WheelNames(rig);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string name = "wheel_" + names[i];
        const int node = scene.AddNode(name, scene.AddMesh(name, WheelShape(rig.units[i]).parts));
        if (!scene.Animate(node, name, FramesOf(rig.motion.wheels[i], frames), problem)) return false;
    }
    Json extras = {{"frameRate", double(kTicksPerSecond) / options.ticksPerFrame},
                   {"firstFrame", 0},
                   {"lastFrame", options.frames},
                   {"ticksPerSecond", kTicksPerSecond}};
    return scene.Finish("drive", std::move(extras), glb, problem);
}

bool MakeGroundScene(const TriangleMesh& ground, double kilometresPerUnit, std::string& glb, std::string& problem) {
    SceneBuilder scene(kilometresPerUnit);
    const ShapePart part = GroundShape(ground);
    scene.AddNode("ground", scene.AddMesh("ground", {&part, 1}));
    return scene.Finish("ground", Json::object(), glb, problem);
}

}  // namespace tavrik

#include "host/scene_motion.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <set>

#include "host/scene_json.h"
#include "host/sdk/prs_control.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/class_identities.h"
#include "rig/recording_bytes.h"

namespace tavrik_host {
namespace {

using tavrik::DMatrix3;
using tavrik::DPoint3;

constexpr std::int64_t kMostFrames = 1'000'000;
/// In which a master object keeps its recording.
constexpr USHORT kRecordingChunk = 20;

Class_ID MasterClass() {
    const tavrik::ClassIdentity& master = *tavrik::FindClass(tavrik::ObjectClass::Tavrik);
    return {master.id.a, master.id.b};
}

bool IsEverlasting(const Interval& valid) { return valid.Start() == TIME_NegInfinity && valid.End() == TIME_PosInfinity; }

/// A stepped key would turn into a slope from the key before; so the value before it gets a key one tick ahead of it.
template <typename Value>
void AddTicks(const KeyTrack<Value>& track, std::set<TimeValue>& ticks) {
    for (std::size_t i = 0; i < track.keys.size(); ++i) {
        const TimeValue tick = track.keys[i].tick;
        ticks.insert(tick);
        if (track.curve == KeyCurve::Step && i > 0) ticks.insert(tick - 1);
    }
}

/// Ticks of the keys of a controller and of those that it wraps.
void AddKeyTicks(Control* control, std::set<TimeValue>& ticks) {
    std::vector<Control*> open{control};
    while (!open.empty()) {
        Control* const at = open.back();
        open.pop_back();
        if (auto* const prs = dynamic_cast<PrsControl*>(at)) {
            AddTicks(prs->position, ticks);
            AddTicks(prs->rotation, ticks);
            AddTicks(prs->scale, ticks);
        }
        for (int i = 0; at != nullptr && i < at->NumRefs(); ++i) {
            if (auto* const wrapped = dynamic_cast<Control*>(at->GetReference(i))) open.push_back(wrapped);
        }
    }
}

std::vector<TimeValue> FrameTicks() {
    const Interval range = GetCOREInterface()->GetAnimRange();
    const std::int64_t step = GetTicksPerFrame(), frames = (std::int64_t(range.End()) - range.Start()) / step;
    if (frames >= kMostFrames)
        Refuse(fmt::format("the animation range has {} frames; {} can be written.", frames, kMostFrames));
    std::vector<TimeValue> ticks;
    for (std::int64_t i = 0; i <= frames; ++i) ticks.push_back(TimeValue(range.Start() + i * step));
    return ticks;
}

/// @return false where the frame has none
bool Invert(const DMatrix3& m, DMatrix3& inverse) {
    const DPoint3 cofactors[3] = {Cross(m.row[1], m.row[2]), Cross(m.row[2], m.row[0]), Cross(m.row[0], m.row[1])};
    const double volume = Dot(m.row[0], cofactors[0]);
    if (!(std::abs(volume) > 1e-30) || !std::isfinite(volume)) return false;
    const double s = 1.0 / volume;
    inverse.row[0] = DPoint3{cofactors[0].x, cofactors[1].x, cofactors[2].x} * s;
    inverse.row[1] = DPoint3{cofactors[0].y, cofactors[1].y, cofactors[2].y} * s;
    inverse.row[2] = DPoint3{cofactors[0].z, cofactors[1].z, cofactors[2].z} * s;
    const DPoint3& t = m.row[3];
    inverse.row[3] = -(inverse.row[0] * t.x + inverse.row[1] * t.y + inverse.row[2] * t.z);
    return true;
}

bool Equal(const DMatrix3& a, const DMatrix3& b) {
    for (int r = 0; r < 4; ++r) {
        if (a.row[r].x != b.row[r].x || a.row[r].y != b.row[r].y || a.row[r].z != b.row[r].z) return false;
    }
    return true;
}

/// The state of a tree at one tick after the other.
class Player {
 public:
    explicit Player(const NodeTree& tree)
        : local(tree.nodes.size()), moves_(tree.nodes.size(), true), tree_(tree), world_(tree.nodes.size(), Matrix3(TRUE)) {}

    std::vector<DMatrix3> local;  // of each node in its parent

    /// Whether a node can stand elsewhere at another tick; known after the first call of `GoTo`.
    bool Moves(std::size_t node) const { return moves_[node]; }

    void GoTo(TimeValue t) {
        for (std::size_t i = 0; i < tree_.nodes.size(); ++i) {
            const int parent = tree_.parents[i];
            const bool parentMoves = parent >= 0 && moves_[std::size_t(parent)];
            if (!first_ && !moves_[i]) continue;
            const bool passes = Place(i, t);
            if (first_) moves_[i] = passes || parentMoves;
        }
        first_ = false;
    }

 private:
    /// @return whether this holds for a while only
    bool Place(std::size_t i, TimeValue t) {
        const int parent = tree_.parents[i];
        const Matrix3 frame = parent < 0 ? Matrix3(TRUE) : world_[std::size_t(parent)];
        Matrix3 alone(TRUE), inParent = frame;
        Interval valid = FOREVER;
        if (Control* const control = tree_.nodes[i]->GetTMController()) {
            control->GetValue(t, &alone, valid, CTRL_RELATIVE);
            control->GetValue(t, &inParent, valid, CTRL_RELATIVE);
        }
        if (!IsFinite(inParent)) {
            Refuse(fmt::format("node \"{}\" has no finite place at tick {}.", ToUtf8(tree_.nodes[i]->GetName()), t));
        }
        world_[i] = inParent;
        // A controller that plays a recording answers in the world, whatever parent it is handed. Others answer best when they
        // are asked for the node alone: through the world and back there would be rounding.
        DMatrix3 back;
        const bool inWorld = alone == inParent && !(frame == Matrix3(TRUE));
        local[i] = ToDouble(alone);
        if (inWorld && Invert(ToDouble(frame), back)) local[i] = Compose(local[i], back);
        return !IsEverlasting(valid);
    }

    std::vector<bool> moves_;
    const NodeTree& tree_;
    std::vector<Matrix3> world_;
    bool first_ = true;
};

/// Gathers the keys of one node.
class KeyWriter {
 public:
    KeyWriter(std::size_t node, double metresPerUnit) : metres_(metresPerUnit) { keys.node = node; }

    BakedNode keys;
    bool Moved() const { return moved_; }

    void Add(const DMatrix3& frame) {
        if (!first_) first_ = frame;
        moved_ = moved_ || !Equal(*first_, frame);
        const Placement placement = PlacementOf(frame);
        const DPoint3 position = ToFileAxes(placement.position) * metres_, scale = SwapYAndZ(placement.scale);
        tavrik::Turn turn = placement.rotation;
        // Both signs mean the same turn, but only the nearer one is reached the short way.
        const double cosine = turn.x * before_.x + turn.y * before_.y + turn.z * before_.z + turn.w * before_.w;
        if (cosine < 0.0) turn = {-turn.x, -turn.y, -turn.z, -turn.w};
        before_ = turn;
        const DPoint3 axis = ToFileAxes({turn.x, turn.y, turn.z});
        keys.translations.insert(keys.translations.end(), {float(position.x), float(position.y), float(position.z)});
        keys.rotations.insert(keys.rotations.end(), {float(axis.x), float(axis.y), float(axis.z), float(turn.w)});
        keys.scales.insert(keys.scales.end(), {float(scale.x), float(scale.y), float(scale.z)});
        const std::size_t last = keys.scales.size() - 3;
        for (std::size_t c = 0; c < 3; ++c) {
            const double difference = std::abs(double(keys.scales[last + c]) - double(keys.scales[c]));
            keys.scaleChanges = keys.scaleChanges || difference > 1e-5 * std::abs(double(keys.scales[c]));
        }
    }

 private:
    double metres_;
    std::optional<DMatrix3> first_;
    tavrik::Turn before_{0, 0, 0, 0};
    bool moved_ = false;
};

std::vector<TimeValue> KeyTicks(const NodeTree& tree, BakedKeys keys) {
    if (keys == BakedKeys::EveryFrame) return FrameTicks();
    const std::vector<TimeValue> recorded = RecordedTicks();
    std::set<TimeValue> ticks(recorded.begin(), recorded.end());
    for (INode* node : tree.nodes) AddKeyTicks(node->GetTMController(), ticks);
    // A controller of another kind doesn't tell when it does something.
    return ticks.empty() ? FrameTicks() : std::vector<TimeValue>(ticks.begin(), ticks.end());
}

/// Keys that single precision can't tell apart would not ascend in the file, so the later one is left out.
std::vector<TimeValue> Distinct(const std::vector<TimeValue>& ticks, TimeValue secondZero, std::vector<float>& seconds) {
    std::vector<TimeValue> chosen;
    for (const TimeValue tick : ticks) {
        const float time = float((double(tick) - double(secondZero)) / TIME_TICKSPERSEC);
        if (!seconds.empty() && time <= seconds.back()) continue;
        chosen.push_back(tick);
        seconds.push_back(time);
    }
    return chosen;
}

}  // namespace

std::vector<TimeValue> RecordedTicks() {
    std::set<TimeValue> ticks;
    std::set<Object*> seen;
    const NodeTree tree = TheNodes();
    for (INode* node : tree.nodes) {
        Object* const object = node->GetObjectRef();
        if (object == nullptr || object->ClassID() != MasterClass() || !seen.insert(object).second) continue;
        for (const Chunk& chunk : SaveChunks(*object)) {
            std::vector<TimeValue> times;
            std::string problem;
            if (chunk.id != kRecordingChunk || !tavrik::LoadRecordedTimes(chunk.bytes, times, problem) || times.empty())
                continue;
            ticks.insert(times.begin() + 1, times.end());
        }
    }
    return {ticks.begin(), ticks.end()};
}

NodeTree TheNodes() {
    NodeTree tree;
    struct Visit {
        INode* node;
        int parent;
    };
    std::vector<Visit> open;
    const auto push = [&](INode* of, int parent) {
        for (int i = of->NumberOfChildren(); i-- > 0;) open.push_back({of->GetChildNode(i), parent});
    };
    push(GetCOREInterface()->GetRootNode(), -1);
    while (!open.empty()) {
        const Visit visit = open.back();
        open.pop_back();
        tree.nodes.push_back(visit.node);
        tree.parents.push_back(visit.parent);
        push(visit.node, int(tree.nodes.size()) - 1);
    }
    return tree;
}

BakedMotion BakeMotion(const NodeTree& tree, BakedKeys keys, std::optional<TimeValue> secondZero,
                       const std::function<bool(double)>& goesOn) {
    BakedMotion motion;
    motion.secondZero = secondZero.value_or(0);
    Player player(tree);
    player.GoTo(GetCOREInterface()->GetAnimRange().Start());
    std::vector<KeyWriter> writers;
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        if (player.Moves(i)) writers.emplace_back(i, MetresPerUnit());
    }
    std::vector<DMatrix3> rest = player.local;
    if (!writers.empty() && keys != BakedKeys::None) {
        const std::vector<TimeValue> wanted = KeyTicks(tree, keys);
        motion.secondZero = std::min(secondZero.value_or(wanted.front()), wanted.front());
        const std::vector<TimeValue> ticks = Distinct(wanted, motion.secondZero, motion.seconds);
        for (const TimeValue& tick : ticks) {
            if (goesOn && !goesOn(double(&tick - ticks.data()) / double(ticks.size()))) Refuse("it was stopped.");
            player.GoTo(tick);
            for (KeyWriter& writer : writers) writer.Add(player.local[writer.keys.node]);
            if (tick == ticks.front()) rest = player.local;
        }
    }
    for (const DMatrix3& frame : rest) motion.rest.push_back(PlacementOf(frame));
    for (KeyWriter& writer : writers) {
        if (writer.Moved()) motion.nodes.push_back(std::move(writer.keys));
    }
    if (motion.nodes.empty()) motion.seconds.clear();
    return motion;
}

}  // namespace tavrik_host

#include "host/gltf_keys.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string_view>
#include <utility>

#include "host/scene_axes.h"

namespace tavrik_host {
namespace {

/// Of all splines in a file together. A few bytes could ask for days of frames.
constexpr std::size_t kMostSplineKeys = 10'000'000;

struct Values {
    std::vector<TimeValue> ticks;  // ascending
    std::vector<double> numbers;   // `width` to a tick
};

/// @param secondZero  tick of the file's second 0
TimeValue TickOf(double seconds, TimeValue secondZero, const std::string& what) {
    const double tick = std::round(seconds * TIME_TICKSPERSEC) + secondZero;
    if (!(std::abs(tick) <= double(std::numeric_limits<TimeValue>::max()))) {
        Refuse(fmt::format("{} has a key at {} s, which is beyond the timeline.", what, seconds));
    }
    return TimeValue(tick);
}

/// A key that falls on the tick of the one before takes its place.
void Append(Values& values, TimeValue tick, const double* numbers, std::size_t width) {
    if (!values.ticks.empty() && values.ticks.back() == tick) {
        values.numbers.resize(values.numbers.size() - width);
        values.ticks.pop_back();
    }
    values.ticks.push_back(tick);
    values.numbers.insert(values.numbers.end(), numbers, numbers + width);
}

/// The controller has no splines, so they are walked along: a key at each of the file's keys, and one at each frame between
/// them. What happens within a frame is lost.
Values WalkSpline(const std::vector<double>& seconds, const std::vector<double>& numbers, std::size_t width,
                  const FileTime& time, std::size_t& made, const std::string& what) {
    const int ticksPerFrame = time.ticksPerFrame;
    Values values;
    std::vector<double> at(width);
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        // To each key there are an in-tangent, a value and an out-tangent.
        const double* const here = &numbers[i * 3 * width];
        const TimeValue tick = TickOf(seconds[i], time.secondZero, what);
        Append(values, tick, here + width, width);
        if (i + 1 == seconds.size()) break;
        const double* const next = here + 3 * width;
        const double span = seconds[i + 1] - seconds[i];
        const TimeValue end = TickOf(seconds[i + 1], time.secondZero, what);
        for (std::int64_t frame = std::int64_t(std::floor(double(tick) / ticksPerFrame)) + 1; frame * ticksPerFrame < end;
             ++frame) {
            if (++made > kMostSplineKeys) Refuse(fmt::format("{} has splines over more frames than a scene can hold.", what));
            const double second = double(frame * ticksPerFrame - time.secondZero) / TIME_TICKSPERSEC;
            const double t = std::clamp((second - seconds[i]) / span, 0.0, 1.0);
            const double t2 = t * t, t3 = t2 * t;
            for (std::size_t c = 0; c < width; ++c) {
                at[c] = (2 * t3 - 3 * t2 + 1) * here[width + c] + span * (t3 - 2 * t2 + t) * here[2 * width + c] +
                        (3 * t2 - 2 * t3) * next[width + c] + span * (t3 - t2) * next[c];
            }
            Append(values, TimeValue(frame * ticksPerFrame), at.data(), width);
        }
    }
    return values;
}

template <typename Value>
struct IsRotation : std::is_same<Value, Rotation> {};

Point3 ToPoint(const tavrik::DPoint3& p) { return {float(p.x), float(p.y), float(p.z)}; }

/// Reads the channels of a file that move nodes.
class KeyReader {
 public:
    KeyReader(GltfNumbers& numbers, double metresPerUnit, const FileTime& time)
        : numbers_(numbers), unitsPerMetre_(1.0 / metresPerUnit), time_(time) {}

    void ReadChannel(const Json& animation, const Json& channel, const std::string& what, std::string_view path,
                     PrsRecord& prs) {
        const Json& samplers = OptionalList(animation, "samplers", what);
        const Json& sampler =
            samplers[IndexInto(Need(channel, "sampler", what), samplers.size(), "samplers in it", "a sampler of " + what)];
        const Json* mode = Find(sampler, "interpolation");
        const std::string curve = mode == nullptr ? "LINEAR" : Text(*mode, "an interpolation of " + what);
        if (curve != "LINEAR" && curve != "STEP" && curve != "CUBICSPLINE") {
            Refuse(fmt::format("{} has an interpolation that glTF doesn't know.", what));
        }
        const Values values = ReadValues(sampler, curve == "CUBICSPLINE", path == "rotation" ? 4 : 3, what);
        const KeyCurve keyCurve = curve == "STEP" ? KeyCurve::Step : KeyCurve::Linear;
        if (path == "rotation") {
            Fill(prs.rotation, keyCurve, values, [](const double* v) {
                return Rotation{float(v[0]), float(-v[2]), float(v[1]), float(v[3])};
            });
        } else if (path == "translation") {
            Fill(prs.position, keyCurve, values, [&](const double* v) {
                return ToPoint(FromFileAxes({v[0], v[1], v[2]}) * unitsPerMetre_);
            });
        } else {
            Fill(prs.scale, keyCurve, values, [](const double* v) { return ToPoint(SwapYAndZ({v[0], v[1], v[2]})); });
        }
        Check(prs, what);
    }

 private:
    Values ReadValues(const Json& sampler, bool spline, int width, const std::string& what) {
        const std::vector<double> seconds = numbers_.Read(Need(sampler, "input", what).get<std::size_t>(), 1);
        const std::vector<double> numbers = numbers_.Read(Need(sampler, "output", what).get<std::size_t>(), width);
        if (seconds.empty() || numbers.size() != seconds.size() * std::size_t(width) * (spline ? 3 : 1)) {
            Refuse(fmt::format("{} has {} key times for {} numbers.", what, seconds.size(), numbers.size()));
        }
        for (std::size_t i = 1; i < seconds.size(); ++i) {
            if (!(seconds[i] > seconds[i - 1])) Refuse(fmt::format("the key times of {} don't ascend.", what));
        }
        if (spline) return WalkSpline(seconds, numbers, std::size_t(width), time_, made_, what);
        Values values;
        for (std::size_t i = 0; i < seconds.size(); ++i) {
            Append(values, TickOf(seconds[i], time_.secondZero, what), &numbers[i * std::size_t(width)], std::size_t(width));
        }
        return values;
    }

    template <typename Value, typename Convert>
    static void Fill(KeyTrack<Value>& track, KeyCurve curve, const Values& values, Convert convert) {
        const std::size_t width = IsRotation<Value>::value ? 4 : 3;
        track.curve = curve;
        for (std::size_t i = 0; i < values.ticks.size(); ++i) {
            track.keys.push_back({values.ticks[i], convert(&values.numbers[i * width])});
        }
    }

    static void Check(const PrsRecord& prs, const std::string& what) {
        for (const auto* track : {&prs.position, &prs.scale}) {
            for (const Key<Point3>& key : track->keys) {
                if (!std::isfinite(key.value.x) || !std::isfinite(key.value.y) || !std::isfinite(key.value.z)) {
                    Refuse(fmt::format("{} has a key that is too large a number.", what));
                }
            }
        }
        for (const Key<Rotation>& key : prs.rotation.keys) {
            const Rotation& q = key.value;
            const float length = q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
            if (!(length > 1e-12f && length < 1e12f)) Refuse(fmt::format("{} has a rotation that is none.", what));
        }
    }

    GltfNumbers& numbers_;
    double unitsPerMetre_;
    FileTime time_;
    std::size_t made_ = 0;
};

}  // namespace

bool MovesNode(const Json& channel) {
    const Json* target = Find(channel, "target");
    const Json* path = target == nullptr ? nullptr : Find(*target, "path");
    return path != nullptr && (*path == "translation" || *path == "rotation" || *path == "scale");
}

std::map<std::size_t, PrsRecord> ReadKeys(const GltfFile& gltf, GltfNumbers& numbers, const std::vector<bool>& wanted,
                                          double metresPerUnit, const FileTime& time) {
    std::map<std::size_t, PrsRecord> motions;
    std::set<std::pair<std::size_t, std::string>> seen;
    KeyReader reader(numbers, metresPerUnit, time);
    std::size_t number = 0;
    for (const Json& animation : OptionalList(gltf.json, "animations", "the file")) {
        const std::string what = fmt::format("animation {}", number++);
        for (const Json& channel : OptionalList(animation, "channels", what)) {
            if (!MovesNode(channel)) continue;
            const Json* nodeValue = Find(channel["target"], "node");
            if (nodeValue == nullptr) continue;  // glTF lets extensions tell what moves then
            const std::size_t node = IndexInto(*nodeValue, wanted.size(), "nodes", "a target of " + what);
            const std::string path = channel["target"]["path"].get<std::string>();
            if (wanted[node] && seen.emplace(node, path).second) {
                reader.ReadChannel(animation, channel, what, path, motions[node]);
            }
        }
    }
    return motions;
}

}  // namespace tavrik_host

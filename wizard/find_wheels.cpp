#include "wizard/find_wheels.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "wizard/mesh_split.h"
#include "wizard/placed_model.h"

namespace tavrik {
namespace {

// Something called a wheel may have as few as six corners (0.87); something that isn't has to be rounder.
constexpr double kRoundIfTold = 0.85, kRoundByItself = 0.9;
// Of the width to the diameter. Rollers are wider than any tyre, plates thinner.
constexpr double kWidest = 1.3, kThinnest = 0.04;
// Of a part of several wheels: anything shorter along the axle is one wheel, however odd.
constexpr double kMaybePair = 0.7;

struct Hearing {
    NameHints hints;
    bool told = false, byOwnName = false;
};

class WheelSearch {
 public:
    WheelSearch(const CarModel& model, const WizardOptions& options, const std::vector<RiggedPart>& parts,
                std::vector<Decision>& decisions, std::string& problem)
        : model_(model), options_(options), parts_(parts), decisions_(decisions), problem_(problem) {}

    bool Run(std::vector<FoundWheel>& wheels) {
        std::vector<WheelPiece> told, others;
        for (int i = 0; i < int(parts_.size()); ++i) {
            if (parts_[std::size_t(i)].role == PartRole::LeftOut) continue;
            const Hearing hearing = Hear(parts_[std::size_t(i)].part);
            if (hearing.told) {
                ReadToldPart(i, hearing, told);
            } else if (options_.wheelNames.empty() && !hearing.hints.notAWheel) {
                AddPiece(i, {}, hearing, kRoundByItself, others);
            }
        }
        if (!options_.wheelNames.empty() && !CheckNamesMet()) return false;
        wheels = Grouped(told);
        DropTheRaised(wheels);
        if (wheels.size() >= 2) {
            TakeAlong(others, wheels);
            Tell(wheels, "its parts are called so, or an animation turns them, and they are round");
        } else if (options_.wheelNames.empty()) {
            std::vector<FoundWheel> alike = ByShape(told, others);
            if (alike.size() >= 2) {
                wheels = std::move(alike);
                Tell(wheels, "no names tell of wheels; these are round, stand on the ground and match each other");
            }
        }
        return Check(wheels);
    }

 private:
    /// What a part's name says, and the names of those that it hangs below.
    Hearing Hear(int part) const {
        Hearing hearing;
        bool isOwn = true;
        for (int at = part; at != -1; at = model_.parts[std::size_t(at)].parent, isOwn = false) {
            const ModelPart& node = model_.parts[std::size_t(at)];
            const NameHints hints = HintsOf(node.name);
            if (isOwn) hearing.hints = hints;
            if (hearing.hints.end == 0 && hints.wheel) hearing.hints.end = hints.end;
            if (hearing.hints.side == 0 && hints.wheel) hearing.hints.side = hints.side;
            bool told = hints.wheel && !hints.notAWheel && !hearing.hints.notAWheel;
            if (!options_.wheelNames.empty()) {
                told = std::any_of(options_.wheelNames.begin(), options_.wheelNames.end(),
                                   [&](const std::string& pattern) { return MatchesPattern(node.name, pattern); });
            } else if (node.spins && !hearing.hints.notAWheel) {
                told = true;
            }
            hearing.told = hearing.told || told;
            hearing.byOwnName = hearing.byOwnName || (told && isOwn);
        }
        return hearing;
    }

    std::vector<DPoint3> PointsOf(int rigged, const std::vector<std::uint32_t>& faces) const {
        const RiggedPart& place = parts_[std::size_t(rigged)];
        const ModelPart& part = model_.parts[std::size_t(place.part)];
        std::vector<bool> isUsed(part.vertices.size(), false);
        const auto use = [&](const MeshFace& face) {
            for (const std::uint32_t v : face.v) isUsed[v] = true;
        };
        if (faces.empty()) std::for_each(part.faces.begin(), part.faces.end(), use);
        for (const std::uint32_t f : faces) use(part.faces[f]);
        std::vector<DPoint3> points;
        for (std::size_t v = 0; v < isUsed.size(); ++v) {
            if (isUsed[v]) points.push_back(TransformPoint(part.vertices[v], place.frame));
        }
        return points;
    }

    bool AddPiece(int rigged, std::vector<std::uint32_t> faces, const Hearing& hearing, double roundEnough,
                  std::vector<WheelPiece>& pieces) const {
        const DiscFit fit = FitDisc(PointsOf(rigged, faces), parts_[std::size_t(rigged)].frame);
        if (!(fit.roundness >= roundEnough) || fit.halfWidth > kWidest * fit.radius) return false;
        pieces.push_back({rigged, std::move(faces), fit, hearing.told, hearing.hints});
        return true;
    }

    /// A part that is told to be a wheel may be one, two on an axle, or all of them.
    void ReadToldPart(int rigged, const Hearing& hearing, std::vector<WheelPiece>& pieces) const {
        const RiggedPart& place = parts_[std::size_t(rigged)];
        const ModelPart& part = model_.parts[std::size_t(place.part)];
        const DiscFit whole = FitDisc(PointsOf(rigged, {}), place.frame);
        if (whole.roundness >= kRoundIfTold && whole.halfWidth > kMaybePair * whole.radius) {
            std::vector<DPoint3> world;
            for (const DPoint3& v : part.vertices) world.push_back(TransformPoint(v, place.frame));
            std::vector<int> sides;
            if (SplitAlongAxle(world, part.faces, whole, sides)) {
                std::vector<std::uint32_t> halves[2];
                for (std::size_t f = 0; f < sides.size(); ++f) halves[sides[f]].push_back(std::uint32_t(f));
                for (auto& half : halves) {
                    // A rod between the wheels would pass for width.
                    AddPiece(rigged, std::move(half), hearing, kRoundIfTold, pieces);
                    if (!pieces.empty() && pieces.back().rigged == rigged) TrimRod(part, place.frame, pieces.back());
                }
                return;
            }
        }
        if (AddPiece(rigged, {}, hearing, kRoundIfTold, pieces)) return;
        if (hearing.byOwnName) AddByPieces(rigged, hearing, kRoundIfTold, pieces);
    }

    /// Measures the width of a wheel by what of it is far from the axle.
    static void TrimRod(const ModelPart& part, const DMatrix3& frame, WheelPiece& piece) {
        double low = 1e300, high = -1e300;
        for (const std::uint32_t f : piece.faces) {
            for (const std::uint32_t v : part.faces[f].v) {
                const DPoint3 d = TransformPoint(part.vertices[v], frame) - piece.fit.centre;
                const double along = Dot(d, piece.fit.axle);
                if (Length(d - piece.fit.axle * along) < 0.6 * piece.fit.radius) continue;
                low = std::min(low, along);
                high = std::max(high, along);
            }
        }
        if (low > high) return;
        piece.fit.centre += piece.fit.axle * ((low + high) * 0.5);
        piece.fit.halfWidth = (high - low) * 0.5;
    }

    /// Takes a part to pieces that hang together, and adds those that are round, each with the pieces within it.
    void AddByPieces(int rigged, const Hearing& hearing, double roundEnough, std::vector<WheelPiece>& pieces) const {
        const RiggedPart& place = parts_[std::size_t(rigged)];
        const ModelPart& part = model_.parts[std::size_t(place.part)];
        const std::vector<int> numbers = ConnectedPieces(part.vertices, part.faces);
        const int count = numbers.empty() ? 0 : *std::max_element(numbers.begin(), numbers.end()) + 1;
        if (count < 2) return;
        std::vector<std::vector<std::uint32_t>> faces(std::size_t(count), std::vector<std::uint32_t>{});
        for (std::size_t f = 0; f < numbers.size(); ++f) faces[std::size_t(numbers[f])].push_back(std::uint32_t(f));
        std::vector<WheelPiece> round;
        std::vector<const std::vector<std::uint32_t>*> rest;
        for (const auto& some : faces) {
            if (!AddPiece(rigged, some, hearing, roundEnough, round)) rest.push_back(&some);
        }
        // Nuts and spokes go with the wheel that they sit in.
        for (const std::vector<std::uint32_t>* const some : rest) {
            const DPoint3 at = TransformPoint(part.vertices[part.faces[some->front()].v[0]], place.frame);
            for (WheelPiece& piece : round) {
                const double along = Dot(at - piece.fit.centre, piece.fit.axle);
                const double across = Length(at - piece.fit.centre - piece.fit.axle * along);
                if (across > 0.9 * piece.fit.radius || std::abs(along) > 1.1 * piece.fit.halfWidth) continue;
                piece.faces.insert(piece.faces.end(), some->begin(), some->end());
                break;
            }
        }
        for (WheelPiece& piece : round) pieces.push_back(std::move(piece));
    }

    static bool AreOne(const DiscFit& large, const DiscFit& small) {
        if (std::abs(Dot(large.axle, small.axle)) < 0.95) return false;
        const DPoint3 d = small.centre - large.centre;
        const double along = Dot(d, large.axle);
        const double gap = std::abs(along) - large.halfWidth - small.halfWidth;
        // Twin tyres count as one wide wheel.
        return Length(d - large.axle * along) < 0.25 * large.radius && gap < 0.3 * large.radius;
    }

    std::vector<FoundWheel> Grouped(std::vector<WheelPiece> pieces) const {
        std::stable_sort(pieces.begin(), pieces.end(),
                         [](const WheelPiece& a, const WheelPiece& b) { return a.fit.radius > b.fit.radius * (1.0 + 1e-9); });
        std::vector<FoundWheel> wheels;
        for (WheelPiece& piece : pieces) {
            const auto home = std::find_if(wheels.begin(), wheels.end(), [&](const FoundWheel& wheel) {
                return AreOne(wheel.pieces.front().fit, piece.fit);
            });
            if (home == wheels.end()) {
                wheels.emplace_back().title = PartTitle(model_, parts_[std::size_t(piece.rigged)].part);
                wheels.back().pieces.push_back(std::move(piece));
            } else {
                home->pieces.push_back(std::move(piece));
            }
        }
        std::erase_if(wheels, [](FoundWheel& wheel) { return !Measure(wheel); });
        return wheels;
    }

    /// Centre, size and hints of a wheel from its pieces: the tyre tells the place, whatever is nearly as large the width.
    static bool Measure(FoundWheel& wheel) {
        const DiscFit& tyre = wheel.pieces.front().fit;
        double low = -tyre.halfWidth, high = tyre.halfWidth;
        for (const WheelPiece& piece : wheel.pieces) {
            if (piece.fit.radius < 0.8 * tyre.radius) continue;
            const double along = Dot(piece.fit.centre - tyre.centre, tyre.axle);
            low = std::min(low, along - piece.fit.halfWidth);
            high = std::max(high, along + piece.fit.halfWidth);
        }
        wheel.axle = tyre.axle;
        wheel.radius = tyre.radius;
        wheel.centre = tyre.centre + tyre.axle * ((low + high) * 0.5);
        wheel.halfWidth = (high - low) * 0.5;
        for (const WheelPiece& piece : wheel.pieces) {
            wheel.told = wheel.told || piece.told;
            if (wheel.end == 0) wheel.end = piece.hints.end;
            if (wheel.side == 0) wheel.side = piece.hints.side;
        }
        return wheel.halfWidth > kThinnest * wheel.radius;
    }

    static double Bottom(const FoundWheel& wheel) { return wheel.centre.z - wheel.radius; }

    /// Spare wheels, pulleys and the like are round and may be called wheels, but don't reach the ground.
    void DropTheRaised(std::vector<FoundWheel>& wheels) {
        if (wheels.empty()) return;
        double ground = 1e300;
        for (const FoundWheel& wheel : wheels) ground = std::min(ground, Bottom(wheel));
        std::erase_if(wheels, [&](const FoundWheel& wheel) {
            const bool isRaised = Bottom(wheel) - ground > 0.35 * wheel.radius;
            if (isRaised)
                decisions_.push_back({"not a wheel", wheel.title, "it doesn't reach the ground that the others stand on"});
            return isRaised;
        });
    }

    /// Rims without a name that sit in tyres with one.
    static void TakeAlong(std::vector<WheelPiece>& others, std::vector<FoundWheel>& wheels) {
        for (WheelPiece& piece : others) {
            for (FoundWheel& wheel : wheels) {
                const DiscFit& tyre = wheel.pieces.front().fit;
                if (piece.fit.radius > 1.3 * tyre.radius) continue;
                if (!AreOne(piece.fit.radius > tyre.radius ? piece.fit : tyre,
                            piece.fit.radius > tyre.radius ? tyre : piece.fit)) {
                    continue;
                }
                const bool isTyre = piece.fit.radius > tyre.radius;
                wheel.pieces.insert(isTyre ? wheel.pieces.begin() : wheel.pieces.end(), std::move(piece));
                Measure(wheel);
                break;
            }
        }
    }

    /// Discs that stand on one level, in pairs across the car or all in one line along it.
    std::vector<FoundWheel> ByShape(const std::vector<WheelPiece>& told, const std::vector<WheelPiece>& others) const {
        std::vector<WheelPiece> pieces = told;
        pieces.insert(pieces.end(), others.begin(), others.end());
        std::vector<FoundWheel> wheels = Standing(Grouped(pieces));
        if (wheels.size() >= 2) return wheels;
        // The last resort: a model of one piece with the wheels in it.
        pieces = told;
        for (int i = 0; i < int(parts_.size()); ++i) {
            if (parts_[std::size_t(i)].role != PartRole::LeftOut) AddByPieces(i, {}, kRoundByItself, pieces);
        }
        return Standing(Grouped(pieces));
    }

    std::vector<FoundWheel> Standing(std::vector<FoundWheel> wheels) const {
        double ground = 1e300;
        for (int i = 0; i < int(parts_.size()); ++i) {
            if (parts_[std::size_t(i)].role == PartRole::LeftOut) continue;
            for (const DPoint3& p : PointsOf(i, {})) ground = std::min(ground, p.z);
        }
        std::erase_if(wheels, [&](const FoundWheel& wheel) { return Bottom(wheel) - ground > 0.3 * wheel.radius; });
        std::vector<FoundWheel> matched;
        for (const FoundWheel& wheel : wheels) {
            const bool hasPartner = std::any_of(wheels.begin(), wheels.end(), [&](const FoundWheel& other) {
                if (&other == &wheel || std::abs(Dot(other.axle, wheel.axle)) < 0.9) return false;
                if (std::abs(other.radius - wheel.radius) > 0.4 * std::max(other.radius, wheel.radius)) return false;
                const DPoint3 d = other.centre - wheel.centre;
                const double along = std::abs(Dot(d, wheel.axle)), ahead = std::abs(Dot(d, Cross(wheel.axle, {0, 0, 1})));
                const bool pair = ahead < 0.3 * wheel.radius && along > wheel.radius;
                const bool line = along < 0.3 * wheel.radius && ahead > 2.0 * wheel.radius;
                return pair || line;
            });
            if (hasPartner) matched.push_back(wheel);
        }
        return matched;
    }

    bool CheckNamesMet() {
        for (const std::string& pattern : options_.wheelNames) {
            const bool isMet = std::any_of(parts_.begin(), parts_.end(), [&](const RiggedPart& part) {
                return MatchesPattern(model_.parts[std::size_t(part.part)].name, pattern);
            });
            if (isMet) continue;
            problem_ = "no part is called \"" + pattern + "\", which was to be a wheel.";
            return false;
        }
        return true;
    }

    void Tell(const std::vector<FoundWheel>& wheels, const std::string& why) {
        std::vector<std::string> names;
        std::set<std::string> seen;
        for (const FoundWheel& wheel : wheels) {
            if (seen.insert(wheel.title).second) names.push_back(wheel.title);
        }
        const bool told = !options_.wheelNames.empty();
        decisions_.push_back({"wheels", std::to_string(wheels.size()) + ": " + ListText(names), told ? "you named them" : why});
    }

    bool Check(const std::vector<FoundWheel>& wheels) {
        if (wheels.size() < 2) {
            problem_ = wheels.empty() ? "no part of the model looks like a wheel; tell which parts are, by their names."
                                      : "only one part of the model, " + wheels.front().title +
                                            ", looks like a wheel; tell which others are, or place it several times.";
            return false;
        }
        for (std::size_t i = 0; i < wheels.size(); ++i) {
            for (std::size_t j = i + 1; j < wheels.size(); ++j) {
                const FoundWheel &a = wheels[i], &b = wheels[j];
                const DPoint3 d = b.centre - a.centre;
                const double along = std::abs(Dot(d, a.axle));
                const double across = Length(d - a.axle * Dot(d, a.axle));
                if (along > 0.9 * (a.halfWidth + b.halfWidth) || across > 0.9 * (a.radius + b.radius)) continue;
                problem_ =
                    "wheels " + a.title + " and " + b.title + " stand inside each other; move them apart or name the wheels.";
                return false;
            }
        }
        return true;
    }

    const CarModel& model_;
    const WizardOptions& options_;
    const std::vector<RiggedPart>& parts_;
    std::vector<Decision>& decisions_;
    std::string& problem_;
};

}  // namespace

bool FindWheels(const CarModel& model, const WizardOptions& options, const std::vector<RiggedPart>& parts,
                std::vector<FoundWheel>& wheels, std::vector<Decision>& decisions, std::string& problem) {
    return WheelSearch(model, options, parts, decisions, problem).Run(wheels);
}

}  // namespace tavrik

#include "wizard/heading.h"

#include <algorithm>
#include <cmath>

namespace tavrik {
namespace {

DPoint3 Level(const DPoint3& v) { return Normalize(DPoint3{v.x, v.y, 0.0}); }

/// The level axle that agrees best with all others: front wheels may be drawn turned.
DPoint3 CommonAxle(const std::vector<FoundWheel>& wheels) {
    DPoint3 best{};
    double most = -1.0;
    for (const FoundWheel& wheel : wheels) {
        double agreement = 0.0;
        for (const FoundWheel& other : wheels) agreement += std::abs(Dot(Level(wheel.axle), Level(other.axle)));
        if (agreement <= most + 1e-6) continue;
        most = agreement;
        best = Level(wheel.axle);
    }
    // A mesh that is a little off the model's axes would turn the whole car by that little.
    for (const DPoint3& axis : {DPoint3{1, 0, 0}, DPoint3{0, 1, 0}}) {
        if (std::abs(Dot(best, axis)) > 1.0 - 1e-5) best = axis;
    }
    return best;
}

struct Vote {
    double weight;  // above zero for the direction that is tried
    std::string why;
};

class HeadingSearch {
 public:
    HeadingSearch(const CarModel& model, const std::vector<RiggedPart>& parts, const std::vector<FoundWheel>& wheels,
                  const BodyMesh& body, const DPoint3& forward)
        : model_(model), parts_(parts), wheels_(wheels), body_(body), forward_(forward), right_(Cross(forward, {0, 0, 1})) {
        for (const FoundWheel& wheel : wheels_) middle_ += wheel.centre / double(wheels_.size());
    }

    std::vector<Vote> Votes() {
        VoteByWheelNames();
        VoteByPartNames();
        if (!body_.points.empty()) VoteByShape();
        if (Length(model_.usualForward) > 0.0) {
            const double along = Dot(Normalize(model_.usualForward), forward_);
            if (std::abs(along) > 0.7) Add(along > 0 ? 0.35 : -0.35, "files of this format mostly look that way");
        }
        return votes_;
    }

 private:
    void Add(double weight, const std::string& why) { votes_.push_back({weight, why}); }
    double Ahead(const DPoint3& p) const { return Dot(p - middle_, forward_); }

    void VoteByWheelNames() {
        double ends = 0.0, sides = 0.0;
        for (const FoundWheel& wheel : wheels_) {
            ends += wheel.end * Ahead(wheel.centre) / wheel.radius;
            sides += wheel.side * Dot(wheel.centre - middle_, right_) / wheel.radius;
        }
        if (std::abs(ends) > 0.5) Add(ends > 0 ? 4.0 : -4.0, "the wheels' names tell front and back");
        if (std::abs(sides) > 0.5) Add(sides > 0 ? 2.0 : -2.0, "the wheels' names tell left and right");
    }

    void VoteByPartNames() {
        double sum = 0.0;
        std::string names;
        for (const RiggedPart& rigged : parts_) {
            if (rigged.role == PartRole::LeftOut) continue;
            const ModelPart& part = model_.parts[std::size_t(rigged.part)];
            const NameHints hints = HintsOf(part.name);
            if (hints.bodyEnd == 0 || hints.wheel != hints.notAWheel) continue;
            DPoint3 centre{};
            for (const DPoint3& v : part.vertices) centre += TransformPoint(v, rigged.frame) / double(part.vertices.size());
            sum += hints.bodyEnd * Ahead(centre) / wheels_.front().radius;
            names += (names.empty() ? "" : ", ") + part.name;
        }
        if (std::abs(sum) > 0.3) Add(sum > 0 ? 1.0 : -1.0, "parts that belong to one end tell it (" + names + ")");
    }

    /// Bonnets are low and windscreens lean back; what hangs over behind the wheels is mostly longer than in front.
    void VoteByShape() {
        double low = 1e300, high = -1e300, bottom = 1e300, top = -1e300;
        for (const DPoint3& p : body_.points) {
            low = std::min(low, Ahead(p));
            high = std::max(high, Ahead(p));
            bottom = std::min(bottom, p.z);
            top = std::max(top, p.z);
        }
        const double length = high - low, height = top - bottom;
        if (!(length > 0.0) || !(height > 0.0)) return;
        VoteByHeights(low, length, bottom, height);
        VoteByScreens(bottom, height);
        double first = -1e300, last = 1e300;
        for (const FoundWheel& wheel : wheels_) {
            first = std::max(first, Ahead(wheel.centre));
            last = std::min(last, Ahead(wheel.centre));
        }
        const double overhang = ((last - low) - (high - first)) / length;
        if (std::abs(overhang) > 0.03) Add(std::clamp(overhang, -0.15, 0.15), "the longer overhang is mostly behind");
    }

    void VoteByHeights(double low, double length, double bottom, double height) {
        // The highest point in each slice across the car; faces reach over several.
        constexpr int kSlices = 24;
        double tops[kSlices];
        std::fill(std::begin(tops), std::end(tops), bottom);
        for (const MeshFace& face : body_.faces) {
            const DPoint3 corners[3] = {body_.points[face.v[0]], body_.points[face.v[1]], body_.points[face.v[2]]};
            for (int e = 0; e < 3; ++e) {
                const DPoint3 &a = corners[e], &b = corners[(e + 1) % 3];
                for (int step = 0; step <= kSlices; ++step) {
                    const DPoint3 p = a + (b - a) * (double(step) / kSlices);
                    const int slice = std::clamp(int((Ahead(p) - low) / length * kSlices), 0, kSlices - 1);
                    tops[slice] = std::max(tops[slice], p.z);
                }
            }
        }
        double back = 0.0, front = 0.0;
        for (int s = 0; s < kSlices / 3; ++s) {
            back += (tops[s] - bottom) / height / (kSlices / 3);
            front += (tops[kSlices - 1 - s] - bottom) / height / (kSlices / 3);
        }
        if (std::abs(back - front) > 0.04) Add(std::clamp(back - front, -0.3, 0.3), "the bonnet end is the lower one");
    }

    void VoteByScreens(double bottom, double height) {
        // Area of slanting faces of the upper half, by which end they look to.
        double ahead = 0.0, behind = 0.0;
        for (const MeshFace& face : body_.faces) {
            const DPoint3 &a = body_.points[face.v[0]], &b = body_.points[face.v[1]], &c = body_.points[face.v[2]];
            if ((a.z + b.z + c.z) / 3.0 < bottom + 0.5 * height) continue;
            const DPoint3 area = Cross(b - a, c - a) * 0.5;
            const DPoint3 n = Normalize(area);
            if (!(n.z > 0.3 && n.z < 0.92)) continue;
            const double slant = Dot(n, forward_);
            if (std::abs(slant) > 0.3) (slant > 0 ? ahead : behind) += Length(area);
        }
        if (!(ahead + behind > 0.0)) return;
        const double share = (ahead - behind) / (ahead + behind);
        if (std::abs(share) > 0.1) Add(0.25 * share, "the larger slanting screen is the front one");
    }

    const CarModel& model_;
    const std::vector<RiggedPart>& parts_;
    const std::vector<FoundWheel>& wheels_;
    const BodyMesh& body_;
    const DPoint3 forward_, right_;
    DPoint3 middle_{};
    std::vector<Vote> votes_;
};

bool LooksLikeABike(const CarModel& model, const std::vector<FoundWheel>& wheels, const DPoint3& axle) {
    if (wheels.size() != 2) return false;
    const DPoint3 d = wheels[1].centre - wheels[0].centre;
    const double across = std::abs(Dot(d, axle)), ahead = std::abs(Dot(d, Cross(axle, {0, 0, 1})));
    const double radius = std::max(wheels[0].radius, wheels[1].radius);
    const bool named =
        std::any_of(model.parts.begin(), model.parts.end(), [](const ModelPart& part) { return HintsOf(part.name).bike; });
    return ahead > radius && across < (named ? 1.0 : 0.5) * radius;
}

std::string DirectionText(const DPoint3& d) {
    const auto clean = [](double v) { return NumberText(std::abs(v) < 1e-9 ? 0.0 : v); };
    return clean(d.x) + ", " + clean(d.y) + ", 0";
}

}  // namespace

bool FindHeading(const CarModel& model, const WizardOptions& options, const std::vector<RiggedPart>& parts,
                 const std::vector<FoundWheel>& wheels, const BodyMesh& body, Heading& heading,
                 std::vector<Decision>& decisions, std::string& problem) {
    const DPoint3 axle = CommonAxle(wheels);
    heading.isBike = options.bike.value_or(LooksLikeABike(model, wheels, axle));
    const std::string why = options.bike     ? "you said so"
                            : heading.isBike ? "there are two wheels, one behind the other"
                                             : "its wheels stand beside each other";
    decisions.push_back({"bike", heading.isBike ? "yes" : "no", why});

    DPoint3 forward = Cross({0, 0, 1}, axle);
    if (options.forward) {
        const double along = Dot(Level(*options.forward), forward);
        if (std::abs(along) < 0.5) {
            problem = "the forward direction that you gave lies along the axles; the car looks along " +
                      DirectionText(forward) + " or the opposite.";
            return false;
        }
        heading.forward = along > 0 ? forward : -forward;
        heading.confidence = 1.0;
        decisions.push_back({"forward", DirectionText(heading.forward), "you said so"});
    } else {
        const std::vector<Vote> votes = HeadingSearch(model, parts, wheels, body, forward).Votes();
        double sum = 0.0, all = 0.2;  // a doubt that is always there
        for (const Vote& vote : votes) {
            sum += vote.weight;
            all += std::abs(vote.weight);
        }
        heading.forward = sum >= 0.0 ? forward : -forward;
        heading.confidence = 0.5 + 0.5 * std::abs(sum) / all;
        std::string reasons;
        for (const Vote& vote : votes) {
            if (vote.weight * sum > 0.0) reasons += (reasons.empty() ? "" : "; ") + vote.why;
        }
        if (reasons.empty()) reasons = "nothing tells front from back";
        decisions.push_back({"forward", DirectionText(heading.forward),
                             reasons + " (" + NumberText(std::round(heading.confidence * 100.0)) + " % sure)"});
    }
    heading.right = Cross(heading.forward, {0, 0, 1});
    return true;
}

}  // namespace tavrik

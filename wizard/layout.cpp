#include "wizard/layout.h"

#include <algorithm>
#include <cmath>

namespace tavrik {
namespace {

// What real cars measure, m.
constexpr double kLeastRadius = 0.25, kMostRadius = 0.6, kLeastLength = 1.5, kMostLength = 15.0, kUsualRadius = 0.33;

bool IsBelievable(double radius, double length) {
    return radius >= kLeastRadius && radius <= kMostRadius && length >= kLeastLength && length <= kMostLength;
}

/// Chooses metres to a model unit: what the file tells, if that gives a car; a unit that files often have wrong; or, for a toy,
/// the round factor that makes its wheels about as large as a car's.
double ChooseScale(const CarModel& model, const WizardOptions& options, double radius, double length,
                   std::vector<Decision>& decisions) {
    const auto measures = [&](double scale) {
        return "wheels of radius " + NumberText(radius * scale) + " m and a length of " + NumberText(length * scale) + " m";
    };
    const auto decide = [&](double scale, const std::string& why) {
        decisions.push_back({"unit", NumberText(scale) + " m", why});
        return scale;
    };
    if (options.unit) return decide(*options.unit, "you said so; that makes " + measures(*options.unit));
    const double told = model.metresPerUnit;
    if (IsBelievable(radius * told, length * told))
        return decide(told, "as the file tells: " + measures(told) + ", as a car has");
    for (const double slip : {0.01, 100.0, 0.001, 1000.0, 0.0254, 1.0 / 0.0254}) {
        if (!IsBelievable(radius * told * slip, length * told * slip)) continue;
        return decide(told * slip, "the file tells " + NumberText(told) + " m, which would make " + measures(told) +
                                       "; this makes " + measures(told * slip));
    }
    const double wanted = kUsualRadius / (radius * told);
    double best = 1.0;
    for (double power = 1e-6; power < 1e7; power *= 10.0) {
        for (const double digit : {1.0, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0, 6.0, 8.0}) {
            if (std::abs(std::log(power * digit / wanted)) < std::abs(std::log(best / wanted))) best = power * digit;
        }
    }
    return decide(told * best, "as a toy it would have " + measures(told) + "; " + NumberText(best) +
                                   " times as large it has " + measures(told * best));
}

/// Sorts wheels by axle and side. @return the axle of each
std::vector<int> SortByAxle(std::vector<FoundWheel>& wheels, const Heading& heading) {
    const auto ahead = [&](const FoundWheel& wheel) { return Dot(wheel.centre, heading.forward); };
    const auto across = [&](const FoundWheel& wheel) { return Dot(wheel.centre, heading.right); };
    std::stable_sort(wheels.begin(), wheels.end(),
                     [&](const FoundWheel& a, const FoundWheel& b) { return ahead(a) > ahead(b); });
    std::vector<int> axles;
    for (std::size_t i = 0; i < wheels.size(); ++i) {
        const bool isNext = i > 0 && ahead(wheels[i - 1]) - ahead(wheels[i]) > 0.5 * wheels[i].radius;
        axles.push_back(i == 0 ? 0 : axles.back() + (isNext ? 1 : 0));
    }
    for (std::size_t i = 0; i < wheels.size();) {
        std::size_t end = i;
        while (end < wheels.size() && axles[end] == axles[i]) ++end;
        std::stable_sort(wheels.begin() + std::ptrdiff_t(i), wheels.begin() + std::ptrdiff_t(end),
                         [&](const FoundWheel& a, const FoundWheel& b) { return across(a) < across(b); });
        i = end;
    }
    return axles;
}

/// Solves two equations; without a solution both are zero.
void Solve2(double a, double b, double c, double d, double e, double f, double& x, double& y) {
    const double det = a * d - b * c;
    x = y = 0.0;
    if (std::abs(det) < 1e-12) return;
    x = (e * d - b * f) / det;
    y = (a * f - e * c) / det;
}

bool CheckOptionSizes(const WizardOptions& options, const Layout& layout, std::string& problem) {
    for (const auto* const axles : {&options.steeredAxles, &options.drivenAxles, &options.handbrakeAxles}) {
        if (!*axles) continue;
        for (const int axle : **axles) {
            if (axle >= 1 && axle <= layout.axleCount) continue;
            problem = "there is no axle " + std::to_string(axle) + "; the car has " + std::to_string(layout.axleCount) +
                      ", counted from 1 at the front.";
            return false;
        }
    }
    if (layout.wheels.size() <= kMaxComponents) return true;
    problem = "the model has " + std::to_string(layout.wheels.size()) + " wheels, but a rig may have " +
              std::to_string(kMaxComponents) + " at most.";
    return false;
}

/// Puts the origin of the chassis where a car's centre of mass might be.
void PlaceOrigin(Layout& layout, const Heading& heading, const BodyMesh& body, std::vector<Decision>& decisions) {
    const DMatrix3 axes = {{heading.right, heading.forward, {0, 0, 1}, {0, 0, 0}}};
    const DBox box = BoxOf(SeenFrom(body, axes, 1.0).points);
    double left = 1e300, right = -1e300, front = -1e300, back = 1e300, ground = 1e300, top = box.high.z, mean = 0.0, hub = 0.0;
    for (const FoundWheel& wheel : layout.wheels) {
        const DPoint3 at = SeenFrom(wheel.centre, axes, 1.0);
        left = std::min(left, at.x);
        right = std::max(right, at.x);
        front = std::max(front, at.y);
        back = std::min(back, at.y);
        ground = std::min(ground, at.z - wheel.radius);
        mean += at.y / double(layout.wheels.size());
        hub += at.z / double(layout.wheels.size());
    }
    const double base = front - back;
    double y = layout.axleCount == 1 ? mean : std::clamp((box.low.y + box.high.y) * 0.5, back + 0.4 * base, back + 0.6 * base);
    const double low = 0.4 * (top - ground) + ground;
    const double z = std::max(low, hub);
    const auto place = [&](double along) {
        layout.frame = axes;
        layout.frame.row[3] = axes.row[0] * ((left + right) * 0.5) + axes.row[1] * along + axes.row[2] * z;
        layout.hubs.clear();
        for (const FoundWheel& wheel : layout.wheels)
            layout.hubs.push_back(SeenFrom(wheel.centre, layout.frame, layout.unitScale));
    };
    place(y);
    const std::vector<double> shares = ShareLoad(layout.hubs);
    const bool isSafe =
        std::all_of(shares.begin(), shares.end(), [&](double share) { return share > 0.25 / double(layout.hubs.size()); });
    std::string why = layout.axleCount == 1
                          ? "above the only axle"
                          : "between the axles, as near to the body's middle as 40 to 60 % of the wheelbase allow";
    if (!isSafe) {
        y = mean;
        why = "amid the wheels, so that each carries something";
        place(y);
    }
    layout.ground = (ground - z) * layout.unitScale;
    const double share = base > 0.0 ? (y - back) / base * 100.0 : 50.0;
    decisions.push_back(
        {"centre of mass",
         NumberText((z - ground) * layout.scale) + " m high, " + NumberText(share) + " % of the wheelbase before the last axle",
         why + "; at two fifths of the car's height, or at the hubs if these are higher"});
}

}  // namespace

std::vector<double> ShareLoad(const std::vector<DPoint3>& hubs) {
    //   share_i = a + b x_i + c y_i  with  sum share = 1,  sum share x = sum share y = 0:  the least squares that balance
    const double n = double(hubs.size());
    double mx = 0, my = 0, xx = 0, xy = 0, yy = 0;
    for (const DPoint3& hub : hubs) {
        mx += hub.x / n;
        my += hub.y / n;
    }
    double size = 0.0;
    for (const DPoint3& hub : hubs) size = std::max({size, std::abs(hub.x), std::abs(hub.y)});
    if (!(size > 0.0)) size = 1.0;
    for (const DPoint3& hub : hubs) {
        const double x = (hub.x - mx) / size, y = (hub.y - my) / size;
        xx += x * x;
        xy += x * y;
        yy += y * y;
    }
    // Wheels in one line balance along that line alone.
    double b = 0, c = 0;
    if (xx * yy - xy * xy > 1e-9) {
        Solve2(xx, xy, xy, yy, -mx / size, -my / size, b, c);
    } else if (yy > 1e-9) {
        c = -my / size / yy;
    } else if (xx > 1e-9) {
        b = -mx / size / xx;
    }
    std::vector<double> shares;
    for (const DPoint3& hub : hubs) shares.push_back(1.0 / n + b * (hub.x - mx) / size + c * (hub.y - my) / size);
    return shares;
}

bool LayOut(const CarModel& model, const WizardOptions& options, std::vector<FoundWheel> wheels, const BodyMesh& body,
            const Heading& heading, Layout& layout, std::vector<Decision>& decisions, std::string& problem) {
    layout.wheels = std::move(wheels);
    layout.isBike = heading.isBike;
    double radius = 0.0, low = 1e300, high = -1e300;
    for (FoundWheel& wheel : layout.wheels) {
        if (options.wheelRadius) wheel.radius = *options.wheelRadius;
        if (options.wheelWidth) wheel.halfWidth = *options.wheelWidth * 0.5;
        radius = std::max(radius, wheel.radius);
        low = std::min(low, Dot(wheel.centre, heading.forward) - wheel.radius);
        high = std::max(high, Dot(wheel.centre, heading.forward) + wheel.radius);
    }
    for (const DPoint3& p : body.points) {
        low = std::min(low, Dot(p, heading.forward));
        high = std::max(high, Dot(p, heading.forward));
    }
    layout.scale = ChooseScale(model, options, radius, high - low, decisions);
    layout.unitScale = layout.scale * options.unitsPerMetre;
    layout.axleOf = SortByAxle(layout.wheels, heading);
    layout.axleCount = layout.axleOf.back() + 1;
    if (!CheckOptionSizes(options, layout, problem)) return false;
    PlaceOrigin(layout, heading, body, decisions);
    layout.body = SeenFrom(body, layout.frame, layout.unitScale);
    layout.box = BoxOf(layout.body.points);
    return true;
}

}  // namespace tavrik

#include "wizard/springs.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "wizard/step_limits.h"
#include "wizard/tyre_sink.h"

namespace tavrik {
namespace {

// What a car weighs to the box around its body, and a wheel to its cylinder, kg/m^3: 1400 kg in 4.6 x 1.8 x 1.4 m, 20 kg with
// radius 0.32 m and 0.2 m wide.
constexpr double kCarDensity = 120.0, kWheelDensity = 310.0;
// A motorcycle of 200 kg in 0.8 x 1.7 x 1 m: beside its handlebars that box is mostly air, but what is in it is heavy.
constexpr double kBikeDensity = 150.0;
// Of the car: clumsy wheels would otherwise outweigh a toy's body.
constexpr double kMostWheels = 0.25;
// Of the radius: how deep a tyre sinks in at rest.
constexpr double kTyreSink = 0.02;
// The stock car's, to its mass.
constexpr double kSolidityToMass = 2000.0;
// Of the radius: half as wide as tyres that let a bike lean into its turns may be.
constexpr double kMostBikeWidth = 0.2;
constexpr double kBufferToSpring = 4.0;

bool Holds(const std::vector<int>& list, int value) { return std::find(list.begin(), list.end(), value) != list.end(); }

std::string AxlesText(const std::vector<int>& axles) {
    std::vector<std::string> items;
    for (const int axle : axles) items.push_back(std::to_string(axle));
    return items.empty() ? "none" : ListText(items);
}

class SpringPlanner {
 public:
    SpringPlanner(const WizardOptions& options, const Layout& layout, WizardResult& result)
        : options_(options), layout_(layout), result_(result), count_(layout.wheels.size()) {}

    void Run() {
        ChooseAxles();
        ChooseMasses();
        const std::vector<double> shares = ShareLoad(layout_.hubs);
        for (std::size_t i = 0; i < count_; ++i) {
            result_.plan.units.push_back({WheelOf(i), DefaultSuspensionValues(), IdentityDMatrix3()});
            result_.wheels.push_back(Describe(i));
            result_.wheels[i].load = chassisMass_ * shares[i];
            PlaceUnit(i);
        }
        PlanChassis();
        for (std::size_t i = 0; i < count_; ++i) {
            Spring(i);
            Tyre(i);
        }
        Stand();
        Advise();
    }

 private:
    void Decide(const std::string& key, const std::string& value, const std::string& why) {
        result_.decisions.push_back({key, value, why});
    }
    double Metres(double sceneUnits) const { return sceneUnits / options_.unitsPerMetre; }
    double Radius(std::size_t i) const { return layout_.wheels[i].radius * layout_.unitScale; }
    /// The solver's tyre is a ring about a centre line: a section that leaves no ring would be a ball. And a bike turns by
    /// leaning, from which a broad tyre would keep it.
    double HalfWidth(std::size_t i) const {
        const double drawn = layout_.wheels[i].halfWidth * layout_.unitScale;
        const bool mustLean = layout_.isBike && !options_.wheelWidth;
        return std::min(drawn, (mustLean ? kMostBikeWidth : 0.5) * Radius(i));
    }

    void ChooseAxles() {
        const int n = layout_.axleCount;
        const auto choose = [&](const std::optional<std::vector<int>>& told, std::vector<int> found, const char* key,
                                const std::string& why) {
            Decide(key, AxlesText(told ? *told : found), told ? "you said so" : why);
            return told ? *told : found;
        };
        std::vector<int> others;
        for (int axle = 2; axle <= n; ++axle) others.push_back(axle);
        const bool isTowed = options_.tongue.has_value();
        const std::vector<int> first = n > 1 && !isTowed ? std::vector<int>{1} : std::vector<int>{};
        steered_ = choose(options_.steeredAxles, first, "steered axles",
                          isTowed ? "it is towed"
                          : n > 1 ? "the first one steers"
                                  : "a single axle has none to steer against");
        driven_ = choose(options_.drivenAxles, isTowed ? std::vector<int>{} : others, "driven axles",
                         isTowed ? "it is towed"
                         : n > 1 ? "all behind the first drive"
                                 : "a single axle is towed");
        handbrake_ = choose(options_.handbrakeAxles, others, "hand-braked axles", "those that drive mostly are");
    }

    void ChooseMasses() {
        const DPoint3 size = layout_.box.high - layout_.box.low;
        const double volume = Metres(std::max(size.x, 1e-6)) * Metres(std::max(size.y, 1e-6)) * Metres(std::max(size.z, 1e-6));
        const double radius = Metres(Radius(0));
        // A body that is but a frame weighs something too.
        const double density = layout_.isBike ? kBikeDensity : kCarDensity;
        const double guess = std::max(density * volume, 300.0 * radius * radius * radius * double(count_));
        const double mass = options_.mass.value_or(guess);
        Decide("mass", NumberText(mass) + " kg",
               options_.mass ? "you said so" : NumberText(density) + " kg to a cubic metre of the box around its body");
        double all = 0.0;
        for (std::size_t i = 0; i < count_; ++i) {
            const double r = Metres(Radius(i)), w = Metres(layout_.wheels[i].halfWidth * layout_.unitScale);
            wheelMass_.push_back(options_.wheelMass.value_or(kWheelDensity * std::numbers::pi * r * r * 2.0 * w));
            all += wheelMass_.back();
        }
        const double most = kMostWheels * mass;
        // Told wheels may weigh what they like, as long as they leave something to the body.
        const double bound = options_.wheelMass ? 0.9 * mass : most;
        if (all > bound) {
            for (double& one : wheelMass_) one *= bound / all;
            all = bound;
        }
        if (HalfWidth(0) < 0.99 * std::min(layout_.wheels[0].halfWidth * layout_.unitScale, 0.5 * Radius(0))) {
            Decide("tyre width", NumberText(2.0 * Metres(HalfWidth(0))) + " m",
                   "drawn wider, but on broad tyres a bike would stand instead of leaning into its turns");
        }
        Decide("wheel mass", NumberText(all / double(count_)) + " kg each",
               options_.wheelMass ? "you said so, as far as it leaves a body"
                                  : "by their volume, and a quarter of the car at most");
        chassisMass_ = mass - all;
        ChooseMassUnit();
    }

    /// What is rigid has a damping that grows with the root of its stiffness only, so light wheels need a small unit of mass.
    void ChooseMassUnit() {
        const double lightest = *std::min_element(wheelMass_.begin(), wheelMass_.end());
        const double dt = options_.stepSeconds;
        double scale = options_.leastMassScale;
        while (scale < 1e9) {
            const double root = 0.7 * StepLimitDamping(lightest * scale, dt) / 20.0;
            if (root * root >= 0.5 * kSolidityToMass * chassisMass_ * scale) break;
            scale *= 10.0;
        }
        result_.massScale = scale;
        for (double& one : wheelMass_) one *= scale;
        chassisMass_ *= scale;
        if (scale > 1.0) {
            Decide("unit of mass", NumberText(1.0 / scale) + " kg",
                   "with wheels this light the solver's step needs larger numbers; nothing moves differently by it");
        }
    }

    WheelValues WheelOf(std::size_t i) const {
        WheelValues values = DefaultWheelValues();
        values.Radius = float(Radius(i));
        values.Width = float(HalfWidth(i));
        values.Mass = float(wheelMass_[i]);
        return values;
    }

    double SideOf(std::size_t i) const { return layout_.hubs[i].x < -1e-6 * Radius(i) ? -1.0 : 1.0; }

    RiggedWheel Describe(std::size_t i) const {
        RiggedWheel wheel;
        const FoundWheel& found = layout_.wheels[i];
        const int axle = layout_.axleOf[i], last = layout_.axleCount - 1;
        const bool inMiddle = std::abs(layout_.hubs[i].x) < 0.3 * Radius(i);
        const std::string end = axle == 0 ? "front" : axle == last ? "back" : "middle";
        wheel.label =
            (axle > 0 && axle < last && last > 2 ? end + " " + std::to_string(axle) : end) + (inMiddle        ? ""
                                                                                              : SideOf(i) < 0 ? " left"
                                                                                                              : " right");
        wheel.centre = found.centre;
        wheel.axle = layout_.frame.row[0] * SideOf(i);
        wheel.radius = found.radius;
        wheel.halfWidth = found.halfWidth;
        wheel.axleNumber = axle + 1;
        return wheel;
    }

    /// Half the body's width where a wheel sits.
    double BodyHalfWidth(std::size_t i) const {
        double most = 0.0;
        for (const DPoint3& p : layout_.body.points) {
            if (std::abs(p.y - layout_.hubs[i].y) < 2.0 * Radius(i)) most = std::max(most, std::abs(p.x));
        }
        return most > 0.0 ? most : std::max(std::abs(layout_.box.low.x), std::abs(layout_.box.high.x));
    }

    void PlaceUnit(std::size_t i) {
        PlannedUnit& unit = result_.plan.units[i];
        SuspensionValues& values = unit.suspension;
        const int axle = layout_.axleOf[i] + 1;
        values.Steering = Holds(steered_, axle) ? 1 : 0;
        values.Drive = Holds(driven_, axle) ? 1 : 0;
        values.Handbrake = Holds(handbrake_, axle) ? 1 : 0;
        const double out = std::abs(layout_.hubs[i].x), side = SideOf(i);
        const bool inMiddle = out < 0.3 * Radius(i);
        values.Suspension_Type = axle == 1 && !inMiddle && values.Steering != 0 ? kWishbone : kTelescopic;
        double shift = inMiddle ? 0.0 : 0.4 * HalfWidth(i);
        const double body = BodyHalfWidth(i);
        if (values.Suspension_Type == kWishbone) {
            shift = std::min(shift, 0.2 * out);
            const double pivot = std::min(0.5 * out, 0.8 * body);
            values.Length = float(out - shift - pivot);
        } else if (!inMiddle) {
            // The strut stands within the body, but its lever must not get so long that the wheel wags about it.
            shift = std::clamp(out - 0.9 * body, shift, std::max(shift, Radius(i)));
            shift = std::min(shift, 0.9 * out);
        }
        values.Wheel_Shift = float(shift);
        const double reach = RestReach(MakeUnit(unit.wheel, values, unit.frame, 0));
        unit.frame = {
            {{0.0, 0.0, -1.0}, {0.0, side, 0.0}, {side, 0.0, 0.0}, layout_.hubs[i] - DPoint3{side * reach, 0.0, 0.0}}};
    }

    void PlanChassis() {
        ChassisValues& chassis = result_.plan.chassis;
        const DPoint3 size = layout_.box.high - layout_.box.low;
        // Not flatter than the wheels: a plank for a body would spin up at a touch.
        const double least = 0.5 * Radius(0);
        chassis.Width = float(std::max(size.x * 0.5, least));
        chassis.Length = float(std::max(size.y * 0.5, least));
        chassis.Height = float(std::max(size.z * 0.5, least));
        chassis.Mass = float(chassisMass_);
        double still = 0.0, all = 0.0;
        int stillCount = 0;
        for (std::size_t i = 0; i < count_; ++i) {
            all += layout_.hubs[i].y / double(count_);
            if (result_.plan.units[i].suspension.Steering != 0) continue;
            still += layout_.hubs[i].y;
            ++stillCount;
        }
        const double aim = stillCount > 0 ? still / stillCount : all;
        chassis.Rotation_Center_Shift = float(aim / double(chassis.Length) * 100.0);
        Decide("rotation centre", NumberText(double(chassis.Rotation_Center_Shift)) + " % of the length",
               stillCount > 0 ? "steered wheels aim at the middle of the axles that don't steer"
                              : "all axles steer, so they aim amid them");
        std::vector<SuspensionUnit> units;
        for (const PlannedUnit& unit : result_.plan.units)
            units.push_back(MakeUnit(unit.wheel, unit.suspension, unit.frame, 0));
        const double wanted = kSolidityToMass * chassisMass_;
        const double most = StepLimitSolidity(MakeChassisParams(chassis), units, options_.stepSeconds);
        chassis.Solidity = float(std::min(wanted, most));
        Decide("solidity", NumberText(double(chassis.Solidity)),
               wanted <= most ? "2000 to a unit of the body's mass" : "as stiff as the solver's step allows with these wheels");
        Decide("size",
               NumberText(2 * Metres(double(chassis.Width))) + " x " + NumberText(2 * Metres(double(chassis.Length))) + " x " +
                   NumberText(2 * Metres(double(chassis.Height))) + " m",
               "the box around the body without its wheels");
    }

    void Spring(std::size_t i) {
        SuspensionValues& values = result_.plan.units[i].suspension;
        RiggedWheel& wheel = result_.wheels[i];
        const bool isSmall = Metres(Radius(i)) < 0.18;
        // The back swings a little faster, so that after a bump it catches up with the front.
        const double usual = isSmall ? 2.0 : layout_.isBike ? 1.6 : layout_.axleOf[i] == 0 ? 1.35 : 1.45;
        const double frequency = options_.frequency.value_or(usual), ratio = options_.dampingRatio.value_or(0.3);
        //   k = m (2 pi f)^2,  c = 2 z sqrt(k m),  preload = m g / k: at zero travel the spring carries its load
        const double omega = 2.0 * std::numbers::pi * frequency;
        const double stiffness = wheel.load * omega * omega;
        const double preload = options_.gravity / (omega * omega);
        values.Ruggedness = float(stiffness);
        values.Shift = float(preload);
        values.Damping = float(2.0 * ratio * wheel.load * omega);
        values.Buffer_Ruggedness = float(kBufferToSpring * stiffness);
        const double room = std::clamp(ArchRoom(i), 0.15 * Radius(i), 0.3 * Radius(i));
        values.Top_Stop = float(room);
        values.Bottom_Stop = float(-std::min(0.3 * Radius(i), 0.9 * preload));
        wheel.frequency = std::sqrt(double(values.Ruggedness) / wheel.load) / (2.0 * std::numbers::pi);
        wheel.dampingRatio = double(values.Damping) / (2.0 * std::sqrt(double(values.Ruggedness) * wheel.load));
        Decide("spring." + wheel.label,
               NumberText(wheel.frequency) + " Hz, damping ratio " + NumberText(wheel.dampingRatio) + ", " +
                   (values.Suspension_Type == kWishbone ? "wishbone" : "telescopic"),
               "it carries " + NumberText(wheel.load / result_.massScale) + " kg at zero travel by a preload of " +
                   NumberText(Metres(preload)) + " m; the wheel may move " + NumberText(Metres(room)) + " m up and " +
                   NumberText(Metres(-double(values.Bottom_Stop))) + " m down");
    }

    /// How far a wheel can go up before its top meets the body.
    double ArchRoom(std::size_t i) const {
        const DPoint3& hub = layout_.hubs[i];
        double least = 1e300;
        for (const double dy : {-0.4, 0.0, 0.4}) {
            for (const double dx : {-0.5, 0.0, 0.5}) {
                const DPoint3 at = hub + DPoint3{dx * HalfWidth(i), dy * Radius(i), 0.0};
                const double skin = Radius(i) * std::sqrt(1.0 - dy * dy);
                // What is lower is drawn through the wheel and stops nothing.
                least = std::min(least, HeightAbove(at + DPoint3{0, 0, 0.95 * skin}) - 0.05 * skin);
            }
        }
        return least;
    }

    /// How far above `p` the body is; far away where there is nothing.
    double HeightAbove(const DPoint3& p) const {
        double least = 1e300;
        for (const MeshFace& face : layout_.body.faces) {
            const DPoint3 a = layout_.body.points[face.v[0]] - p, b = layout_.body.points[face.v[1]] - p,
                          c = layout_.body.points[face.v[2]] - p;
            //   p lies under the triangle where the three areas seen from above have one sign; they weigh the heights
            const double u = b.x * c.y - b.y * c.x, v = c.x * a.y - c.y * a.x, w = a.x * b.y - a.y * b.x;
            const bool isUnder = (u >= 0 && v >= 0 && w >= 0) || (u <= 0 && v <= 0 && w <= 0);
            if (!isUnder || u + v + w == 0.0) continue;
            const double height = (u * a.z + v * b.z + w * c.z) / (u + v + w);
            if (height > 0.0) least = std::min(least, height);
        }
        return least;
    }

    void Tyre(std::size_t i) {
        WheelValues& values = result_.plan.units[i].wheel;
        RiggedWheel& wheel = result_.wheels[i];
        const double force = (wheel.load + wheelMass_[i]) * options_.gravity;
        const double wanted = force / TyreForce(Radius(i), HalfWidth(i), kTyreSink * Radius(i));
        const double most = StepLimitTyre(wheelMass_[i], options_.stepSeconds);
        values.Ruggedness = float(std::min(wanted, most));
        wheel.tyreSink = TyreSink(Radius(i), HalfWidth(i), double(values.Ruggedness), force);
        Decide("tyre." + wheel.label,
               NumberText(double(values.Ruggedness)) + ", sinks in " + NumberText(Metres(wheel.tyreSink)) + " m",
               wanted <= most ? "in proportion to its load" : "as stiff as the solver's step allows with so light a wheel");
    }

    void Stand() {
        // Axles that sink in by different depths tip the car; its middle lies between.
        double height = 0.0;
        const std::vector<double> shares = ShareLoad(layout_.hubs);
        for (std::size_t i = 0; i < count_; ++i) {
            height += shares[i] * (Radius(i) - layout_.hubs[i].z - result_.wheels[i].tyreSink);
        }
        result_.plan.standingHeight = height;
    }

    /// What a car of these wheels weighs against a pull, and what its tyres take from that.
    struct Going {
        double mass = 0.0;   // with that of the wheels' spin
        double drag = 0.0;   // force to speed
        double pull = 0.0;   // of the driven wheels, to throttle times sensitivity
        double reach = 0.0;  // of all wheels' radii
    };

    Going HowItGoes() const {
        Going going;
        going.mass = chassisMass_ + options_.towedMass * result_.massScale;
        for (std::size_t i = 0; i < count_; ++i) {
            const PlannedUnit& unit = result_.plan.units[i];
            const double r = Radius(i), w = HalfWidth(i), sink = result_.wheels[i].tyreSink;
            // The solver's wheel has its mass in the corners of a box: its spin weighs twice as much again.
            going.mass += 3.0 * wheelMass_[i];
            going.drag += MakeUnit(unit.wheel, unit.suspension, unit.frame, 0).wheelDamping * TyreDrag(r, w, sink);
            going.reach += r;
            if (unit.suspension.Drive != 0) going.pull += r * TyreTouch(r, w, sink);
        }
        return going;
    }

    void Advise() {
        // The stock car with its own settings, throttle 5000 and brake 2000, goes 1240 cm/s after 4 s of full throttle, which
        // is 4, and brakes four wheels of radius 32 under 1340 kg and 180 kg of spin.
        constexpr double kStockSpeed = 1240.0, kSeconds = 4.0, kFullThrottle = 4.0;
        constexpr double kStockBrake = 2000.0 * 4 * 32.0 / 1520.0;
        // Of the damping that the rays' angles give: where a tyre would be pulled, it lets go.
        constexpr double kDragShare = 0.75;
        const Going going = HowItGoes();
        //   m dv/dt = F - c v:  v = F / m (1 - exp(-l t)) / l,  l = c / m
        const double rate = std::max(kDragShare * going.drag / going.mass, 1e-9);
        const double speed = kFullThrottle * going.pull / going.mass * -std::expm1(-rate * kSeconds) / rate;
        // Lengths of a scene in another unit pull as hard to the eye when force grows with them.
        const double unit = options_.unitsPerMetre / 100.0;
        DriveAdvice& advice = result_.advice;
        advice.throttleSensitivity = speed > 0.0 ? float(kStockSpeed * unit / speed) : 0.0f;
        advice.brakeSensitivity = float(kStockBrake * unit * going.mass / going.reach);
        advice.bikeDrive = layout_.isBike;
        advice.balanceForce = layout_.isBike ? 3.0f : 2.0f;
        Decide("throttle", NumberText(double(advice.throttleSensitivity)),
               speed > 0.0 ? options_.towedMass > 0.0 ? "with what it tows, it pulls away as the stock car does alone"
                                                      : "it pulls away as the stock car does"
                           : "no wheel drives");
    }

    const WizardOptions& options_;
    const Layout& layout_;
    WizardResult& result_;
    const std::size_t count_;
    std::vector<int> steered_, driven_, handbrake_;
    std::vector<double> wheelMass_;
    double chassisMass_ = 0.0;
};

}  // namespace

void PlanSprings(const WizardOptions& options, const Layout& layout, WizardResult& result) {
    SpringPlanner(options, layout, result).Run();
}

}  // namespace tavrik

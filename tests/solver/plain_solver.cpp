#include "tests/solver/plain_solver.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace tavrik::test::plain {
namespace {

struct Vec {
    double x, y, z;
};

Vec From(const DPoint3& p) { return {p.x, p.y, p.z}; }
Vec Widen(const Point3& p) { return {double(p.x), double(p.y), double(p.z)}; }
Point3 Narrow(Vec a) { return {float(a.x), float(a.y), float(a.z)}; }
void Put(DPoint3& to, Vec a) {
    to.x = a.x;
    to.y = a.y;
    to.z = a.z;
}

Vec Add(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec Sub(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec Neg(Vec a) { return {-a.x, -a.y, -a.z}; }
Vec Scale(Vec a, double s) { return {a.x * s, a.y * s, a.z * s}; }
Vec Divide(Vec a, double s) { return {a.x / s, a.y / s, a.z / s}; }
double Inner(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec Outer(Vec a, Vec b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double Norm(Vec a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }
Vec Unit(Vec a) {
    const double norm = Norm(a);
    if (norm > 0.0) return Divide(a, norm);
    return a;
}

/// Rows 0..2 are axes, row 3 the place.
using Mat = std::array<Vec, 4>;

Mat From(const DMatrix3& m) { return {From(m.row[0]), From(m.row[1]), From(m.row[2]), From(m.row[3])}; }
void Put(DMatrix3& to, const Mat& m) {
    for (std::size_t r = 0; r < 4; ++r) Put(to.row[r], m[r]);
}

Vec Through(Vec p, const Mat& m) {
    Vec sum = Scale(m[0], p.x);
    sum = Add(sum, Scale(m[1], p.y));
    sum = Add(sum, Scale(m[2], p.z));
    return Add(sum, m[3]);
}

Mat Then(const Mat& a, const Mat& b) {
    Mat result{};
    for (std::size_t r = 0; r < 3; ++r) result[r] = Add(Add(Scale(b[0], a[r].x), Scale(b[1], a[r].y)), Scale(b[2], a[r].z));
    result[3] = Through(a[3], b);
    return result;
}

Mat Still(Mat m) {
    m[3] = {0.0, 0.0, 0.0};
    return m;
}

Mat Inverted(const Mat& m) {
    const double m00 = m[0].x, m01 = m[0].y, m02 = m[0].z;
    const double m10 = m[1].x, m11 = m[1].y, m12 = m[1].z;
    const double m20 = m[2].x, m21 = m[2].y, m22 = m[2].z;
    const double det = m00 * (m11 * m22 - m12 * m21) + m10 * (m21 * m02 - m22 * m01) + m20 * (m01 * m12 - m02 * m11);
    Mat result{};
    result[0] = {(m11 * m22 - m12 * m21) / det, (m21 * m02 - m22 * m01) / det, (m01 * m12 - m02 * m11) / det};
    result[1] = {(m12 * m20 - m10 * m22) / det, (m22 * m00 - m20 * m02) / det, (m02 * m10 - m00 * m12) / det};
    result[2] = {(m10 * m21 - m11 * m20) / det, (m20 * m01 - m21 * m00) / det, (m00 * m11 - m01 * m10) / det};
    const Vec t = m[3];
    result[3] = Neg(Add(Add(Scale(result[0], t.x), Scale(result[1], t.y)), Scale(result[2], t.z)));
    return result;
}

struct Inertia {
    Mat tensor;  // inverse
    double perMass;
};

Inertia OfBox(Vec h, double mass, const Mat& frame) {
    const Mat turn = Still(frame);
    double sum[3][3] = {};
    for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 2; ++j) {
            for (int k = 0; k < 2; ++k) {
                const Vec r = Through({(2 * i - 1) * h.x, (2 * j - 1) * h.y, (2 * k - 1) * h.z}, turn);
                sum[0][0] += r.y * r.y + r.z * r.z;
                sum[0][1] += -r.x * r.y;
                sum[0][2] += -r.x * r.z;
                sum[1][0] += -r.x * r.y;
                sum[1][1] += r.x * r.x + r.z * r.z;
                sum[1][2] += -r.y * r.z;
                sum[2][0] += -r.x * r.z;
                sum[2][1] += -r.y * r.z;
                sum[2][2] += r.x * r.x + r.y * r.y;
            }
        }
    }
    const double share = mass * 0.125;
    Mat tensor{};
    for (std::size_t r = 0; r < 3; ++r) tensor[r] = {sum[r][0] * share, sum[r][1] * share, sum[r][2] * share};
    return {Inverted(tensor), 1.0 / mass};
}

void Push(RigidBody& body, Vec point, Vec impulse) {
    const Vec lever = Sub(point, From(body.frame.row[3]));
    Put(body.angularMomentum, Add(From(body.angularMomentum), Outer(lever, impulse)));
    Put(body.momentum, Add(From(body.momentum), impulse));
}

void Twist(RigidBody& body, Vec impulse) { Put(body.angularMomentum, Add(From(body.angularMomentum), impulse)); }

Vec SpeedAt(const RigidBody& body, Vec point) {
    const Vec lever = Sub(point, From(body.frame.row[3]));
    return Add(From(body.velocity), Outer(From(body.angularVelocity), lever));
}

void Refresh(RigidBody& body, const Inertia& inertia) {
    Put(body.angularVelocity, Through(From(body.angularMomentum), inertia.tensor));
    Put(body.velocity, Scale(From(body.momentum), inertia.perMass));
}

void Move(RigidBody& body, double dt) {
    Mat frame = From(body.frame);
    const Vec position = frame[3];
    frame[3] = {0.0, 0.0, 0.0};
    const Vec w = From(body.angularVelocity);
    const double a = dt * 0.20000000298023224;
    Mat turn = {Vec{1, 0, 0}, Vec{0, 1, 0}, Vec{0, 0, 1}, Vec{0, 0, 0}};
    double s = std::sin(w.x * a), c = std::cos(w.x * a);
    for (std::size_t r = 0; r < 3; ++r) {
        const Vec v = turn[r];
        turn[r] = {v.x, c * v.y - s * v.z, s * v.y + c * v.z};
    }
    s = std::sin(w.y * a), c = std::cos(w.y * a);
    for (std::size_t r = 0; r < 3; ++r) {
        const Vec v = turn[r];
        turn[r] = {c * v.x + s * v.z, v.y, c * v.z - s * v.x};
    }
    s = std::sin(w.z * a), c = std::cos(w.z * a);
    for (std::size_t r = 0; r < 3; ++r) {
        const Vec v = turn[r];
        turn[r] = {c * v.x - s * v.y, s * v.x + c * v.y, v.z};
    }
    for (int k = 0; k < 5; ++k) frame = Then(frame, turn);
    frame[3] = Add(position, Scale(From(body.velocity), dt));
    Put(body.frame, frame);
}

struct Touch {
    bool hit = false;
    Vec point{}, direction{};
    double depth = 0.0;
};

struct UnitState {
    Inertia inertia;
    std::array<Touch, 16> touches;
    Mat attachment;
    Vec hub, slide, lateral, spin, align, drive, brake;
    double travel, radius2, alignDamping;
};

struct CarState {
    Inertia chassis;
    std::vector<UnitState> units;
    std::vector<std::array<Touch, 12>> spheres;
    double steer;
    Vec centre;
    double solidity, solidityDamping, maxDrift;
};

constexpr double kPi = 3.1415927410125732;  // single-precision pi

std::array<Touch, 16> FeelWithWheel(const SuspensionUnit& unit, const SurfaceTree& surface, const RigidBody& wheel,
                                    RandomStream& random) {
    const double r1 = random.Rand01();
    const double r2 = random.Rand01();
    const Mat frame = From(wheel.frame);
    const Mat turn = Still(frame);
    const double ringRadius = unit.Radius - unit.Width;
    std::array<Touch, 16> touches;
    std::size_t at = 0;
    for (int ring = -1; ring <= 0; ++ring) {
        const double phi = (double(ring) + r2) * 0.5 * kPi;
        double s = std::sin(phi), k = std::cos(phi);
        const float fourth = float(k * k * k * k + s * s * s * s);
        const double e = double(std::sqrt(std::sqrt(fourth)));
        s = s / e;
        k = k / e;
        const Vec m = Unit({k * k * k, s * s * s, 0.0});
        for (int j = 0; j < 8; ++j, ++at) {
            const double theta = (double(j) + r1) * 0.25 * kPi;
            const double st = std::sin(theta), ct = std::cos(theta);
            const Vec reach = Through({st * k * unit.Width, ct * k * unit.Width, s * unit.Width}, turn);
            const Vec start = Through({st * ringRadius, ct * ringRadius, 0.0}, frame);
            SurfaceRay ray;
            ray.Set(Narrow(start), Narrow(reach), 0.0f, 1.0f);
            if (!surface.Intersect(ray)) continue;
            const float t = ray.tmax;
            const Point3 place = {ray.org.x + ray.dir.x * t, ray.org.y + ray.dir.y * t, ray.org.z + ray.dir.z * t};
            touches[at].hit = true;
            touches[at].direction = Through({st * m.x, ct * m.x, m.y}, turn);
            touches[at].point = Widen(place);
            touches[at].depth = double(1.0f - t) * Norm(reach);
        }
    }
    return touches;
}

Vec RandomDirection(RandomStream& random) {
    for (;;) {
        const double x = 2.0 * random.Rand01() - 1.0;
        const double y = 2.0 * random.Rand01() - 1.0;
        const double z = 2.0 * random.Rand01() - 1.0;
        const Vec v = {x, y, z};
        const double square = Inner(v, v);
        if (square >= 0.5 && square <= 1.0) return Divide(v, Norm(v));
    }
}

Mat RandomTurn(RandomStream& random) {
    const Vec v = RandomDirection(random);
    Vec u = RandomDirection(random);
    for (int i = 0; i < 2; ++i) {
        u = Sub(u, Scale(v, Inner(v, u)));
        u = Unit(u);
    }
    return {v, u, Outer(v, u), Vec{0, 0, 0}};
}

constexpr Vec kVertices[12] = {{0, 0, 1},
                               {0.894427, 0, 0.447214},
                               {0.276393, 0.850651, 0.447214},
                               {-0.723607, 0.525731, 0.447214},
                               {-0.723607, -0.525731, 0.447214},
                               {0.276393, -0.850651, 0.447214},
                               {0.723607, 0.525731, -0.447214},
                               {-0.276393, 0.850651, -0.447214},
                               {-0.894427, 0, -0.447214},
                               {-0.276393, -0.850651, -0.447214},
                               {0.723607, -0.525731, -0.447214},
                               {0, 0, -1}};

std::array<Touch, 12> FeelWithSphere(const CollisionSphere& sphere, const SurfaceTree& surface, const RigidBody& chassis,
                                     RandomStream& random) {
    const Mat turn = RandomTurn(random);
    const Vec centre = Then(From(sphere.frame), From(chassis.frame))[3];
    std::array<Touch, 12> touches;
    for (std::size_t k = 0; k < 12; ++k) {
        const Vec reach = Scale(Through(kVertices[k], turn), sphere.Radius);
        SurfaceRay ray;
        ray.Set(Narrow(centre), Narrow(reach), 0.0f, 1.0f);
        if (!surface.Intersect(ray)) continue;
        const float t = ray.tmax;
        const Point3 d = ray.dir;
        const float length = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
        const Point3 direction = length > 0.0f ? Point3{d.x / length, d.y / length, d.z / length} : d;
        const Point3 place = {ray.org.x + d.x * t, ray.org.y + d.y * t, ray.org.z + d.z * t};
        touches[k].hit = true;
        touches[k].direction = Widen(direction);
        touches[k].point = Widen(place);
        touches[k].depth = double(1.0f - t) * sphere.Radius;
    }
    return touches;
}

template <std::size_t N>
void PressOnGround(RigidBody& body, const std::array<Touch, N>& touches, double stiffness, double damping, double friction,
                   double w) {
    for (const Touch& touch : touches) {
        if (!touch.hit) continue;
        const Vec n = touch.direction;
        const Vec v = SpeedAt(body, touch.point);
        const double vn = Inner(v, n);
        const double fn = touch.depth * stiffness + vn * damping;
        if (!(fn > 0.0)) continue;
        const Vec tangent = Unit(Sub(v, Scale(n, vn)));
        const Vec impulse = Scale(Neg(Add(n, Scale(tangent, friction))), fn * w);
        Push(body, touch.point, impulse);
    }
}

double SlowestSlide(const RigidBody& wheel, const std::array<Touch, 16>& touches) {
    const Vec axle = From(wheel.frame.row[2]);
    double best = 1e9;
    for (const Touch& touch : touches) {
        if (!touch.hit) continue;
        Vec v = SpeedAt(wheel, touch.point);
        v = Sub(v, Scale(touch.direction, Inner(touch.direction, v)));
        v = Sub(v, Scale(axle, Inner(v, axle)));
        if (best > Inner(v, v)) best = Inner(v, v);
    }
    return double(std::sqrt(float(best)));
}

void Steer(CarState& car, const CarRig& rig, const DriveInput& input) {
    const Mat frame = From(rig.chassisBody.frame);
    if (input.bikeDrive == 0) {
        car.steer = rig.steerValue;
    } else {
        const double lean = Inner(frame[0], {frame[2].x, frame[2].y, 0.0});
        const double forward = std::fabs(Inner(From(rig.chassisBody.velocity), frame[1]));
        const double fade = forward / rig.chassisParams.Length * 0.10000000149011612 + 1.0;
        car.steer = -rig.steerValue + lean * double(input.balanceForce) / fade;
    }
    if (std::fabs(car.steer) < 1e-5) car.steer = car.steer > 0.0 ? 1e-5 : -1e-5;
    const double length = rig.chassisParams.Length;
    car.centre = Through({length * 1.4 / std::tan(car.steer), length * rig.chassisParams.RotationCenterShift, 0.0}, frame);
}

void Derive(CarState& car, UnitState& state, const SuspensionUnit& unit, const RigidBody& wheel, const RigidBody& chassis) {
    state.radius2 = unit.Radius * unit.Radius;
    state.attachment = Then(From(unit.frame), From(chassis.frame));
    const Vec travelAxis = state.attachment[0], pivot = state.attachment[1], out = state.attachment[2];
    state.hub = Through({0.0, 0.0, -unit.Wheel_Shift}, From(wheel.frame));
    const Vec arm = Sub(state.attachment[3], state.hub);
    if (unit.Suspension_Type != 0) {
        state.slide = Neg(travelAxis);
        state.lateral = Sub(arm, Scale(travelAxis, Inner(travelAxis, arm)));
    } else {
        const Vec u = Unit(Sub(arm, Scale(pivot, Inner(arm, pivot))));
        state.slide = Outer(pivot, u);
        state.lateral = Sub(arm, Scale(u, unit.Length));
    }
    state.travel = Inner(arm, travelAxis);
    if (unit.Steering != 0) {
        Vec d = Sub(state.hub, car.centre);
        d = Sub(d, Scale(travelAxis, Inner(travelAxis, d)));
        d = Unit(d);
        if (Inner(out, From(chassis.frame.row[0])) * car.steer > 0.0) d = Neg(d);
        state.spin = d;
    } else {
        state.spin = out;
    }
    const double q = state.radius2 * car.solidity;
    state.align = Outer(From(wheel.frame.row[2]), Scale(state.spin, q));
    state.alignDamping = std::sqrt(q) * 100.0;
}

void Motor(const CarState& car, UnitState& state, const SuspensionUnit& unit, const RigidBody& wheel, const RigidBody& chassis,
           const DriveInput& input) {
    state.drive = {0.0, 0.0, 0.0};
    if (unit.Drive != 0 && car.maxDrift > SlowestSlide(wheel, state.touches)) {
        Vec t = Scale(state.spin, state.radius2);
        t = Scale(t, double(input.throttle));
        t = Scale(t, double(input.throttleSensitivity));
        if (Inner(state.attachment[2], From(chassis.frame.row[0])) < 0.0) t = Neg(t);
        Vec d = Scale(state.spin, state.radius2);
        d = Scale(d, double(input.steerRatio));
        d = Scale(d, double(input.differentialSensitivity));
        state.drive = input.reverse == 0 ? Sub(t, d) : Add(t, d);
    }
    double amount = double(input.brake);
    if (unit.Handbrake == 0 && input.handBrake != 0) amount = 0.0;
    state.brake = Scale(Scale(Scale(state.spin, state.radius2), amount), double(input.brakeSensitivity));
}

Inertia OfChassis(const CarRig& rig) {
    const ChassisParams& p = rig.chassisParams;
    return OfBox({p.Width * 0.5, p.Length * 0.5, p.Height * 0.5}, p.Mass, From(rig.chassisBody.frame));
}

CarState MoveCar(CarRig& rig, const SurfaceTree& surface, const DriveInput& input, double dt, RandomStream& random) {
    CarState car{};
    car.units.resize(std::size_t(rig.unitCount));
    car.spheres.resize(std::size_t(rig.sphereCount));
    car.chassis = OfChassis(rig);
    Refresh(rig.chassisBody, car.chassis);
    for (std::size_t i = 0; i < car.units.size(); ++i) {
        const SuspensionUnit& unit = rig.units[i];
        Move(rig.wheelBodies[i], dt);
        car.units[i].inertia = OfBox({unit.Radius, unit.Radius, unit.Width}, unit.Mass, From(rig.wheelBodies[i].frame));
        Refresh(rig.wheelBodies[i], car.units[i].inertia);
    }
    Move(rig.chassisBody, dt);
    car.chassis = OfChassis(rig);
    Refresh(rig.chassisBody, car.chassis);
    for (std::size_t i = 0; i < car.units.size(); ++i)
        car.units[i].touches = FeelWithWheel(rig.units[i], surface, rig.wheelBodies[i], random);
    for (std::size_t i = 0; i < car.spheres.size(); ++i)
        car.spheres[i] = FeelWithSphere(rig.spheres[i], surface, rig.chassisBody, random);
    Steer(car, rig, input);
    car.solidity = rig.chassisParams.Solidity;
    car.solidityDamping = std::sqrt(car.solidity) * 20.0;
    car.maxDrift = double(input.maxDriftSpeed);
    for (std::size_t i = 0; i < car.units.size(); ++i) {
        Derive(car, car.units[i], rig.units[i], rig.wheelBodies[i], rig.chassisBody);
        Motor(car, car.units[i], rig.units[i], rig.wheelBodies[i], rig.chassisBody, input);
    }
    return car;
}

void Hold(const CarState& car, const UnitState& state, const SuspensionUnit& unit, RigidBody& wheel, RigidBody& chassis,
          double& bufferPosition, double w) {
    const double rounded = double(float(w));

    const Vec dv = Sub(SpeedAt(chassis, state.hub), SpeedAt(wheel, state.hub));
    const double along = Inner(dv, state.slide);
    const Vec perp = Sub(dv, Scale(state.slide, along));
    Vec force = Add(Scale(state.lateral, car.solidity), Scale(perp, car.solidityDamping));
    const double rate = -along;
    const double buffer = (state.travel - bufferPosition) * unit.Buffer_Ruggedness;
    bufferPosition += buffer / unit.Damping * w;
    const double spring = buffer + (state.travel + unit.Shift) * unit.Ruggedness;
    double stop = 0.0;
    if (state.travel > unit.Top_Stop) {
        stop = (state.travel - unit.Top_Stop) * car.solidity + rate * car.solidityDamping;
        if (stop < 0.0) stop = 0.0;
    }
    if (unit.Bottom_Stop > state.travel) {
        stop = (state.travel - unit.Bottom_Stop) * car.solidity + rate * car.solidityDamping;
        if (stop > 0.0) stop = 0.0;
    }
    force = Sub(force, Scale(state.slide, spring + stop));
    force = Scale(force, rounded);
    Push(chassis, state.hub, Neg(force));
    Push(wheel, state.hub, force);

    Vec torque = state.drive;
    const Vec dw = Sub(From(chassis.angularVelocity), From(wheel.angularVelocity));
    torque = Inner(state.spin, dw) < 0.0 ? Add(torque, state.brake) : Sub(torque, state.brake);
    const Vec perpw = Sub(dw, Scale(state.spin, Inner(dw, state.spin)));
    torque = Sub(torque, Add(state.align, Scale(perpw, state.alignDamping)));
    torque = Scale(torque, rounded);
    Twist(wheel, Neg(torque));
    Twist(chassis, torque);
}

void Relax(const CarState& car, CarRig& rig, double w, double gravity) {
    for (std::size_t i = 0; i < car.units.size(); ++i) {
        RigidBody& wheel = rig.wheelBodies[i];
        Push(wheel, From(wheel.frame.row[3]), {0.0, 0.0, -gravity * rig.units[i].Mass * w});
    }
    RigidBody& chassis = rig.chassisBody;
    Push(chassis, From(chassis.frame.row[3]), {0.0, 0.0, -gravity * rig.chassisParams.Mass * w});
    for (std::size_t i = 0; i < car.units.size(); ++i) {
        const SuspensionUnit& unit = rig.units[i];
        Hold(car, car.units[i], unit, rig.wheelBodies[i], chassis, rig.bufferPosition[i], w);
        PressOnGround(rig.wheelBodies[i], car.units[i].touches, unit.wheelRuggedness, unit.wheelDamping, unit.Grip, w);
    }
    for (std::size_t i = 0; i < car.spheres.size(); ++i) {
        const CollisionSphere& sphere = rig.spheres[i];
        PressOnGround(chassis, car.spheres[i], sphere.Ruggedness, sphere.damping, sphere.Grip, w);
    }
}

void Pull(const HitchJoint& joint, double w) {
    const Vec a = Through(From(joint.localA), From(joint.bodyA->frame));
    const Vec b = Through(From(joint.localB), From(joint.bodyB->frame));
    const Vec d = Sub(b, a);
    const Vec dv = Sub(SpeedAt(*joint.bodyB, b), SpeedAt(*joint.bodyA, a));
    const Vec f = Scale(Add(Scale(dv, joint.damping), Scale(d, joint.stiffness)), w);
    Push(*joint.bodyA, a, f);
    Push(*joint.bodyB, b, Neg(f));
}

void Shove(const PushForce& push, double time, double w) {
    const TimeValue tick = TimeValue(time * 4800.0);
    const Matrix3 tm = push.source->GetObjectTM(tick);
    const float m = push.source->PushMagnitude(tick);
    const Point3 f = {tm.row[1].x * m, tm.row[1].y * m, tm.row[1].z * m};
    Push(*push.body, Widen(tm.row[3]), Scale(Widen(f), w));
}

void TurnSteeringWheel(double& value, double target, double dt, double rate) {
    double step = rate;
    if (target < 0.0 && value > 0.0) step = rate * 2.0;
    if (target > 0.0 && value < 0.0) step = rate * 2.0;
    step = step * (dt * 0.03);
    if (step > std::fabs(target - value))
        value = target;
    else if (value > target)
        value -= step;
    else
        value += step;
}

}  // namespace

void Step(World& world, double time, double dt, const SurfaceTree& surface, double gravity, const DriveInput& input) {
    if (!world.rigs.empty()) {
        CarRig& first = *world.rigs[0];
        const double speed = Norm(From(first.chassisBody.velocity));
        const float factor = float(speed / first.chassisParams.Length * 0.15000000596046448 + 1.0);
        const float rate = input.rudderSensitivity / factor;
        TurnSteeringWheel(first.steerValue, double(input.steerTarget), dt, double(rate));
    }
    std::vector<CarState> cars;
    for (CarRig* rig : world.rigs) cars.push_back(MoveCar(*rig, surface, input, dt, world.random));
    double w = dt * 0.3;
    for (int pass = 0; pass < 10; ++pass) {
        for (std::size_t c = 0; c < cars.size(); ++c) Relax(cars[c], *world.rigs[c], w, gravity);
        for (const HitchJoint& joint : world.joints) Pull(joint, w);
        for (const PushForce& push : world.pushes) Shove(push, time, w);
        for (std::size_t c = 0; c < cars.size(); ++c) {
            CarRig& rig = *world.rigs[c];
            Refresh(rig.chassisBody, cars[c].chassis);
            for (std::size_t i = 0; i < cars[c].units.size(); ++i) Refresh(rig.wheelBodies[i], cars[c].units[i].inertia);
        }
        w = w * 0.7;
    }
}

}  // namespace tavrik::test::plain

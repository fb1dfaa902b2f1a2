#include "host/sdk/prs_control.h"

#include <algorithm>
#include <cmath>

namespace tavrik_host {
namespace {

Point3 Blend(const Point3& a, const Point3& b, double part) { return a + (b - a) * float(part); }

/// At length 1; without a direction it turns nothing.
Rotation Unit(const Rotation& q) {
    const double x = double(q.x), y = double(q.y), z = double(q.z), w = double(q.w);
    const double length = std::sqrt(x * x + y * y + z * z + w * w);
    if (!(length > 0.0)) return {0, 0, 0, 1};
    return {float(x / length), float(y / length), float(z / length), float(w / length)};
}

/// At a steady pace along the arc between the two (Shoemake, "Animating Rotation with Quaternion Curves", 1985).
Rotation Blend(const Rotation& from, const Rotation& to, double part) {
    const Rotation a = Unit(from), b = Unit(to);
    double cosine =
        double(a.x) * double(b.x) + double(a.y) * double(b.y) + double(a.z) * double(b.z) + double(a.w) * double(b.w);
    // A rotation and its opposite turn alike; the nearer of the two is the short way.
    const double side = cosine < 0.0 ? -1.0 : 1.0;
    cosine *= side;
    double wa = 1.0 - part, wb = part;
    constexpr double kNearlyAlike = 0.9999;  // below a hundredth of a turn arc and chord are the same, and the sine gets small
    if (cosine < kNearlyAlike) {
        const double angle = std::acos(cosine);
        wa = std::sin((1.0 - part) * angle) / std::sin(angle);
        wb = std::sin(part * angle) / std::sin(angle);
    }
    wb *= side;
    return Unit({float(double(a.x) * wa + double(b.x) * wb), float(double(a.y) * wa + double(b.y) * wb),
                 float(double(a.z) * wa + double(b.z) * wb), float(double(a.w) * wa + double(b.w) * wb)});
}

template <typename Value>
Value ValueAt(const KeyTrack<Value>& track, const Value& rest, TimeValue t) {
    const auto& keys = track.keys;
    if (keys.empty()) return rest;
    const auto after =
        std::upper_bound(keys.begin(), keys.end(), t, [](TimeValue tick, const Key<Value>& key) { return tick < key.tick; });
    if (after == keys.begin()) return after->value;
    const auto before = after - 1;
    if (after == keys.end() || before->tick == t || track.curve == KeyCurve::Step) return before->value;
    // In double: ticks may lie further apart than their type can tell.
    const double part = (double(t) - double(before->tick)) / (double(after->tick) - double(before->tick));
    return Blend(before->value, after->value, part);
}

Matrix3 Compose(const Point3& position, const Rotation& rotation, const Point3& scale) {
    const Rotation q = Unit(rotation);
    const float x = q.x, y = q.y, z = q.z, w = q.w;
    Matrix3 m(FALSE);
    m.SetRow(0, Point3(1.0f - 2.0f * (y * y + z * z), 2.0f * (x * y + w * z), 2.0f * (x * z - w * y)) * scale.x);
    m.SetRow(1, Point3(2.0f * (x * y - w * z), 1.0f - 2.0f * (x * x + z * z), 2.0f * (y * z + w * x)) * scale.y);
    m.SetRow(2, Point3(2.0f * (x * z + w * y), 2.0f * (y * z - w * x), 1.0f - 2.0f * (x * x + y * y)) * scale.z);
    m.SetRow(3, position);
    return m;
}

class PrsControlDesc final : public ClassDesc {
 public:
    int IsPublic() override { return 1; }
    void* Create(BOOL) override { return new PrsControl; }
    const MCHAR* ClassName() override { return L"Position/Rotation/Scale"; }
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return {PRS_CONTROL_CLASS_ID, 0}; }
    const MCHAR* Category() override { return L""; }
};

}  // namespace

void PrsControl::SetLocal(const Matrix3& local) {
    local_ = local;
    KeysChanged();
}

bool PrsControl::HasKeys() const { return !position.keys.empty() || !rotation.keys.empty() || !scale.keys.empty(); }

void PrsControl::KeysChanged() { NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE); }

Matrix3 PrsControl::LocalAt(TimeValue t) const {
    if (!HasKeys()) return local_;
    return Compose(ValueAt(position, restPosition, t), ValueAt(rotation, restRotation, t), ValueAt(scale, restScale, t));
}

// A product with the identity may turn -0 into 0. A node without a parent is to stand where it was put, to the bit.

void PrsControl::GetValue(TimeValue t, void* val, Interval& valid, GetSetMethod method) {
    auto& frame = *static_cast<Matrix3*>(val);
    const Matrix3 local = LocalAt(t);
    frame = method == CTRL_ABSOLUTE || frame == Matrix3(TRUE) ? local : local * frame;
    if (HasKeys()) valid &= Interval(t, t);
}

void PrsControl::SetValue(TimeValue, void* val, int, GetSetMethod) {
    if (HasKeys()) return;
    const auto& packet = *static_cast<const SetXFormPacket*>(val);
    SetLocal(packet.tmParent == Matrix3(TRUE) ? packet.tmAxis : packet.tmAxis * Inverse(packet.tmParent));
}

void PrsControl::Copy(Control* from) {
    if (const auto* const other = dynamic_cast<const PrsControl*>(from)) {
        position = other->position;
        rotation = other->rotation;
        scale = other->scale;
        restPosition = other->restPosition;
        restRotation = other->restRotation;
        restScale = other->restScale;
        SetLocal(other->local_);
        return;
    }
    if (from == nullptr) return;
    Matrix3 frame(TRUE);
    Interval valid = FOREVER;
    from->GetValue(GetCOREInterface()->GetTime(), &frame, valid, CTRL_RELATIVE);
    position.keys.clear();
    rotation.keys.clear();
    scale.keys.clear();
    SetLocal(frame);
}

RefTargetHandle PrsControl::Clone(RemapDir& remap) {
    auto* const copy = new PrsControl;
    copy->Copy(this);
    BaseClone(this, copy, remap);
    return copy;
}

ClassDesc& PrsControlClass() {
    static PrsControlDesc desc;
    return desc;
}

}  // namespace tavrik_host

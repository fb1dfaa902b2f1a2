#include "rig/gizmos/wishbone_lines.h"

namespace tavrik {
namespace {

//          out: over the arm
//           |
//   pivot   o-----> along: to the joint
//          /
//        across: the pivot's axle
struct ArmFrame {
    Point3 pivot, along, across, out;
    float length;

    Point3 operator()(float s, float y, float h) const { return pivot + along * s + across * y + out * h; }
};

ArmFrame FrameOf(const Point3& pivot, const Point3& joint) {
    const Point3 reach = joint - pivot;
    const Point3 along = Normalize(reach);
    const Point3 across = Normalize(Cross(along, {1, 0, 0}));
    return {pivot, along, across, Cross(along, across), Length(reach)};
}

/// A curve in the arm's plane, which is drawn at whatever heights it is wanted.
struct PlanCurve {
    Point3 a, b, c;  // z is not looked at

    Point3 At(float t) const { return BezierPoint(a, b, c, t); }
};

class Wishbone {
 public:
    Wishbone(GizmoLines& lines, const ArmFrame& frame, float size, int segments)
        : lines_(lines), at_(frame), n_(segments), half_(0.05f * size), web_(0.07f * size), eye_(0.1f * size) {
        halfPivot_ = kWishboneHalfPivot * size;
        crotch_ = 0.62f * at_.length;
    }

    void Draw() {
        for (const float side : {-1.0f, 1.0f}) {
            DrawLeg(side);
            DrawRibs(side);
            DrawPivot(side);
            DrawEyeHalf(side);
        }
        DrawCrosspiece();
        DrawBushes();
    }

 private:
    // ------------------------------------------------------------------------------------------------------ the arm in plan

    PlanCurve OuterEdge(float side) const {
        return {
            {half_, side * (halfPivot_ + 0.7f * web_), 0}, {0.55f * at_.length, side * eye_, 0}, {at_.length, side * eye_, 0}};
    }
    /// Both legs' inner edges run together in a round crotch.
    PlanCurve InnerEdge(float side) const {
        return {{half_, side * (halfPivot_ - 0.7f * web_), 0}, {crotch_, side * 0.4f * halfPivot_, 0}, {crotch_, 0, 0}};
    }
    /// Part of the way from the inner edge to the outer one.
    PlanCurve Between(float side, float part) const {
        const PlanCurve in = InnerEdge(side), out = OuterEdge(side);
        const auto mix = [&](const Point3& a, const Point3& b) { return a + (b - a) * part; };
        return {mix(in.a, out.a), mix(in.b, out.b), mix(in.c, out.c)};
    }

    // ----------------------------------------------------------------------------------------------------------- what it draws

    Point3 Place(const Point3& plan, float h) const { return at_(plan.x, plan.y, h); }
    void DrawCurve(const PlanCurve& curve, float h) {
        DrawBezier(lines_, Place(curve.a, h), Place(curve.b, h), Place(curve.c, h), n_);
    }
    /// The same above and below.
    void DrawCurves(const PlanCurve& curve, float h) {
        DrawCurve(curve, h);
        DrawCurve(curve, -h);
    }
    void DrawUpright(const Point3& plan, float h) { DrawLine(lines_, Place(plan, -h), Place(plan, h)); }

    void DrawLeg(float side) {
        for (const PlanCurve& edge : {OuterEdge(side), InnerEdge(side)}) {
            DrawCurves(edge, half_);
            DrawUpright(edge.a, half_);
        }
    }

    /// Ribs stiffen either leg near both of its edges. The outer ones, which carry more, stand out farther.
    void DrawRibs(float side) {
        constexpr float kInnerRib = 1.0275f, kOuterRib = 1.1756f;
        const auto draw = [&](const PlanCurve& rib, float h) {
            DrawCurves(rib, h);
            DrawUpright(rib.a, h);
            DrawUpright(rib.c, h);
        };
        draw(Between(side, 0.25f), half_ * kInnerRib);
        draw(Between(side, 0.75f), half_ * kOuterRib);
    }

    /// A tube around the pivot's axle, and the leg's end wrapped around it.
    void DrawPivot(float side) {
        const float y = side * halfPivot_, halfTube = 1.6f * half_;
        const Point3 s = at_.along * half_, h = at_.out * half_, end = at_.across * halfTube, middle = at_(0, y, 0);
        DrawCircle(lines_, middle - end, s, h, n_);
        DrawCircle(lines_, middle + end, s, h, n_);
        for (const Point3& on : {s, h, -s, -h}) DrawLine(lines_, middle - end + on, middle + end + on);
        DrawArc(lines_, middle + h, middle + h - s, middle - s, n_);
        DrawArc(lines_, middle - h, middle - h - s, middle - s, n_);
    }

    /// One quarter of the joint's eye, where a leg's outer edge runs into it.
    void DrawEyeHalf(float side) {
        const float tip = at_.length + eye_;
        for (const float h : {half_, -half_}) {
            DrawArc(lines_, at_(at_.length, side * eye_, h), at_(tip, side * eye_, h), at_(tip, 0, h), n_);
        }
    }

    /// Ties the legs together near the pivot.
    void DrawCrosspiece() {
        for (const float t : {0.2f, 0.4f}) {
            const Point3 left = InnerEdge(-1.0f).At(t), right = InnerEdge(1.0f).At(t);
            const Point3 bow{left.x + 0.5f * web_, 0, 0};
            DrawCurves({left, bow, right}, half_);
            DrawUpright(left, half_);
            DrawUpright(right, half_);
        }
    }

    void DrawRound(float s, float y, float h, float radius) {
        DrawCircle(lines_, at_(s, y, h), at_.along * radius, at_.across * radius, n_);
    }

    /// The ball joint's seat, the damper's between crotch and eye, and a hole in either leg.
    void DrawBushes() {
        DrawRound(at_.length, 0, 0, 0.75f * eye_);
        for (const float h : {half_, -half_}) {
            DrawRound(at_.length, 0, h, 0.6f * eye_);
            DrawRound(at_.length, 0, h, 0.3f * eye_);
            DrawRound(0.5f * (crotch_ + at_.length - eye_), 0, h, 0.7f * web_);
        }
        for (const float side : {-1.0f, 1.0f}) {
            const Point3 hole = Between(side, 0.5f).At(0.35f);
            DrawRound(hole.x, hole.y, 0, 0.3f * web_);
        }
    }

    GizmoLines& lines_;
    const ArmFrame at_;
    const int n_;
    const float half_;  // thickness
    const float web_;   // width of a leg
    const float eye_;   // radius of the joint's
    float halfPivot_, crotch_;
};

}  // namespace

void DrawWishbone(GizmoLines& lines, const Point3& pivot, const Point3& joint, float size, int segments) {
    Wishbone(lines, FrameOf(pivot, joint), size, segments).Draw();
}

}  // namespace tavrik

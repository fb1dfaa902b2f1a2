#include <algorithm>
#include <cmath>

#include "host/drive_scene.h"

namespace tavrik {
namespace {

double Determinant(const DMatrix3& m) { return Dot(Cross(m.row[0], m.row[1]), m.row[2]); }

/// The quaternion of a proper rotation, by its largest component, where the division is safe.
Turn ToTurn(const DMatrix3& m) {
    const DPoint3 &a = m.row[0], &b = m.row[1], &c = m.row[2];
    const double trace = a.x + b.y + c.z;
    if (trace > 0.0) {
        const double s = 2.0 * std::sqrt(1.0 + trace);
        return {(b.z - c.y) / s, (c.x - a.z) / s, (a.y - b.x) / s, s / 4.0};
    }
    if (a.x > b.y && a.x > c.z) {
        const double s = 2.0 * std::sqrt(1.0 + a.x - b.y - c.z);
        return {s / 4.0, (b.x + a.y) / s, (c.x + a.z) / s, (b.z - c.y) / s};
    }
    if (b.y > c.z) {
        const double s = 2.0 * std::sqrt(1.0 + b.y - a.x - c.z);
        return {(b.x + a.y) / s, s / 4.0, (c.y + b.z) / s, (c.x - a.z) / s};
    }
    const double s = 2.0 * std::sqrt(1.0 + c.z - a.x - b.y);
    return {(c.x + a.z) / s, (c.y + b.z) / s, s / 4.0, (a.y - b.x) / s};
}

}  // namespace

bool NearestTurn(const DMatrix3& frame, Turn& turn) {
    DMatrix3 m = WithoutTranslation(frame);
    const double volume = Determinant(m);
    // Rows are about 1 long; anything that is squashed below this is no frame any more.
    if (!(std::abs(volume) > 1e-6) || !std::isfinite(volume)) return false;
    if (volume < 0.0) m.row[2] = -m.row[2];
    // Each round averages the matrix with its inverse transpose, which converges to the rotation of the polar decomposition
    // (Higham, "Computing the Polar Decomposition, with Applications", 1986). Near a rotation three rounds are plenty.
    constexpr int kMostRounds = 50;
    for (int round = 0; round < kMostRounds; ++round) {
        const double scale = 1.0 / Determinant(m);
        const DPoint3 cofactors[3] = {Cross(m.row[1], m.row[2]), Cross(m.row[2], m.row[0]), Cross(m.row[0], m.row[1])};
        double moved = 0.0;
        for (int r = 0; r < 3; ++r) {
            const DPoint3 next = (m.row[r] + cofactors[r] * scale) * 0.5;
            moved = std::max(moved, Length(next - m.row[r]));
            m.row[r] = next;
        }
        if (moved < 1e-15) break;
    }
    turn = ToTurn(m);
    const double length = std::sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z + turn.w * turn.w);
    turn = {turn.x / length, turn.y / length, turn.z / length, turn.w / length};
    return true;
}

}  // namespace tavrik

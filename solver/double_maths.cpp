#include "solver/double_maths.h"

namespace tavrik {

void Inverse(DMatrix3& m) {
    const DPoint3 a = m.row[0], b = m.row[1], c = m.row[2], t = m.row[3];
    const double det = a.x * (b.y * c.z - b.z * c.y) + b.x * (c.y * a.z - c.z * a.y) + c.x * (a.y * b.z - a.z * b.y);
    m.row[0] = {(b.y * c.z - b.z * c.y) / det, (c.y * a.z - c.z * a.y) / det, (a.y * b.z - a.z * b.y) / det};
    m.row[1] = {(b.z * c.x - b.x * c.z) / det, (c.z * a.x - c.x * a.z) / det, (a.z * b.x - a.x * b.z) / det};
    m.row[2] = {(b.x * c.y - b.y * c.x) / det, (c.x * a.y - c.y * a.x) / det, (a.x * b.y - a.y * b.x) / det};
    m.row[3] = -(m.row[0] * t.x + m.row[1] * t.y + m.row[2] * t.z);
}

void RotateX(DMatrix3& m, double angle) {
    const double s = std::sin(angle), c = std::cos(angle);
    for (int r = 0; r < 3; ++r) {
        const DPoint3 p = m.row[r];
        m.row[r] = {p.x, c * p.y - s * p.z, s * p.y + c * p.z};
    }
}

void RotateY(DMatrix3& m, double angle) {
    const double s = std::sin(angle), c = std::cos(angle);
    for (int r = 0; r < 3; ++r) {
        const DPoint3 p = m.row[r];
        m.row[r] = {c * p.x + s * p.z, p.y, c * p.z - s * p.x};
    }
}

void RotateZ(DMatrix3& m, double angle) {
    const double s = std::sin(angle), c = std::cos(angle);
    for (int r = 0; r < 3; ++r) {
        const DPoint3 p = m.row[r];
        m.row[r] = {c * p.x - s * p.y, s * p.x + c * p.y, p.z};
    }
}

}  // namespace tavrik

#pragma once
/// The host's single-precision records as ours, and back. Bits stay as they are.

#include <max.h>

#include "rig/class_identities.h"
#include "solver/single_maths.h"

namespace tavrik_plugin {

inline tavrik::Point3 FromHost(const Point3& p) { return {p.x, p.y, p.z}; }
inline Point3 ToHost(const tavrik::Point3& p) { return {p.x, p.y, p.z}; }

inline tavrik::Matrix3 FromHost(const Matrix3& m) {
    return {{FromHost(m.GetRow(0)), FromHost(m.GetRow(1)), FromHost(m.GetRow(2)), FromHost(m.GetRow(3))}};
}
inline Matrix3 ToHost(const tavrik::Matrix3& m) {
    Matrix3 result(TRUE);  // writing a row takes back what the identity promised of it
    for (int i = 0; i < 4; ++i) result.SetRow(i, ToHost(m.row[i]));
    return result;
}

inline tavrik::ClassId FromHost(Class_ID id) { return {std::uint32_t(id.PartA()), std::uint32_t(id.PartB())}; }
inline Class_ID ToHost(const tavrik::ClassId& id) { return {id.a, id.b}; }

}  // namespace tavrik_plugin

#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "rig/gizmos/gizmo_lines.h"

namespace tavrik {

inline bool operator==(const Point3& a, const Point3& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

}  // namespace tavrik

namespace gizmo_test {

inline testing::AssertionResult Near(const tavrik::Point3& found, const tavrik::Point3& wanted, float tolerance = 1e-4f) {
    if (tavrik::Length(found - wanted) <= tolerance) return testing::AssertionSuccess();
    return testing::AssertionFailure() << '(' << found.x << ' ' << found.y << ' ' << found.z << ") for (" << wanted.x << ' '
                                       << wanted.y << ' ' << wanted.z << ')';
}

/// How many lines run between two points, either way round.
inline int CountLines(const tavrik::GizmoLines& lines, const tavrik::Point3& a, const tavrik::Point3& b) {
    return int(std::ranges::count_if(lines, [&](const tavrik::GizmoLine& line) {
        return (Near(line.from, a) && Near(line.to, b)) || (Near(line.from, b) && Near(line.to, a));
    }));
}

inline tavrik::Box3 BoxOf(const tavrik::GizmoLines& lines) {
    tavrik::Box3 box = tavrik::EmptyBox3();
    for (const tavrik::GizmoLine& line : lines) {
        box.Include(line.from);
        box.Include(line.to);
    }
    return box;
}

inline bool IsPoint(const tavrik::GizmoLines& lines, const tavrik::Point3& p) {
    return std::ranges::all_of(lines, [&](const tavrik::GizmoLine& line) { return line.from == p && line.to == p; });
}

/// Lines `first` .. `first + count - 1`, each of which must start where the one before it ended.
inline testing::AssertionResult IsChain(const tavrik::GizmoLines& lines, std::size_t first, std::size_t count) {
    if (first + count > lines.size()) return testing::AssertionFailure() << "only " << lines.size() << " lines";
    for (std::size_t i = first + 1; i < first + count; ++i) {
        if (!(lines[i].from == lines[i - 1].to)) return testing::AssertionFailure() << "broken before line " << i;
    }
    return testing::AssertionSuccess();
}

}  // namespace gizmo_test

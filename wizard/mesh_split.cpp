#include "wizard/mesh_split.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <tuple>

namespace tavrik {
namespace {

int RootOf(std::vector<int>& parents, int at) {
    while (parents[std::size_t(at)] != at) {
        parents[std::size_t(at)] = parents[std::size_t(parents[std::size_t(at)])];
        at = parents[std::size_t(at)];
    }
    return at;
}

double Along(const DPoint3& p, const DiscFit& fit) { return Dot(p - fit.centre, fit.axle); }

}  // namespace

std::vector<int> ConnectedPieces(std::span<const DPoint3> vertices, std::span<const MeshFace> faces) {
    std::vector<int> parents(vertices.size());
    std::iota(parents.begin(), parents.end(), 0);
    std::map<std::tuple<double, double, double>, int> places;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const auto [place, isNew] = places.try_emplace({vertices[i].x, vertices[i].y, vertices[i].z}, int(i));
        parents[i] = place->second;
    }
    for (const MeshFace& face : faces) {
        for (const int c : {1, 2}) {
            const int a = RootOf(parents, int(face.v[0])), b = RootOf(parents, int(face.v[c]));
            parents[std::size_t(std::max(a, b))] = std::min(a, b);
        }
    }
    std::map<int, int> numbers;
    std::vector<int> pieces;
    for (const MeshFace& face : faces) {
        pieces.push_back(numbers.try_emplace(RootOf(parents, int(face.v[0])), int(numbers.size())).first->second);
    }
    return pieces;
}

bool SplitAlongAxle(std::span<const DPoint3> vertices, std::span<const MeshFace> faces, const DiscFit& fit,
                    std::vector<int>& sides) {
    // Where along the axle there is something as wide as a wheel. A rod from wheel to wheel is not.
    constexpr int kSlots = 200;
    constexpr double kRod = 0.45, kLeastGap = 0.8;  // of the radius
    bool filled[kSlots] = {};
    for (const MeshFace& face : faces) {
        double low = 1e300, high = -1e300, reach = 0.0;
        for (const std::uint32_t v : face.v) {
            const double along = Along(vertices[v], fit);
            low = std::min(low, along);
            high = std::max(high, along);
            reach = std::max(reach, Length(vertices[v] - fit.centre - fit.axle * along));
        }
        if (reach < kRod * fit.radius) continue;
        const auto slot = [&](double along) {
            return std::clamp(int((along / fit.halfWidth + 1.0) * 0.5 * kSlots), 0, kSlots - 1);
        };
        for (int s = slot(low); s <= slot(high); ++s) filled[s] = true;
    }
    int bestStart = 0, bestLength = 0;
    for (int start = 0; start < kSlots;) {
        int end = start;
        while (end < kSlots && !filled[end]) ++end;
        const bool inside = start > 0 && end < kSlots;
        if (inside && end - start > bestLength) {
            bestStart = start;
            bestLength = end - start;
        }
        start = end + 1;
    }
    const double slotWidth = 2.0 * fit.halfWidth / kSlots;
    if (bestLength * slotWidth < kLeastGap * fit.radius) return false;
    const double cut = (bestStart + bestLength * 0.5) * slotWidth - fit.halfWidth;
    sides.clear();
    for (const MeshFace& face : faces) {
        double middle = 0.0;
        for (const std::uint32_t v : face.v) middle += Along(vertices[v], fit) / 3.0;
        sides.push_back(middle > cut ? 1 : 0);
    }
    return true;
}

}  // namespace tavrik

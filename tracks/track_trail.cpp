#include "tracks/track_trail.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <new>
#include <numeric>

namespace tavrik {
namespace {

constexpr unsigned kChildren = 8;

/// Which children's halves of a cell a box touches, a bit to each: all, but for those on the far side of the centre.
unsigned TouchedChildren(const Box3& bound, const Point3& centre) {
    constexpr unsigned kHighX = 0xAA, kHighY = 0xCC, kHighZ = 0xF0;
    unsigned touched = 0xFF;
    const auto narrow = [&](float low, float high, float middle, unsigned highHalf) {
        if (low > middle) {
            touched &= highHalf;
        } else if (high < middle) {
            touched &= ~highHalf;
        }
    };
    narrow(bound.pmin.x, bound.pmax.x, centre.x, kHighX);
    narrow(bound.pmin.y, bound.pmax.y, centre.y, kHighY);
    narrow(bound.pmin.z, bound.pmax.z, centre.z, kHighZ);
    return touched;
}

/// One axis of a cell on the way down: what `ChildBox` does, without a branch. Which half a point lies in, no processor could
/// foresee.
struct Extent {
    float low, high;

    /// Goes on to the half that a place lies in. @return 1 for the upper one
    unsigned Narrow(float place) {
        const float centre = (low + high) * 0.5f, half = (high - low) * 0.5f;
        const unsigned up = place > centre ? 1u : 0u;
        low += std::bit_cast<float>(std::bit_cast<std::uint32_t>(half) & (0u - up));
        high = low + half;
        return up;
    }
};

/// Far out from the origin single precision ends before the halving does.
bool HasTwoHalves(const Box3& box) {
    const Point3 centre = box.Center();
    const auto between = [](float low, float middle, float high) { return low < middle && middle < high; };
    return between(box.pmin.x, centre.x, box.pmax.x) && between(box.pmin.y, centre.y, box.pmax.y) &&
           between(box.pmin.z, centre.z, box.pmax.z);
}

TrackCell MakeLeaf(TrackTrail& trail, std::span<const std::uint32_t> list) {
    if (trail.lists.size() + list.size() > 0xffffffffu) throw std::bad_alloc();  // a cell counts in 32 bits
    const TrackCell leaf = {std::uint32_t(trail.lists.size()), std::uint32_t(list.size())};
    trail.lists.insert(trail.lists.end(), list.begin(), list.end());
    return leaf;
}

/// What was left out, and why.
struct LeftOut {
    std::size_t notFinite = 0, tooLong = 0;

    std::string Sentence() const {
        const std::size_t gaps = notFinite + tooLong;
        return "The tyre tracks have " + std::to_string(gaps) + (gaps == 1 ? " gap" : " gaps") + " where the recorded wheels " +
               (tooLong == 0     ? "have frames that are not finite"
                : notFinite == 0 ? "jump farther than a wheel can roll"
                                 : "have frames that are not finite, or jump farther than a wheel can roll") +
               "; drive again from before that time.";
    }
};

void FillSegments(TrackTrail& trail, const CarRig& rig, LeftOut& leftOut) {
    // Room for every sample of every wheel; pages that aren't needed are never touched.
    const std::size_t most = std::size_t(rig.TrackSampleCount());
    const auto samples = std::make_unique_for_overwrite<TrackSample[]>(most);
    const std::size_t written = std::size_t(rig.FillTrackSamples({samples.get(), most}));
    trail.segments.reserve(written);
    for (const TrackSample& sample : std::span<const TrackSample>(samples.get(), written)) {
        if (!(sample.radius > 0.0f && sample.width > 0.0f)) continue;  // a wheel without a size presses on nothing
        TrackSegment segment;
        const SegmentResult result = Init(segment, sample.from, sample.to, sample.radius, sample.width,
                                          std::uint32_t(sample.sideFlag), sample.fromTick, sample.toTick, sample.wheelHandle);
        leftOut.notFinite += result == SegmentResult::NotFinite ? 1 : 0;
        leftOut.tooLong += result == SegmentResult::TooLong ? 1 : 0;
        if (result != SegmentResult::Good) continue;
        // A wheel's segments stand together, so the one before mostly knows.
        auto known = std::find(trail.wheels.rbegin(), trail.wheels.rend(), segment.wheelHandle);
        if (known == trail.wheels.rend()) {
            trail.wheels.push_back(segment.wheelHandle);
            known = trail.wheels.rbegin();
        }
        segment.wheel = std::uint32_t(trail.wheels.rend() - known - 1);
        trail.segments.push_back(segment);
    }
    trail.count = std::int32_t(trail.segments.size());
}

Box3 RootCube(const TrackTrail& trail) {
    if (trail.segments.empty()) return {{0, 0, 0}, {0, 0, 0}};
    Box3 all = EmptyBox3();
    for (const TrackSegment& segment : trail.segments) {
        all.Include(segment.bound.pmin);
        all.Include(segment.bound.pmax);
    }
    const Point3 size = all.Width();
    return MakeCube(all.Center(), std::max({size.x, size.y, size.z}));
}

void StoreFrames(TrackTrail& trail, std::size_t bytes) {
    const std::size_t room = std::min(bytes / sizeof(Matrix3), std::size_t(TrackSegment::kNotStored));
    std::size_t segmentsWithFrames = 0, frames = 0;
    for (const TrackSegment& segment : trail.segments) {
        if (frames + std::size_t(segment.steps) + 1 > room) break;
        frames += std::size_t(segment.steps) + 1;
        ++segmentsWithFrames;
    }
    trail.inverseFrames.reserve(frames);
    for (TrackSegment& segment : std::span(trail.segments).first(segmentsWithFrames)) {
        segment.storedFrames = std::uint32_t(trail.inverseFrames.size());
        for (std::int32_t i = 0; i <= segment.steps; ++i) trail.inverseFrames.push_back(InverseFrame(segment, i));
    }
}

}  // namespace

Box3 ChildBox(const Box3& box, unsigned k) {
    const Point3 half = box.Width() * 0.5f;
    Point3 low = box.pmin;
    if ((k & 1) != 0) low.x += half.x;
    if ((k & 2) != 0) low.y += half.y;
    if ((k & 4) != 0) low.z += half.z;
    return {low, low + half};
}

TrackCell BuildCell(TrackTrail& trail, std::span<const std::uint32_t> list, const Box3& box, std::int32_t depth) {
    // No cell gets smaller than a wheel. Where many segments lie upon each other, splitting on parts none of them: a cell must
    // hold the more segments the deeper it lies.
    const bool splits = list.size() > std::size_t(depth) && box.Width().x > trail.segments[list.front()].Radius;
    if (!splits || !HasTwoHalves(box)) return MakeLeaf(trail, list);

    const Point3 centre = box.Center();
    std::vector<unsigned char> touched(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        touched[i] = static_cast<unsigned char>(TouchedChildren(trail.segments[list[i]].bound, centre));
    }
    const std::size_t eight = trail.cells.size();  // far below 2^32: each holds a segment, or has a sister that does
    trail.cells.emplace_back();
    std::vector<std::uint32_t> sublist;
    for (unsigned k = 0; k < kChildren; ++k) {
        sublist.clear();
        for (std::size_t i = 0; i < list.size(); ++i) {
            if ((touched[i] >> k & 1) != 0) sublist.push_back(list[i]);
        }
        const TrackCell child = BuildCell(trail, sublist, ChildBox(box, k), depth + 1);
        trail.cells[eight].child[k] = child;
    }
    return {std::uint32_t(eight), TrackCell::kParent};
}

void TrackTrail::Build(const CarRig& rig, std::string& notice, std::size_t storedBytes) {
    Release();
    if (rig.TrackSampleCount() == 0) return;
    LeftOut leftOut;
    FillSegments(*this, rig, leftOut);
    cube = RootCube(*this);
    std::vector<std::uint32_t> all(segments.size());
    std::iota(all.begin(), all.end(), 0u);
    root = BuildCell(*this, all, cube, 0);
    cells.shrink_to_fit();
    lists.shrink_to_fit();
    StoreFrames(*this, storedBytes);
    built = 1;
    if (leftOut.notFinite + leftOut.tooLong > 0) notice = leftOut.Sentence();
}

void TrackTrail::Release() { *this = {}; }

std::span<const std::uint32_t> TrackTrail::LeafAt(const Point3& point) const {
    Extent x = {cube.pmin.x, cube.pmax.x}, y = {cube.pmin.y, cube.pmax.y}, z = {cube.pmin.z, cube.pmax.z};
    TrackCell cell = root;
    while (!cell.IsLeaf()) {
        const unsigned k = x.Narrow(point.x) | y.Narrow(point.y) << 1 | z.Narrow(point.z) << 2;
        cell = cells[cell.first].child[k];
    }
    return std::span(lists).subspan(cell.first, cell.count);
}

std::size_t TrackTrail::Bytes() const {
    return segments.capacity() * sizeof(TrackSegment) + wheels.capacity() * sizeof(std::uint32_t) +
           cells.capacity() * sizeof(TrackCells) + lists.capacity() * sizeof(std::uint32_t) +
           inverseFrames.capacity() * sizeof(Matrix3);
}

}  // namespace tavrik

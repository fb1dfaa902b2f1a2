#include "tracks/tread_table.h"

#include <cmath>
#include <cstdint>

#include "solver/truncate.h"

namespace tavrik {
namespace {

/// Into 0 to less than 1, so that even the largest place has a column and a row behind it.
float WrapToOne(float place) {
    if (place >= 1.0f) return place - std::trunc(place);
    if (!(place < 0.0f)) return place;
    const float next = place + 1.0f;
    // One turn back is all that a tyre asks for; from further back it takes as many as it needs.
    return next >= 0.0f ? next - std::trunc(next) : WrapToOne(place - std::floor(place));
}

float EntryAt(const float* map, std::size_t column, std::size_t row) { return map[row * kTreadColumns + column]; }

}  // namespace

SharedTread MakeTread(const std::function<float(float u, float v)>& mono) {
    auto table = std::make_shared<TreadTable>(kTreadEntries);
    for (std::size_t i = 0; i < kTreadColumns; ++i) {
        for (std::size_t j = 0; j < kTreadRows; ++j) {
            (*table)[j * kTreadColumns + i] = mono(float(i) / float(kTreadColumns - 1), float(j) / float(kTreadRows - 1));
        }
    }
    return table;
}

SharedTread EmptyTread() {
    static const auto& empty =
        *new SharedTread(std::make_shared<const TreadTable>(kTreadEntries, 0.0f));  // outlives every render
    return empty;
}

SharedTread EvenTread() {
    static const auto& even =
        *new SharedTread(std::make_shared<const TreadTable>(kTreadEntries, 1.0f));  // outlives every render
    return even;
}

TreadSample SampleTread(const float* map, float u, float v) {
    const float x = WrapToOne(u) * float(kTreadColumns - 1), y = WrapToOne(v) * float(kTreadRows - 1);
    const std::int32_t column = TruncateToInt(double(x)), row = TruncateToInt(double(y));
    const float fu = x - float(column), fv = y - float(row);
    const std::size_t iu = std::size_t(column), iv = std::size_t(row);

    //   a  b        value = a (1 - fu) + b (1 - fv) + (c (1 - fu) + d fu) fv
    //   c  d
    // The weight of b is no slip of the pen: every tread in use was drawn, and every bump set, to the look that it gives. So a
    // table of ones reads 2 - fu, and a little relief runs across even a tyre without a tread.
    const float a = EntryAt(map, iu, iv), b = EntryAt(map, iu + 1, iv);
    const float c = EntryAt(map, iu, iv + 1), d = EntryAt(map, iu + 1, iv + 1);
    return {a * (1.0f - fu) + b * (1.0f - fv) + (c * (1.0f - fu) + d * fu) * fv, {b + d - a - c, c + d - a - b, 0.0f}};
}

}  // namespace tavrik

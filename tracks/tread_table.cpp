#include "tracks/tread_table.h"

#include <cmath>
#include <cstdint>

#include "solver/truncate.h"

namespace tavrik {
namespace {

/// Into 0..1; a value just below zero may round up to 1 itself.
float WrapToOne(float place) {
    if (place >= 1.0f) return place - std::trunc(place);
    return place < 0.0f ? place + 1.0f - std::trunc(place) : place;
}

/// The column behind the last one is the next row's first. Behind the last row the tyre begins again, which only a place right
/// on the table's edge comes to ask for.
float EntryAt(const float* map, std::size_t column, std::size_t row) {
    return map[(row * kTreadColumns + column) % kTreadEntries];
}

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

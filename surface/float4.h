#pragma once
/// Four floats at a time. Each lane does what the same operation does to one float, so nothing here changes a bit of a result.

#if defined(__SSE2__) || defined(_M_X64)
#define TAVRIK_SSE2 1
#include <emmintrin.h>
#else
#define TAVRIK_SSE2 0
#endif

#include <cmath>
#include <cstdint>

namespace tavrik {

#if TAVRIK_SSE2

struct Float4 {
    __m128 lanes;
};
/// The answers of a comparison, lane by lane.
struct Mask4 {
    __m128 lanes;
};
struct Int4 {
    __m128i lanes;
};

inline Float4 Float4From(float x, float y, float z, float w) { return {_mm_setr_ps(x, y, z, w)}; }
inline Float4 Broadcast(float value) { return {_mm_set1_ps(value)}; }
/// Four floats from an address that 16 divides.
inline Float4 Load(const float* from) { return {_mm_load_ps(from)}; }
inline void Store(Float4 a, float* to) { _mm_store_ps(to, a.lanes); }
template <int kLane>
Float4 BroadcastLane(Float4 a) {
    return {_mm_shuffle_ps(a.lanes, a.lanes, _MM_SHUFFLE(kLane, kLane, kLane, kLane))};
}
template <int kLane>
float Lane(Float4 a) {
    return _mm_cvtss_f32(BroadcastLane<kLane>(a).lanes);
}

/// Towards zero. Any integer where the float is a NaN or out of an integer's range.
inline Int4 Truncate(Float4 a) { return {_mm_cvttps_epi32(a.lanes)}; }
inline Float4 ToFloat(Int4 a) { return {_mm_cvtepi32_ps(a.lanes)}; }
template <int kLane>
std::int32_t Lane(Int4 a) {
    return _mm_cvtsi128_si32(_mm_shuffle_epi32(a.lanes, _MM_SHUFFLE(kLane, kLane, kLane, kLane)));
}

inline Float4 operator+(Float4 a, Float4 b) { return {_mm_add_ps(a.lanes, b.lanes)}; }
inline Float4 operator-(Float4 a, Float4 b) { return {_mm_sub_ps(a.lanes, b.lanes)}; }
inline Float4 operator*(Float4 a, Float4 b) { return {_mm_mul_ps(a.lanes, b.lanes)}; }
inline Float4 operator/(Float4 a, Float4 b) { return {_mm_div_ps(a.lanes, b.lanes)}; }

inline Mask4 operator>(Float4 a, Float4 b) { return {_mm_cmpgt_ps(a.lanes, b.lanes)}; }
inline Mask4 operator>=(Float4 a, Float4 b) { return {_mm_cmpge_ps(a.lanes, b.lanes)}; }
inline Mask4 operator<=(Float4 a, Float4 b) { return {_mm_cmple_ps(a.lanes, b.lanes)}; }
inline Mask4 operator==(Float4 a, Float4 b) { return {_mm_cmpeq_ps(a.lanes, b.lanes)}; }
inline Mask4 operator&(Mask4 a, Mask4 b) { return {_mm_and_ps(a.lanes, b.lanes)}; }
inline Mask4 operator|(Mask4 a, Mask4 b) { return {_mm_or_ps(a.lanes, b.lanes)}; }
/// Where `b` holds and `a` doesn't.
inline Mask4 AndNot(Mask4 a, Mask4 b) { return {_mm_andnot_ps(a.lanes, b.lanes)}; }
/// The magnitude of each lane.
inline Float4 Abs(Float4 a) { return {_mm_andnot_ps(_mm_set1_ps(-0.0f), a.lanes)}; }
/// Where the signs differ.
inline Mask4 SignsDiffer(Float4 a, Float4 b) {
    return {_mm_castsi128_ps(_mm_srai_epi32(_mm_castps_si128(_mm_xor_ps(a.lanes, b.lanes)), 31))};
}
/// Bit i is lane i's answer.
inline unsigned Bits(Mask4 a) { return unsigned(_mm_movemask_ps(a.lanes)); }
inline Mask4 Select(Mask4 mask, Mask4 a, Mask4 b) { return (mask & a) | AndNot(mask, b); }
/// `a` where the mask holds, else `b`.
inline Float4 Select(Mask4 mask, Float4 a, Float4 b) {
    return {_mm_or_ps(_mm_and_ps(mask.lanes, a.lanes), _mm_andnot_ps(mask.lanes, b.lanes))};
}

#else

struct Float4 {
    float lanes[4];
};
struct Mask4 {
    std::uint32_t lanes[4];
};
struct Int4 {
    std::int32_t lanes[4];
};

inline Float4 Float4From(float x, float y, float z, float w) { return {{x, y, z, w}}; }
inline Float4 Broadcast(float value) { return {{value, value, value, value}}; }
inline Float4 Load(const float* from) { return {{from[0], from[1], from[2], from[3]}}; }
inline void Store(Float4 a, float* to) {
    for (int i = 0; i < 4; ++i) to[i] = a.lanes[i];
}
template <int kLane>
Float4 BroadcastLane(Float4 a) {
    return Broadcast(a.lanes[kLane]);
}
template <int kLane>
float Lane(Float4 a) {
    return a.lanes[kLane];
}

inline Int4 Truncate(Float4 a) {
    Int4 result;
    for (int i = 0; i < 4; ++i) {
        const bool fits = a.lanes[i] > -0x1p31f && a.lanes[i] < 0x1p31f;
        result.lanes[i] = fits ? std::int32_t(a.lanes[i]) : 0;
    }
    return result;
}
inline Float4 ToFloat(Int4 a) { return {{float(a.lanes[0]), float(a.lanes[1]), float(a.lanes[2]), float(a.lanes[3])}}; }
template <int kLane>
std::int32_t Lane(Int4 a) {
    return a.lanes[kLane];
}

template <typename Operation>
Float4 EachLane(Float4 a, Float4 b, Operation operation) {
    Float4 result;
    for (int i = 0; i < 4; ++i) result.lanes[i] = operation(a.lanes[i], b.lanes[i]);
    return result;
}
template <typename Operation>
Mask4 CompareLanes(Float4 a, Float4 b, Operation operation) {
    Mask4 result;
    for (int i = 0; i < 4; ++i) result.lanes[i] = operation(a.lanes[i], b.lanes[i]) ? ~0u : 0u;
    return result;
}
template <typename Operation>
Mask4 CombineLanes(Mask4 a, Mask4 b, Operation operation) {
    Mask4 result;
    for (int i = 0; i < 4; ++i) result.lanes[i] = operation(a.lanes[i], b.lanes[i]);
    return result;
}

inline Float4 operator+(Float4 a, Float4 b) {
    return EachLane(a, b, [](float x, float y) { return x + y; });
}
inline Float4 operator-(Float4 a, Float4 b) {
    return EachLane(a, b, [](float x, float y) { return x - y; });
}
inline Float4 operator*(Float4 a, Float4 b) {
    return EachLane(a, b, [](float x, float y) { return x * y; });
}
inline Float4 operator/(Float4 a, Float4 b) {
    return EachLane(a, b, [](float x, float y) { return x / y; });
}

inline Mask4 operator>(Float4 a, Float4 b) {
    return CompareLanes(a, b, [](float x, float y) { return x > y; });
}
inline Mask4 operator>=(Float4 a, Float4 b) {
    return CompareLanes(a, b, [](float x, float y) { return x >= y; });
}
inline Mask4 operator<=(Float4 a, Float4 b) {
    return CompareLanes(a, b, [](float x, float y) { return x <= y; });
}
inline Mask4 operator==(Float4 a, Float4 b) {
    return CompareLanes(a, b, [](float x, float y) { return x == y; });
}
inline Mask4 operator&(Mask4 a, Mask4 b) {
    return CombineLanes(a, b, [](std::uint32_t x, std::uint32_t y) { return x & y; });
}
inline Mask4 operator|(Mask4 a, Mask4 b) {
    return CombineLanes(a, b, [](std::uint32_t x, std::uint32_t y) { return x | y; });
}
inline Mask4 AndNot(Mask4 a, Mask4 b) {
    return CombineLanes(a, b, [](std::uint32_t x, std::uint32_t y) { return ~x & y; });
}
inline Mask4 Select(Mask4 mask, Mask4 a, Mask4 b) { return (mask & a) | AndNot(mask, b); }
inline Float4 Abs(Float4 a) {
    return EachLane(a, a, [](float x, float) { return std::fabs(x); });
}
inline Mask4 SignsDiffer(Float4 a, Float4 b) {
    return CompareLanes(a, b, [](float x, float y) { return std::signbit(x) != std::signbit(y); });
}
inline unsigned Bits(Mask4 a) { return (a.lanes[0] & 1u) | (a.lanes[1] & 2u) | (a.lanes[2] & 4u) | (a.lanes[3] & 8u); }
inline Float4 Select(Mask4 mask, Float4 a, Float4 b) {
    Float4 result;
    for (int i = 0; i < 4; ++i) result.lanes[i] = mask.lanes[i] != 0 ? a.lanes[i] : b.lanes[i];
    return result;
}

#endif

}  // namespace tavrik

#pragma once
/// Names and numbers that every other header here is written in.

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "win_types.h"

using TimeValue = int;
using SClass_ID = ULONG;
using BlockID = short;
using ParamID = short;
using MapID = short;
using StringResID = std::int64_t;
using PartID = std::uint64_t;
using MCHAR = wchar_t;
using TCHAR = wchar_t;

// NOLINTBEGIN(bugprone-reserved-identifier): the host has them so.
#define _M(text) L##text
#define _T(text) L##text
// NOLINTEND(bugprone-reserved-identifier)

constexpr int TIME_TICKSPERSEC = 4800;
constexpr TimeValue TIME_NegInfinity = TimeValue(0x80000000u);
constexpr TimeValue TIME_PosInfinity = 0x7fffffff;

int GetTicksPerFrame();

/// Identity of a class among those of its super class.
class Class_ID {
 public:
    constexpr Class_ID() = default;
    constexpr Class_ID(ULONG a, ULONG b) : a_(a), b_(b) {}
    constexpr ULONG PartA() const { return a_; }
    constexpr ULONG PartB() const { return b_; }
    constexpr bool operator==(const Class_ID& other) const { return a_ == other.a_ && b_ == other.b_; }
    constexpr bool operator!=(const Class_ID& other) const { return !(*this == other); }

 private:
    ULONG a_ = 0, b_ = 0;
};

constexpr SClass_ID GEOMOBJECT_CLASS_ID = 0x10, SHAPE_CLASS_ID = 0x40, HELPER_CLASS_ID = 0x50, BASENODE_CLASS_ID = 1,
                    PARAMETER_BLOCK2_CLASS_ID = 0x82, TEXMAP_CLASS_ID = 0xC10, CTRL_MATRIX3_CLASS_ID = 0x9008;
constexpr ULONG PRS_CONTROL_CLASS_ID = 8197;

/// A text in wide characters.
class MSTR {
 public:
    MSTR() = default;
    MSTR(const MCHAR* text) : text_(text == nullptr ? L"" : text) {}  // NOLINT: converts, as the host's does
    MSTR& operator+=(const MSTR& other) {
        text_ += other.text_;
        return *this;
    }
    const MCHAR* data() const { return text_.c_str(); }
    const MCHAR* ToMCHAR() const { return text_.c_str(); }
    operator const MCHAR*() const { return text_.c_str(); }  // NOLINT: converts, as the host's does
    bool operator==(const MSTR& other) const { return text_ == other.text_; }

 private:
    std::wstring text_;
};
using TSTR = MSTR;

/// A growing table.
template <typename T>
class Tab {
 public:
    int Count() const { return int(items_.size()); }
    void SetCount(int n) { items_.resize(std::size_t(n)); }
    int Append(int n, const T* items) {
        const int first = Count();
        items_.insert(items_.end(), items, items + n);
        return first;
    }
    T& operator[](int i) { return items_[std::size_t(i)]; }
    const T& operator[](int i) const { return items_[std::size_t(i)]; }

 private:
    std::vector<T> items_;
};

#pragma once
/// Spans of time for which a value holds.

#include "maxtypes.h"

class Interval {
 public:
    Interval() { SetEmpty(); }
    Interval(TimeValue start, TimeValue end) : start_(start), end_(end) {}
    TimeValue Start() const { return start_; }
    TimeValue End() const { return end_; }
    void Set(TimeValue start, TimeValue end) { *this = Interval(start, end); }
    void SetStart(TimeValue start) { start_ = start; }
    void SetEnd(TimeValue end) { end_ = end; }
    void SetInfinite() { *this = Interval(TIME_NegInfinity, TIME_PosInfinity); }
    void SetInstant(TimeValue t) { *this = Interval(t, t); }
    void SetEmpty() { *this = Interval(TIME_NegInfinity, TIME_NegInfinity); }
    bool Empty() const { return end_ == TIME_NegInfinity; }
    bool InInterval(TimeValue t) const { return !Empty() && t >= start_ && t <= end_; }
    bool operator==(const Interval& other) const { return start_ == other.start_ && end_ == other.end_; }
    Interval operator&(const Interval& other) const {
        if (Empty() || other.Empty()) return {};
        const Interval both(start_ > other.start_ ? start_ : other.start_, end_ < other.end_ ? end_ : other.end_);
        return both.start_ <= both.end_ ? both : Interval();
    }
    Interval& operator&=(const Interval& other) { return *this = *this & other; }

 private:
    TimeValue start_ = TIME_NegInfinity, end_ = TIME_NegInfinity;
};

// Temporaries, so that nobody can pass them where a call wants to write.
#define FOREVER Interval(TIME_NegInfinity, TIME_PosInfinity)
#define NEVER Interval(TIME_NegInfinity, TIME_NegInfinity)

#pragma once
/// Holds a speed with the pedals of a keyboard, which know only down and up.

namespace tavrik {

struct CruisePedals {
    bool throttle = false, brake = false;
};

/// A key is pressed where the car is out of its band about the wanted speed, and let go where it is past the middle: at thirty
/// decisions a second the speed stays within a few percent, and it always is the same keys for the same speeds.
class CruiseKeys {
 public:
    /// @param wanted  unit/s, above 0
    explicit CruiseKeys(double wanted) : wanted_(wanted) {}

    /// The keys to hold until the next decision. @param speed  forwards, unit/s
    CruisePedals Decide(double speed);

 private:
    double wanted_;
    CruisePedals held_;
};

}  // namespace tavrik

#pragma once
/// Small helpers for drawings in SVG.

#include <string>
#include <string_view>
#include <vector>

namespace tavrik {

/// `text` with the characters that XML keeps for itself written as entities; control characters become spaces.
std::string XmlText(std::string_view text);

/// Round numbers (1, 2 or 5 times a power of ten apart) that cover `low`..`high` in about `count` steps. The first is at or
/// above `low`, the last at or below `high`.
std::vector<double> NiceTicks(double low, double high, int count);

/// The step that `NiceTicks` takes.
double NiceStep(double range, int count);

/// `value` as people write it: no digits that the step doesn't have, a real minus sign, never "-0".
std::string TickLabel(double value, double step);

/// A straight axis: where a value stands on the drawing.
struct Axis {
    double low, high;  // values
    double from, to;   // drawing, px

    double At(double value) const { return from + (value - low) / (high - low) * (to - from); }
};

/// The least of height or colour that a line in a drawing needs.
struct Rgb {
    int red, green, blue;
};

/// A scale from dark blue over green to yellow that stays readable in grey and for the colour-blind. @param t  0..1
Rgb SpeedColour(double t);

std::string Hex(const Rgb& colour);

}  // namespace tavrik

#pragma once

#include "point3.h"

/// Red, green and blue, 0..1 each.
class Color {
 public:
    float r = 0.0f, g = 0.0f, b = 0.0f;
    Color() = default;
    Color(float red, float green, float blue) : r(red), g(green), b(blue) {}
    /// From three bytes, red in the lowest.
    explicit Color(DWORD rgb)
        : r(float(rgb & 0xff) / 255.0f), g(float(rgb >> 8 & 0xff) / 255.0f), b(float(rgb >> 16 & 0xff) / 255.0f) {}
};

/// With how far it covers what is behind it.
class AColor {
 public:
    float r = 0.0f, g = 0.0f, b = 0.0f, a = 1.0f;
    AColor() = default;
    AColor(float red, float green, float blue, float alpha = 1.0f) : r(red), g(green), b(blue), a(alpha) {}
    bool operator==(const AColor& other) const { return r == other.r && g == other.g && b == other.b && a == other.a; }
};
using RGBA = AColor;

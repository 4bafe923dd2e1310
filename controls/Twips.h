#pragma once

// Window geometry is given in twips (1440 per inch). Qt lays widgets out in device-independent pixels (96 per
// inch at 100 % scaling) and applies the screen's scale factor itself, so one conversion serves every scaling.

#include <QPoint>
#include <QRect>
#include <QSize>

#include <cmath>

namespace vss {

inline constexpr int kTwipsPerInch = 1440;
inline constexpr int kPixelsPerInch = 96;

inline int twipsToPixels(int twips) {
    return static_cast<int>(std::lround(static_cast<double>(twips) * kPixelsPerInch / kTwipsPerInch));
}

inline int pixelsToTwips(int pixels) {
    return static_cast<int>(std::lround(static_cast<double>(pixels) * kTwipsPerInch / kPixelsPerInch));
}

inline QSize twipsSize(int width, int height) { return {twipsToPixels(width), twipsToPixels(height)}; }

// A rectangle from left, top, width and height in twips.
inline QRect twipsRect(int left, int top, int width, int height) {
    return {twipsToPixels(left), twipsToPixels(top), twipsToPixels(width), twipsToPixels(height)};
}

} // namespace vss

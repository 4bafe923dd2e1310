#pragma once

// Window geometry is given in twips (1440 per inch). Qt lays widgets out in device-independent pixels (96 per
// inch at 100 % scaling) and applies the screen's scale factor itself, so one conversion serves every
// scaling.
//
// The layouts were drawn for a narrow dialog font whose letters average kLayoutLetterWidth pixels at 96 per
// inch. The application's font (the desktop's) is wider on most systems, and in it the captions would not fit
// their controls. So the whole layout grows with the font, as it grows under a larger system font: a pixel
// holds fewer twips, a whole number of them, so that a width in pixels is a width in twips exactly. Every
// control keeps its place relative to the others, and the text keeps the size the desktop chose for it.

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <algorithm>
#include <cmath>

namespace vss {

inline constexpr int kTwipsPerInch = 1440;
inline constexpr int kPixelsPerInch = 96;
inline constexpr double kLayoutLetterWidth = 5.5; // pixels, the mean of "A".."Z" and "a".."z"

// Twips per pixel: 15 for the layouts' own font; for a wider application font the whole number that gives its
// letters at least their room. Taken at the first use once the application runs (15 before, and in a program
// without a window system).
inline int twipsPerPixel() {
    constexpr int kDesigned = kTwipsPerInch / kPixelsPerInch;
    static int perPixel = 0;
    if (perPixel == 0) {
        if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
            return kDesigned;
        const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
        const double letterWidth = QFontMetricsF(QGuiApplication::font()).horizontalAdvance(letters) /
                                   static_cast<double>(letters.size());
        perPixel = std::clamp(static_cast<int>(kDesigned * kLayoutLetterWidth / letterWidth), 1, kDesigned);
    }
    return perPixel;
}

inline int twipsToPixels(int twips) {
    return static_cast<int>(std::lround(static_cast<double>(twips) / twipsPerPixel()));
}

inline int pixelsToTwips(int pixels) {
    return pixels * twipsPerPixel();
}

inline QSize twipsSize(int width, int height) {
    return {twipsToPixels(width), twipsToPixels(height)};
}

// A rectangle from left, top, width and height in twips. Its edges are converted, not its size, so that
// controls that meet in twips meet in pixels too.
inline QRect twipsRect(int left, int top, int width, int height) {
    return QRect(QPoint(twipsToPixels(left), twipsToPixels(top)),
                 QPoint(twipsToPixels(left + width) - 1, twipsToPixels(top + height) - 1));
}

} // namespace vss

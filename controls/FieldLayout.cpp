#include "controls/FieldLayout.h"

#include <algorithm>
#include <cmath>

namespace vss {

UnitStripLayout unitStripLayout(int innerWidth, bool hasUnitText, int optStrWidth) {
    const int strip = hasUnitText ? optStrWidth : 0;
    const int textWidth = std::max(0, innerWidth - strip);
    return {{0, textWidth}, {textWidth, std::max(0, strip)}};
}

PropertyRowLayout propertyRowLayout(int innerWidth, bool layoutAuto, int labelWidth) {
    constexpr int kMargin = 5;
    constexpr int kGap = 10;
    int captionWidth = 0;
    int editorWidth = 0;
    if (layoutAuto) {
        captionWidth = static_cast<int>(std::lround(innerWidth / 2.0 - kGap));
        editorWidth = captionWidth;
    } else {
        captionWidth = labelWidth;
        editorWidth = innerWidth - labelWidth - kGap;
    }
    const int editorLeft = kMargin + captionWidth + kGap;
    return {{kMargin, std::max(0, captionWidth)}, {editorLeft, std::max(0, editorWidth)}};
}

} // namespace vss

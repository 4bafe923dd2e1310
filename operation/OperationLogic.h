#pragma once

// The operation panel's rules that do not need a window: state texts, which buttons the state enables, the
// spindle speed stepping through the speed list, and the default radii of the three free positions.

#include "driver/StateText.h"
#include "driver/Types.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace vss::operation {

// Text of an instrument state code; 0x2240 and every unknown code read "OTHER".
using vss::stateText;

// The five position buttons (Inner, Outer, Pos1-Pos3) are usable only with the heads loaded.
bool positionButtonsEnabled(std::int32_t stateCode);

// Spindle state and "Media Change OK?" texts of a spindle state code (compared as a 16-bit value); both empty
// for a code the instrument does not define.
struct SpindleStateTexts {
    std::string_view state;
    std::string_view mediaChange;
};
SpindleStateTexts spindleStateTexts(std::int32_t code);

// Used when the instrument's speed or speed range cannot be read.
inline constexpr std::int32_t kDefaultSpeed = 7200;
inline constexpr SpeedRange kDefaultSpeedRange{4000, 8000};

// The first index whose list speed is at least `speed`, or one past the last index when none is. A speed that
// is not in the list therefore steps from the next larger entry.
std::int16_t IndexOfSpeed(std::span<const std::int32_t> list, std::int32_t speed);

// The speed for a stepped index: an index past the end is cut back to the last one (and the caller's index
// with it); an index before the start gives 0; the result is then brought into the range.
std::int32_t SpeedAtIndex(std::span<const std::int32_t> list, std::int16_t& index, SpeedRange range);

// The spindle speed stepping: the next speed down (direction < 0) or up from `current` in the list, within
// the range.
std::int32_t stepSpeed(std::span<const std::int32_t> list, std::int32_t current, SpeedRange range,
                       int direction);

// Default radii (m) of Pos1-Pos3 from the inner and outer measurement radii: 3.05 mm inside each end and the
// middle.
struct PositionDefaults {
    double pos1 = 0.0;
    double pos2 = 0.0;
    double pos3 = 0.0;
};
PositionDefaults positionDefaults(double innerRadius, double outerRadius);

} // namespace vss::operation

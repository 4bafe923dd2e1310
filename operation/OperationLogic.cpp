#include "operation/OperationLogic.h"

#include <algorithm>

namespace vss::operation {

bool positionButtonsEnabled(std::int32_t stateCode) {
    return stateCode == state::Loaded;
}

SpindleStateTexts spindleStateTexts(std::int32_t code) {
    const std::int16_t shown = static_cast<std::int16_t>(code);
    const std::string_view state = spindleStateText(shown);
    if (state.empty())
        return {"", ""};
    return {state, shown == spindlestate::Off ? "Yes" : "No"};
}

std::int16_t IndexOfSpeed(std::span<const std::int32_t> list, std::int32_t speed) {
    const auto found = std::find_if(list.begin(), list.end(), [speed](std::int32_t v) { return v >= speed; });
    return static_cast<std::int16_t>(found - list.begin());
}

std::int32_t SpeedAtIndex(std::span<const std::int32_t> list, std::int16_t& index, SpeedRange range) {
    const auto upper = static_cast<std::int16_t>(list.size()) - 1;
    if (index > upper)
        index = static_cast<std::int16_t>(upper);
    std::int32_t speed = index < 0 ? 0 : list[static_cast<std::size_t>(index)];
    if (speed < range.min)
        speed = range.min;
    if (speed > range.max)
        speed = range.max;
    return speed;
}

std::int32_t stepSpeed(std::span<const std::int32_t> list, std::int32_t current, SpeedRange range,
                       int direction) {
    auto index = static_cast<std::int16_t>(IndexOfSpeed(list, current) + (direction < 0 ? -1 : 1));
    return SpeedAtIndex(list, index, range);
}

PositionDefaults positionDefaults(double innerRadius, double outerRadius) {
    return {innerRadius + 0.00305, innerRadius + (outerRadius - innerRadius) * (1.0 / 2.0),
            outerRadius - 0.00305};
}

} // namespace vss::operation

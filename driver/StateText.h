#pragma once

// The texts of the instrument's state codes (IDriver::GetState) and of its spindle state codes
// (IDriverService::GetSpindleState), as every window that shows them writes them.

#include "driver/Types.h"

#include <cstdint>
#include <string_view>

namespace vss {

// "OTHER" for a code the instrument does not define.
inline std::string_view stateText(std::int32_t code) {
    switch (code) {
    case state::Closed:
        return "CLOSED";
    case state::Open:
        return "OPEN";
    case state::Uninitialized:
        return "UNINITIALIZED";
    case state::Initialized:
        return "INITIALIZED";
    case state::AtHome:
        return "AT HOME";
    case state::HomeOff:
        return "HOME(OFF)";
    case state::HomeStandby:
        return "HOME(STANDBY)";
    case state::HomeRun:
        return "HOME(RUN)";
    case state::Loaded:
        return "LOADED";
    default:
        return "OTHER";
    }
}

// Empty for a code the instrument does not define.
inline std::string_view spindleStateText(std::int32_t code) {
    switch (code) {
    case spindlestate::Off:
        return "OFF";
    case spindlestate::Standby:
        return "STANDBY";
    case spindlestate::Run:
        return "RUN";
    case spindlestate::Unlock:
        return "UNLOCK";
    case spindlestate::Unknown:
        return "UNKNOWN";
    default:
        return {};
    }
}

} // namespace vss

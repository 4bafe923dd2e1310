#pragma once

// Process-wide state of the program: the driver's ProgID, the spindle speed list, the twelve interface
// handles of the instrument session and how the driver object is made. Every window reads the handles from
// here; no window keeps its own copy.

#include "simulator/Factory.h"
#include "driver/Handles.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vss {

inline constexpr std::string_view kAppTitle = "Velkor Spinstand Tool";

inline constexpr std::size_t kSpindleSpeedCount = 7;
using SpindleSpeedList = std::array<std::int32_t, kSpindleSpeedCount>;

struct Globals {
    std::string driverProgId;         // the driver class created by "Open"
    SpindleSpeedList spindleSpeeds{}; // the selectable spindle speeds in rpm, ascending
    DriverHandles handles;            // filled by "Open", emptied after the session except diskSize
    DriverOptions driverOptions;      // simulator and trace, from the command line
    std::string catalogueFile;        // the spinstand catalogue: "VssTool.ini" in the program's folder
};

Globals& globals();

// The session's handles (the same object as globals().handles).
DriverHandles& handles();

// The first steps of start-up: the driver ProgID, then the spindle speed list.
void setUpGlobals();

} // namespace vss

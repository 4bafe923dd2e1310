#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vss {

// Instrument state codes of IDriver::GetState.
namespace state {
inline constexpr std::int32_t Closed = 0x1000;
inline constexpr std::int32_t Open = 0x2000;
inline constexpr std::int32_t Uninitialized = 0x2100;
inline constexpr std::int32_t Initialized = 0x2200;
inline constexpr std::int32_t AtHome = 0x2210;
inline constexpr std::int32_t HomeOff = 0x2211;
inline constexpr std::int32_t HomeStandby = 0x2212;
inline constexpr std::int32_t HomeRun = 0x2214;
inline constexpr std::int32_t Loaded = 0x2220;
inline constexpr std::int32_t Other = 0x2240;
} // namespace state

// Spindle state at home (IDriver::GetHomeState / SetHomeState); also the low bits of the HOME state codes.
namespace homestate {
inline constexpr std::int32_t Stop = 1;
inline constexpr std::int32_t Standby = 2;
inline constexpr std::int32_t Run = 4;
} // namespace homestate

// Spindle state codes of IDriverService::GetSpindleState / SetSpindleState.
namespace spindlestate {
inline constexpr std::int32_t Off = 0;
inline constexpr std::int32_t Standby = 1;
inline constexpr std::int32_t Run = 2;
inline constexpr std::int32_t Unlock = 3;
inline constexpr std::int32_t Unknown = -1;
} // namespace spindlestate

// Selector of IDriverLoadPosition.
namespace loadposition {
inline constexpr std::int16_t Load = 1;
inline constexpr std::int16_t Unload = 2;
} // namespace loadposition

// Indexes of the stopper, measurement position and stage geometry operations of IDriverService.
namespace stopper {
inline constexpr std::int16_t Inner = 0;
inline constexpr std::int16_t Outer = 1;
} // namespace stopper
namespace geometry {
inline constexpr std::int16_t Stage2Spindle = 0;
inline constexpr std::int16_t Stage2Ref = 1;
inline constexpr std::int16_t StageOffset = 2;
} // namespace geometry

// Position codes of IDriverService::MoveToPosition.
namespace stageposition {
inline constexpr std::int16_t Home = 0;
inline constexpr std::int16_t Outer = 1;
inline constexpr std::int16_t Inner = 2;
} // namespace stageposition

// A skew of this value in a PositionRecord means that no skew is given.
inline constexpr double kNoSkew = 9.91e37;

// Radius in metres and skew in degrees.
struct PositionRecord {
    double radius = 0.0;
    double skew = 0.0;
    friend bool operator==(const PositionRecord&, const PositionRecord&) = default;
};

// IDriver::GetPosition: track, radius (m), skew (deg).
struct HeadPosition {
    std::int32_t track = 0;
    double radius = 0.0;
    double skew = 0.0;
    friend bool operator==(const HeadPosition&, const HeadPosition&) = default;
};

// IDriver::GetDataArea / SetDataArea: inner radius (m), max track, track pitch (m).
struct DataArea {
    double innerRadius = 0.0;
    std::int32_t maxTrack = 0;
    double pitch = 0.0;
    friend bool operator==(const DataArea&, const DataArea&) = default;
};

// IDriverLoadPosition::GetLoadPosition: the position with its spindle speed (rpm).
struct LoadPosition {
    PositionRecord position;
    std::int32_t rpm = 0;
    friend bool operator==(const LoadPosition&, const LoadPosition&) = default;
};

// A pair of limits: speed range (rpm), disk size limits and ranges (m).
struct SpeedRange {
    std::int32_t min = 0;
    std::int32_t max = 0;
    friend bool operator==(const SpeedRange&, const SpeedRange&) = default;
};
struct DoubleRange {
    double min = 0.0;
    double max = 0.0;
    friend bool operator==(const DoubleRange&, const DoubleRange&) = default;
};

// A list of choices: names with their 16-bit codes, same bounds (load methods, spinstand types, property choices).
struct NamedCodes {
    std::vector<std::string> names;
    std::vector<std::int16_t> codes;
    friend bool operator==(const NamedCodes&, const NamedCodes&) = default;
};

// A driver's list keeps its bounds: drivers number their lists from 0 or from 1, and an index that goes back
// to the driver is the list's own. Element k of the vectors has the index lower + k, within 16 bits.

// The names of the piezo adjust points, the piezo calibration coefficients and the backlash entries.
struct NameList {
    std::int16_t lower = 0;
    std::vector<std::string> names;

    std::size_t size() const { return names.size(); }
    std::int16_t indexAt(std::size_t k) const {
        return static_cast<std::int16_t>(lower + static_cast<std::int32_t>(k));
    }
    friend bool operator==(const NameList&, const NameList&) = default;
};

// Spindle and stage property lists and the spindle driver items: identifiers, names and unit texts, same bounds.
// Properties are addressed by identifier, so the bounds only pair each identifier with its name.
struct PropertyList {
    std::vector<std::int16_t> ids;
    std::vector<std::string> names;
    std::vector<std::string> units;
    std::int16_t lower = 0;
    friend bool operator==(const PropertyList&, const PropertyList&) = default;
};

// IDriverService::GetStagePositionFlags.
struct StagePositionFlags {
    bool atHome = false;
    bool atInner = false;
    bool atOuter = false;
    friend bool operator==(const StagePositionFlags&, const StagePositionFlags&) = default;
};

// IDriverService::GetStopperSensors.
struct StopperSensors {
    bool up = false;
    bool down = false;
    friend bool operator==(const StopperSensors&, const StopperSensors&) = default;
};

// Piezo calibration coefficients: volt pair (V), position pair (m) and the coefficients.
struct PiezoCalCoef {
    double vmin = 0.0;
    double vmax = 0.0;
    double xmin = 0.0;
    double xmax = 0.0;
    std::vector<double> coef;
    friend bool operator==(const PiezoCalCoef&, const PiezoCalCoef&) = default;
};

// Piezo calibration data points: voltages (V) and positions (m), same bounds.
struct PiezoCalData {
    std::vector<double> volt;
    std::vector<double> position;
    friend bool operator==(const PiezoCalData&, const PiezoCalData&) = default;
};

// Piezo control data: five quantities, each an array of rows (two on the instrument).
// Units: Lth m, Ta s, Ks m/s, Lstep m, Tstep s.
struct PiezoControlData {
    std::vector<double> lth;
    std::vector<double> ta;
    std::vector<double> ks;
    std::vector<double> lstep;
    std::vector<double> tstep;
    friend bool operator==(const PiezoControlData&, const PiezoControlData&) = default;
};

} // namespace vss

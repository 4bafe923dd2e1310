#pragma once

// The instrument's configuration groups. The instrument keeps each group twice: the working copy that the
// driver's operations read and write, and the non-volatile copy that Save writes and Recall reads. The checks
// of every value live here too, so that a value typed by the user and a value read from the memory file pass
// the same test.

#include "driver/Types.h"
#include "driver/Variant.h"
#include "simulator/StageGeometry.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vss::sim {

enum class Group {
    VersionData,
    SpinstandConfiguration,
    CustomerConfiguration,
    StageProperty,
    SpindleProperty,
    PiezoData,
    BacklashCompensation,
};
inline constexpr std::array<Group, 7> kGroups{
    Group::VersionData,   Group::SpinstandConfiguration, Group::CustomerConfiguration, Group::StageProperty,
    Group::SpindleProperty, Group::PiezoData,            Group::BacklashCompensation,
};
std::string_view groupName(Group g); // "VersionData" ...: the section name in the memory file

struct VersionData {
    std::string hardwareRevision;
    std::string serialNumber;
    friend bool operator==(const VersionData&, const VersionData&) = default;
};

struct SpinstandConfiguration {
    bool settingUnknown = false;
    std::int16_t spinstandType = 0;
    std::int32_t headFace = 1; // 1 down face, 0 up face
    DoubleRange diskSize;      // disk radius, m
    friend bool operator==(const SpinstandConfiguration&, const SpinstandConfiguration&) = default;
};

struct CustomerConfiguration {
    std::array<double, 2> stopper{}; // stage angle of the inner and the outer stopper, degrees
    StageGeometry geometry;
    friend bool operator==(const CustomerConfiguration& a, const CustomerConfiguration& b) {
        return a.stopper == b.stopper && a.geometry.stage2Spindle == b.geometry.stage2Spindle &&
               a.geometry.stage2Ref == b.geometry.stage2Ref && a.geometry.stageOffset == b.geometry.stageOffset;
    }
};

struct PropertyValues {
    std::vector<Variant> values;
    friend bool operator==(const PropertyValues&, const PropertyValues&) = default;
};

struct SpindlePropertyGroup {
    std::vector<Variant> values;
    SpeedRange speedRange;
    friend bool operator==(const SpindlePropertyGroup&, const SpindlePropertyGroup&) = default;
};

struct PiezoData {
    std::string serial;
    PiezoCalCoef calCoef;
    PiezoCalData calData;
    std::vector<std::int32_t> adjust;
    PiezoControlData control;
    friend bool operator==(const PiezoData&, const PiezoData&) = default;
};

struct BacklashData {
    std::vector<std::int32_t> values;
    std::string date; // of the last save
    friend bool operator==(const BacklashData&, const BacklashData&) = default;
};

struct Settings {
    VersionData version;
    SpinstandConfiguration spinstand;
    CustomerConfiguration customer;
    PropertyValues stage;
    SpindlePropertyGroup spindle;
    PiezoData piezo;
    BacklashData backlash;

    static Settings factory();
    friend bool operator==(const Settings&, const Settings&) = default;
};

// The settings of a measurement run that the instrument holds outside its configuration groups (the tool's
// "Setting" group). They are working values only: no Save keeps them.
struct MeasurementSettings {
    std::int32_t spindleSpeed = 7200;
    std::int32_t homeState = homestate::Stop;
    std::int16_t loadMethod = 0;
    DataArea dataArea{0.012, 50000, 5.6e-7}; // 12 to 40 mm
    std::array<LoadPosition, 2> positions{LoadPosition{{0.03, kNoSkew}, 7200},
                                          LoadPosition{{0.045, kNoSkew}, 7200}};
    bool diskSizeRestriction = true;
    friend bool operator==(const MeasurementSettings&, const MeasurementSettings&) = default;
};

void copyGroup(Group g, const Settings& from, Settings& to);
bool sameGroup(Group g, const Settings& a, const Settings& b);

// Checks; each throws DriverError saying what was wrong and what is allowed.
void checkIdentityText(std::string_view what, std::string_view text);
void checkDiskSizeRange(double min, double max);
void checkSpeedRange(std::int32_t min, std::int32_t max);
void checkStopperIndex(std::int16_t index);
void checkStopperAngle(double angle);
void checkGeometryIndex(std::int16_t index);
void checkGeometry(std::int16_t index, double value);
void checkHeadFace(std::int32_t face);
void checkHomeState(std::int32_t code);
void checkDataArea(const DataArea& area);
// The position in the instrument's table of an index into its list numbered from `lower`; a missing index throws.
std::size_t adjustSlot(std::int16_t index, std::int16_t lower);
void checkAdjust(std::int32_t dac);
std::size_t backlashSlot(std::int16_t index, std::int16_t lower);
void checkBacklash(std::int32_t pulses);
void checkCalCoef(const PiezoCalCoef& coef);
void checkCalData(const PiezoCalData& data);
void checkControlData(const PiezoControlData& data);

// The memory file's text of the non-volatile settings, and back. Reading throws SettingsError.
std::string writeSettings(const Settings& settings);
struct SettingsError {
    int line;
    std::string message;
};
// Starts from the factory settings; keys not given keep them. The text must end with the "[End]" line that
// writeSettings writes last: a file without it was cut short.
Settings readSettings(std::string_view text);

// The working values, which the instrument keeps while it is powered: every group and the measurement
// settings.
struct WorkingValues {
    Settings settings;
    MeasurementSettings measurement;
    friend bool operator==(const WorkingValues&, const WorkingValues&) = default;
};
std::string writeWorkingValues(const WorkingValues& values);
WorkingValues readWorkingValues(std::string_view text); // throws SettingsError

} // namespace vss::sim

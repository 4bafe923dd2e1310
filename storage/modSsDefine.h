#pragma once

// The spinstand catalogue: the models a service engineer can give an instrument in one step, read from a text
// file ("VssTool.ini" beside the program) into a process-wide table, and written to the instrument's working
// settings through the service interface.
//
// The file is a stream of comma-separated fields (line ends separate fields too; fields that begin with ";"
// are comments): first the number of models N, then records of a key and N values, the value of model 0
// first, in any order. A key given twice keeps its later values; a key not given leaves its field empty or 0.
// An unknown key raises "Unknown Parameter : <key>" once per value and is skipped.
//
// A catalogue that cannot be used (missing or unreadable file, a count that is not a whole number from 1 to
// kMaxCatalogueModels, a value that is not a number or does not fit its field, a record cut short by the end
// of the file, too many unknown values) is reported once, naming the file and what is wrong, and leaves the
// table empty: a model is never half read.
//
// Applying a model writes it whole or says what it left: the model is checked against the instrument's lists
// before its first write, and a value the instrument still refuses names what was written and what was not.
// The defaults a model takes (a key the file does not give, a head face word that is neither face) are kept
// kept and warned about each time the model is applied, in one message naming the keys and the values
// used.

#include "driver/Interfaces.h"
#include "storage/MessageSink.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vss {

inline constexpr std::string_view kCatalogueFileName = "VssTool.ini";
inline constexpr std::string_view kInvalidSpindleDriver = "Warning : Invalid Spindle Driver.";
inline constexpr std::string_view kUnknownParameter = "Unknown Parameter : ";
// Bounds that keep a wrong file from flooding the user or the memory.
inline constexpr int kMaxCatalogueModels = 1000;
inline constexpr int kMaxUnknownMessages = 50; // "Unknown Parameter : " shown; the rest are counted

struct SpinstandDefinition {
    std::string Name;
    std::string Description;
    std::string HardwareRevision;
    std::int16_t SpinstandType = 0;
    std::int32_t HeadFace = 0; // 1 down face, 0 up face
    double DiskSizeMin = 0;
    double DiskSizeMax = 0;
    // Stage properties 0 to 10.
    std::int16_t GearInvert = 0;
    std::int32_t tStprUp = 0;
    std::int32_t tStprDn = 0;
    std::int32_t tStprThru = 0;
    std::int32_t tBrake = 0;
    std::int32_t tSettle = 0;
    std::int32_t tCover = 0;
    std::int32_t tLockdown = 0;
    std::int32_t tStopper = 0;
    std::int32_t tMove = 0;
    std::int32_t tMotorOff = 0;
    std::int32_t SpeedMin = 0;
    std::int32_t SpeedMax = 0;
    // Spindle properties 0 to 12.
    std::int16_t Rotation = 0;
    std::int32_t BrakeTime = 0;
    std::int16_t RefClock = 0;
    double RefFreq = 0;
    std::int16_t ReadyPol = 0;
    std::int32_t IndexDiv = 0;
    std::int16_t Driver = 0;
    std::int32_t PoleNum = 0;
    std::int32_t tRdy = 0;
    std::int32_t tSpindleSet = 0;
    std::int32_t tSpindleOff = 0;
    std::int32_t tLock = 0;
    std::int32_t tLockSettle = 0;
    // The spindle driver the model expects (compared with what the instrument reports, never written).
    std::int16_t DriverRot = 0;
    std::int16_t DriverType = 0;
    double StopperOuter = 0;
    double StopperInner = 0;
    double Stage2Spindle = 0;
    double Stage2Ref = 0;
    double StageOffset = 0;
    // The keys whose default the model takes, each with its note ("tStprUp is not given, 0 is used").
    std::map<std::string, std::string> defaultsUsed;

    friend bool operator==(const SpinstandDefinition&, const SpinstandDefinition&) = default;
};

// The process-wide table, as the last read left it.
const std::vector<SpinstandDefinition>& spinstandDefinitions();

// Reads the catalogue file into the table, replacing it. Messages go to sink. Returns false when the
// catalogue could not be used (the table is then empty).
bool ReadSpinstandDefinitions(const std::string& fileName, MessageSink& sink);

// The Name of that entry, or "" when the index is outside the table.
std::string GetSpinstandName(std::int16_t index);

// Writes the entry to the instrument's working settings, in the instrument's order, and checks the spindle
// driver it reports against the model; a mismatch shows kInvalidSpindleDriver after every value has been
// written. Returns whether the spindle driver matched. Before anything is written, a model that takes
// defaults is warned about (a message beginning "Warning : ") and the model is checked whole against its own
// ranges and the instrument's lists (spinstand types, the properties' types and choices): a model that would
// be refused throws std::runtime_error naming every problem, and nothing is written. A failing driver call
// throws a DriverError with the driver's text that names the values written and those not written, and stops
// the rest. Throws std::out_of_range for an index outside the table.
bool ApplySpinstandDefinition(std::int16_t index, IDriverService& service, MessageSink& sink);

} // namespace vss

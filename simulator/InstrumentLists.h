#pragma once

// The lists the instrument supplies: its spindle and stage properties (names, units, types, ranges, choices and
// factory values), the spindle driver's identification items, spinstand types, load methods and the names of
// the piezo and backlash entries. Checking a property value against its entry happens here, once.

#include "driver/Types.h"
#include "driver/Variant.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vss::sim {

struct PropertySpec {
    std::string name;
    std::string unit;
    Variant::Type type; // Int16 (a coded value with choices), Int32 or Double
    double min = 0.0;   // the allowed range of a number
    double max = 0.0;
    NamedCodes choices; // the codes of a coded value
    Variant factory;    // the value a new instrument has
};

// A family of properties ("Spindle property", "Stage property", "Spindle driver item"): identifiers are the
// positions in the list.
struct PropertyFamily {
    std::string_view title;
    std::vector<PropertySpec> specs;

    const PropertySpec& at(std::int16_t id) const; // throws DriverError naming the allowed identifiers
    PropertyList list(std::int16_t lower) const; // the list numbered from `lower`
    NamedCodes choices(std::int16_t id) const; // throws DriverError for a property that is not coded
    // The value converted to the property's own type; throws DriverError saying what is allowed.
    Variant checked(std::int16_t id, const Variant& value) const;
    std::vector<Variant> factoryValues() const;
};

const PropertyFamily& spindleProperties();  // 13: Rotation ... tLockSettle
const PropertyFamily& stageProperties();    // 11: GearInvert ... tMotorOff
const PropertyFamily& spindleDriverItems(); // 2: rotation, type

NamedCodes spinstandTypes();
NamedCodes loadMethods();
std::vector<std::string> backlashNames();     // five entries, A to E
std::vector<std::string> piezoAdjustNames();  // six DAC adjust points
std::vector<std::string> piezoCalCoefNames(); // five calibration coefficients

// The text "0 (CW), 1 (CCW)" for a message that lists the allowed codes.
std::string describeCodes(const NamedCodes& codes);
// Throws DriverError unless code is one of codes; what names the value ("Load method").
void checkCode(std::string_view what, const NamedCodes& codes, std::int32_t code);

} // namespace vss::sim

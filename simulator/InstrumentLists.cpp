#include "simulator/InstrumentLists.h"

#include "driver/DriverError.h"
#include "driver/Trace.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace vss::sim {

namespace {

PropertySpec coded(std::string name, NamedCodes choices, std::int16_t factory) {
    return {std::move(name), "", Variant::Type::Int16, 0.0, 0.0, std::move(choices), Variant(factory)};
}
PropertySpec whole(std::string name, std::string unit, double min, double max, std::int32_t factory) {
    return {std::move(name), std::move(unit), Variant::Type::Int32, min, max, {}, Variant(factory)};
}
PropertySpec real(std::string name, std::string unit, double min, double max, double factory) {
    return {std::move(name), std::move(unit), Variant::Type::Double, min, max, {}, Variant(factory)};
}
PropertySpec milliseconds(std::string name, std::int32_t factory) {
    return whole(std::move(name), "ms", 0, 60000, factory);
}

const NamedCodes kRotation{{"CW", "CCW"}, {0, 1}};
const NamedCodes kDriverType{{"Sensorless", "Hall sensor"}, {0, 1}};

std::string number(double v) { return traceformat::number(v); }

// The numeric value of a property value as sent; text is accepted when it holds a number.
double numericValue(std::string_view what, const Variant& value) {
    switch (value.type()) {
    case Variant::Type::Int16:
    case Variant::Type::Int32:
    case Variant::Type::Double:
        return value.toDouble();
    case Variant::Type::Text: {
        const std::string& t = value.text();
        const char* first = t.data();
        const char* const last = t.data() + t.size();
        while (first != last && *first == ' ')
            ++first;
        if (first != last && *first == '+' && first + 1 != last && first[1] != '-')
            ++first;
        double d = 0.0; // read with a decimal point whatever the C locale
        const auto [end, ec] = std::from_chars(first, last, d);
        if (first != last && ec == std::errc() && end == last)
            return d;
        throw DriverError(std::string(what) + " takes a number, not the text " + traceformat::text(t) + ".");
    }
    default:
        throw DriverError(std::string(what) + " takes a number, not a value of type " +
                          Variant::typeName(value.type()) + ".");
    }
}

} // namespace

const PropertySpec& PropertyFamily::at(std::int16_t id) const {
    if (id < 0 || static_cast<std::size_t>(id) >= specs.size())
        throw DriverError(std::string(title) + " " + std::to_string(id) + " does not exist: the identifiers are 0 to " +
                          std::to_string(specs.size() - 1) + ".");
    return specs[static_cast<std::size_t>(id)];
}

PropertyList PropertyFamily::list(std::int16_t lower) const {
    PropertyList l;
    l.lower = lower;
    for (std::size_t i = 0; i < specs.size(); ++i) {
        l.ids.push_back(static_cast<std::int16_t>(i));
        l.names.push_back(specs[i].name);
        l.units.push_back(specs[i].unit);
    }
    return l;
}

NamedCodes PropertyFamily::choices(std::int16_t id) const {
    const PropertySpec& spec = at(id);
    if (spec.type != Variant::Type::Int16)
        throw DriverError(std::string(title) + " " + spec.name + " has no choices: it takes a number.");
    return spec.choices;
}

Variant PropertyFamily::checked(std::int16_t id, const Variant& value) const {
    const PropertySpec& spec = at(id);
    const std::string what = std::string(title) + " " + spec.name;
    const double v = numericValue(what, value);
    if (!std::isfinite(v))
        throw DriverError(what + " takes a finite number.");
    if (spec.type == Variant::Type::Double) {
        if (v < spec.min || v > spec.max)
            throw DriverError(what + ": " + number(v) + " is outside the range " + number(spec.min) + " to " +
                              number(spec.max) + " " + spec.unit + ".");
        return Variant(v);
    }
    if (v != std::floor(v))
        throw DriverError(what + " takes a whole number, not " + number(v) + ".");
    if (spec.type == Variant::Type::Int16) {
        if (v < -32768 || v > 32767)
            throw DriverError(what + ": " + number(v) + " is not a code; allowed: " + describeCodes(spec.choices) + ".");
        checkCode(what, spec.choices, static_cast<std::int32_t>(v));
        return Variant(static_cast<std::int16_t>(v));
    }
    if (v < spec.min || v > spec.max)
        throw DriverError(what + ": " + number(v) + " is outside the range " + number(spec.min) + " to " +
                          number(spec.max) + (spec.unit.empty() ? "" : " " + spec.unit) + ".");
    return Variant(static_cast<std::int32_t>(v));
}

std::vector<Variant> PropertyFamily::factoryValues() const {
    std::vector<Variant> values;
    for (const PropertySpec& s : specs)
        values.push_back(s.factory);
    return values;
}

// The spindle of a new instrument: a clockwise 8-pole sensorless drive, locked to a 10 kHz internal reference.
const PropertyFamily& spindleProperties() {
    // Never destroyed: the process-wide instrument writes its working values as it is destroyed at exit,
    // after a function's static object would be.
    static const PropertyFamily& family = *new PropertyFamily{
        "Spindle property",
        {
            coded("Rotation", kRotation, 0),
            milliseconds("BrakeTime", 3000),
            coded("RefClock", {{"Internal", "External"}, {0, 1}}, 0),
            real("RefFreq", "Hz", 1.0, 1.0e7, 10000.0),
            coded("ReadyPol", {{"Low active", "High active"}, {0, 1}}, 1),
            whole("IndexDiv", "", 1, 64, 1),
            coded("Driver", kDriverType, 0),
            whole("PoleNum", "", 2, 32, 8),
            milliseconds("tRdy", 5000),
            milliseconds("tSpindleSet", 500),
            milliseconds("tSpindleOff", 8000),
            milliseconds("tLock", 2000),
            milliseconds("tLockSettle", 500),
        },
    };
    return family;
}

const PropertyFamily& stageProperties() {
    // Never destroyed: the process-wide instrument writes its working values as it is destroyed at exit,
    // after a function's static object would be.
    static const PropertyFamily& family = *new PropertyFamily{
        "Stage property",
        {
            coded("GearInvert", {{"Normal", "Inverted"}, {0, 1}}, 0),
            milliseconds("tStprUp", 200),
            milliseconds("tStprDn", 200),
            milliseconds("tStprThru", 300),
            milliseconds("tBrake", 100),
            milliseconds("tSettle", 50),
            milliseconds("tCover", 1000),
            milliseconds("tLockdown", 300),
            milliseconds("tStopper", 150),
            milliseconds("tMove", 5000),
            milliseconds("tMotorOff", 2000),
        },
    };
    return family;
}

// What the spindle driver board reports about itself; it is fitted at the factory and never written.
const PropertyFamily& spindleDriverItems() {
    // Never destroyed: the process-wide instrument writes its working values as it is destroyed at exit,
    // after a function's static object would be.
    static const PropertyFamily& family = *new PropertyFamily{
        "Spindle driver item",
        {coded("Rotation", kRotation, 0), coded("Type", kDriverType, 0)},
    };
    return family;
}

NamedCodes spinstandTypes() { return {{"Standard", "High Speed", "Compact"}, {0, 1, 2}}; }
NamedCodes loadMethods() { return {{"Dynamic", "Dynamic (slow)", "Static"}, {0, 1, 2}}; }

std::vector<std::string> backlashNames() {
    return {"A (ID to outer)", "B (ID to inner)", "C (OD to inner)", "D (OD to outer)", "E (Home to Inner)"};
}

std::vector<std::string> piezoAdjustNames() {
    return {"Zero", "Gain", "Offset X", "Offset Y", "Bias", "Drift"};
}

std::vector<std::string> piezoCalCoefNames() { return {"K0", "K1", "K2", "K3", "K4"}; }

std::string describeCodes(const NamedCodes& codes) {
    std::string out;
    for (std::size_t i = 0; i < codes.codes.size(); ++i)
        out += (i ? ", " : "") + std::to_string(codes.codes[i]) + " (" + codes.names[i] + ")";
    return out;
}

void checkCode(std::string_view what, const NamedCodes& codes, std::int32_t code) {
    for (const std::int16_t c : codes.codes)
        if (c == code)
            return;
    throw DriverError(std::string(what) + ": " + std::to_string(code) + " is not allowed; allowed: " +
                      describeCodes(codes) + ".");
}

} // namespace vss::sim

#include "simulator/Settings.h"

#include "driver/DriverError.h"
#include "driver/ShownText.h"
#include "driver/Trace.h"
#include "simulator/InstrumentLists.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <map>

namespace vss::sim {

namespace {

std::string num(double v) { return traceformat::number(v); }

[[noreturn]] void fail(const std::string& message) { throw DriverError(message); }

void checkFinite(std::string_view what, double v) {
    if (!std::isfinite(v))
        fail(std::string(what) + " must be a finite number.");
}

void checkRange(std::string_view what, double v, double min, double max, std::string_view unit) {
    checkFinite(what, v);
    if (v < min || v > max)
        fail(std::string(what) + " " + num(v) + " " + std::string(unit) + " is outside the range " + num(min) +
             " to " + num(max) + " " + std::string(unit) + ".");
}

// The position in the instrument's table of an index into a list numbered from `lower`.
std::size_t slotOf(std::string_view what, std::int16_t index, std::int16_t lower, std::size_t count) {
    const std::int32_t slot = static_cast<std::int32_t>(index) - lower;
    if (slot < 0 || static_cast<std::size_t>(slot) >= count)
        fail(std::string(what) + " index " + std::to_string(index) + " does not exist: the indexes are " +
             std::to_string(lower) + " to " + std::to_string(lower + static_cast<std::int32_t>(count) - 1) + ".");
    return static_cast<std::size_t>(slot);
}

// The factory calibration of the piezo: x(V) = K0 + K1 V + K2 V^2 + K3 V^3 + K4 V^4 (m), and the eleven points
// it was fitted to, 0 to 100 V.
PiezoCalCoef factoryCalCoef() { return {0.0, 100.0, 0.0, 4e-6, {0.0, 4.1e-8, -1e-11, 0.0, 0.0}}; }

PiezoCalData factoryCalData(const PiezoCalCoef& c) {
    PiezoCalData d;
    for (int i = 0; i <= 10; ++i) {
        const double v = 10.0 * i;
        double x = 0.0;
        for (std::size_t k = c.coef.size(); k-- > 0;)
            x = x * v + c.coef[k];
        d.volt.push_back(v);
        d.position.push_back(std::round(x * 1e10) / 1e10);
    }
    return d;
}

} // namespace

std::string_view groupName(Group g) {
    switch (g) {
    case Group::VersionData:
        return "VersionData";
    case Group::SpinstandConfiguration:
        return "SpinstandConfiguration";
    case Group::CustomerConfiguration:
        return "CustomerConfiguration";
    case Group::StageProperty:
        return "StageProperty";
    case Group::SpindleProperty:
        return "SpindleProperty";
    case Group::PiezoData:
        return "PiezoData";
    case Group::BacklashCompensation:
        return "BacklashCompensation";
    }
    return "?";
}

// A new instrument, as it leaves the factory: a standard spinstand with the heads on the down face, for disks
// of 32.5 to 47.5 mm radius; stoppers that put the measurement positions at 12 mm (ID) and 40 mm (OD); spindle
// speeds 4000 to 15000 rpm; a 4 um piezo stroke over 0 to 100 V.
Settings Settings::factory() {
    Settings s;
    s.version = {"R2208C-B", "SS2208-0147"};
    s.spinstand = {false, 0, 1, {0.0325, 0.0475}};
    s.customer.stopper = {8.429, 29.9652};
    s.stage.values = stageProperties().factoryValues();
    s.spindle = {spindleProperties().factoryValues(), {4000, 15000}};
    s.piezo.serial = "PZ-0815";
    s.piezo.calCoef = factoryCalCoef();
    s.piezo.calData = factoryCalData(s.piezo.calCoef);
    s.piezo.adjust = {2048, 2048, 2048, 2048, 1024, 0};
    s.piezo.control = {{5e-8, 0.0}, {0.002, 0.005}, {1e-4, 5e-5}, {1e-8, 2e-8}, {0.001, 0.0}};
    s.backlash = {{120, 115, 118, 122, 130}, "2024-01-15 09:30:00"};
    return s;
}

void copyGroup(Group g, const Settings& from, Settings& to) {
    switch (g) {
    case Group::VersionData:
        to.version = from.version;
        break;
    case Group::SpinstandConfiguration:
        to.spinstand = from.spinstand;
        break;
    case Group::CustomerConfiguration:
        to.customer = from.customer;
        break;
    case Group::StageProperty:
        to.stage = from.stage;
        break;
    case Group::SpindleProperty:
        to.spindle = from.spindle;
        break;
    case Group::PiezoData:
        to.piezo = from.piezo;
        break;
    case Group::BacklashCompensation:
        to.backlash = from.backlash;
        break;
    }
}

bool sameGroup(Group g, const Settings& a, const Settings& b) {
    Settings copy = b;
    copyGroup(g, a, copy);
    return copy == b;
}

// ---------------------------------------------------------------------------------------------------------------
// Checks

void checkIdentityText(std::string_view what, std::string_view text) {
    if (text.size() > 32)
        fail(std::string(what) + " " + inQuotes(text) + " is too long: at most 32 characters.");
    for (const char c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            fail(std::string(what) + " may not contain control characters.");
}

void checkDiskSizeRange(double min, double max) {
    checkRange("The smallest disk radius", min, 0.005, 0.065, "m");
    checkRange("The largest disk radius", max, 0.005, 0.065, "m");
    if (min > max)
        fail("The disk size range " + num(min) + " to " + num(max) + " m is reversed: the minimum must not exceed "
             "the maximum.");
}

void checkSpeedRange(std::int32_t min, std::int32_t max) {
    checkRange("The lowest spindle speed", min, 1000, 20000, "rpm");
    checkRange("The highest spindle speed", max, 1000, 20000, "rpm");
    if (min >= max)
        fail("The speed range " + std::to_string(min) + " to " + std::to_string(max) +
             " rpm is empty: the minimum must be below the maximum.");
}

void checkStopperIndex(std::int16_t index) {
    if (index != 0 && index != 1)
        fail("Stopper index " + std::to_string(index) + " does not exist: use 0 (inner) or 1 (outer).");
}

void checkStopperAngle(double angle) { checkRange("The stopper angle", angle, kMinStageAngle, 40.0, "deg"); }

void checkGeometryIndex(std::int16_t index) {
    if (index < 0 || index > 2)
        fail("Stage geometry index " + std::to_string(index) +
             " does not exist: use 0 (Stage2Spindle), 1 (Stage2Ref) or 2 (StageOffset).");
}

void checkGeometry(std::int16_t index, double value) {
    checkGeometryIndex(index);
    switch (index) {
    case 0:
        return checkRange("Stage2Spindle", value, 40.0, 150.0, "mm");
    case 1:
        return checkRange("Stage2Ref", value, 30.0, 120.0, "mm");
    default:
        return checkRange("StageOffset", value, -20.0, 20.0, "mm");
    }
}

void checkHeadFace(std::int32_t face) {
    if (face != 0 && face != 1)
        fail("Head face " + std::to_string(face) + " is not allowed: use 1 (down face) or 0 (up face).");
}

void checkHomeState(std::int32_t code) {
    if (code != homestate::Stop && code != homestate::Standby && code != homestate::Run)
        fail("Home state " + std::to_string(code) + " is not allowed: use 1 (stop), 2 (standby) or 4 (run).");
}

void checkDataArea(const DataArea& area) {
    if (!(area.innerRadius >= 0.005 && area.innerRadius <= 0.06))
        fail("The data area's inner radius " + num(area.innerRadius) +
             " m is outside the range 0.005 to 0.06 m.");
    if (area.maxTrack < 1 || area.maxTrack > 1000000)
        fail("The maximum track " + std::to_string(area.maxTrack) + " is outside the range 1 to 1000000.");
    if (!(area.pitch >= 1e-8 && area.pitch <= 1e-5))
        fail("The track pitch " + num(area.pitch) + " m is outside the range 1e-08 to 1e-05 m.");
    const double outer = area.innerRadius + area.maxTrack * area.pitch;
    if (outer > 0.065)
        fail("The data area would end at " + num(outer) + " m, beyond the largest disk radius of 0.065 m.");
}

std::size_t adjustSlot(std::int16_t index, std::int16_t lower) {
    return slotOf("Piezo adjust", index, lower, piezoAdjustNames().size());
}
void checkAdjust(std::int32_t dac) { checkRange("The piezo adjust value", dac, 0, 4095, "(DAC counts)"); }
std::size_t backlashSlot(std::int16_t index, std::int16_t lower) {
    return slotOf("Backlash compensation", index, lower, backlashNames().size());
}
void checkBacklash(std::int32_t pulses) { checkRange("The backlash compensation", pulses, 0, 10000, "pulses"); }

void checkCalCoef(const PiezoCalCoef& c) {
    checkRange("Vmin", c.vmin, -200.0, 200.0, "V");
    checkRange("Vmax", c.vmax, -200.0, 200.0, "V");
    checkRange("Xmin", c.xmin, -1e-4, 1e-4, "m");
    checkRange("Xmax", c.xmax, -1e-4, 1e-4, "m");
    if (c.vmin >= c.vmax)
        fail("Vmin " + num(c.vmin) + " V must be below Vmax " + num(c.vmax) + " V.");
    if (c.xmin >= c.xmax)
        fail("Xmin " + num(c.xmin) + " m must be below Xmax " + num(c.xmax) + " m.");
    if (c.coef.size() != piezoCalCoefNames().size())
        fail("The piezo calibration takes " + std::to_string(piezoCalCoefNames().size()) + " coefficients, not " +
             std::to_string(c.coef.size()) + ".");
    for (std::size_t i = 0; i < c.coef.size(); ++i)
        checkFinite("Coefficient " + piezoCalCoefNames()[i], c.coef[i]);
}

void checkCalData(const PiezoCalData& d) {
    if (d.volt.size() != d.position.size() || d.volt.empty() || d.volt.size() > 64)
        fail("The piezo calibration points need as many voltages as positions, 1 to 64 of each.");
    for (std::size_t i = 0; i < d.volt.size(); ++i) {
        checkFinite("A calibration voltage", d.volt[i]);
        checkFinite("A calibration position", d.position[i]);
    }
}

void checkControlData(const PiezoControlData& d) {
    const std::pair<const char*, const std::vector<double>*> rows[] = {
        {"Lth", &d.lth}, {"Ta", &d.ta}, {"Ks", &d.ks}, {"Lstep", &d.lstep}, {"Tstep", &d.tstep}};
    for (const auto& [name, row] : rows) {
        if (row->size() != 2)
            fail(std::string("Piezo control data ") + name + " needs 2 values, not " + std::to_string(row->size()) +
                 ".");
        for (const double v : *row)
            checkRange(std::string("Piezo control data ") + name, v, 0.0, 1.0, "");
    }
}

// ---------------------------------------------------------------------------------------------------------------
// The memory file's text: "[Section]" headers, then "Key = value" lines. Texts are quoted as in the trace,
// lists are in square brackets.

namespace {

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
        s.remove_suffix(1);
    return s;
}

double parseNumber(std::string_view s) {
    s = trim(s);
    double v = 0.0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    if (s.empty() || ec != std::errc() || end != s.data() + s.size())
        fail(inQuotes(s) + " is not a number");
    return v;
}

template <class Int>
Int parseWhole(std::string_view s) {
    const double v = parseNumber(s);
    if (v != std::floor(v) || v < static_cast<double>(std::numeric_limits<Int>::min()) ||
        v > static_cast<double>(std::numeric_limits<Int>::max()))
        fail(inQuotes(trim(s)) + " is not a whole number of the right size");
    return static_cast<Int>(v);
}

bool parseBool(std::string_view s) {
    s = trim(s);
    if (s == "true")
        return true;
    if (s == "false")
        return false;
    fail(inQuotes(s) + " is neither true nor false");
}

std::string parseText(std::string_view s) {
    s = trim(s);
    if (s.size() < 2 || s.front() != '"' || s.back() != '"')
        fail("a text in double quotes is expected, not " + inQuotes(s));
    std::string out;
    for (std::size_t i = 1; i + 1 < s.size(); ++i) {
        char c = s[i];
        if (c == '"')
            fail("a double quote inside a text must be written \\\"");
        if (c == '\\') {
            if (i + 2 >= s.size())
                fail("the text ends in a lone backslash");
            const char e = s[++i];
            c = e == 'n' ? '\n' : e == 'r' ? '\r' : e == 't' ? '\t' : e;
            if (e != 'n' && e != 'r' && e != 't' && e != '"' && e != '\\')
                fail(std::string("unknown escape \\") + e + " in a text");
        }
        out += c;
    }
    return out;
}

std::vector<std::string_view> parseList(std::string_view s) {
    s = trim(s);
    if (s.size() < 2 || s.front() != '[' || s.back() != ']')
        fail("a list in square brackets is expected, not " + std::string(s));
    s = trim(s.substr(1, s.size() - 2));
    std::vector<std::string_view> items;
    while (!s.empty()) {
        const std::size_t comma = s.find(',');
        items.push_back(trim(s.substr(0, comma)));
        if (comma == std::string_view::npos)
            break;
        s = s.substr(comma + 1);
    }
    return items;
}

template <class T, class Parse>
std::vector<T> parseListOf(std::string_view s, Parse parse) {
    std::vector<T> out;
    for (const std::string_view item : parseList(s))
        out.push_back(parse(item));
    return out;
}

std::string writeDoubles(const std::vector<double>& v) {
    std::string out = "[";
    for (std::size_t i = 0; i < v.size(); ++i)
        out += (i ? ", " : "") + num(v[i]);
    return out + "]";
}

std::string writeInts(const std::vector<std::int32_t>& v) {
    std::string out = "[";
    for (std::size_t i = 0; i < v.size(); ++i)
        out += (i ? ", " : "") + std::to_string(v[i]);
    return out + "]";
}

// One key of a section: how to write it and how to read it (reading checks the value).
struct Field {
    std::string key;
    std::function<std::string()> write;
    std::function<void(std::string_view)> read;
};

// One section: its keys and a check of the section as a whole, run once the file has been read.
struct Section {
    Group group;
    std::vector<Field> fields;
    std::function<void()> check;
    std::string_view name = {}; // the header; empty: the group's name
};

Field textField(std::string key, std::string& ref) {
    std::string name = key;
    return {key, [&ref] { return traceformat::text(ref); },
            [&ref, name](std::string_view s) {
                std::string t = parseText(s);
                checkIdentityText(name, t);
                ref = std::move(t);
            }};
}

Field doubleField(std::string key, double& ref, std::function<void(double)> check = nullptr) {
    return {std::move(key), [&ref] { return num(ref); },
            [&ref, check](std::string_view s) {
                const double v = parseNumber(s);
                if (check)
                    check(v);
                ref = v;
            }};
}

template <class Int>
Field wholeField(std::string key, Int& ref, std::function<void(Int)> check = nullptr) {
    return {std::move(key), [&ref] { return std::to_string(ref); },
            [&ref, check](std::string_view s) {
                const Int v = parseWhole<Int>(s);
                if (check)
                    check(v);
                ref = v;
            }};
}

Field doublesField(std::string key, std::vector<double>& ref) {
    return {std::move(key), [&ref] { return writeDoubles(ref); },
            [&ref](std::string_view s) { ref = parseListOf<double>(s, parseNumber); }};
}

Field intsField(std::string key, std::vector<std::int32_t>& ref, std::size_t count,
                std::function<void(std::int32_t)> check) {
    return {std::move(key), [&ref] { return writeInts(ref); },
            [&ref, count, check](std::string_view s) {
                auto v = parseListOf<std::int32_t>(s, parseWhole<std::int32_t>);
                if (v.size() != count)
                    fail("the list needs " + std::to_string(count) + " values, not " + std::to_string(v.size()));
                for (const std::int32_t x : v)
                    check(x);
                ref = std::move(v);
            }};
}

std::vector<Field> propertyFields(const PropertyFamily& family, std::vector<Variant>& values) {
    std::vector<Field> fields;
    for (std::size_t i = 0; i < family.specs.size(); ++i) {
        const auto id = static_cast<std::int16_t>(i);
        fields.push_back({family.specs[i].name,
                          [&values, i] {
                              const Variant& v = values[i];
                              return v.type() == Variant::Type::Double ? num(v.dbl())
                                                                       : std::to_string(static_cast<std::int64_t>(
                                                                             v.toDouble()));
                          },
                          [&values, &family, id](std::string_view s) {
                              values[static_cast<std::size_t>(id)] = family.checked(id, Variant(parseNumber(s)));
                          }});
    }
    return fields;
}

// The measurement settings, in the working-values file only. They are checked as the instrument's operations
// check them, as far as a value can be checked alone: a speed within the widest speed range, finite
// positions. A file with a value those operations refuse is damaged, so that no NaN pitch or unknown home
// state reaches the instrument.
Section measurementSection(MeasurementSettings& m) {
    const auto speed = [](std::int32_t rpm) { checkRange("The spindle speed", rpm, 1000, 20000, "rpm"); };
    std::vector<Field> f{
        wholeField<std::int32_t>("SpindleSpeed", m.spindleSpeed, speed),
        wholeField<std::int32_t>("HomeState", m.homeState, checkHomeState),
        wholeField<std::int16_t>("LoadMethod", m.loadMethod,
                                 [](std::int16_t v) { checkCode("Load method", loadMethods(), v); }),
        doubleField("InnerRadius", m.dataArea.innerRadius),
        wholeField<std::int32_t>("MaxTrack", m.dataArea.maxTrack),
        doubleField("Pitch", m.dataArea.pitch),
        {"DiskSizeRestriction", [&m] { return std::string(m.diskSizeRestriction ? "true" : "false"); },
         [&m](std::string_view v) { m.diskSizeRestriction = parseBool(v); }},
    };
    for (std::size_t i = 0; i < m.positions.size(); ++i) {
        const std::string which = i == 0 ? "Load" : "Unload";
        f.push_back(doubleField(which + "Radius", m.positions[i].position.radius,
                                [which](double v) { checkFinite(which + "Radius", v); }));
        f.push_back(doubleField(which + "Skew", m.positions[i].position.skew,
                                [which](double v) { checkFinite(which + "Skew", v); }));
        f.push_back(wholeField<std::int32_t>(which + "Rpm", m.positions[i].rpm, speed));
    }
    return {Group::VersionData, std::move(f), [&m] { checkDataArea(m.dataArea); }, "Setting"};
}

std::vector<Section> sections(Settings& s, MeasurementSettings* measurement = nullptr) {
    auto& geometry = s.customer.geometry;
    auto& piezo = s.piezo;
    std::vector<Section> all{
        {Group::VersionData,
         {textField("HardwareRevision", s.version.hardwareRevision),
          textField("SerialNumber", s.version.serialNumber)},
         nullptr},
        {Group::SpinstandConfiguration,
         {{"SettingUnknown", [&s] { return std::string(s.spinstand.settingUnknown ? "true" : "false"); },
           [&s](std::string_view v) { s.spinstand.settingUnknown = parseBool(v); }},
          wholeField<std::int16_t>("SpinstandType", s.spinstand.spinstandType,
                                   [](std::int16_t v) { checkCode("Spinstand type", spinstandTypes(), v); }),
          wholeField<std::int32_t>("HeadFace", s.spinstand.headFace, checkHeadFace),
          doubleField("DiskSizeMin", s.spinstand.diskSize.min), doubleField("DiskSizeMax", s.spinstand.diskSize.max)},
         [&s] { checkDiskSizeRange(s.spinstand.diskSize.min, s.spinstand.diskSize.max); }},
        {Group::CustomerConfiguration,
         {doubleField("StopperInner", s.customer.stopper[0], checkStopperAngle),
          doubleField("StopperOuter", s.customer.stopper[1], checkStopperAngle),
          doubleField("Stage2Spindle", geometry.stage2Spindle, [](double v) { checkGeometry(0, v); }),
          doubleField("Stage2Ref", geometry.stage2Ref, [](double v) { checkGeometry(1, v); }),
          doubleField("StageOffset", geometry.stageOffset, [](double v) { checkGeometry(2, v); })},
         nullptr},
        {Group::StageProperty, propertyFields(stageProperties(), s.stage.values), nullptr},
        {Group::SpindleProperty,
         [&s] {
             std::vector<Field> f{wholeField<std::int32_t>("SpeedMin", s.spindle.speedRange.min),
                                  wholeField<std::int32_t>("SpeedMax", s.spindle.speedRange.max)};
             for (Field& p : propertyFields(spindleProperties(), s.spindle.values))
                 f.push_back(std::move(p));
             return f;
         }(),
         [&s] { checkSpeedRange(s.spindle.speedRange.min, s.spindle.speedRange.max); }},
        {Group::PiezoData,
         {textField("Serial", piezo.serial), doubleField("Vmin", piezo.calCoef.vmin),
          doubleField("Vmax", piezo.calCoef.vmax), doubleField("Xmin", piezo.calCoef.xmin),
          doubleField("Xmax", piezo.calCoef.xmax), doublesField("Coefficients", piezo.calCoef.coef),
          doublesField("CalibrationVolts", piezo.calData.volt),
          doublesField("CalibrationPositions", piezo.calData.position),
          intsField("Adjust", piezo.adjust, piezoAdjustNames().size(), checkAdjust),
          doublesField("Lth", piezo.control.lth), doublesField("Ta", piezo.control.ta),
          doublesField("Ks", piezo.control.ks), doublesField("Lstep", piezo.control.lstep),
          doublesField("Tstep", piezo.control.tstep)},
         [&piezo] {
             checkCalCoef(piezo.calCoef);
             checkCalData(piezo.calData);
             checkControlData(piezo.control);
         }},
        {Group::BacklashCompensation,
         {intsField("Values", s.backlash.values, backlashNames().size(), checkBacklash),
          {"Date", [&s] { return traceformat::text(s.backlash.date); },
           [&s](std::string_view v) {
               std::string t = parseText(v);
               checkIdentityText("The backlash date", t);
               s.backlash.date = std::move(t);
           }}},
         nullptr},
    };
    for (Section& section : all)
        if (section.name.empty())
            section.name = groupName(section.group);
    if (measurement)
        all.push_back(measurementSection(*measurement));
    return all;
}

constexpr std::string_view kEnd = "[End]";

} // namespace

namespace {

std::string writeText(Settings settings, MeasurementSettings* measurement, std::string out) {
    for (const Section& section : sections(settings, measurement)) {
        out += "\n[" + std::string(section.name) + "]\n";
        for (const Field& f : section.fields)
            out += f.key + " = " + f.write() + "\n";
    }
    // Written last, so that a file cut short by a full disk or a crash is known for what it is.
    return out + "\n" + std::string(kEnd) + "\n";
}

void readText(std::string_view text, Settings& settings, MeasurementSettings* measurement) {
    std::vector<Section> all = sections(settings, measurement);
    std::map<const Section*, int> headerLines;
    const Section* current = nullptr;
    int lineNo = 0;
    int endLine = 0;
    text = withoutByteOrderMark(text); // an editor may have put one before the first line
    while (!text.empty()) {
        ++lineNo;
        const std::size_t nl = text.find('\n');
        const std::string_view line = trim(text.substr(0, nl));
        text = nl == std::string_view::npos ? std::string_view() : text.substr(nl + 1);
        if (line.empty() || line.front() == '#')
            continue;
        if (endLine != 0)
            throw SettingsError{lineNo, "nothing may follow the " + std::string(kEnd) + " line"};
        if (line == kEnd) {
            endLine = lineNo;
            continue;
        }
        if (line.front() == '[') {
            if (line.back() != ']')
                throw SettingsError{lineNo, "a section header must end with ]"};
            const std::string_view name = line.substr(1, line.size() - 2);
            current = nullptr;
            for (const Section& s : all)
                if (s.name == name)
                    current = &s;
            if (!current)
                throw SettingsError{lineNo, "unknown section [" + printable(name, kQuoteLimit) + "]"};
            if (headerLines.count(current))
                throw SettingsError{lineNo, "the section [" + std::string(name) + "] appears twice"};
            headerLines[current] = lineNo;
            continue;
        }
        const std::size_t eq = line.find('=');
        if (eq == std::string_view::npos)
            throw SettingsError{lineNo, "a line must read Key = value"};
        if (!current)
            throw SettingsError{lineNo, "a setting must follow a [section] header"};
        const std::string_view key = trim(line.substr(0, eq));
        const Field* field = nullptr;
        for (const Field& f : current->fields)
            if (f.key == key)
                field = &f;
        if (!field)
            throw SettingsError{lineNo, "unknown key " + printable(key, kQuoteLimit) + " in section [" +
                                            std::string(current->name) + "]"};
        try {
            field->read(line.substr(eq + 1));
        } catch (const DriverError& e) {
            throw SettingsError{lineNo, std::string(key) + ": " + std::string(clause(e.description()))};
        }
    }
    if (endLine == 0)
        throw SettingsError{lineNo,
                            "the file ends before its " + std::string(kEnd) +
                                " line: it was cut short, and the groups after its last line are missing"};
    for (const Section& s : all) {
        try {
            if (s.check)
                s.check();
        } catch (const DriverError& e) {
            const auto at = headerLines.find(&s);
            throw SettingsError{at == headerLines.end() ? lineNo : at->second,
                                "[" + std::string(s.name) + "]: " + std::string(clause(e.description()))};
        }
    }
}

} // namespace

std::string writeSettings(const Settings& settings) {
    return writeText(
        settings, nullptr,
        "# Non-volatile memory of the simulated spinstand, written by its Save operations.\n"
        "# One section per configuration group, one \"Key = value\" line per setting: texts in double quotes,\n"
        "# lists in square brackets, lengths in metres (stage geometry in millimetres), angles in degrees.\n"
        "# A key that is left out keeps its factory value; delete the file to restore every factory value.\n"
        "# The file ends with the [End] line; a file without it was cut short and is not used.\n");
}

Settings readSettings(std::string_view text) {
    Settings settings = Settings::factory();
    readText(text, settings, nullptr);
    return settings;
}

std::string writeWorkingValues(const WorkingValues& values) {
    MeasurementSettings measurement = values.measurement;
    return writeText(
        values.settings, &measurement,
        "# Working values of the simulated spinstand: what it holds while it is powered, written whenever\n"
        "# a program changes them. A power cycle deletes this file; the values then come from the\n"
        "# non-volatile memory beside it.\n");
}

WorkingValues readWorkingValues(std::string_view text) {
    WorkingValues values{Settings::factory(), MeasurementSettings{}};
    readText(text, values.settings, &values.measurement);
    return values;
}

} // namespace vss::sim

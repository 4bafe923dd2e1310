#include "storage/Sections.h"

#include "storage/NumberText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <type_traits>
#include <vector>

namespace vss {

IDriver& driverOf(const DriverHandles& h) {
    if (!h.driver)
        throw DriverError("The instrument session has no IDriver interface.");
    return *h.driver;
}
IDriverLoadPosition& loadPositionOf(const DriverHandles& h) {
    if (!h.loadPosition)
        throw DriverError("The instrument session has no IDriverLoadPosition interface.");
    return *h.loadPosition;
}
IDriverDiskSize& diskSizeOf(const DriverHandles& h) {
    if (!h.diskSize)
        throw DriverError("The instrument session has no IDriverDiskSize interface.");
    return *h.diskSize;
}
IDriverService& serviceOf(const DriverHandles& h) {
    if (!h.service)
        throw DriverError("The instrument session has no IDriverService interface.");
    return *h.service;
}

namespace {

constexpr std::string_view kRule = "--------------------------------";

constexpr std::uint32_t group(int code) { return 1u << code; }

std::string place(const FieldPosition& where) {
    return where.fileName + ", line " + std::to_string(where.line) + ", field " + std::to_string(where.field);
}

// Reads one section's fields with the checks that keep a malformed file from setting a wrong value. The tool
// writes every section whole, each row on a line of its own, so no file it wrote ever meets these checks;
// they depart from the plain field-by-field reading only for files damaged or edited by hand:
// - a field that does not convert stops its section, so that no later value lands on its neighbour's place
//   (the plain reading meets the same field again with every later read);
// - a section that meets the end of the file, or a row that meets the end of its line, before the count
//   stops there, instead of repeating the last value or taking the next row's;
// - a section name met where a value belongs ends the section and is left for the file reader to find, even
//   where the value is a text (the piezo serial number): a section name never becomes a value;
// - a text that the writer would refuse (a double quote, a line end) stops its section as well.
// What was applied before the stop stays applied; nothing after it is.
class SectionReader {
public:
    explicit SectionReader(SectionInput& in) : in_(in) {}

    // What the following reads are for, as the messages name it ("entry 3 of 5", "the serial number").
    void item(std::string_view kind, std::size_t number, std::size_t count) {
        item_ = std::string(kind) + " " + std::to_string(number) + " of " + std::to_string(count);
    }
    void item(std::string_view what) { item_ = what; }
    // The fields read from here to the next startRow must lie on the line of the first of them.
    void startRow() {
        inRow_ = true;
        rowLine_ = 0;
    }

    std::string label() { return take([this] { return in_.io.readStr(); }, false); }
    std::string word() { return take([this] { return in_.io.readStr(); }, true); }
    // A text that the instrument keeps. One that the writer would refuse (a double quote, a line end) is
    // refused here too, so that no value read from a file makes every later export of it fail.
    std::string text() {
        const FieldPosition where = in_.io.tokenPosition();
        std::string value = word();
        if (fileio::unwritable(value))
            stop(fileio::unwritableReason(value), where);
        return value;
    }
    double dbl() { return take([this] { return in_.io.readDbl(); }, true); }
    std::int32_t lng() { return take([this] { return in_.io.readLng(); }, true); }
    std::int16_t int16() { return take([this] { return in_.io.readInt(); }, true); }
    bool flg() { return take([this] { return in_.io.readFlg(); }, true); }
    Variant variant() {
        const std::string tag = label();
        if (tag == "(Integer)")
            return Variant(int16());
        if (tag == "(Long)")
            return Variant(lng());
        if (tag == "(Double)")
            return Variant(dbl());
        if (tag == "(Boolean)")
            return Variant(flg());
        stop("no value of a known type (\"" + printable(tag, kQuoteLimit) + "\") for " + item_,
             tagAt_);
    }

    // Sends values read to the instrument; a refusal names the first of them. `values` is how many of the
    // values read and not yet sent this call sends.
    template <class Set> void apply(std::size_t values, Set set) {
        const FieldPosition where = unsent_.empty() ? in_.io.tokenPosition() : unsent_.front();
        unsent_.erase(unsent_.begin(),
                      unsent_.begin() + static_cast<std::ptrdiff_t>(std::min(values, unsent_.size())));
        try {
            set();
        } catch (const DriverError& e) {
            throw DriverError(refusal(e.description(), where), e.code());
        }
    }
    // The same for a step whose failure is reported and skipped.
    template <class Set> void applyOrReport(std::size_t values, Set set) {
        try {
            apply(values, set);
        } catch (const std::exception& e) {
            report(in_.sink, e.what(), kErrorTitle, FieldPosition{});
        }
    }

    [[noreturn]] void stop(const std::string& what, const FieldPosition& where) {
        throw SectionStops{std::string(in_.section) + ": " + what + " (" + place(where) +
                           "); the section stops there and nothing after it is applied."};
    }

private:
    template <class Read> std::invoke_result_t<Read> take(Read read, bool isValue) {
        fileio& io = in_.io;
        const FieldPosition where = io.tokenPosition();
        if (io.pastEnd() || io.failed())
            throw SectionStops{std::string(in_.section) + ": file ends before " + item_ + " (" +
                               where.fileName + ", after line " + std::to_string(where.line) +
                               "); the section stops there and nothing after it is applied."};
        if (findSection(numbertext::trimBlanks(io.token())) != nullptr)
            stop("section ends before " + item_, where);
        if (inRow_ && rowLine_ == 0)
            rowLine_ = where.line;
        else if (inRow_ && where.line != rowLine_)
            stop("row ends before " + item_, where);
        const auto messagesBefore = io.messageCount();
        try {
            auto value = read();
            if (io.messageCount() != messagesBefore)
                stop("cannot read " + item_, where);
            if (isValue)
                unsent_.push_back(where);
            else
                tagAt_ = where;
            return value;
        } catch (const NumberOutOfRange& e) {
            report(in_.sink, e.what(), kErrorTitle, FieldPosition{}); // the text names the place
            stop("cannot read " + item_, where);
        }
    }

    std::string refusal(const std::string& description, const FieldPosition& where) const {
        return description + " (" + std::string(in_.section) + " value at " + place(where) + ")";
    }

    SectionInput& in_;
    std::string item_ = "the section's next value";
    bool inRow_ = false;
    std::int64_t rowLine_ = 0;
    FieldPosition tagAt_;
    std::vector<FieldPosition> unsent_;
};

// A text from the instrument written as a value. One that reads as a section name would end its section on
// import instead of being read, so the writer refuses it as it refuses a double quote.
void writeText(fileio& io, const std::string& text) {
    if (findSection(numbertext::trimBlanks(text)) != nullptr)
        io.refuseText(text, "it reads as the name of a section");
    else
        io.writeStr(text);
}

void writeDoubles(fileio& io, const std::vector<double>& values) {
    for (double v : values)
        io.writeDbl(v);
}

double at(const std::vector<double>& values, std::size_t i) { return i < values.size() ? values[i] : 0.0; }

// ---- "Setting" group

void writeSpindleSpeed(fileio& io, const DriverHandles& h) {
    io.writeLng(driverOf(h).GetSpindleSpeed());
    io.writeCrLf();
}
void readSpindleSpeed(SectionInput& in) {
    SectionReader r(in);
    const std::int32_t rpm = r.lng();
    r.apply(1, [&] { in.target.SetSpindleSpeed(rpm); });
}

void writeHomeState(fileio& io, const DriverHandles& h) {
    switch (driverOf(h).GetHomeState()) {
    case homestate::Stop:
        io.writeStr("HOMESTATE_STOP");
        break;
    case homestate::Standby:
        io.writeStr("HOMESTATE_STANDBY");
        break;
    case homestate::Run:
        io.writeStr("HOMESTATE_RUN");
        break;
    default:
        io.writeStr("");
        break;
    }
    io.writeCrLf();
}
void readHomeState(SectionInput& in) {
    SectionReader r(in);
    const std::string word = r.word();
    std::int32_t code = 0;
    if (word == "HOMESTATE_RUN")
        code = homestate::Run;
    else if (word == "HOMESTATE_STANDBY")
        code = homestate::Standby;
    else if (word == "HOMESTATE_STOP")
        code = homestate::Stop;
    r.apply(1, [&] { in.target.SetHomeState(code); });
}

void writeLoadMethod(fileio& io, const DriverHandles& h) {
    io.writeInt(driverOf(h).GetLoadMethod());
    io.writeCrLf();
}
void readLoadMethod(SectionInput& in) {
    SectionReader r(in);
    const std::int16_t method = r.int16();
    r.apply(1, [&] { in.target.SetLoadMethod(method); });
}

void writeLoadPosition(fileio& io, const DriverHandles& h) {
    io.printComment("n,; Radius,; Skew,; RPM");
    for (auto [which, label] : {std::pair{loadposition::Load, "Load"}, std::pair{loadposition::Unload, "Unload"}}) {
        const LoadPosition p = loadPositionOf(h).GetLoadPosition(which);
        io.writeStr(label);
        io.writeDbl(p.position.radius);
        io.writeDbl(p.position.skew);
        io.writeLng(p.rpm);
        io.writeCrLf();
    }
}
void readLoadPosition(SectionInput& in) {
    SectionReader r(in);
    std::size_t number = 0;
    for (std::int16_t which : {loadposition::Load, loadposition::Unload}) {
        r.item("row", ++number, 2);
        r.startRow();
        LoadPosition row;
        r.label();
        row.position.radius = r.dbl();
        row.position.skew = r.dbl();
        row.rpm = r.lng();
        r.apply(3, [&] { in.target.SetLoadPosition(which, row.position, row.rpm); });
    }
}

void writeDataArea(fileio& io, const DriverHandles& h) {
    io.printComment("InnerRadius,; MaxTrack,; Pitch");
    const DataArea area = driverOf(h).GetDataArea();
    io.writeDbl(area.innerRadius);
    io.writeLng(area.maxTrack);
    io.writeDbl(area.pitch);
    io.writeCrLf();
}
void readDataArea(SectionInput& in) {
    SectionReader r(in);
    const double innerRadius = r.dbl();
    const std::int32_t maxTrack = r.lng();
    const double pitch = r.dbl();
    r.apply(3, [&] { in.target.SetDataArea(innerRadius, maxTrack, pitch); });
}

void writeDiskSizeRestriction(fileio& io, const DriverHandles& h) {
    io.writeStr(diskSizeOf(h).GetDiskSizeRestriction() ? "True" : "False");
    io.writeCrLf();
}
void readDiskSizeRestriction(SectionInput& in) {
    SectionReader r(in);
    const bool on = r.word() == "True";
    r.apply(1, [&] { in.target.SetDiskSizeRestriction(on); });
}

// ---- customer groups

void writeStopperPosition(fileio& io, const DriverHandles& h) {
    IDriverService& service = serviceOf(h);
    io.printComment("Outer,; Inner");
    io.writeDbl(service.GetStopperPosition(stopper::Outer));
    io.writeDbl(service.GetStopperPosition(stopper::Inner));
    io.writeCrLf();
    io.printComment(",; Radius,; Skew");
    for (auto [index, label] : {std::pair{stopper::Outer, "Outer"}, std::pair{stopper::Inner, "Inner"}}) {
        const PositionRecord p = service.GetMeasurementPosition(index);
        io.printComment(std::string(label) + ",; " + numbertext::formatDouble(p.radius) + ",; " +
                        numbertext::formatDouble(p.skew));
    }
}
void readStopperPosition(SectionInput& in) {
    SectionReader r(in);
    const double outer = r.dbl();
    const double inner = r.dbl();
    r.apply(1, [&] { in.target.SetStopperPosition(stopper::Outer, outer); });
    r.apply(1, [&] { in.target.SetStopperPosition(stopper::Inner, inner); });
}

void writeStageConfiguration(fileio& io, const DriverHandles& h) {
    io.printComment("Stage2Spindle,; Stage2Ref,; Offset");
    for (std::int16_t index : {geometry::Stage2Spindle, geometry::Stage2Ref, geometry::StageOffset})
        io.writeDbl(serviceOf(h).GetStageGeometry(index));
    io.writeCrLf();
}
void readStageConfiguration(SectionInput& in) {
    SectionReader r(in);
    double values[3];
    for (double& v : values)
        v = r.dbl();
    for (std::int16_t index : {geometry::Stage2Spindle, geometry::Stage2Ref, geometry::StageOffset})
        r.apply(1, [&] { in.target.SetStageGeometry(index, values[index]); });
}

// Information only: every line is a comment, so no import ever sees these values.
void writeStageConfigurationInfo(fileio& io, const DriverHandles& h) {
    io.printComment(",; Stage2Spindle,; Stage2Ref,; Offset");
    std::string line;
    for (std::int16_t index : {geometry::Stage2Spindle, geometry::Stage2Ref, geometry::StageOffset}) {
        if (!line.empty())
            line += ",; ";
        line += numbertext::formatDouble(serviceOf(h).GetStageGeometry(index));
    }
    io.printComment(line);
}

// ---- spinstand configuration

void writeSettingUnknown(fileio& io, const DriverHandles& h) {
    io.writeFlg(serviceOf(h).GetSettingUnknown());
    io.writeCrLf();
}
void readSettingUnknown(SectionInput& in) {
    SectionReader r(in);
    const bool unknown = r.flg();
    r.apply(1, [&] { in.target.SetSettingUnknown(unknown); });
}

void writeSpinstandType(fileio& io, const DriverHandles& h) {
    io.writeInt(serviceOf(h).GetSpinstandType());
    io.writeCrLf();
}
void readSpinstandType(SectionInput& in) {
    SectionReader r(in);
    const std::int16_t type = r.int16();
    r.apply(1, [&] { in.target.SetSpinstandType(type); });
}

void writeHeadFace(fileio& io, const DriverHandles& h) {
    io.writeStr(serviceOf(h).GetHeadFace() != 0 ? "SSHEADFACE_DOWNFACE" : "SSHEADFACE_UPFACE");
    io.writeCrLf();
}
void readHeadFace(SectionInput& in) {
    SectionReader r(in);
    const std::int32_t face = r.word() == "SSHEADFACE_DOWNFACE" ? 1 : 0;
    r.apply(1, [&] { in.target.SetHeadFace(face); });
}

void writeDiskSize(fileio& io, const DriverHandles& h) {
    const DoubleRange range = serviceOf(h).GetDiskSizeRange();
    io.writeDbl(range.min);
    io.writeDbl(range.max);
    io.writeCrLf();
}
void readDiskSize(SectionInput& in) {
    SectionReader r(in);
    const double min = r.dbl();
    const double max = r.dbl();
    r.apply(2, [&] { in.target.SetDiskSizeRange(min, max); });
}

// ---- spindle and stage properties

void writeSpeedRange(fileio& io, const DriverHandles& h) {
    const SpeedRange range = serviceOf(h).GetSpeedRange();
    io.writeLng(range.min);
    io.writeLng(range.max);
    io.writeCrLf();
}
void readSpeedRange(SectionInput& in) {
    SectionReader r(in);
    const std::int32_t min = r.lng();
    const std::int32_t max = r.lng();
    r.apply(2, [&] { in.target.SetSpeedRange(min, max); });
}

PropertyList propertyList(const DriverHandles& h, PropertyKind kind) {
    return kind == PropertyKind::Spindle ? serviceOf(h).GetSpindlePropertyList() : serviceOf(h).GetStagePropertyList();
}

std::string nameAt(const PropertyList& list, std::size_t i) { return i < list.names.size() ? list.names[i] : ""; }

void writeProperties(fileio& io, const DriverHandles& h, PropertyKind kind) {
    const PropertyList list = propertyList(h, kind);
    for (std::size_t i = 0; i < list.ids.size(); ++i) {
        const std::int16_t id = list.ids[i];
        writeText(io, nameAt(list, i));
        io.writeVariant(kind == PropertyKind::Spindle ? serviceOf(h).GetSpindleProperty(id)
                                                      : serviceOf(h).GetStageProperty(id));
        io.writeCrLf();
    }
}

// Rows are matched to the driver's properties by position; a differing name only raises a warning. A value
// the instrument refuses is reported and the next row is read. A row that cannot be read stops the section,
// so that no later value lands on the wrong property. A property list that the instrument cannot give ends
// the reading with the driver's error, as any other failed driver call does: skipping the section without a
// word would leave its values unset while the import, comparison or restore seemed to have read them.
void readProperties(SectionInput& in, PropertyKind kind) {
    const PropertyList list = propertyList(in.handles, kind);
    SectionReader r(in);
    for (std::size_t i = 0; i < list.ids.size(); ++i) {
        r.item("property", i + 1, list.ids.size());
        r.startRow();
        const FieldPosition where = in.io.tokenPosition();
        const std::string name = r.label();
        const Variant value = r.variant();
        const std::string driverName = nameAt(list, i);
        if (name != driverName)
            report(in.sink, "Property Name does not match", kErrorTitle, where);
        r.applyOrReport(1, [&] { in.target.SetProperty(kind, list.ids[i], driverName, value); });
    }
}

void writeSpindleProperty(fileio& io, const DriverHandles& h) {
    writeProperties(io, h, PropertyKind::Spindle);
}
void readSpindleProperty(SectionInput& in) { readProperties(in, PropertyKind::Spindle); }
void writeStageProperty(fileio& io, const DriverHandles& h) { writeProperties(io, h, PropertyKind::Stage); }
void readStageProperty(SectionInput& in) { readProperties(in, PropertyKind::Stage); }

// ---- piezo

void writeNop(fileio& io, std::size_t count) {
    io.writeStr("Nop");
    io.writeInt(static_cast<std::int16_t>(count));
    io.writeCrLf();
}

void writePiezoSerial(fileio& io, const DriverHandles& h) {
    writeText(io, serviceOf(h).GetPiezoSerial());
    io.writeCrLf();
}
void readPiezoSerial(SectionInput& in) {
    SectionReader r(in);
    r.item("the serial number");
    const std::string serial = r.text();
    r.apply(1, [&] { in.target.SetPiezoSerial(serial); });
}

void writePiezoCalCoef(fileio& io, const DriverHandles& h) {
    const PiezoCalCoef c = serviceOf(h).GetPiezoCalCoef();
    io.writeStr("Volt");
    io.writeDbl(c.vmin);
    io.writeDbl(c.vmax);
    io.writeCrLf();
    io.writeStr("Position");
    io.writeDbl(c.xmin);
    io.writeDbl(c.xmax);
    io.writeCrLf();
    writeNop(io, c.coef.size());
    io.writeStr("Coef");
    writeDoubles(io, c.coef);
    io.writeCrLf();
}
void readPiezoCalCoef(SectionInput& in) {
    SectionReader r(in);
    PiezoCalCoef c;
    for (auto [min, max] : {std::pair{&c.vmin, &c.vmax}, std::pair{&c.xmin, &c.xmax}}) {
        r.startRow();
        r.label();
        *min = r.dbl();
        *max = r.dbl();
    }
    r.startRow();
    r.label();
    const int count = r.int16();
    r.startRow();
    r.label();
    for (int i = 0; i < count; ++i) {
        r.item("coefficient", static_cast<std::size_t>(i) + 1, static_cast<std::size_t>(count));
        c.coef.push_back(r.dbl());
    }
    r.apply(SIZE_MAX, [&] { in.target.SetPiezoCalCoef(c); });
}

void writePiezoAdjust(fileio& io, const DriverHandles& h) {
    const auto points = serviceOf(h).GetPiezoAdjustList();
    writeNop(io, points.size());
    io.writeStr("DAC");
    for (std::size_t k = 0; k < points.size(); ++k)
        io.writeLng(serviceOf(h).GetPiezoAdjust(points.indexAt(k)));
    io.writeCrLf();
}
// One value per point of the instrument's list, whatever count the file gives; the values go to the list's
// indexes, from its lower to its upper bound.
void readPiezoAdjust(SectionInput& in) {
    const auto points = serviceOf(in.handles).GetPiezoAdjustList();
    SectionReader r(in);
    r.startRow();
    r.label();
    r.int16();
    r.startRow();
    r.label();
    for (std::size_t k = 0; k < points.size(); ++k) {
        r.item("point", k + 1, points.size());
        const std::int32_t dac = r.lng();
        r.apply(1, [&] { in.target.SetPiezoAdjust(points.indexAt(k), dac); });
    }
}

void writePiezoControlData(fileio& io, const DriverHandles& h) {
    const PiezoControlData d = serviceOf(h).GetPiezoControlData();
    writeNop(io, d.lth.size());
    io.printComment("n,; Lth,; Ta,; Ks,; Lstep,; Tstep");
    for (std::size_t i = 0; i < d.lth.size(); ++i) {
        io.writeStr(std::to_string(i));
        for (const auto* column : {&d.lth, &d.ta, &d.ks, &d.lstep, &d.tstep})
            io.writeDbl(at(*column, i));
        io.writeCrLf();
    }
}
void readPiezoControlData(SectionInput& in) {
    SectionReader r(in);
    PiezoControlData d;
    r.startRow();
    r.label();
    const int count = r.int16();
    for (int i = 0; i < count; ++i) {
        r.item("row", static_cast<std::size_t>(i) + 1, static_cast<std::size_t>(count));
        r.startRow();
        r.label();
        for (auto* column : {&d.lth, &d.ta, &d.ks, &d.lstep, &d.tstep})
            column->push_back(r.dbl());
    }
    r.apply(SIZE_MAX, [&] { in.target.SetPiezoControlData(d); });
}

void writePiezoCalData(fileio& io, const DriverHandles& h) {
    const PiezoCalData d = serviceOf(h).GetPiezoCalData();
    writeNop(io, d.volt.size());
    io.writeStr("Volt");
    writeDoubles(io, d.volt);
    io.writeCrLf();
    io.writeStr("Position");
    writeDoubles(io, d.position);
    io.writeCrLf();
}

void writeBacklash(fileio& io, const DriverHandles& h) {
    const auto entries = serviceOf(h).GetBacklashCompensationList();
    for (std::size_t k = 0; k < entries.size(); ++k)
        io.writeLng(serviceOf(h).GetBacklashCompensation(entries.indexAt(k)));
    io.writeCrLf();
}
void readBacklash(SectionInput& in) {
    const auto entries = serviceOf(in.handles).GetBacklashCompensationList();
    SectionReader r(in);
    r.startRow();
    for (std::size_t k = 0; k < entries.size(); ++k) {
        r.item("entry", k + 1, entries.size());
        const std::int32_t value = r.lng();
        r.apply(1, [&] { in.target.SetBacklashCompensation(entries.indexAt(k), value); });
    }
}

constexpr std::array<SectionDef, 21> kSections{{
    {"%SpindleSpeed", group(1), writeSpindleSpeed, readSpindleSpeed},
    {"%HomeState", group(1), writeHomeState, readHomeState},
    {"%LoadMethod", group(1), writeLoadMethod, readLoadMethod},
    {"%LoadPosition", group(1), writeLoadPosition, readLoadPosition},
    {"%DataArea", group(1), writeDataArea, readDataArea},
    {"%DiskSizeRestriction", group(1), writeDiskSizeRestriction, readDiskSizeRestriction},
    {"%StopperPosition", group(2), writeStopperPosition, readStopperPosition},
    {"%StageConfiguration", group(3), writeStageConfiguration, readStageConfiguration},
    {"%SettingUnknown", group(4), writeSettingUnknown, readSettingUnknown},
    {"%SpinstandType", group(4), writeSpinstandType, readSpinstandType},
    {"%HeadFace", group(4), writeHeadFace, readHeadFace},
    {"%DiskSize", group(4), writeDiskSize, readDiskSize},
    {"%SpindleSpeedRange", group(5), writeSpeedRange, readSpeedRange},
    {"%SpindleProperty", group(5), writeSpindleProperty, readSpindleProperty},
    {"%StageProperty", group(6), writeStageProperty, readStageProperty},
    {"%PiezoSerial", group(7), writePiezoSerial, readPiezoSerial},
    {"%PiezoCalCoef", group(7), writePiezoCalCoef, readPiezoCalCoef},
    {"%PiezoAdjust", group(7) | group(9), writePiezoAdjust, readPiezoAdjust},
    {"%PiezoControlData", group(8), writePiezoControlData, readPiezoControlData},
    {"%PiezoCalData", 0, writePiezoCalData, nullptr},
    {"%BacklashCompensationData", group(10), writeBacklash, readBacklash},
}};

constexpr SectionDef kStageConfigurationInfoDef{kStageConfigurationInfo, 0, writeStageConfigurationInfo, nullptr};

} // namespace

std::span<const SectionDef> settingSections() { return kSections; }

const SectionDef* findSection(std::string_view name) {
    for (const SectionDef& s : kSections)
        if (s.name == name)
            return &s;
    return name == kStageConfigurationInfo ? &kStageConfigurationInfoDef : nullptr;
}

void WriteSectionHeader(fileio& io, std::string_view name) {
    io.printComment(kRule);
    io.printComment(name);
    io.printComment(kRule);
    io.print2Str(name);
}

void writeSection(fileio& io, const DriverHandles& handles, const SectionDef& section) {
    WriteSectionHeader(io, section.name);
    section.write(io, handles);
}

} // namespace vss

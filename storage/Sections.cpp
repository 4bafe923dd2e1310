#include "storage/Sections.h"

#include "storage/NumberText.h"

#include <array>
#include <exception>

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

// A loop driven by a count read from the file stops once the reader has gone past the end of the file or a
// read in it has raised a message: beyond that point every read would only meet the same field again.
template <class ReadOne>
void readCounted(fileio& io, int count, ReadOne readOne) {
    const auto messagesBefore = io.messageCount();
    for (int i = 0; i < count && !io.pastEnd() && io.messageCount() == messagesBefore; ++i)
        readOne();
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
void readSpindleSpeed(SectionInput& in) { in.target.SetSpindleSpeed(in.io.readLng()); }

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
    const std::string word = in.io.readStr();
    std::int32_t code = 0;
    if (word == "HOMESTATE_RUN")
        code = homestate::Run;
    else if (word == "HOMESTATE_STANDBY")
        code = homestate::Standby;
    else if (word == "HOMESTATE_STOP")
        code = homestate::Stop;
    in.target.SetHomeState(code);
}

void writeLoadMethod(fileio& io, const DriverHandles& h) {
    io.writeInt(driverOf(h).GetLoadMethod());
    io.writeCrLf();
}
void readLoadMethod(SectionInput& in) { in.target.SetLoadMethod(in.io.readInt()); }

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
    LoadPosition rows[2];
    for (LoadPosition& row : rows) {
        in.io.readStr();
        row.position.radius = in.io.readDbl();
        row.position.skew = in.io.readDbl();
        row.rpm = in.io.readLng();
    }
    in.target.SetLoadPosition(loadposition::Load, rows[0].position, rows[0].rpm);
    in.target.SetLoadPosition(loadposition::Unload, rows[1].position, rows[1].rpm);
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
    const double innerRadius = in.io.readDbl();
    const std::int32_t maxTrack = in.io.readLng();
    const double pitch = in.io.readDbl();
    in.target.SetDataArea(innerRadius, maxTrack, pitch);
}

void writeDiskSizeRestriction(fileio& io, const DriverHandles& h) {
    io.writeStr(diskSizeOf(h).GetDiskSizeRestriction() ? "True" : "False");
    io.writeCrLf();
}
void readDiskSizeRestriction(SectionInput& in) { in.target.SetDiskSizeRestriction(in.io.readStr() == "True"); }

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
    const double outer = in.io.readDbl();
    const double inner = in.io.readDbl();
    in.target.SetStopperPosition(stopper::Outer, outer);
    in.target.SetStopperPosition(stopper::Inner, inner);
}

void writeStageConfiguration(fileio& io, const DriverHandles& h) {
    io.printComment("Stage2Spindle,; Stage2Ref,; Offset");
    for (std::int16_t index : {geometry::Stage2Spindle, geometry::Stage2Ref, geometry::StageOffset})
        io.writeDbl(serviceOf(h).GetStageGeometry(index));
    io.writeCrLf();
}
void readStageConfiguration(SectionInput& in) {
    double values[3];
    for (double& v : values)
        v = in.io.readDbl();
    for (std::int16_t index : {geometry::Stage2Spindle, geometry::Stage2Ref, geometry::StageOffset})
        in.target.SetStageGeometry(index, values[index]);
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
void readSettingUnknown(SectionInput& in) { in.target.SetSettingUnknown(in.io.readFlg()); }

void writeSpinstandType(fileio& io, const DriverHandles& h) {
    io.writeInt(serviceOf(h).GetSpinstandType());
    io.writeCrLf();
}
void readSpinstandType(SectionInput& in) { in.target.SetSpinstandType(in.io.readInt()); }

void writeHeadFace(fileio& io, const DriverHandles& h) {
    io.writeStr(serviceOf(h).GetHeadFace() != 0 ? "SSHEADFACE_DOWNFACE" : "SSHEADFACE_UPFACE");
    io.writeCrLf();
}
void readHeadFace(SectionInput& in) { in.target.SetHeadFace(in.io.readStr() == "SSHEADFACE_DOWNFACE" ? 1 : 0); }

void writeDiskSize(fileio& io, const DriverHandles& h) {
    const DoubleRange range = serviceOf(h).GetDiskSizeRange();
    io.writeDbl(range.min);
    io.writeDbl(range.max);
    io.writeCrLf();
}
void readDiskSize(SectionInput& in) {
    const double min = in.io.readDbl();
    const double max = in.io.readDbl();
    in.target.SetDiskSizeRange(min, max);
}

// ---- spindle and stage properties

void writeSpeedRange(fileio& io, const DriverHandles& h) {
    const SpeedRange range = serviceOf(h).GetSpeedRange();
    io.writeLng(range.min);
    io.writeLng(range.max);
    io.writeCrLf();
}
void readSpeedRange(SectionInput& in) {
    const std::int32_t min = in.io.readLng();
    const std::int32_t max = in.io.readLng();
    in.target.SetSpeedRange(min, max);
}

PropertyList propertyList(const DriverHandles& h, PropertyKind kind) {
    return kind == PropertyKind::Spindle ? serviceOf(h).GetSpindlePropertyList() : serviceOf(h).GetStagePropertyList();
}

std::string nameAt(const PropertyList& list, std::size_t i) { return i < list.names.size() ? list.names[i] : ""; }

void writeProperties(fileio& io, const DriverHandles& h, PropertyKind kind) {
    const PropertyList list = propertyList(h, kind);
    for (std::size_t i = 0; i < list.ids.size(); ++i) {
        const std::int16_t id = list.ids[i];
        io.writeStr(nameAt(list, i));
        io.writeVariant(kind == PropertyKind::Spindle ? serviceOf(h).GetSpindleProperty(id)
                                                      : serviceOf(h).GetStageProperty(id));
        io.writeCrLf();
    }
}

// Rows are matched to the driver's properties by position; a differing name only raises a warning. Every
// failing step is skipped and the next one runs.
void readProperties(SectionInput& in, PropertyKind kind) {
    PropertyList list;
    try {
        list = propertyList(in.handles, kind);
    } catch (const std::exception&) {
    }
    for (std::size_t i = 0; i < list.ids.size(); ++i) {
        const FieldPosition where = in.io.tokenPosition();
        std::string name;
        Variant value;
        try {
            name = in.io.readStr();
            value = in.io.readVariant();
        } catch (const std::exception&) {
        }
        const std::string driverName = nameAt(list, i);
        if (name != driverName)
            report(in.sink, "Property Name does not match", kErrorTitle, where);
        try {
            in.target.SetProperty(kind, list.ids[i], driverName, value);
        } catch (const std::exception&) {
        }
    }
}

void writeSpindleProperty(fileio& io, const DriverHandles& h) { writeProperties(io, h, PropertyKind::Spindle); }
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
    io.writeStr(serviceOf(h).GetPiezoSerial());
    io.writeCrLf();
}
void readPiezoSerial(SectionInput& in) { in.target.SetPiezoSerial(in.io.readStr()); }

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
    fileio& io = in.io;
    PiezoCalCoef c;
    io.readStr();
    c.vmin = io.readDbl();
    c.vmax = io.readDbl();
    io.readStr();
    c.xmin = io.readDbl();
    c.xmax = io.readDbl();
    io.readStr();
    const int count = io.readInt();
    io.readStr();
    readCounted(io, count, [&] { c.coef.push_back(io.readDbl()); });
    in.target.SetPiezoCalCoef(c);
}

void writePiezoAdjust(fileio& io, const DriverHandles& h) {
    const auto points = serviceOf(h).GetPiezoAdjustList();
    writeNop(io, points.size());
    io.writeStr("DAC");
    for (std::size_t i = 0; i < points.size(); ++i)
        io.writeLng(serviceOf(h).GetPiezoAdjust(static_cast<std::int16_t>(i)));
    io.writeCrLf();
}
// One value per point of the instrument's list, whatever count the file gives.
void readPiezoAdjust(SectionInput& in) {
    const auto points = serviceOf(in.handles).GetPiezoAdjustList();
    in.io.readStr();
    in.io.readInt();
    in.io.readStr();
    for (std::size_t i = 0; i < points.size(); ++i)
        in.target.SetPiezoAdjust(static_cast<std::int16_t>(i), in.io.readLng());
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
    fileio& io = in.io;
    PiezoControlData d;
    io.readStr();
    const int count = io.readInt();
    readCounted(io, count, [&] {
        io.readStr();
        for (auto* column : {&d.lth, &d.ta, &d.ks, &d.lstep, &d.tstep})
            column->push_back(io.readDbl());
    });
    in.target.SetPiezoControlData(d);
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
    for (std::size_t i = 0; i < entries.size(); ++i)
        io.writeLng(serviceOf(h).GetBacklashCompensation(static_cast<std::int16_t>(i)));
    io.writeCrLf();
}
void readBacklash(SectionInput& in) {
    const auto entries = serviceOf(in.handles).GetBacklashCompensationList();
    for (std::size_t i = 0; i < entries.size(); ++i)
        in.target.SetBacklashCompensation(static_cast<std::int16_t>(i), in.io.readLng());
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

void WriteSection(fileio& io, const DriverHandles& handles, const SectionDef& section) {
    WriteSectionHeader(io, section.name);
    section.write(io, handles);
}

} // namespace vss

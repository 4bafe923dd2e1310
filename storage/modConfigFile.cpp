#include "storage/modConfigFile.h"

#include "storage/NumberText.h"
#include "storage/Sections.h"

#include <array>
#include <ctime>
#include <stdexcept>

namespace vss {

namespace {

constexpr std::string_view kHeaderRule = "#################################";
constexpr std::string_view kTitleRule = "================================";

const std::array<GroupDef, 11>& groups() {
    static const std::array<GroupDef, 11> table{{
        {SettingGroup::Setting, "setting", "Export Setting", "Import Setting", "Setting",
         {"%SpindleSpeed", "%HomeState", "%LoadMethod", "%LoadPosition", "%DataArea", "%DiskSizeRestriction"}, 1},
        {SettingGroup::Customer, "customer", "Export Customer Configuration", "Import Customer Configuration",
         "Customer Configuration", {"%StopperPosition", kStageConfigurationInfo}, 2},
        {SettingGroup::CustomerStageConfiguration, "stage-config", "Export Customer Stage Configuration",
         "Import Customer Stage Configuration", "Customer Stage Configuration", {"%StageConfiguration"}, 3},
        {SettingGroup::Spinstand, "spinstand", "Export Spinstand Configuration", "Import Spinstand Configuration",
         "Spinstand Configuration", {"%SettingUnknown", "%SpinstandType", "%HeadFace", "%DiskSize"}, 4},
        {SettingGroup::SpindleProperty, "spindle", "Export Spindle Property", "Import Spindle Property",
         "Spindle Property", {"%SpindleSpeedRange", "%SpindleProperty"}, 5},
        {SettingGroup::StageProperty, "stage", "Export Stage Property", "Import Stage Property", "Stage Property",
         {"%StageProperty"}, 6},
        {SettingGroup::PiezoData, "piezo", "Export Piezo Data", "Import Piezo Data", "Piezo Data",
         {"%PiezoSerial", "%PiezoCalCoef", "%PiezoAdjust"}, 7},
        {SettingGroup::PiezoControlData, "piezo-control", "Export Piezo Control Data", "Import Piezo Control Data",
         "Piezo Control Data", {"%PiezoControlData"}, 8},
        {SettingGroup::PiezoAdjustData, "piezo-adjust", "Export Piezo Adjust Data", "Import Piezo Adjust Data",
         "Piezo Adjust Data", {"%PiezoAdjust"}, 9},
        {SettingGroup::BacklashCompensation, "backlash", "Export Backlash Compensation Data",
         "Import Backlash Compensation Data", "Backlash Compensation", {"%BacklashCompensationData"}, 10},
        {SettingGroup::PiezoInformation, "piezo-info", "Export Piezo Information", "", "Piezo Information",
         {"%PiezoSerial", "%PiezoCalData", "%PiezoControlData"}, 0},
    }};
    return table;
}

} // namespace

std::string localDateTime() {
    const std::time_t now = std::time(nullptr);
    char text[64] = {};
    if (const std::tm* local = std::localtime(&now))
        std::strftime(text, sizeof text, "%x %X", local);
    return text;
}

std::span<const GroupDef> settingGroups() { return groups(); }

const GroupDef& groupDef(SettingGroup group) { return groups().at(static_cast<std::size_t>(group)); }

const GroupDef* findGroup(std::string_view name) {
    for (const GroupDef& g : groups())
        if (g.name == name)
            return &g;
    return nullptr;
}

void WriteReportHeader(fileio& io, const DriverHandles& handles, const ReportClock& clock) {
    IDriverService& service = serviceOf(handles);
    io.printComment(kHeaderRule);
    io.printComment(clock());
    io.printComment("Hardware : " + service.GetHardwareRevision());
    io.printComment("Driver   : " + service.GetDriverRevision());
    io.printComment("Firmware : " + service.GetFirmwareRevision());
    io.printComment("Serial   : " + service.GetSerialNumber());
    io.printComment(kHeaderRule);
    io.writeCrLf();
}

void WriteGroupTitle(fileio& io, std::string_view title) {
    io.printComment(kTitleRule);
    io.printComment(title);
    io.printComment(kTitleRule);
}

void writeGroup(fileio& io, const DriverHandles& handles, SettingGroup group) {
    const GroupDef& def = groupDef(group);
    WriteGroupTitle(io, def.title);
    for (std::string_view name : def.sections)
        writeSection(io, handles, *findSection(name));
}

int ReadSettingFile(fileio& io, const DriverHandles& handles, int groupCode, SettingTarget& target,
                    MessageSink& sink) {
    int applied = 0;
    while (!io.endOfFile()) {
        const std::string field = io.readStr();
        const SectionDef* section = findSection(numbertext::trimBlanks(field));
        if (section != nullptr && section->read != nullptr && section->importedBy(groupCode)) {
            SectionInput input{io, handles, target, sink, section->name};
            try {
                section->read(input);
            } catch (const SectionStops& stop) {
                // The section's remaining fields are dropped one by one, as fields of no section are.
                report(sink, stop.message, kErrorTitle, FieldPosition{});
            }
            ++applied;
        }
    }
    return applied;
}

int ReadSettingFile(fileio& io, const DriverHandles& handles, int groupCode, MessageSink& sink) {
    DriverTarget target(handles);
    return ReadSettingFile(io, handles, groupCode, target, sink);
}

void ExportGroup(SettingGroup group, const std::string& fileName, const DriverHandles& handles, MessageSink& sink,
                 const ReportClock& clock) {
    fileio io(sink);
    io.setFileName(fileName);
    WriteReportHeader(io, handles, clock);
    writeGroup(io, handles, group);
    io.closeFile();
}

int ImportGroup(int groupCode, const std::string& fileName, const DriverHandles& handles, MessageSink& sink) {
    fileio io(sink);
    io.setFileName(fileName);
    const int applied = ReadSettingFile(io, handles, groupCode, sink);
    io.closeFile();
    return applied;
}

void exportAllGroups(const std::string& fileName, const DriverHandles& handles, MessageSink& sink,
                     const ReportClock& clock) {
    fileio io(sink);
    io.setFileName(fileName);
    WriteReportHeader(io, handles, clock);
    for (const GroupDef& g : groups())
        writeGroup(io, handles, g.group);
    io.closeFile();
}

} // namespace vss

#pragma once

// The setting file: report header, group titles, reading a file section by section, and the export and import
// of the eleven setting groups that the forms' Export and Import buttons (and vsstool-config) call.

#include "driver/Handles.h"
#include "storage/SettingTarget.h"
#include "storage/fileio.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vss {

// The date and time line of the report header; tests replace it with a fixed text.
using ReportClock = std::function<std::string()>;
// The local date and time in the system's short date and time forms.
std::string localDateTime();

enum class SettingGroup {
    Setting,
    Customer,
    CustomerStageConfiguration,
    Spinstand,
    SpindleProperty,
    StageProperty,
    PiezoData,
    PiezoControlData,
    PiezoAdjustData,
    BacklashCompensation,
    PiezoInformation,
};

struct GroupDef {
    SettingGroup group;
    std::string_view name;         // the console tool's group name
    std::string_view exportTitle;  // of the export file dialog
    std::string_view importTitle;  // of the import file dialog; empty: export only
    std::string_view title;        // written by WriteGroupTitle
    std::vector<std::string_view> sections; // written in this order
    int importCode;                // given to ReadSettingFile on import; 0: export only
};

// The eleven groups, in the order of the forms.
std::span<const GroupDef> settingGroups();
const GroupDef& groupDef(SettingGroup group);
const GroupDef* findGroup(std::string_view name); // by the console tool's name

void WriteReportHeader(fileio& io, const DriverHandles& handles, const ReportClock& clock = localDateTime);
void WriteGroupTitle(fileio& io, std::string_view title);
// The group title and the group's sections.
void writeGroup(fileio& io, const DriverHandles& handles, SettingGroup group);

// Reads the file field by field and applies each section that the group code imports; other fields and
// sections are dropped. Values go to `target`. Returns how many sections were applied. A section that cannot
// be read on (a field that does not convert, a row or the file ending early) is reported with the file, line
// and field and stops there; the reading goes on with the next section. A value the instrument refuses
// propagates as a DriverError naming the section, file, line and field of the value.
int ReadSettingFile(fileio& io, const DriverHandles& handles, int groupCode, SettingTarget& target,
                    MessageSink& sink);
// The same, sending the values to the instrument.
int ReadSettingFile(fileio& io, const DriverHandles& handles, int groupCode, MessageSink& sink);

// Appends a report with the group to the file (the file is created when missing). The file changes only when
// the report is complete: a report that cannot be written whole (a full disk, a text a setting file cannot
// hold, a failing driver call) leaves the file as it was, or no file, and its message or the DriverError
// thrown says that nothing was written.
void ExportGroup(SettingGroup group, const std::string& fileName, const DriverHandles& handles, MessageSink& sink,
                 const ReportClock& clock = localDateTime);
// Reads the file with the group code (1..10) and sends its values to the instrument. Returns how many sections
// were applied: none when the file holds no section of the group or could not be opened.
int ImportGroup(int groupCode, const std::string& fileName, const DriverHandles& handles, MessageSink& sink);

// Every group into one report: one header, then each group's title and sections; all of it or nothing, as
// above.
void exportAllGroups(const std::string& fileName, const DriverHandles& handles, MessageSink& sink,
                     const ReportClock& clock = localDateTime);

} // namespace vss

#include "storage/modConfigFile.h"

#include "driver/DriverError.h"
#include "driver/FileName.h"
#include "storage/NumberText.h"
#include "storage/Sections.h"
#include "storage/TemporaryPath.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <random>
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

// The reason a report was not written, and that nothing was.
std::string nothingWritten(std::string_view reason, const std::string& fileName) {
    std::string text(reason);
    if (!text.empty() && text.back() != '.')
        text += '.';
    return text + " Nothing was written to " + fileName + ".";
}

// Passes on the messages of a report written beside its file under the file's own name; a message that the
// writing failed says that nothing was written.
class BesideSink : public PositionedMessageSink {
public:
    BesideSink(MessageSink& sink, std::string fileName, std::string beside)
        : sink_(sink), fileName_(std::move(fileName)), beside_(std::move(beside)) {}

    void showAt(std::string_view text, std::string_view title, const FieldPosition& where) override {
        std::string shown(text);
        for (auto at = shown.find(beside_); at != std::string::npos;
             at = shown.find(beside_, at + fileName_.size()))
            shown.replace(at, beside_.size(), fileName_);
        FieldPosition position = where;
        if (position.fileName == beside_)
            position.fileName = fileName_;
        if (where.fileFailed && shown.find("Nothing was written") == std::string::npos)
            shown = nothingWritten(shown, fileName_);
        report(sink_, shown, title, position);
    }

private:
    MessageSink& sink_;
    std::string fileName_;
    std::string beside_;
};

// A new name in the folder of `file`: "." + its name + a random part + ".part".
std::filesystem::path besideName(const std::filesystem::path& file) {
    std::random_device random;
    std::error_code ec;
    for (;;) {
        char part[16];
        std::snprintf(part, sizeof part, "-%08x.part", static_cast<unsigned>(random()));
        std::filesystem::path beside =
            file.parent_path() / pathFromUtf8("." + utf8FromPath(file.filename()) + part);
        if (!std::filesystem::exists(beside, ec))
            return beside;
    }
}

void reportNotWritten(MessageSink& sink, std::string_view reason, const std::string& fileName) {
    report(sink, nothingWritten(reason, fileName), "", FieldPosition{fileName, 0, 0, true});
}

// Appends a report to the file, all of it or nothing. The report is written beside the file, after a copy of
// the file's old content, and takes the file's place only when it is complete: a full disk, a text that
// cannot be written or a failing driver call leaves the file as it was (or no file), and the message says
// that nothing was written. A link is written through to its file. A device (the null device, a terminal) is
// written to directly; what is not a regular file nor a device is refused by the writer.
void writeReport(const std::string& fileName, MessageSink& sink, const std::function<void(fileio&)>& write) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path given = pathFromUtf8(fileName);
    fs::path file = fs::weakly_canonical(given, ec);
    if (ec)
        file = given;
    const fs::file_status status = fs::status(file, ec);
    if (fileName.empty() || (fs::exists(status) && !fs::is_regular_file(status))) {
        fileio io(sink);
        io.setFileName(fileName);
        write(io);
        io.closeFile();
        return;
    }
    if (fs::exists(status)) {
        errno = 0;
        std::FILE* writable = fopenUtf8(utf8FromPath(file), "ab"); // opening for appending changes nothing
        if (writable == nullptr) {
            reportNotWritten(sink, std::strerror(errno != 0 ? errno : EACCES), fileName);
            return;
        }
        std::fclose(writable);
    }
    TemporaryPath removed(besideName(file)); // the file beside, unless it takes the file's place
    const fs::path& beside = removed.path();
    if (fs::exists(status) && !fs::copy_file(file, beside, ec)) {
        reportNotWritten(sink, ec.message(), fileName);
        return;
    }

    BesideSink besideSink(sink, fileName, utf8FromPath(beside));
    {
        fileio io(besideSink);
        io.setFileName(utf8FromPath(beside));
        try {
            write(io);
        } catch (const DriverError& e) {
            throw DriverError(nothingWritten(e.description(), fileName), e.code());
        }
        io.closeFile();
        if (io.failed())
            return;
    }
    fs::rename(beside, file, ec);
    if (ec) {
        reportNotWritten(sink, ec.message(), fileName);
        return;
    }
    removed.keep();
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
    writeReport(fileName, sink, [&](fileio& io) {
        WriteReportHeader(io, handles, clock);
        writeGroup(io, handles, group);
    });
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
    writeReport(fileName, sink, [&](fileio& io) {
        WriteReportHeader(io, handles, clock);
        for (const GroupDef& g : groups())
            writeGroup(io, handles, g.group);
    });
}

} // namespace vss

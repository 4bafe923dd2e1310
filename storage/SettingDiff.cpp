#include "storage/SettingDiff.h"

#include "driver/DriverError.h"
#include "storage/Messages.h"
#include "storage/NumberText.h"
#include "storage/Sections.h"
#include "storage/modConfigFile.h"

#include <algorithm>
#include <map>
#include <optional>

namespace vss {

namespace {

std::string text(double v) { return numbertext::formatDouble(v); }
std::string text(std::int32_t v) { return std::to_string(v); }
std::string text(bool v) { return v ? "True" : "False"; }
std::string text(const std::string& v) { return "\"" + printable(v) + "\""; }
std::string text(const Variant& v) {
    switch (v.type()) {
    case Variant::Type::Int16:
        return "(Integer) " + std::to_string(v.int16());
    case Variant::Type::Int32:
        return "(Long) " + std::to_string(v.int32());
    case Variant::Type::Double:
        return "(Double) " + text(v.dbl());
    case Variant::Type::Bool:
        return "(Boolean) " + text(v.boolean());
    default:
        return "(no value)";
    }
}

std::string homeStateText(std::int32_t code) {
    switch (code) {
    case homestate::Stop:
        return "HOMESTATE_STOP";
    case homestate::Standby:
        return "HOMESTATE_STANDBY";
    case homestate::Run:
        return "HOMESTATE_RUN";
    default:
        return "\"\"";
    }
}

std::string headFaceText(std::int32_t face) { return face != 0 ? "SSHEADFACE_DOWNFACE" : "SSHEADFACE_UPFACE"; }

// A target that only reads the instrument. A property row is the one value whose refusal the section reader
// reports and reads on past, as an import must; a comparison or a check cannot go on without the instrument's
// value. So a failed read of a property is kept (the first one) and the row passed over, and readFile throws
// the kept failure once the file has been read. Every other failed read ends the reading at once.
class ReadingTarget : public SettingTarget {
public:
    std::optional<DriverError> unread;

protected:
    // The read's result, or nothing when it failed.
    template <class Read> auto property(Read read) -> std::optional<decltype(read())> {
        try {
            return read();
        } catch (const DriverError& e) {
            if (!unread)
                unread = e;
            return std::nullopt;
        }
    }
};

// Records the file's values beside the instrument's; the instrument is only read.
class DiffTarget : public ReadingTarget {
public:
    explicit DiffTarget(const DriverHandles& handles) : h_(handles) {}

    std::vector<SettingDifference> differences() const {
        std::vector<SettingDifference> out;
        for (const auto& d : items_)
            if (d.instrument != d.file)
                out.push_back(d);
        return out;
    }

    void SetSpindleSpeed(std::int32_t rpm) override {
        record("%SpindleSpeed", text(driverOf(h_).GetSpindleSpeed()), text(rpm));
    }
    void SetHomeState(std::int32_t homeState) override {
        record("%HomeState", homeStateText(driverOf(h_).GetHomeState()), homeStateText(homeState));
    }
    void SetLoadMethod(std::int16_t method) override {
        record("%LoadMethod", text(std::int32_t{driverOf(h_).GetLoadMethod()}), text(std::int32_t{method}));
    }
    void SetLoadPosition(std::int16_t which, const PositionRecord& position, std::int32_t rpm) override {
        const LoadPosition now = loadPositionOf(h_).GetLoadPosition(which);
        const std::string row = which == loadposition::Load ? "%LoadPosition Load " : "%LoadPosition Unload ";
        record(row + "Radius", text(now.position.radius), text(position.radius));
        record(row + "Skew", text(now.position.skew), text(position.skew));
        record(row + "RPM", text(now.rpm), text(rpm));
    }
    void SetDataArea(double innerRadius, std::int32_t maxTrack, double pitch) override {
        const DataArea now = driverOf(h_).GetDataArea();
        record("%DataArea InnerRadius", text(now.innerRadius), text(innerRadius));
        record("%DataArea MaxTrack", text(now.maxTrack), text(maxTrack));
        record("%DataArea Pitch", text(now.pitch), text(pitch));
    }
    void SetDiskSizeRestriction(bool on) override {
        record("%DiskSizeRestriction", text(diskSizeOf(h_).GetDiskSizeRestriction()), text(on));
    }
    void SetStopperPosition(std::int16_t index, double position) override {
        record(index == stopper::Outer ? "%StopperPosition Outer" : "%StopperPosition Inner",
               text(serviceOf(h_).GetStopperPosition(index)), text(position));
    }
    void SetStageGeometry(std::int16_t index, double value) override {
        static const char* const names[] = {"Stage2Spindle", "Stage2Ref", "Offset"};
        record(std::string("%StageConfiguration ") + names[index % 3], text(serviceOf(h_).GetStageGeometry(index)),
               text(value));
    }
    void SetSettingUnknown(bool unknown) override {
        record("%SettingUnknown", text(serviceOf(h_).GetSettingUnknown()), text(unknown));
    }
    void SetSpinstandType(std::int16_t type) override {
        record("%SpinstandType", text(std::int32_t{serviceOf(h_).GetSpinstandType()}), text(std::int32_t{type}));
    }
    void SetHeadFace(std::int32_t face) override {
        record("%HeadFace", headFaceText(serviceOf(h_).GetHeadFace()), headFaceText(face));
    }
    void SetDiskSizeRange(double min, double max) override {
        const DoubleRange now = serviceOf(h_).GetDiskSizeRange();
        record("%DiskSize Min", text(now.min), text(min));
        record("%DiskSize Max", text(now.max), text(max));
    }
    void SetSpeedRange(std::int32_t min, std::int32_t max) override {
        const SpeedRange now = serviceOf(h_).GetSpeedRange();
        record("%SpindleSpeedRange Min", text(now.min), text(min));
        record("%SpindleSpeedRange Max", text(now.max), text(max));
    }
    void SetProperty(PropertyKind kind, std::int16_t id, const std::string& name, const Variant& value) override {
        const bool spindle = kind == PropertyKind::Spindle;
        const std::optional<Variant> now = property([&] {
            return spindle ? serviceOf(h_).GetSpindleProperty(id) : serviceOf(h_).GetStageProperty(id);
        });
        if (now)
            record((spindle ? "%SpindleProperty " : "%StageProperty ") + printable(name), text(*now),
                   text(value));
    }
    void SetPiezoSerial(const std::string& serial) override {
        record("%PiezoSerial", text(serviceOf(h_).GetPiezoSerial()), text(serial));
    }
    void SetPiezoCalCoef(const PiezoCalCoef& coef) override {
        const PiezoCalCoef now = serviceOf(h_).GetPiezoCalCoef();
        record("%PiezoCalCoef Volt min", text(now.vmin), text(coef.vmin));
        record("%PiezoCalCoef Volt max", text(now.vmax), text(coef.vmax));
        record("%PiezoCalCoef Position min", text(now.xmin), text(coef.xmin));
        record("%PiezoCalCoef Position max", text(now.xmax), text(coef.xmax));
        recordColumn("%PiezoCalCoef Coef", now.coef, coef.coef);
    }
    void SetPiezoAdjust(std::int16_t index, std::int32_t dac) override {
        record("%PiezoAdjust DAC " + std::to_string(index), text(serviceOf(h_).GetPiezoAdjust(index)), text(dac));
    }
    void SetPiezoControlData(const PiezoControlData& data) override {
        const PiezoControlData now = serviceOf(h_).GetPiezoControlData();
        recordColumn("%PiezoControlData Lth", now.lth, data.lth);
        recordColumn("%PiezoControlData Ta", now.ta, data.ta);
        recordColumn("%PiezoControlData Ks", now.ks, data.ks);
        recordColumn("%PiezoControlData Lstep", now.lstep, data.lstep);
        recordColumn("%PiezoControlData Tstep", now.tstep, data.tstep);
    }
    void SetBacklashCompensation(std::int16_t index, std::int32_t value) override {
        record("%BacklashCompensationData " + std::to_string(index),
               text(serviceOf(h_).GetBacklashCompensation(index)), text(value));
    }

private:
    void record(const std::string& item, std::string instrument, std::string file) {
        const auto [it, inserted] = index_.try_emplace(item, items_.size());
        if (inserted)
            items_.push_back({item, std::move(instrument), std::move(file)});
        else
            items_[it->second] = {item, std::move(instrument), std::move(file)};
    }
    void recordColumn(const std::string& item, const std::vector<double>& now, const std::vector<double>& file) {
        record(item + " count", text(static_cast<std::int32_t>(now.size())),
               text(static_cast<std::int32_t>(file.size())));
        for (std::size_t i = 0; i < file.size() && i < now.size(); ++i)
            record(item + " " + std::to_string(i), text(now[i]), text(file[i]));
    }

    const DriverHandles& h_;
    std::vector<SettingDifference> items_;
    std::map<std::string, std::size_t> index_;
};

// Checks each value against the instrument's lists and ranges as the file is read; the instrument is only read.
class CheckTarget : public ReadingTarget {
public:
    explicit CheckTarget(const DriverHandles& handles) : h_(handles) {}

    std::vector<std::string> problems;

    void SetSpeedRange(std::int32_t min, std::int32_t max) override {
        if (min >= max)
            refuse("%SpindleSpeedRange " + text(min) + " to " + text(max) + " rpm is reversed or empty");
        else
            speedRange_ = SpeedRange{min, max};
    }
    void SetSpindleSpeed(std::int32_t rpm) override { checkSpeed("%SpindleSpeed", rpm); }
    void SetLoadPosition(std::int16_t which, const PositionRecord&, std::int32_t rpm) override {
        if (rpm != -1) // -1 keeps the speed the instrument has
            checkSpeed(which == loadposition::Load ? "%LoadPosition Load RPM" : "%LoadPosition Unload RPM", rpm);
    }
    void SetLoadMethod(std::int16_t method) override {
        checkCode("%LoadMethod", method, driverOf(h_).GetLoadMethodList(), "load methods");
    }
    void SetSpinstandType(std::int16_t type) override {
        checkCode("%SpinstandType", type, serviceOf(h_).GetSpinstandTypeList(), "spinstand types");
    }
    void SetProperty(PropertyKind kind, std::int16_t id, const std::string& name, const Variant& value) override {
        const bool spindle = kind == PropertyKind::Spindle;
        IDriverService& service = serviceOf(h_);
        const std::optional<Variant> now =
            property([&] { return spindle ? service.GetSpindleProperty(id) : service.GetStageProperty(id); });
        if (!now)
            return;
        const std::string item = (spindle ? "%SpindleProperty " : "%StageProperty ") + printable(name);
        if (now->type() != value.type()) {
            refuse(item + " " + text(value) + " is not of the instrument's type, as " + text(*now) + " is");
            return;
        }
        if (value.type() != Variant::Type::Int16)
            return;
        const std::optional<NamedCodes> choices = property([&] {
            return spindle ? service.GetSpindlePropertyChoices(id) : service.GetStagePropertyChoices(id);
        });
        if (choices && !choices->codes.empty())
            checkCode(item, value.int16(), *choices, "choices");
    }

    void SetHomeState(std::int32_t) override {}
    void SetDataArea(double, std::int32_t, double) override {}
    void SetDiskSizeRestriction(bool) override {}
    void SetStopperPosition(std::int16_t, double) override {}
    void SetStageGeometry(std::int16_t, double) override {}
    void SetSettingUnknown(bool) override {}
    void SetHeadFace(std::int32_t) override {}
    void SetDiskSizeRange(double, double) override {}
    void SetPiezoSerial(const std::string&) override {}
    void SetPiezoCalCoef(const PiezoCalCoef&) override {}
    void SetPiezoAdjust(std::int16_t, std::int32_t) override {}
    void SetPiezoControlData(const PiezoControlData&) override {}
    void SetBacklashCompensation(std::int16_t, std::int32_t) override {}

private:
    void refuse(std::string problem) { problems.push_back(std::move(problem)); }

    // The file's own speed range when it has set one by now, else the instrument's.
    void checkSpeed(const std::string& item, std::int32_t rpm) {
        if (!speedRange_)
            speedRange_ = serviceOf(h_).GetSpeedRange();
        if (rpm < speedRange_->min || rpm > speedRange_->max)
            refuse(item + " " + text(rpm) + " rpm lies outside the speed range " + text(speedRange_->min) +
                   " to " + text(speedRange_->max) + " rpm");
    }

    void checkCode(const std::string& item, std::int16_t code, const NamedCodes& list, std::string_view what) {
        if (std::find(list.codes.begin(), list.codes.end(), code) != list.codes.end())
            return;
        std::string allowed;
        for (std::int16_t c : list.codes)
            allowed += (allowed.empty() ? "" : ", ") + std::to_string(c);
        refuse(item + " " + std::to_string(code) + " is not one of the instrument's " + std::string(what) + " (" +
               allowed + ")");
    }

    const DriverHandles& h_;
    std::optional<SpeedRange> speedRange_;
};

// Reads the file's sections of the group into the target. Any driver failure ends the reading with the
// driver's error: a value that cannot be compared or checked is not taken for equal or allowed.
int readFile(int groupCode, const std::string& fileName, const DriverHandles& handles, ReadingTarget& target,
             MessageSink& sink) {
    fileio io(sink);
    io.setFileName(fileName);
    const int sections = ReadSettingFile(io, handles, groupCode, target, sink);
    if (target.unread)
        throw *target.unread;
    return sections;
}

} // namespace

GroupDifferences diffGroup(int groupCode, const std::string& fileName, const DriverHandles& handles,
                           MessageSink& sink) {
    DiffTarget target(handles);
    const int sections = readFile(groupCode, fileName, handles, target, sink);
    return {target.differences(), sections};
}

std::vector<std::string> checkGroups(std::span<const int> groupCodes, const std::string& fileName,
                                     const DriverHandles& handles, MessageSink& sink) {
    CheckTarget target(handles);
    for (const int code : groupCodes)
        readFile(code, fileName, handles, target, sink);
    return std::move(target.problems);
}

} // namespace vss

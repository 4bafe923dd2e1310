#include "tools/vsstool-config/ConfigTool.h"

#include "driver/Factory.h"
#include "storage/SettingDiff.h"
#include "storage/modConfigFile.h"
#include "storage/modSsDefine.h"

#include <istream>
#include <optional>
#include <ostream>
#include <set>
#include <stdexcept>

namespace vss::config {

namespace {

// Discards messages: the restore shows the file's messages once, while previewing.
class SilentSink : public MessageSink {
public:
    void show(std::string_view, std::string_view) override {}
};

// The instrument's non-volatile memory groups behind each setting group. The version data (hardware revision
// and serial number, which a catalogue model sets) belongs to no setting group: only "all" saves it.
enum class Memory { Version, Customer, Spinstand, SpindleProperty, StageProperty, PiezoData, Backlash };

struct MemoryOps {
    Memory memory;
    std::string_view name;
    void (IDriverService::*save)();
    void (IDriverService::*recall)();
};

// "all" goes through the groups in the service settings window's order, then the two it does not save.
constexpr MemoryOps kMemories[] = {
    {Memory::Version, "version data", &IDriverService::SaveVersionData, &IDriverService::RecallVersionData},
    {Memory::Spinstand, "spinstand configuration", &IDriverService::SaveSpinstandConfiguration,
     &IDriverService::RecallSpinstandConfiguration},
    {Memory::SpindleProperty, "spindle property", &IDriverService::SaveSpindleProperty,
     &IDriverService::RecallSpindleProperty},
    {Memory::StageProperty, "stage property", &IDriverService::SaveStageProperty,
     &IDriverService::RecallStageProperty},
    {Memory::Customer, "customer configuration", &IDriverService::SaveCustomerConfiguration,
     &IDriverService::RecallCustomerConfiguration},
    {Memory::PiezoData, "piezo data", &IDriverService::SavePiezoData, &IDriverService::RecallPiezoData},
    {Memory::Backlash, "backlash compensation", &IDriverService::SaveBacklashCompensation,
     &IDriverService::RecallBacklashCompensation},
};

Memory memoryOf(SettingGroup group) {
    switch (group) {
    case SettingGroup::Customer:
    case SettingGroup::CustomerStageConfiguration:
        return Memory::Customer;
    case SettingGroup::Spinstand:
        return Memory::Spinstand;
    case SettingGroup::SpindleProperty:
        return Memory::SpindleProperty;
    case SettingGroup::StageProperty:
        return Memory::StageProperty;
    case SettingGroup::BacklashCompensation:
        return Memory::Backlash;
    default:
        return Memory::PiezoData;
    }
}

class Runner {
public:
    Runner(const CommandLine& line, const DriverHandles& handles, std::istream& in, std::ostream& out,
           ConsoleSink& sink)
        : line_(line), h_(handles), in_(in), out_(out), sink_(sink) {}

    // A file that cannot be opened or written has been named by the sink; nothing more is said of its action.
    void run(const Action& action) {
        const int fileFailures = sink_.fileFailures();
        const auto fileOk = [&] { return sink_.fileFailures() == fileFailures; };
        switch (action.verb) {
        case Verb::Export:
            ExportGroup(findGroup(action.group)->group, action.file, h_, sink_);
            if (fileOk())
                note("exported " + action.group + " to " + action.file);
            break;
        case Verb::Import:
            if (ImportGroup(findGroup(action.group)->importCode, action.file, h_, sink_) > 0)
                note("imported " + action.group + " from " + action.file);
            else if (fileOk())
                sink_.warning(action.file + " holds no section of the group " + action.group +
                              ": nothing was imported");
            break;
        case Verb::Backup:
            ExportAllGroups(action.file, h_, sink_);
            if (fileOk())
                note("backed up every group to " + action.file);
            break;
        case Verb::Diff:
            if (const auto diffs = differences(action.file, sink_))
                printDifferences(*diffs);
            break;
        case Verb::Restore:
            restore(action.file);
            break;
        case Verb::Save:
        case Verb::Recall:
            saveOrRecall(action);
            break;
        case Verb::Models:
            listModels();
            break;
        case Verb::ApplyModel:
            applyModel(action.model);
            break;
        }
    }

private:
    void note(const std::string& text) {
        if (!line_.quiet)
            out_ << text << '\n';
    }

    // Every importable group's differences, each item once. Nothing when the file cannot be opened or holds no
    // setting section at all (said on the error stream).
    std::optional<std::vector<SettingDifference>> differences(const std::string& file, MessageSink& sink) {
        const int fileFailures = sink_.fileFailures();
        std::vector<SettingDifference> all;
        std::set<std::string> seen;
        int sections = 0;
        for (const GroupDef& g : settingGroups()) {
            if (g.importCode == 0)
                continue;
            GroupDifferences group = DiffGroup(g.importCode, file, h_, sink);
            if (sink_.fileFailures() > fileFailures)
                return std::nullopt;
            sections += group.sections;
            for (auto& d : group.differences)
                if (seen.insert(d.item).second)
                    all.push_back(std::move(d));
        }
        if (sections == 0) {
            sink_.warning(file + " holds no setting section: nothing to compare");
            return std::nullopt;
        }
        return all;
    }

    void printDifferences(const std::vector<SettingDifference>& diffs) {
        for (const auto& d : diffs)
            out_ << d.item << ": instrument " << d.instrument << ", file " << d.file << '\n';
        if (diffs.empty())
            note("no value differs");
    }

    void restore(const std::string& file) {
        const auto diffs = differences(file, sink_);
        if (!diffs)
            return;
        printDifferences(*diffs);
        if (diffs->empty())
            return;
        if (!line_.yes) {
            out_ << "Apply these changes to the instrument? [y/N] " << std::flush;
            std::string answer;
            std::getline(in_, answer);
            if (answer.empty() || (answer[0] != 'y' && answer[0] != 'Y')) {
                out_ << "restore cancelled; nothing was changed\n";
                return;
            }
        }
        SilentSink silent;
        for (const GroupDef& g : settingGroups())
            if (g.importCode != 0)
                ImportGroup(g.importCode, file, h_, silent);
        note("restored " + file);
    }

    void saveOrRecall(const Action& action) {
        const bool save = action.verb == Verb::Save;
        for (const MemoryOps& m : kMemories) {
            if (action.group != "all" && m.memory != memoryOf(findGroup(action.group)->group))
                continue;
            (h_.service.get()->*(save ? m.save : m.recall))();
            note(std::string(save ? "saved " : "recalled ") + std::string(m.name));
        }
    }

    // The catalogue's model names as the service settings list them: up to the first empty name. The file is
    // read once per run; a catalogue that cannot be used has been reported and lists nothing.
    const std::vector<std::string>& modelNames() {
        if (!catalogueRead_) {
            catalogueRead_ = true;
            ReadSpinstandDefinitions(line_.catalogue, sink_);
            for (std::int16_t i = 0;; ++i) {
                std::string name = GetSpinstandName(i);
                if (name.empty())
                    break;
                modelNames_.push_back(std::move(name));
            }
        }
        return modelNames_;
    }

    void listModels() {
        const std::vector<std::string>& names = modelNames();
        for (std::size_t i = 0; i < names.size(); ++i)
            out_ << i << ": " << names[i] << '\n';
    }

    // A model by its name, else by its index; nothing is written when there is no such model, and the run
    // ends there.
    void applyModel(const std::string& model) {
        const std::vector<std::string>& names = modelNames();
        std::size_t index = 0;
        while (index < names.size() && names[index] != model)
            ++index;
        if (index == names.size() && !model.empty() && model.size() <= 4 &&
            model.find_first_not_of("0123456789") == std::string::npos)
            index = std::stoul(model);
        if (index >= names.size())
            throw std::runtime_error("the spinstand catalogue " + line_.catalogue + " holds no model \"" +
                                     model + "\"");
        ApplySpinstandDefinition(static_cast<std::int16_t>(index), *h_.service, sink_);
        note("applied model " + std::to_string(index) + " (" + names[index] + "); not saved");
    }

    const CommandLine& line_;
    const DriverHandles& h_;
    std::istream& in_;
    std::ostream& out_;
    ConsoleSink& sink_;
    bool catalogueRead_ = false;
    std::vector<std::string> modelNames_;
};

} // namespace

void ConsoleSink::showAt(std::string_view text, std::string_view title, const FieldPosition& where) {
    ++messages_;
    if (where.fileFailed)
        ++fileFailures_;
    err_ << "error: " << (title.empty() ? kAppTitle : title) << ": " << text;
    if (!where.fileName.empty() || where.fileFailed) {
        err_ << " (file " << where.fileName;
        if (where.line > 0)
            err_ << ", line " << where.line << ", field " << where.field;
        err_ << ')';
    }
    err_ << '\n';
}

void ConsoleSink::error(std::string_view text) {
    ++messages_;
    err_ << "error: " << kAppTitle << ": " << text << '\n';
}

void ConsoleSink::warning(std::string_view text) { err_ << "warning: " << text << '\n'; }

int runTool(const CommandLine& line, std::istream& in, std::ostream& out, std::ostream& err) {
    ConsoleSink sink(err);
    DriverOptions options;
    options.forceSimulator = line.simulate;
    options.simStatePath = line.simState;
    options.simPowerCycle = line.powerCycle;
    try {
        if (!line.trace.empty())
            options.trace = std::make_shared<TraceFile>(line.trace);
    } catch (const std::exception& e) {
        sink.error(e.what());
        return 2;
    }

    DriverHandles handles;
    try {
        auto object = CreateDriverObject(kDriverProgId, options);
        acquireHandles(*object, handles);
        handles.driver->Open(std::string(kDefaultResource));
        handles.service->BeginService();
    } catch (const std::exception& e) {
        sink.error(e.what());
        return 1;
    }

    // A failing action ends the run, as a failing driver call ends a window's handler; the session is
    // closed in every case.
    Runner runner(line, handles, in, out, sink);
    try {
        for (const Action& action : line.actions)
            runner.run(action);
    } catch (const std::exception& e) {
        sink.error(e.what());
    }
    try {
        handles.driver->Close();
    } catch (const std::exception& e) {
        sink.error(e.what());
    }
    if (sink.fileFailures() > 0)
        return 2;
    return sink.messages() > 0 ? 1 : 0;
}

} // namespace vss::config

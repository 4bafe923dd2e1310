#include "tools/vsstool-config/ConfigTool.h"

#include "driver/FileName.h"
#include "driver/Trace.h"
#include "simulator/Factory.h"
#include "storage/SettingDiff.h"
#include "storage/TemporaryPath.h"
#include "storage/modConfigFile.h"
#include "storage/modSsDefine.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <istream>
#include <optional>
#include <ostream>
#include <random>
#include <set>
#include <stdexcept>

namespace vss::config {

namespace {

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

// The order in which a restore writes the groups: the ranges and limits before the values they bound. The
// spinstand group holds the disk size range, the spindle group the speed range, the stage and customer groups
// the geometry that bounds the load radii; the working settings (spindle speed, load positions, data area)
// come last. The piezo group writes the adjust points as well, so the piezo adjust group is not read again.
constexpr std::string_view kRestoreOrder[] = {"spinstand",     "spindle",  "stage",
                                              "stage-config",  "customer", "piezo",
                                              "piezo-control", "backlash", "setting"};

std::vector<int> restoreCodes() {
    std::vector<int> codes;
    for (std::string_view name : kRestoreOrder)
        codes.push_back(findGroup(name)->importCode);
    return codes;
}

// "<stem>-before-restore-<date>-<time>.csv" beside the restored file; a second restore within the same second
// gets "-2" and so on, so that each backup file holds only the values before its own restore.
std::string backupBeside(const std::string& restored) {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    char stamp[32] = {};
    if (const std::tm* local = std::localtime(&now))
        std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", local);
    const std::filesystem::path file = pathFromUtf8(restored);
    const std::string stem = utf8FromPath(file.stem()) + "-before-restore-" + stamp;
    std::filesystem::path backup = file.parent_path() / pathFromUtf8(stem + ".csv");
    std::error_code ec;
    for (int n = 2; std::filesystem::exists(backup, ec); ++n)
        backup = file.parent_path() / pathFromUtf8(stem + "-" + std::to_string(n) + ".csv");
    return utf8FromPath(backup);
}

// The file a restore reads, as it stood when the restore began: a copy in a folder of its own in the
// temporary folder, removed when the restore ends (or Ctrl-C ends the program at the prompt). The changes
// shown, the checks and the writes all read the copy, so that a file rewritten while the user reads the
// changes cannot bring in values that were never shown or checked. The messages of the reading, passed on
// through this sink, name the file itself. A file that cannot be opened, or is not a regular file, is read as
// it is, and its reader says why it cannot be read.
class RestoredFile : public PositionedMessageSink {
public:
    RestoredFile(const std::string& file, MessageSink& sink) : file_(file), read_(file), sink_(sink) {
        namespace fs = std::filesystem;
        std::error_code ec;
        if (!fs::is_regular_file(pathFromUtf8(file), ec))
            return;
        if (std::FILE* readable = fopenUtf8(file, "rb"))
            std::fclose(readable);
        else
            return;
        const fs::path temporary = fs::temp_directory_path(ec);
        std::random_device random;
        for (int attempt = 0; !ec && !folder_ && attempt < 100; ++attempt) {
            const fs::path folder = temporary / ("vsstool-config-" + std::to_string(random()));
            if (fs::create_directory(folder, ec))
                folder_.emplace(folder);
        }
        if (folder_) {
            copy_.emplace(folder_->path() / "restore.csv");
            fs::copy_file(pathFromUtf8(file), copy_->path(), ec);
        }
        if (!folder_ || ec)
            throw std::runtime_error("the restore of " + file +
                                     " did not start: no copy of it could be made in " +
                                     utf8FromPath(temporary) + ": " + ec.message());
        read_ = utf8FromPath(copy_->path());
    }

    // The name to read.
    const std::string& path() const { return read_; }
    // A text of the reading with the copy's name replaced by the file's.
    std::string named(std::string text) const {
        if (read_ != file_)
            for (auto at = text.find(read_); at != std::string::npos;
                 at = text.find(read_, at + file_.size()))
                text.replace(at, read_.size(), file_);
        return text;
    }
    void showAt(std::string_view text, std::string_view title, const FieldPosition& where) override {
        FieldPosition position = where;
        if (position.fileName == read_)
            position.fileName = file_;
        report(sink_, named(std::string(text)), title, position);
    }

private:
    std::string file_;
    std::string read_;
    MessageSink& sink_;
    std::optional<TemporaryPath> folder_;
    std::optional<TemporaryPath> copy_;
};

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text.empty() ? "nothing" : text;
}

class Runner {
public:
    Runner(const CommandLine& line, const DriverHandles& handles, std::istream& in, std::ostream& out,
           ConsoleSink& sink)
        : line_(line), h_(handles), in_(in), out_(out), sink_(sink) {}

    // A file that cannot be opened or written has been named by the sink; nothing more is said of its action.
    void run(const Action& action) {
        const int fileFailures = sink_.fileFailures();
        const int messagesBefore = sink_.messages();
        const auto fileOk = [&] { return sink_.fileFailures() == fileFailures; };
        switch (action.verb) {
        case Verb::Export:
            ExportGroup(findGroup(action.group)->group, action.file, h_, sink_);
            if (fileOk())
                note("exported " + action.group + " to " + action.file);
            break;
        case Verb::Import:
            importGroup(action);
            break;
        case Verb::Backup:
            exportAllGroups(action.file, h_, sink_);
            if (fileOk())
                note("backed up every group to " + action.file);
            break;
        case Verb::Diff:
            if (const auto diffs = differences(action.file, sink_)) {
                printDifferences(*diffs, action.file, messagesBefore);
                differed_ = differed_ || !diffs->empty();
            } else if (fileOk()) {
                sink_.warning(action.file + " holds no setting section: nothing to compare");
            }
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

    // A diff found values that differ.
    bool differed() const { return differed_; }

private:
    void note(const std::string& text) {
        if (!line_.quiet)
            out_ << shownText(text) << '\n';
    }

    // Every importable group's differences, each item once. Nothing when the file cannot be opened (said on
    // the error stream) or holds no setting section at all.
    std::optional<std::vector<SettingDifference>> differences(const std::string& file, MessageSink& sink) {
        const int fileFailures = sink_.fileFailures();
        std::vector<SettingDifference> all;
        std::set<std::string> seen;
        int sections = 0;
        for (const GroupDef& g : settingGroups()) {
            if (g.importCode == 0)
                continue;
            GroupDifferences group = diffGroup(g.importCode, file, h_, sink);
            if (sink_.fileFailures() > fileFailures)
                return std::nullopt;
            sections += group.sections;
            for (auto& d : group.differences)
                if (seen.insert(d.item).second)
                    all.push_back(std::move(d));
        }
        if (sections == 0)
            return std::nullopt;
        return all;
    }

    // The differences, each value cut to the length of a quote. A file with faults (said above, since
    // `messagesBefore`) was compared only up to each fault: it never reads as "no value differs".
    void printDifferences(const std::vector<SettingDifference>& diffs, const std::string& file,
                          int messagesBefore) {
        for (const auto& d : diffs)
            out_ << shownText(d.item) << ": instrument " << cutPrintable(d.instrument) << ", file "
                 << cutPrintable(d.file) << '\n';
        if (sink_.messages() > messagesBefore)
            sink_.warning(file + " has faults (see above): the values after each fault were not compared");
        else if (diffs.empty())
            note("no value differs");
    }

    // An import that raised a message (a fault of the file, a value the instrument refused) may be applied in
    // part: it ends the run like a declined restore, so that no later action saves what it left, and it is
    // never said to be imported. A file that could not be opened has been named and changed nothing.
    void importGroup(const Action& action) {
        const int messages = sink_.messages();
        const int fileFailures = sink_.fileFailures();
        const std::string inPart = "the import of " + action.group + " from " + action.file;
        int applied = 0;
        try {
            applied = ImportGroup(findGroup(action.group)->importCode, action.file, h_, sink_);
        } catch (const std::exception& e) {
            throw std::runtime_error(std::string(clause(e.what())) + ". " + capitalized(inPart) +
                                     " stopped there and may be applied in part; no later action runs");
        }
        if (sink_.fileFailures() > fileFailures)
            return;
        if (sink_.messages() > messages)
            throw std::runtime_error(
                inPart + " has faults (see above) and may be applied in part; no later action runs");
        if (applied > 0)
            note("imported " + action.group + " from " + action.file);
        else
            sink_.warning(action.file + " holds no section of the group " + action.group +
                          ": nothing was imported");
    }

    // Restores from a copy of the file taken as the restore begins (see RestoredFile); messages name the
    // file.
    void restore(const std::string& file) {
        RestoredFile restored(file, sink_);
        try {
            restore(file, restored);
        } catch (const std::exception& e) {
            throw std::runtime_error(restored.named(e.what()));
        }
    }

    // Shows the changes, checks the file's values, asks, backs the instrument up beside the file and writes
    // the groups in the restore order. Anything short of a complete restore ends the run by throwing.
    void restore(const std::string& file, RestoredFile& restored) {
        const int messages = sink_.messages();
        const int fileFailures = sink_.fileFailures();
        const auto diffs = differences(restored.path(), restored);
        if (sink_.fileFailures() > fileFailures)
            throw std::runtime_error("the restore of " + file + " did not start: the file cannot be read");
        if (!diffs)
            throw std::runtime_error(file + " holds no setting section: nothing was restored");
        printDifferences(*diffs, file, messages);
        // A file that does not read cleanly would be applied only in part.
        if (sink_.messages() > messages)
            throw std::runtime_error("the restore of " + file +
                                     " stopped before writing anything: the file has faults (see above)");
        const std::vector<int> codes = restoreCodes();
        const std::vector<std::string> refused = checkGroups(codes, restored.path(), h_, restored);
        for (const std::string& problem : refused)
            sink_.error(problem + " (file " + file + ")");
        if (!refused.empty())
            throw std::runtime_error("the restore of " + file + " stopped before writing anything");
        if (diffs->empty())
            return;
        if (!line_.yes && !confirmed())
            throw std::runtime_error("the restore of " + file + " was cancelled: no later action runs");
        const std::string backup = takeBackup(file);
        writeGroups(file, restored, backup);
        note("restored " + file);
    }

    bool confirmed() {
        out_ << "Apply these changes to the instrument? [y/N] " << std::flush;
        std::string answer;
        std::getline(in_, answer);
        if (!answer.empty() && (answer[0] == 'y' || answer[0] == 'Y'))
            return true;
        out_ << "restore cancelled; nothing was changed\n";
        return false;
    }

    // Every value as it is before the restore, so that the restore can be undone. Named even when quiet.
    std::string takeBackup(const std::string& file) {
        const std::string backup = backupBeside(file);
        const int fileFailures = sink_.fileFailures();
        const std::string stopped = "the restore of " + file +
                                    " stopped before writing anything: the backup " + backup +
                                    " could not be written";
        try {
            exportAllGroups(backup, h_, sink_);
        } catch (const std::exception& e) {
            throw std::runtime_error(stopped + ": " + e.what());
        }
        if (sink_.fileFailures() > fileFailures)
            throw std::runtime_error(stopped);
        out_ << "backup of the values before the restore: " << backup << '\n';
        return backup;
    }

    // A refusal either ends the group (thrown) or is said and skipped (a property row): both end the restore.
    void writeGroups(const std::string& file, RestoredFile& restored, const std::string& backup) {
        std::vector<std::string> applied;
        for (std::string_view name : kRestoreOrder) {
            const int messages = sink_.messages();
            std::string refusal;
            try {
                ImportGroup(findGroup(name)->importCode, restored.path(), h_, restored);
            } catch (const std::exception& e) {
                refusal = e.what();
            }
            if (refusal.empty() && sink_.messages() > messages)
                refusal = "the instrument refused a value (see above).";
            if (!refusal.empty())
                throw std::runtime_error(
                    "the restore of " + file + " stopped in the group " + std::string(name) + ": " + refusal +
                    " Applied before it: " + joined(applied) + "; the group " + std::string(name) +
                    " may be applied in part. To go back, restore the backup with the same options: "
                    "vsstool-config restore " +
                    backup);
            applied.emplace_back(name);
        }
    }

    // A failure names the memory group it stopped at, those done before it and those not reached.
    void saveOrRecall(const Action& action) {
        const bool save = action.verb == Verb::Save;
        const std::string done = save ? "saved" : "recalled";
        std::vector<std::string> before;
        std::vector<std::string> after;
        const MemoryOps* failed = nullptr;
        std::string reason;
        for (const MemoryOps& m : kMemories) {
            if (action.group != "all" && m.memory != memoryOf(findGroup(action.group)->group))
                continue;
            if (failed != nullptr) {
                after.emplace_back(m.name);
                continue;
            }
            try {
                (h_.service.get()->*(save ? m.save : m.recall))();
            } catch (const std::exception& e) {
                failed = &m;
                reason = clause(e.what());
                continue;
            }
            note(done + " " + std::string(m.name));
            before.emplace_back(m.name);
        }
        if (failed == nullptr)
            return;
        std::string text = "the " + std::string(failed->name) + " could not be " + done + ": " + reason;
        if (!before.empty() || !after.empty())
            text += "; " + done + " before it: " + joined(before) + "; not " + done + ": " + joined(after);
        throw std::runtime_error(text);
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
            out_ << i << ": " << shownText(names[i]) << '\n';
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
    bool differed_ = false;
    std::vector<std::string> modelNames_;
};

} // namespace

// Every line the tool prints to the error stream: one prefix, then the text under the one rule for outside
// texts (a catalogue's model name, a serial, a scenario's or the instrument's message may hold line ends or
// escapes).
void ConsoleSink::print(std::string_view prefix, std::string_view text) {
    err_ << prefix << shownText(text) << '\n';
}

void ConsoleSink::showAt(std::string_view text, std::string_view title, const FieldPosition& where) {
    ++messages_;
    if (where.fileFailed)
        ++fileFailures_;
    // The title (the application's, or "error" for a reader's message) adds nothing to the one prefix. A
    // warning of the window program ("Warning : Invalid Spindle Driver.") is printed as the warning it is,
    // and still sets the exit status: the instrument's values are not what the user asked for.
    static_cast<void>(title);
    constexpr std::string_view kWarning = "Warning : ";
    const bool warning = text.starts_with(kWarning);
    std::string line(warning ? text.substr(kWarning.size()) : text);
    if (!where.fileName.empty() || where.fileFailed) {
        line += " (file " + where.fileName;
        if (where.line > 0)
            line += ", line " + std::to_string(where.line) + ", field " + std::to_string(where.field);
        line += ')';
    }
    print(warning ? "warning: " : "error: ", line);
}

void ConsoleSink::error(std::string_view text) {
    ++messages_;
    print("error: ", text);
}

void ConsoleSink::warning(std::string_view text) {
    print("warning: ", text);
}

void ConsoleSink::note(std::string_view text) {
    print("note: ", text);
}

namespace {

// Trace lines that could not be written (a full disk) are said last, as a file that could not be written.
int withTraceLoss(const DriverOptions& options, ConsoleSink& sink, int status) {
    const auto* file = dynamic_cast<const TraceFile*>(options.trace.get());
    const std::string lost = file != nullptr ? file->loss() : std::string();
    if (lost.empty())
        return status;
    sink.error(lost);
    return 2;
}

} // namespace

int runTool(const CommandLine& line, std::istream& in, std::ostream& out, std::ostream& err,
            bool driverInstalled) {
    ConsoleSink sink(err);
    DriverOptions options;
    try {
        line.simulator.applyTo(options); // opens the trace file
    } catch (const std::exception& e) {
        sink.error(e.what());
        return 2;
    }

    if (!options.forceSimulator && !driverInstalled)
        sink.note("no instrument driver is installed here: using the simulated instrument");
    // An instrument that cannot be reached runs no action: like a file that cannot be opened, exit status 2
    // (the simulated instrument refuses to start on a damaged memory file).
    DriverHandles handles;
    try {
        auto object = createDriverObject(kDriverProgId, options);
        acquireHandles(*object, handles);
        handles.driver->Open(std::string(kDefaultResource));
        handles.service->BeginService();
    } catch (const std::exception& e) {
        sink.error(e.what());
        return withTraceLoss(options, sink, 2);
    }

    // A failing action ends the run, as a failing driver call ends a window's handler, and so does a restore
    // that is declined or stops; the session is closed in every case.
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
        return withTraceLoss(options, sink, 2);
    return withTraceLoss(options, sink, sink.messages() > 0 || runner.differed() ? 1 : 0);
}

} // namespace vss::config

#include "storage/modSsDefine.h"

#include "storage/Messages.h"
#include "storage/NumberText.h"
#include "storage/fileio.h"

#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <variant>

namespace vss {
namespace {

using Def = SpinstandDefinition;
using Member = std::variant<std::string Def::*, std::int16_t Def::*, std::int32_t Def::*, double Def::*>;

struct KeyDef {
    std::string_view key;
    Member member;
    bool word = false; // HeadFace: a word that stands for 1 or 0
};

const KeyDef kKeys[] = {
    {"Name", &Def::Name},
    {"Description", &Def::Description},
    {"HardwareRevision", &Def::HardwareRevision},
    {"SpinstandType", &Def::SpinstandType},
    {"HeadFace", &Def::HeadFace, true},
    {"DiskSizeMin", &Def::DiskSizeMin},
    {"DiskSizeMax", &Def::DiskSizeMax},
    {"GearInvert", &Def::GearInvert},
    {"tStprUp", &Def::tStprUp},
    {"tStprDn", &Def::tStprDn},
    {"tStprThru", &Def::tStprThru},
    {"tBrake", &Def::tBrake},
    {"tSettle", &Def::tSettle},
    {"tCover", &Def::tCover},
    {"tLockdown", &Def::tLockdown},
    {"tStopper", &Def::tStopper},
    {"tMove", &Def::tMove},
    {"tMotorOff", &Def::tMotorOff},
    {"SpeedMin", &Def::SpeedMin},
    {"SpeedMax", &Def::SpeedMax},
    {"Rotation", &Def::Rotation},
    {"BrakeTime", &Def::BrakeTime},
    {"RefClock", &Def::RefClock},
    {"RefFreq", &Def::RefFreq},
    {"ReadyPol", &Def::ReadyPol},
    {"IndexDiv", &Def::IndexDiv},
    {"Driver", &Def::Driver},
    {"PoleNum", &Def::PoleNum},
    {"tRdy", &Def::tRdy},
    {"tSpindleSet", &Def::tSpindleSet},
    {"tSpindleOff", &Def::tSpindleOff},
    {"tLock", &Def::tLock},
    {"tLockSettle", &Def::tLockSettle},
    {"DriverRot", &Def::DriverRot},
    {"DriverType", &Def::DriverType},
    {"StopperOuter", &Def::StopperOuter},
    {"StopperInner", &Def::StopperInner},
    {"Stage2Spindle", &Def::Stage2Spindle},
    {"Stage2Ref", &Def::Stage2Ref},
    {"StageOffset", &Def::StageOffset},
};

constexpr std::string_view kDownFace = "SSHEADFACE_DOWNFACE";

std::vector<SpinstandDefinition>& table() {
    static std::vector<SpinstandDefinition> definitions;
    return definitions;
}

const KeyDef* findKey(std::string_view key) {
    for (const KeyDef& def : kKeys)
        if (def.key == key)
            return &def;
    return nullptr;
}

// Why the catalogue cannot be used, and where.
struct CatalogueProblem {
    std::string text;
    FieldPosition where;
};

// Keeps the first message of the file reader (the file cannot be opened, a field too long to be a
// catalogue's, a read error), which the catalogue reports in its own words.
class ReaderSink : public MessageSink {
public:
    void show(std::string_view text, std::string_view) override {
        if (text_.empty())
            text_ = text;
    }
    const std::string& text() const { return text_; }

private:
    std::string text_;
};

std::string quoted(std::string_view text) {
    constexpr std::size_t kShown = 40; // a field of binary junk is shown by its start only
    return "\"" + std::string(text.substr(0, kShown)) + (text.size() > kShown ? "...\"" : "\"");
}

// The whole number a field stands for, rounded halves to even; nothing when it is not a number or lies
// outside lowest..highest.
template <class T> std::optional<T> wholeNumber(std::string_view text) {
    const std::optional<double> number = numbertext::parseNumber(text);
    if (!number || !std::isfinite(*number))
        return std::nullopt;
    const double whole = numbertext::roundHalfEven(*number);
    if (whole < static_cast<double>(std::numeric_limits<T>::min()) ||
        whole > static_cast<double>(std::numeric_limits<T>::max()))
        return std::nullopt;
    return static_cast<T>(whole);
}

// Stores one value of a known key into its model.
void store(SpinstandDefinition& model, const KeyDef& def, const std::string& value, int index,
           const FieldPosition& at) {
    const auto notNumber = [&](std::string_view type) {
        return CatalogueProblem{"the value " + quoted(value) + " of " + std::string(def.key) + " for model " +
                                    std::to_string(index) + " is not " + std::string(type),
                                at};
    };
    std::visit(
        [&](auto member) {
            using T = std::remove_reference_t<decltype(model.*member)>;
            if constexpr (std::is_same_v<T, std::string>) {
                model.*member = value;
            } else if constexpr (std::is_same_v<T, double>) {
                const std::optional<double> number = numbertext::parseNumber(value);
                if (!number || !std::isfinite(*number))
                    throw notNumber("a number");
                model.*member = *number;
            } else if (def.word) {
                model.*member = value == kDownFace ? 1 : 0;
            } else if (const std::optional<T> number = wholeNumber<T>(value)) {
                model.*member = *number;
            } else {
                throw notNumber(sizeof(T) == 2 ? "a number from -32768 to 32767"
                                               : "a number from -2147483648 to 2147483647");
            }
        },
        def.member);
}

int modelCount(const std::string& text, const FieldPosition& at) {
    const std::optional<double> number = numbertext::parseNumber(text);
    if (!number)
        throw CatalogueProblem{"its first field, the number of models, is " + quoted(text) + ", not a number",
                               at};
    if (*number < 1 || *number > kMaxCatalogueModels || *number != std::floor(*number))
        throw CatalogueProblem{"the number of models is " + numbertext::formatDouble(*number) +
                                   "; a catalogue holds 1 to " + std::to_string(kMaxCatalogueModels) +
                                   " models",
                               at};
    return static_cast<int>(*number);
}

std::vector<SpinstandDefinition> readCatalogue(const std::string& fileName, MessageSink& sink) {
    ReaderSink reader;
    fileio file(reader);
    file.setFileName(fileName);
    file.endOfFile(); // opens the file and fetches its first field
    if (file.failed())
        throw CatalogueProblem{reader.text(), FieldPosition{fileName, 0, 0, true}};
    if (!reader.text().empty())
        throw CatalogueProblem{reader.text(), file.tokenPosition()};
    // Takes the next field; a field the reader gave up on ends the catalogue with the reader's reason.
    const auto next = [&] {
        std::string field = file.readStr();
        if (!reader.text().empty())
            throw CatalogueProblem{reader.text(), file.tokenPosition()};
        return field;
    };
    if (file.pastEnd())
        throw CatalogueProblem{"it holds no field at all", FieldPosition{fileName, 0, 0, false}};

    const FieldPosition countAt = file.tokenPosition();
    const int count = modelCount(next(), countAt);
    std::vector<SpinstandDefinition> models(static_cast<std::size_t>(count));
    // An unknown key is said once for each of its values and reading goes on; past a bound the values are
    // only counted, so that a damaged file does not bury the user under messages.
    std::int64_t unknownValues = 0;
    while (!file.endOfFile()) {
        const FieldPosition keyAt = file.tokenPosition();
        const std::string key = next();
        const KeyDef* def = findKey(key);
        for (int i = 0; i < count; ++i) {
            if (file.pastEnd())
                throw CatalogueProblem{"the file ends after " + std::to_string(i) + " of the " +
                                           std::to_string(count) + " values of " + quoted(key),
                                       keyAt};
            const FieldPosition valueAt = file.tokenPosition();
            const std::string value = next();
            if (def != nullptr)
                store(models[static_cast<std::size_t>(i)], *def, value, i, valueAt);
            else if (++unknownValues <= kMaxUnknownMessages)
                sink.show(std::string(kUnknownParameter) + printable(key, 40), "");
        }
    }
    if (unknownValues > kMaxUnknownMessages)
        sink.show(std::to_string(unknownValues - kMaxUnknownMessages) +
                      " more values of unknown keys were skipped in " + fileName + ".",
                  "");
    // The reader's end-of-file test turns true one field early: a last field that no record took is a key
    // whose values are missing.
    if (!file.pastEnd()) {
        const FieldPosition keyAt = file.tokenPosition();
        throw CatalogueProblem{
            "the file ends after 0 of the " + std::to_string(count) + " values of " + quoted(next()), keyAt};
    }
    file.closeFile();
    return models;
}

} // namespace

const std::vector<SpinstandDefinition>& spinstandDefinitions() {
    return table();
}

bool ReadSpinstandDefinitions(const std::string& fileName, MessageSink& sink) {
    table().clear();
    try {
        table() = readCatalogue(fileName, sink);
        return true;
    } catch (const CatalogueProblem& problem) {
        report(sink, "The spinstand catalogue " + fileName + " cannot be used: " + problem.text + ".", "",
               problem.where);
        return false;
    }
}

std::string GetSpinstandName(std::int16_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= table().size())
        return {};
    return table()[static_cast<std::size_t>(index)].Name;
}

bool ApplySpinstandDefinition(std::int16_t index, IDriverService& service, MessageSink& sink) {
    if (index < 0 || static_cast<std::size_t>(index) >= table().size())
        throw std::out_of_range("The spinstand catalogue has no model " + std::to_string(index) + ".");
    const SpinstandDefinition& d = table()[static_cast<std::size_t>(index)];

    service.SetHardwareRevision(d.HardwareRevision);
    service.SetSpinstandType(d.SpinstandType);
    service.SetHeadFace(d.HeadFace);
    service.SetDiskSizeRange(d.DiskSizeMin, d.DiskSizeMax);
    // Each property goes with its own type: a 16-bit code, a 32-bit number or a double.
    const std::array<Variant, 11> stage{d.GearInvert, d.tStprUp, d.tStprDn,  d.tStprThru,
                                        d.tBrake,     d.tSettle, d.tCover,   d.tLockdown,
                                        d.tStopper,   d.tMove,   d.tMotorOff};
    for (std::size_t i = 0; i < stage.size(); ++i)
        service.SetStageProperty(static_cast<std::int16_t>(i), stage[i]);
    service.SetSpeedRange(d.SpeedMin, d.SpeedMax);
    const std::array<Variant, 13> spindle{d.Rotation,    d.BrakeTime, d.RefClock,   d.RefFreq, d.ReadyPol,
                                          d.IndexDiv,    d.Driver,    d.PoleNum,    d.tRdy,    d.tSpindleSet,
                                          d.tSpindleOff, d.tLock,     d.tLockSettle};
    for (std::size_t i = 0; i < spindle.size(); ++i)
        service.SetSpindleProperty(static_cast<std::int16_t>(i), spindle[i]);
    // The outer stopper is written before the inner one.
    service.SetStopperPosition(1, d.StopperOuter);
    service.SetStopperPosition(0, d.StopperInner);
    service.SetStageGeometry(0, d.Stage2Spindle);
    service.SetStageGeometry(1, d.Stage2Ref);
    service.SetStageGeometry(2, d.StageOffset);

    // The spindle driver is fitted at the factory: a model that expects another one is only warned about.
    if (service.GetSpindleDriver(0).equals(Variant(d.DriverRot)) &&
        service.GetSpindleDriver(1).equals(Variant(d.DriverType)))
        return true;
    sink.show(kInvalidSpindleDriver, "");
    return false;
}

} // namespace vss

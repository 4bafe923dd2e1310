#include "storage/modSsDefine.h"

#include "driver/DriverError.h"
#include "storage/Messages.h"
#include "storage/NumberText.h"
#include "storage/fileio.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <span>
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
constexpr std::string_view kUpFace = "SSHEADFACE_UPFACE";

// A default that a model takes is kept and noted; the note is said when the model is applied.
// Every key but the name (which ends the list) and the description (never sent) starts out noted as not
// given.
std::map<std::string, std::string> keysNotGiven() {
    std::map<std::string, std::string> notes;
    for (const KeyDef& def : kKeys) {
        if (def.key == "Name" || def.key == "Description")
            continue;
        const bool text = std::holds_alternative<std::string Def::*>(def.member);
        notes[std::string(def.key)] = std::string(def.key) + " is not given, " +
                                      (text       ? "an empty text"
                                       : def.word ? std::string(kUpFace) + " (0)"
                                                  : "0") +
                                      " is used";
    }
    return notes;
}

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
        return CatalogueProblem{"the value " + inQuotes(value) + " of " + std::string(def.key) +
                                    " for model " + std::to_string(index) + " is not " + std::string(type),
                                at};
    };
    model.defaultsUsed.erase(std::string(def.key));
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
                if (value != kDownFace && value != kUpFace)
                    model.defaultsUsed[std::string(def.key)] = std::string(def.key) + " " + inQuotes(value) +
                                                               " is neither " + std::string(kDownFace) +
                                                               " nor " + std::string(kUpFace) + ", " +
                                                               std::string(kUpFace) + " (0) is used";
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
        throw CatalogueProblem{"its first field, the number of models, is " + inQuotes(text) + ", not a number",
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
    for (SpinstandDefinition& model : models)
        model.defaultsUsed = keysNotGiven();
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
                                           std::to_string(count) + " values of " + inQuotes(key),
                                       keyAt};
            const FieldPosition valueAt = file.tokenPosition();
            const std::string value = next();
            if (def != nullptr)
                store(models[static_cast<std::size_t>(i)], *def, value, i, valueAt);
            else if (++unknownValues <= kMaxUnknownMessages)
                sink.show(std::string(kUnknownParameter) + printable(key, kQuoteLimit), "");
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
            "the file ends after 0 of the " + std::to_string(count) + " values of " + inQuotes(next()), keyAt};
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
        const std::string why(clause(problem.text)); // the reader's sentence becomes a clause of this one
        report(sink, "The spinstand catalogue " + fileName + " cannot be used: " + why + ".", "",
               problem.where);
        return false;
    }
}

std::string GetSpinstandName(std::int16_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= table().size())
        return {};
    return table()[static_cast<std::size_t>(index)].Name;
}

namespace {

struct PropertyValue {
    std::string_view key;
    Variant value; // with the field's own type: a 16-bit code, a 32-bit number or a double
};

std::array<PropertyValue, 11> stageProperties(const Def& d) {
    return {{{"GearInvert", d.GearInvert},
             {"tStprUp", d.tStprUp},
             {"tStprDn", d.tStprDn},
             {"tStprThru", d.tStprThru},
             {"tBrake", d.tBrake},
             {"tSettle", d.tSettle},
             {"tCover", d.tCover},
             {"tLockdown", d.tLockdown},
             {"tStopper", d.tStopper},
             {"tMove", d.tMove},
             {"tMotorOff", d.tMotorOff}}};
}

std::array<PropertyValue, 13> spindleProperties(const Def& d) {
    return {{{"Rotation", d.Rotation},
             {"BrakeTime", d.BrakeTime},
             {"RefClock", d.RefClock},
             {"RefFreq", d.RefFreq},
             {"ReadyPol", d.ReadyPol},
             {"IndexDiv", d.IndexDiv},
             {"Driver", d.Driver},
             {"PoleNum", d.PoleNum},
             {"tRdy", d.tRdy},
             {"tSpindleSet", d.tSpindleSet},
             {"tSpindleOff", d.tSpindleOff},
             {"tLock", d.tLock},
             {"tLockSettle", d.tLockSettle}}};
}

std::string number(double v) {
    return numbertext::formatDouble(v);
}

std::string codesText(const NamedCodes& list) {
    std::string text;
    for (const std::int16_t code : list.codes)
        text += (text.empty() ? "" : ", ") + std::to_string(code);
    return text;
}

bool listed(const NamedCodes& list, std::int16_t code) {
    return std::find(list.codes.begin(), list.codes.end(), code) != list.codes.end();
}

// The properties of one kind against the instrument's: each must exist, hold the type the model sends, and a
// code must be one of its choices.
void checkProperties(IDriverService& service, bool spindle, std::span<const PropertyValue> values,
                     std::vector<std::string>& problems) {
    const PropertyList list = spindle ? service.GetSpindlePropertyList() : service.GetStagePropertyList();
    const std::string family = spindle ? "spindle property " : "stage property ";
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto id = static_cast<std::int16_t>(i);
        const PropertyValue& v = values[i];
        const std::string key(v.key);
        if (std::find(list.ids.begin(), list.ids.end(), id) == list.ids.end()) {
            problems.push_back(key + " goes to " + family + std::to_string(id) +
                               ", which the instrument does not have");
            continue;
        }
        const Variant now = spindle ? service.GetSpindleProperty(id) : service.GetStageProperty(id);
        if (now.type() != v.value.type()) {
            problems.push_back(key + " is sent as " + Variant::typeName(v.value.type()) +
                               ", but the instrument's " + family + std::to_string(id) + " holds " +
                               Variant::typeName(now.type()));
            continue;
        }
        if (v.value.type() != Variant::Type::Int16)
            continue;
        const NamedCodes choices =
            spindle ? service.GetSpindlePropertyChoices(id) : service.GetStagePropertyChoices(id);
        if (!choices.codes.empty() && !listed(choices, v.value.int16()))
            problems.push_back(key + " " + std::to_string(v.value.int16()) +
                               " is not one of the instrument's choices (" + codesText(choices) + ")");
    }
}

// What the instrument would refuse of the model, read from its lists; nothing is written.
std::vector<std::string> modelProblems(const Def& d, IDriverService& service) {
    std::vector<std::string> problems;
    const NamedCodes types = service.GetSpinstandTypeList();
    if (!listed(types, d.SpinstandType))
        problems.push_back("SpinstandType " + std::to_string(d.SpinstandType) +
                           " is not one of the instrument's spinstand types (" + codesText(types) + ")");
    if (!(d.DiskSizeMin <= d.DiskSizeMax))
        problems.push_back("the disk size range " + number(d.DiskSizeMin) + " to " + number(d.DiskSizeMax) +
                           " (DiskSizeMin to DiskSizeMax) is reversed");
    checkProperties(service, false, stageProperties(d), problems);
    if (d.SpeedMin >= d.SpeedMax)
        problems.push_back("the speed range " + std::to_string(d.SpeedMin) + " to " +
                           std::to_string(d.SpeedMax) + " rpm (SpeedMin to SpeedMax) is empty");
    checkProperties(service, true, spindleProperties(d), problems);
    return problems;
}

// One write of a model: the keys it sends, and the call.
struct Write {
    std::string keys;
    std::function<void()> call;
};

// The writes in the instrument's order. They call the service with the model's values, both of which outlive
// them.
std::vector<Write> modelWrites(const Def& model, IDriverService& service) {
    const Def* d = &model;
    IDriverService* s = &service;
    std::vector<Write> writes{
        {"HardwareRevision", [d, s] { s->SetHardwareRevision(d->HardwareRevision); }},
        {"SpinstandType", [d, s] { s->SetSpinstandType(d->SpinstandType); }},
        {"HeadFace", [d, s] { s->SetHeadFace(d->HeadFace); }},
        {"DiskSizeMin and DiskSizeMax", [d, s] { s->SetDiskSizeRange(d->DiskSizeMin, d->DiskSizeMax); }},
    };
    const auto properties = [&](const auto& values,
                                void (IDriverService::*set)(std::int16_t, const Variant&)) {
        for (std::size_t i = 0; i < values.size(); ++i)
            writes.push_back(
                {std::string(values[i].key), [s, set, id = static_cast<std::int16_t>(i),
                                              value = values[i].value] { (s->*set)(id, value); }});
    };
    properties(stageProperties(model), &IDriverService::SetStageProperty);
    writes.push_back({"SpeedMin and SpeedMax", [d, s] { s->SetSpeedRange(d->SpeedMin, d->SpeedMax); }});
    properties(spindleProperties(model), &IDriverService::SetSpindleProperty);
    // The outer stopper is written before the inner one.
    writes.push_back({"StopperOuter", [d, s] { s->SetStopperPosition(1, d->StopperOuter); }});
    writes.push_back({"StopperInner", [d, s] { s->SetStopperPosition(0, d->StopperInner); }});
    writes.push_back({"Stage2Spindle", [d, s] { s->SetStageGeometry(0, d->Stage2Spindle); }});
    writes.push_back({"Stage2Ref", [d, s] { s->SetStageGeometry(1, d->Stage2Ref); }});
    writes.push_back({"StageOffset", [d, s] { s->SetStageGeometry(2, d->StageOffset); }});
    return writes;
}

std::string keysOf(const std::vector<Write>& writes, std::size_t from, std::size_t to) {
    std::string keys;
    for (std::size_t i = from; i < to; ++i)
        keys += (keys.empty() ? "" : ", ") + writes[i].keys;
    return keys;
}

// A failed driver call, with the driver's text and what of the model it left written (writes before
// `failed`).
DriverError leftInPart(const DriverError& e, const std::string& model, const std::vector<Write>& writes,
                       std::size_t failed) {
    std::string text = e.description();
    if (!text.empty() && text.back() != '.')
        text += '.';
    if (failed == 0)
        text += " Nothing of " + model + " was written.";
    else if (failed >= writes.size())
        text += " Every value of " + model + " was written; its spindle driver was not compared.";
    else
        text += " The " + model + " is applied in part: written " + keysOf(writes, 0, failed) + "; refused " +
                writes[failed].keys + "; not written " + keysOf(writes, failed + 1, writes.size()) + ".";
    return DriverError(text, e.code());
}

} // namespace

bool ApplySpinstandDefinition(std::int16_t index, IDriverService& service, MessageSink& sink) {
    if (index < 0 || static_cast<std::size_t>(index) >= table().size())
        throw std::out_of_range("The spinstand catalogue has no model " + std::to_string(index) + ".");
    const SpinstandDefinition& d = table()[static_cast<std::size_t>(index)];
    const std::string model = "model " + std::to_string(index) + " " + inQuotes(d.Name);

    // The catalogue's defaults stay, and the user learns which a model takes, in one message.
    std::string defaults;
    for (const KeyDef& def : kKeys)
        if (const auto note = d.defaultsUsed.find(std::string(def.key)); note != d.defaultsUsed.end())
            defaults += (defaults.empty() ? "" : "; ") + note->second;
    if (!defaults.empty())
        sink.show("Warning : The " + model + " takes defaults: " + defaults + ".", "");

    // A model is written whole or not at all where the instrument's lists can tell: every problem is found
    // before the first write.
    const std::vector<Write> writes = modelWrites(d, service);
    std::vector<std::string> problems;
    try {
        problems = modelProblems(d, service);
    } catch (const DriverError& e) {
        throw leftInPart(e, model, writes, 0);
    }
    if (!problems.empty()) {
        std::string text = "The " + model + " cannot be applied: ";
        for (std::size_t i = 0; i < problems.size(); ++i)
            text += (i > 0 ? "; " : "") + problems[i];
        throw std::runtime_error(text + ". Nothing was written.");
    }

    // A value the instrument still refuses stops the rest, and the message says what was written.
    std::size_t done = 0;
    try {
        for (; done < writes.size(); ++done)
            writes[done].call();
        // The spindle driver is fitted at the factory: a model that expects another one is only warned about.
        if (service.GetSpindleDriver(0).equals(Variant(d.DriverRot)) &&
            service.GetSpindleDriver(1).equals(Variant(d.DriverType)))
            return true;
    } catch (const DriverError& e) {
        throw leftInPart(e, model, writes, done);
    }
    sink.show(kInvalidSpindleDriver, "");
    return false;
}

} // namespace vss

// Export and import of every setting group against the simulated instrument.

#include "driver/DriverError.h"
#include "storage/NumberText.h"
#include "storage/modConfigFile.h"
#include "tests/storage/SimSupport.h"
#include "tests/storage/StorageTestSupport.h"

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <tuple>

#ifndef VSS_GOLDEN_DIR
#error "VSS_GOLDEN_DIR names the folder of the golden files"
#endif

namespace vss {

// Test names and failure messages show the group's console name instead of the struct's bytes.
void PrintTo(const GroupDef& group, std::ostream* out) {
    *out << group.name;
}

namespace {

// The data lines of a file: what an import reads (comment lines are for the reader only).
std::string dataLines(const std::string& text) {
    std::string out;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        end = end == std::string::npos ? text.size() : end + 1;
        if (text[start] != ';')
            out.append(text, start, end - start);
        start = end;
    }
    return out;
}

const ReportClock kFixedClock = [] { return std::string("01/02/2025 10:20:30"); };

std::string exportText(SettingGroup group, const DriverHandles& h, const test::ScratchDir& dir) {
    test::RecordingSink sink;
    const std::string file = dir.path(std::string(groupDef(group).name) + "-" + std::to_string(std::rand()) + ".csv");
    ExportGroup(group, file, h, sink, kFixedClock);
    EXPECT_TRUE(sink.messages.empty());
    return test::readBytes(file);
}

// Drivers number their lists from 0 or from 1; a file does not say which, so the same file comes out of both
// and goes into both.
struct ListBounds {
    std::int16_t source = 0; // the first index of the lists of the instrument that writes the file
    std::int16_t target = 0; // and of the one that reads it
};

void PrintTo(const ListBounds& b, std::ostream* out) {
    *out << "lists from " << b.source << " into lists from " << b.target;
}

using GroupOnBounds = std::tuple<GroupDef, ListBounds>;

class EveryGroup : public ::testing::TestWithParam<GroupOnBounds> {};

TEST_P(EveryGroup, ExportMatchesTheGoldenFileByteForByte) {
    const auto& [group, bounds] = GetParam();
    test::ScratchDir dir;
    test::SimSession instrument(bounds.source);
    test::setNonDefaultValues(instrument.handles);
    const std::string actual = exportText(group.group, instrument.handles, dir);
    const std::string golden = std::string(VSS_GOLDEN_DIR) + "/" + std::string(group.name) + ".csv";
    if (std::getenv("VSS_UPDATE_GOLDEN") != nullptr && bounds.source == 0)
        std::ofstream(golden, std::ios::binary) << actual;
    EXPECT_EQ(actual, test::readBytes(golden)) << "set VSS_UPDATE_GOLDEN=1 to rewrite " << golden;
}

class EveryImportableGroup : public ::testing::TestWithParam<GroupOnBounds> {};

TEST_P(EveryImportableGroup, ImportOntoAFactoryFreshInstrumentRestoresEveryValue) {
    const auto& [group, bounds] = GetParam();
    test::ScratchDir dir;
    test::SimSession source(bounds.source);
    test::SimSession target(bounds.target);
    const std::string factory = exportText(group.group, source.handles, dir);
    test::setNonDefaultValues(source.handles);
    const std::string file = dir.path("group.csv");
    test::RecordingSink sink;
    ExportGroup(group.group, file, source.handles, sink, kFixedClock);
    ASSERT_NE(test::readBytes(file), factory) << "the group holds factory values only";

    ImportGroup(group.importCode, file, target.handles, sink);
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(dataLines(exportText(group.group, target.handles, dir)), dataLines(test::readBytes(file)));
}

std::string groupTestName(const ::testing::TestParamInfo<GroupOnBounds>& param) {
    const auto& [group, bounds] = param.param;
    std::string name(group.name);
    std::erase(name, '-');
    if (bounds.source != 0 || bounds.target != 0)
        name += "_lists" + std::to_string(bounds.source) + "to" + std::to_string(bounds.target);
    return name;
}

std::vector<GroupDef> importableGroups() {
    std::vector<GroupDef> out;
    for (const GroupDef& g : settingGroups())
        if (g.importCode != 0)
            out.push_back(g);
    return out;
}

INSTANTIATE_TEST_SUITE_P(Groups, EveryGroup,
                         ::testing::Combine(::testing::ValuesIn(settingGroups().begin(), settingGroups().end()),
                                            ::testing::Values(ListBounds{0, 0}, ListBounds{1, 1})),
                         groupTestName);
INSTANTIATE_TEST_SUITE_P(Groups, EveryImportableGroup,
                         ::testing::Combine(::testing::ValuesIn(importableGroups()),
                                            ::testing::Values(ListBounds{0, 0}, ListBounds{0, 1}, ListBounds{1, 0})),
                         groupTestName);

TEST(GroupImport, ValuesComeBackExactOrRoundedTo15Digits) {
    test::ScratchDir dir;
    test::SimSession source;
    test::SimSession target;
    test::setNonDefaultValues(source.handles);
    test::RecordingSink sink;
    for (SettingGroup g : {SettingGroup::Setting, SettingGroup::Customer, SettingGroup::PiezoControlData})
        ExportGroup(g, dir.path("all.csv"), source.handles, sink, kFixedClock);
    for (int code : {1, 2, 8})
        ImportGroup(code, dir.path("all.csv"), target.handles, sink);
    EXPECT_TRUE(sink.messages.empty());

    const LoadPosition unload = target.handles.loadPosition->GetLoadPosition(loadposition::Unload);
    EXPECT_EQ(unload.position.radius, 0.046);
    EXPECT_EQ(unload.position.skew, 12.5);
    EXPECT_EQ(unload.rpm, 4200);
    EXPECT_EQ(target.handles.driver->GetDataArea().pitch, 0.00000061);
    const double inner = source.handles.service->GetStopperPosition(stopper::Inner);
    EXPECT_EQ(target.handles.service->GetStopperPosition(stopper::Inner), numbertext::roundTo15Digits(inner));
    const auto sent = source.handles.service->GetPiezoControlData().lth;
    const auto back = target.handles.service->GetPiezoControlData().lth;
    ASSERT_EQ(back.size(), sent.size());
    for (std::size_t i = 0; i < sent.size(); ++i)
        EXPECT_EQ(back[i], numbertext::roundTo15Digits(sent[i]));
}

TEST(GroupExport, ExportingOntoAnExistingFileAppendsACompleteReportAndImportAppliesBothInOrder) {
    test::ScratchDir dir;
    test::SimSession instrument;
    test::RecordingSink sink;
    const std::string file = dir.write("twice.csv", "; notes kept by the operator\r\n");
    ExportGroup(SettingGroup::Setting, file, instrument.handles, sink, kFixedClock);
    const std::string first = test::readBytes(file);
    test::setNonDefaultValues(instrument.handles);
    ExportGroup(SettingGroup::Setting, file, instrument.handles, sink, kFixedClock);
    const std::string both = test::readBytes(file);
    ASSERT_EQ(both.substr(0, first.size()), first);
    EXPECT_EQ("; notes kept by the operator\r\n" + both.substr(first.size()),
              exportText(SettingGroup::Setting, instrument.handles, dir).insert(0, "; notes kept by the operator\r\n"));

    test::SimSession target;
    ImportGroup(1, file, target.handles, sink);
    EXPECT_EQ(target.handles.driver->GetSpindleSpeed(), 5400); // the later report wins
    EXPECT_TRUE(sink.messages.empty());
}

// A report that fails part-way (here a driver call, in the window's Export as in the console's backup) leaves
// the file as it was, or no file, and nothing beside it.
TEST(GroupExport, AReportThatFailsPartWayLeavesNoFileBehind) {
    test::ScratchDir dir;
    test::SimSession instrument;
    test::RecordingSink sink;
    instrument.instrument().failOperation("IDriverService.GetStageProperty", "No answer.", 2);
    const std::string kept = dir.write("kept.csv", "; kept\r\n");
    for (const std::string& file : {kept, dir.path("new.csv")}) {
        try {
            exportAllGroups(file, instrument.handles, sink, kFixedClock);
            ADD_FAILURE() << "the failure was not passed on";
        } catch (const DriverError& e) {
            EXPECT_EQ(e.description(), "No answer. Nothing was written to " + file + ".");
        }
    }
    EXPECT_EQ(test::readBytes(kept), "; kept\r\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path("")), {}), 1) << "only kept.csv";
    EXPECT_TRUE(sink.messages.empty());
}

TEST(GroupImport, AFileOfAnotherFormChangesOnlyWhatTheGroupCodeAccepts) {
    test::ScratchDir dir;
    test::SimSession source;
    test::SimSession target;
    test::setNonDefaultValues(source.handles);
    test::RecordingSink sink;
    ExportGroup(SettingGroup::PiezoData, dir.path("piezo.csv"), source.handles, sink, kFixedClock);
    const std::string before = exportText(SettingGroup::PiezoData, target.handles, dir);

    ImportGroup(8, dir.path("piezo.csv"), target.handles, sink); // piezo control: no section of its own here
    EXPECT_EQ(exportText(SettingGroup::PiezoData, target.handles, dir), before);
    ImportGroup(9, dir.path("piezo.csv"), target.handles, sink); // piezo adjust: only "%PiezoAdjust"
    EXPECT_EQ(target.handles.service->GetPiezoAdjust(1), 1003);
    EXPECT_NE(target.handles.service->GetPiezoSerial(), "PZ-4711");
    EXPECT_TRUE(sink.messages.empty());
}

// A stage property file whose rows are the instrument's, with `row` replacing the row at `at`.
std::string stagePropertyFile(const PropertyList& list, std::size_t at, const std::string& row) {
    std::string file = "%StageProperty\r\n";
    for (std::size_t i = 0; i < list.ids.size(); ++i)
        file += i == at ? row : "\"" + list.names[i] + "\",\"(Long)\",1,\r\n";
    return file;
}

struct Applied {
    std::vector<Variant> values;
    std::vector<std::string> messages;
};

Applied importStageProperties(const std::string& file) {
    test::ScratchDir dir;
    test::SimSession target;
    test::RecordingSink sink;
    ImportGroup(6, dir.write("stage.csv", file), target.handles, sink);
    Applied out{{}, sink.texts()};
    for (std::int16_t id : target.handles.service->GetStagePropertyList().ids)
        out.values.push_back(target.handles.service->GetStageProperty(id));
    return out;
}

TEST(GroupImport, AnUnreadablePropertyRowStopsTheSectionInsteadOfShiftingEveryLaterProperty) {
    test::SimSession fresh;
    const PropertyList list = fresh.handles.service->GetStagePropertyList();
    std::vector<Variant> factory;
    for (std::int16_t id : list.ids)
        factory.push_back(fresh.handles.service->GetStageProperty(id));
    ASSERT_GE(list.ids.size(), 4u);
    const std::size_t bad = 2;
    const std::string name = "\"" + list.names[bad] + "\",";
    for (const auto& [row, line] : {std::pair{name + "\"(Integer)\",99999,\r\n", 4}, // out of range
                                    std::pair{name + "\"(Long)\",x,\r\n", 4},        // not a number
                                    std::pair{name + "\"(Text)\",1,\r\n", 4},        // no such type
                                    std::pair{name + "\r\n", 5}}) {                  // the row ends early
        const Applied applied = importStageProperties(stagePropertyFile(list, bad, row));
        for (std::size_t i = bad; i < list.ids.size(); ++i)
            EXPECT_EQ(applied.values[i], factory[i]) << row << " property " << i;
        ASSERT_FALSE(applied.messages.empty()) << row;
        const std::string& stop = applied.messages.back();
        EXPECT_NE(stop.find("%StageProperty: "), std::string::npos) << stop;
        EXPECT_NE(stop.find("property 3 of " + std::to_string(list.ids.size())), std::string::npos) << stop;
        EXPECT_NE(stop.find("stage.csv, line " + std::to_string(line) + ", field "), std::string::npos)
            << stop;
        for (const std::string& m : applied.messages)
            EXPECT_NE(m, "Property Name does not match") << row;
    }
}

TEST(GroupImport, FewerPropertyRowsThanPropertiesStopAtTheNextSectionWhichIsStillFound) {
    test::ScratchDir dir;
    test::SimSession target;
    const PropertyList list = target.handles.service->GetStagePropertyList();
    ASSERT_GE(list.ids.size(), 3u);
    std::string file = "%StageProperty\r\n";
    file += "\"" + list.names[0] + "\",\"(Integer)\",1,\r\n";
    file += "\"" + list.names[1] + "\",\"(Long)\",321,\r\n";
    file += "%StageProperty\r\n\"" + list.names[0] + "\",\"(Integer)\",0,\r\n";
    test::RecordingSink sink;
    ImportGroup(6, dir.write("short.csv", file), target.handles, sink);
    EXPECT_EQ(target.handles.service->GetStageProperty(list.ids[1]), Variant(std::int32_t{321}));
    EXPECT_EQ(target.handles.service->GetStageProperty(list.ids[0]),
              Variant(std::int16_t{0})); // the second copy
    ASSERT_FALSE(sink.messages.empty());
    EXPECT_EQ(sink.messages[0].title, "error");
    EXPECT_NE(sink.messages[0].text.find("section ends before property 3 of"), std::string::npos)
        << sink.messages[0].text;
    EXPECT_NE(sink.messages[0].text.find("short.csv, line 4, field 1"), std::string::npos)
        << sink.messages[0].text;
}

TEST(GroupImport, AShortBacklashRowSetsOnlyTheEntriesItHolds) {
    test::ScratchDir dir;
    test::SimSession target;
    const std::size_t count = target.handles.service->GetBacklashCompensationList().size();
    ASSERT_GE(count, 3u);
    std::vector<std::int32_t> factory;
    for (std::size_t i = 0; i < count; ++i)
        factory.push_back(target.handles.service->GetBacklashCompensation(static_cast<std::int16_t>(i)));
    for (const auto& [tail, why] : {std::pair{std::string(",\r\n%PiezoSerial\r\n\"S\",\r\n"), "section ends"},
                                    std::pair{std::string(",\r\n3,4,5,6,7,\r\n"), "row ends"},
                                    std::pair{std::string(""), "file ends"}}) {
        test::RecordingSink sink;
        ImportGroup(10, dir.write("backlash.csv", "%BacklashCompensationData\r\n11,12" + tail),
                    target.handles, sink);
        EXPECT_EQ(target.handles.service->GetBacklashCompensation(0), 11);
        EXPECT_EQ(target.handles.service->GetBacklashCompensation(1), 12);
        for (std::size_t i = 2; i < count; ++i)
            EXPECT_EQ(target.handles.service->GetBacklashCompensation(static_cast<std::int16_t>(i)),
                      factory[i])
                << why;
        ASSERT_EQ(sink.messages.size(), 1u) << why;
        EXPECT_NE(
            sink.messages[0].text.find(std::string(why) + " before entry 3 of " + std::to_string(count)),
            std::string::npos)
            << sink.messages[0].text;
    }
}

TEST(GroupImport, ARefusedValueNamesTheFileLineAndFieldItCameFrom) {
    test::ScratchDir dir;
    test::SimSession target;
    test::RecordingSink sink;
    const std::string file = dir.write(
        "range.csv", "%SpindleSpeedRange\r\n5000,4000,\r\n%BacklashCompensationData\r\n1,-99999999,\r\n");
    try {
        ImportGroup(5, file, target.handles, sink);
        FAIL() << "the instrument took a range whose minimum is above its maximum";
    } catch (const DriverError& e) {
        EXPECT_NE(e.description().find("(%SpindleSpeedRange value at " + file + ", line 2, field 1)"),
                  std::string::npos)
            << e.description();
    }
    try {
        ImportGroup(10, file, target.handles, sink);
        FAIL() << "the instrument took a backlash value of -99999999";
    } catch (const DriverError& e) {
        EXPECT_NE(e.description().find(file + ", line 4, field 2)"), std::string::npos) << e.description();
    }
}

TEST(GroupExport, AnEmptySerialReadsBackAndASerialThatCannotBeWrittenIsRefusedWhole) {
    test::ScratchDir dir;
    test::SimSession source;
    test::SimSession target;
    test::setNonDefaultValues(source.handles);
    source.handles.service->SetPiezoSerial("");
    test::RecordingSink sink;
    ExportGroup(SettingGroup::PiezoData, dir.path("empty.csv"), source.handles, sink, kFixedClock);
    ImportGroup(7, dir.path("empty.csv"), target.handles, sink);
    EXPECT_TRUE(sink.messages.empty());
    EXPECT_EQ(target.handles.service->GetPiezoSerial(), "");
    EXPECT_EQ(target.handles.service->GetPiezoAdjust(1), 1003); // the section after the serial

    // A serial with a double quote, or one that reads as a section name, would not read back as itself.
    for (const char* serial : {"PZ\"12", " %PiezoAdjust"}) {
        sink.messages.clear();
        source.handles.service->SetPiezoSerial(serial);
        const std::string file = dir.write("refused.csv", "; kept\r\n");
        ExportGroup(SettingGroup::PiezoData, file, source.handles, sink, kFixedClock);
        EXPECT_EQ(test::readBytes(file), "; kept\r\n");
        ASSERT_EQ(sink.messages.size(), 1u);
        EXPECT_NE(sink.messages[0].text.find(inQuotes(serial)), std::string::npos) << sink.messages[0].text;
    }
}

// A hardware revision from a catalogue goes into the report header: none of it is read back as a value.
TEST(GroupExport, TheReportHeaderNeverReadsBackAsData) {
    test::ScratchDir dir;
    test::SimSession source;
    test::SimSession target;
    source.handles.service->SetHardwareRevision("x,%SpindleSpeed,4001");
    test::RecordingSink sink;
    ExportGroup(SettingGroup::BacklashCompensation, dir.path("b.csv"), source.handles, sink, kFixedClock);
    const std::int32_t speed = target.handles.driver->GetSpindleSpeed();
    EXPECT_EQ(ImportGroup(1, dir.path("b.csv"), target.handles, sink), 0);
    EXPECT_EQ(target.handles.driver->GetSpindleSpeed(), speed);
    EXPECT_TRUE(sink.messages.empty());
}

} // namespace
} // namespace vss

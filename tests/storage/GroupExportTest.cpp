// Export and import of every setting group against the simulated instrument.

#include "storage/NumberText.h"
#include "storage/modConfigFile.h"

#include "tests/storage/SimSupport.h"
#include "tests/storage/StorageTestSupport.h"

#include <cstdlib>

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

class EveryGroup : public ::testing::TestWithParam<GroupDef> {};

TEST_P(EveryGroup, ExportMatchesTheGoldenFileByteForByte) {
    test::ScratchDir dir;
    test::SimSession instrument;
    test::setNonDefaultValues(instrument.handles);
    const std::string actual = exportText(GetParam().group, instrument.handles, dir);
    const std::string golden = std::string(VSS_GOLDEN_DIR) + "/" + std::string(GetParam().name) + ".csv";
    if (std::getenv("VSS_UPDATE_GOLDEN") != nullptr)
        std::ofstream(golden, std::ios::binary) << actual;
    EXPECT_EQ(actual, test::readBytes(golden)) << "set VSS_UPDATE_GOLDEN=1 to rewrite " << golden;
}

class EveryImportableGroup : public ::testing::TestWithParam<GroupDef> {};

TEST_P(EveryImportableGroup, ImportOntoAFactoryFreshInstrumentRestoresEveryValue) {
    const GroupDef& group = GetParam();
    test::ScratchDir dir;
    test::SimSession source;
    test::SimSession target;
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

std::string groupTestName(const ::testing::TestParamInfo<GroupDef>& param) {
    std::string name(param.param.name);
    std::erase(name, '-');
    return name;
}

std::vector<GroupDef> importableGroups() {
    std::vector<GroupDef> out;
    for (const GroupDef& g : settingGroups())
        if (g.importCode != 0)
            out.push_back(g);
    return out;
}

INSTANTIATE_TEST_SUITE_P(Groups, EveryGroup, ::testing::ValuesIn(settingGroups().begin(), settingGroups().end()),
                         groupTestName);
INSTANTIATE_TEST_SUITE_P(Groups, EveryImportableGroup, ::testing::ValuesIn(importableGroups()), groupTestName);

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

TEST(GroupImport, FewerPropertyRowsThanPropertiesRunOnIntoTheNextSectionAndWarn) {
    test::ScratchDir dir;
    test::SimSession target;
    const PropertyList list = target.handles.service->GetStagePropertyList();
    ASSERT_GE(list.ids.size(), 3u);
    std::string file = "%StageProperty\r\n";
    file += "\"" + list.names[0] + "\",\"(Integer)\",1,\r\n";
    file += "\"" + list.names[1] + "\",\"(Long)\",321,\r\n";
    file += "%PiezoSerial\r\n\"S\",\r\n";
    test::RecordingSink sink;
    ImportGroup(6, dir.write("short.csv", file), target.handles, sink);
    EXPECT_EQ(target.handles.service->GetStageProperty(list.ids[1]), Variant(std::int32_t{321}));
    ASSERT_FALSE(sink.messages.empty());
    EXPECT_EQ(sink.messages[0].text, "Property Name does not match");
    EXPECT_EQ(sink.messages[0].title, "error");
    EXPECT_EQ(sink.messages[0].where.line, 4);
}

} // namespace
} // namespace vss

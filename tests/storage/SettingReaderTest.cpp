// The setting file reader on files written by hand: which sections apply, and what it tolerates.

#include "storage/modConfigFile.h"

#include "tests/storage/RecordingTarget.h"
#include "tests/storage/StorageTestSupport.h"

#include <chrono>

namespace vss {
namespace {

using Calls = std::vector<std::string>;

struct ReadResult {
    Calls calls;
    std::vector<std::string> messages;
    friend bool operator==(const ReadResult&, const ReadResult&) = default;
    friend void PrintTo(const ReadResult& r, std::ostream* os) {
        *os << ::testing::PrintToString(r.calls) << " messages " << ::testing::PrintToString(r.messages);
    }
};

ReadResult readFile(const std::string& bytes, int groupCode) {
    test::ScratchDir dir;
    test::RecordingSink sink;
    test::RecordingTarget target;
    fileio io(sink);
    io.setFileName(dir.write("in.csv", bytes));
    ReadSettingFile(io, DriverHandles{}, groupCode, target, sink);
    return {target.calls, sink.texts()};
}

TEST(SettingReader, AppliesOnlyTheSectionsOfItsGroupAndDropsEverythingElseSilently) {
    const std::string file = "; header\r\n\r\n"
                             "%SpindleSpeed\r\n5400,\r\n"
                             "%Unknown\r\n1,2,3,\r\n"
                             "%StageConfiguration\r\n; Stage2Spindle,; Stage2Ref,; Offset\r\n0.1,0.2,-0.003,\r\n"
                             "%PiezoCalData\r\n\"Nop\",2,\r\n\"Volt\",1,2,\r\n"
                             "# %StageConfiguration\r\n; 9,; 9,; 9\r\n"
                             "%DiskSize\r\n0.02,0.05,\r\n";
    EXPECT_EQ(readFile(file, 3),
              (ReadResult{{"SetStageGeometry(0,0.1)", "SetStageGeometry(1,0.2)", "SetStageGeometry(2,-0.003)"}, {}}));
    EXPECT_EQ(readFile(file, 1), (ReadResult{{"SetSpindleSpeed(5400)"}, {}}));
    EXPECT_EQ(readFile(file, 4), (ReadResult{{"SetDiskSizeRange(0.02,0.05)"}, {}}));
    EXPECT_EQ(readFile(file, 8), (ReadResult{{}, {}}));
    EXPECT_EQ(readFile("", 1), (ReadResult{{}, {}}));
}

TEST(SettingReader, SectionNamesMatchInQuotesAndAmongBlanksButNotInAnotherCase) {
    EXPECT_EQ(readFile("\" %SpinstandType \",3,\r\n  %SpinstandType  ,4,\r\n%spinstandtype,5,\r\n", 4),
              (ReadResult{{"SetSpinstandType(3)", "SetSpinstandType(4)"}, {}}));
}

TEST(SettingReader, ASectionPresentTwiceIsAppliedTwiceInFileOrder) {
    const std::string once = "%HomeState\r\n\"HOMESTATE_RUN\",\r\n%HeadFace\r\n\"SSHEADFACE_DOWNFACE\",\r\n";
    const std::string again = "%HomeState\r\n\"HOMESTATE_STANDBY\",\r\n%HeadFace\r\n\"downface\",\r\n";
    EXPECT_EQ(readFile(once + again, 1).calls, (Calls{"SetHomeState(4)", "SetHomeState(2)"}));
    EXPECT_EQ(readFile(once + again, 4).calls, (Calls{"SetHeadFace(1)", "SetHeadFace(0)"}));
}

TEST(SettingReader, ACommentHoldingACommaYieldsADataFieldThatCanNameASection) {
    EXPECT_EQ(readFile("; Hardware : rev A,%LoadMethod\r\n2\r\n", 1).calls, (Calls{"SetLoadMethod(2)"}));
}

// Whether a message names the place: "line 4, field 2".
bool names(const std::string& message, const std::string& what) {
    return message.find(what) != std::string::npos;
}

TEST(SettingReader, AFieldThatDoesNotConvertStopsItsSectionAndTheNextSectionIsReadAsUsual) {
    const auto result = readFile("%LoadPosition\r\n; n,; Radius,; Skew,; RPM\r\n"
                                 "\"Load\",0.03,0,5400,\r\n\"Unload\",x,1.5,7200,\r\n"
                                 "%SpindleSpeed\r\n4200,\r\n",
                                 1);
    EXPECT_EQ(result.calls, (Calls{"SetLoadPosition(1,0.03,0,5400)", "SetSpindleSpeed(4200)"}));
    ASSERT_EQ(result.messages.size(), 2u);
    EXPECT_EQ(result.messages[0], "Not Numeric Value(Double).");
    EXPECT_TRUE(names(result.messages[1], "%LoadPosition: cannot read row 2 of 2")) << result.messages[1];
    EXPECT_TRUE(names(result.messages[1], "in.csv, line 4, field 2")) << result.messages[1];
}

TEST(SettingReader, ASectionCutShortAppliesNothingOfItsUnreadValues) {
    // A row that ends early: the next line's value is not taken for the row's missing one.
    const auto shortRow =
        readFile("%DiskSize\r\n0.02,\r\n%LoadPosition\r\n\"Load\",0.03,0,\r\n\"Unload\",0.04,0,7200,\r\n", 4);
    EXPECT_EQ(shortRow.calls, Calls{});
    ASSERT_EQ(shortRow.messages.size(), 1u);
    EXPECT_TRUE(names(shortRow.messages[0], "%DiskSize: section ends before")) << shortRow.messages[0];
    EXPECT_EQ(readFile("%LoadPosition\r\n\"Load\",0.03,0,\r\n\"Unload\",0.04,0,7200,\r\n", 1).calls, Calls{});
    // The file ends: the last value is not repeated into the missing ones.
    const auto atEnd = readFile("%DataArea\r\n0.012,50000", 1);
    EXPECT_EQ(atEnd.calls, Calls{});
    ASSERT_EQ(atEnd.messages.size(), 1u);
    EXPECT_TRUE(names(atEnd.messages[0], "%DataArea: file ends before")) << atEnd.messages[0];
    EXPECT_TRUE(names(atEnd.messages[0], "in.csv, after line 2)")) << atEnd.messages[0];
}

TEST(SettingReader, AnEmptyQuotedTextReadsAsAnEmptyTextAndNotAsTheNextSectionsName) {
    EXPECT_EQ(readFile("%PiezoSerial\r\n\"\",\r\n%PiezoCalCoef\r\n\"Volt\",0,10,\r\n\"Position\",0,1,\r\n"
                       "\"Nop\",1,\r\n\"Coef\",2,\r\n",
                       7),
              (ReadResult{{"SetPiezoSerial()", "SetPiezoCalCoef(0,10,0,1,2)"}, {}}));
    EXPECT_EQ(readFile("%HomeState\r\n\"\",\r\n%SpindleSpeed\r\n5400,\r\n", 1).calls,
              (Calls{"SetHomeState(0)", "SetSpindleSpeed(5400)"}));
}

// The serial number is the one free text a file gives the instrument: a section name in its place ends the
// section (and is read as that section), and a text the writer would refuse is refused as the writer says.
TEST(SettingReader, ASerialIsNeitherASectionNameNorATextTheWriterWouldRefuse) {
    const std::string calCoef = "\"Volt\",0,10,\r\n\"Position\",0,1,\r\n\"Nop\",1,\r\n\"Coef\",2,\r\n";
    const struct {
        std::string serial; // and the header of the next section
        std::string says;
    } cases[] = {
        {"\r\n%PiezoCalCoef\r\n", "section ends before the serial number ("},
        {"\" %PiezoCalCoef \",\r\n", "section ends before the serial number ("},
        {"PZ\"08 x,\r\n%PiezoCalCoef\r\n",
         "the text \"PZ\\\"08 x\" cannot be written to a setting file: it holds a double quote"},
        {"\"PZ\r\n08\",\r\n%PiezoCalCoef\r\n", "the text \"PZ\\r\\n08\" cannot be written to a setting file"},
    };
    for (const auto& c : cases) {
        const ReadResult r = readFile("%PiezoSerial\r\n" + c.serial + calCoef, 7);
        EXPECT_EQ(r.calls, (Calls{"SetPiezoCalCoef(0,10,0,1,2)"})) << c.serial;
        ASSERT_EQ(r.messages.size(), 1u) << c.serial;
        EXPECT_TRUE(names(r.messages[0], "%PiezoSerial: " + c.says)) << r.messages[0];
        EXPECT_TRUE(names(r.messages[0], "in.csv, line ")) << r.messages[0];
    }
}

TEST(SettingReader, WordEncodingsReadExactlyAndAnythingElseMeansTheDefault) {
    EXPECT_EQ(readFile("%DiskSizeRestriction\r\n\"True\",\r\n%DiskSizeRestriction\r\n\"true\",\r\n"
                       "%HomeState\r\n\"HOMESTATE_STOP\",\r\n%HomeState\r\n\"\",\r\n",
                       1)
                  .calls,
              (Calls{"SetDiskSizeRestriction(true)", "SetDiskSizeRestriction(false)", "SetHomeState(1)",
                     "SetHomeState(0)"}));
}

TEST(SettingReader, CountsFarLargerThanTheDataStopAtTheEndOrAtTheFirstBadValue) {
    const auto start = std::chrono::steady_clock::now();
    // The file ends after three coefficients.
    const auto cut =
        readFile("%PiezoCalCoef\r\n\"Volt\",0,10,\r\n\"Position\",0,0.00001,\r\n\"Nop\",32000,\r\n"
                 "\"Coef\",1,2,3,\r\n",
                 7);
    EXPECT_EQ(cut.calls, Calls{});
    ASSERT_EQ(cut.messages.size(), 1u);
    EXPECT_TRUE(names(cut.messages[0], "file ends before coefficient 4 of 32000")) << cut.messages[0];
    // The data runs into the next section: one message, not thousands, and the next section is still found.
    const auto intoNext = readFile("%PiezoControlData\r\n\"Nop\",30000,\r\n\"0\",1,2,3,4,5,\r\n"
                                   "%PiezoControlData\r\n\"Nop\",1,\r\n\"0\",1,2,3,4,5,\r\n",
                                   8);
    EXPECT_EQ(intoNext.calls, (Calls{"SetPiezoControlData(1)"}));
    ASSERT_EQ(intoNext.messages.size(), 1u);
    EXPECT_TRUE(names(intoNext.messages[0], "section ends before row 2 of 30000 (")) << intoNext.messages[0];
    // A negative count reads nothing.
    EXPECT_EQ(readFile("%PiezoCalCoef\r\n\"Volt\",0,1,\r\n\"Position\",0,1,\r\n\"Nop\",-5,\r\n\"Coef\",9,\r\n", 7).calls,
              (Calls{"SetPiezoCalCoef(0,1,0,1)"}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(SettingReader, ANumberOutOfRangeIsReportedWithItsPositionAndStopsOnlyItsSection) {
    const auto result = readFile("%SpindleSpeed\r\n7200,\r\n%SpinstandType\r\n40000,\r\n%HeadFace\r\n"
                                 "\"SSHEADFACE_DOWNFACE\",\r\n",
                                 4);
    EXPECT_EQ(result.calls, (Calls{"SetHeadFace(1)"}));
    ASSERT_EQ(result.messages.size(), 2u);
    EXPECT_TRUE(names(result.messages[0], "\"40000\" does not fit Integer")) << result.messages[0];
    EXPECT_TRUE(names(result.messages[1], "in.csv, line 4, field 1")) << result.messages[1];
}

} // namespace
} // namespace vss

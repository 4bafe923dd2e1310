// The spinstand catalogue: reading the file into the table, and writing a model to a simulated instrument.

#include "driver/DriverError.h"
#include "driver/Handles.h"
#include "simulator/SimInstrument.h"
#include "storage/modSsDefine.h"
#include "tests/storage/StorageTestSupport.h"

#include <algorithm>

namespace vss {
namespace {

using Lines = std::vector<std::string>;

class Catalogue : public ::testing::Test {
protected:
    bool read(const std::string& text) {
        return ReadSpinstandDefinitions(dir.write("VssTool.ini", text), sink);
    }
    const SpinstandDefinition& model(std::size_t i) const { return spinstandDefinitions().at(i); }

    test::ScratchDir dir;
    test::RecordingSink sink;
};

TEST_F(Catalogue, ReadsRecordsInAnyOrderAndReportsUnknownKeysOncePerValue) {
    ASSERT_TRUE(read("1\nName,old\n")); // replaced by the next read
    ASSERT_TRUE(read("; four models in a comment line\r\n4\r\n"
                     "SpeedMax,15000,12000,10000,1\r\n"
                     "Name,\"Alpha, wide\",Beta,Gamma,Delta\r\n"
                     "Colour,red,green,blue,black\r\n"
                     "HeadFace,SSHEADFACE_DOWNFACE,SSHEADFACE_UPFACE,ssheadface_downface,1\r\n"
                     "SpeedMax,14000,13000,9000,2\r\n"
                     "GearInvert,2.5,3.5,-0.5,\" 7 \"\r\n"
                     "RefFreq,10000.5,2e4,-1,0\r\n"));
    EXPECT_EQ(sink.texts(), Lines(4, "Unknown Parameter : Colour"));
    ASSERT_EQ(spinstandDefinitions().size(), 4u);
    EXPECT_EQ(model(0).Name, "Alpha, wide");
    EXPECT_EQ(model(3).Name, "Delta") << "reading went on after the unknown key";
    EXPECT_EQ(model(0).SpeedMax, 14000) << "the repeated key keeps its later values";
    // Only the exact down-face word gives 1.
    EXPECT_EQ((std::vector{model(0).HeadFace, model(1).HeadFace, model(2).HeadFace, model(3).HeadFace}),
              (std::vector<std::int32_t>{1, 0, 0, 0}));
    // Whole-number fields round halves to the even neighbour.
    EXPECT_EQ(
        (std::vector{model(0).GearInvert, model(1).GearInvert, model(2).GearInvert, model(3).GearInvert}),
        (std::vector<std::int16_t>{2, 4, 0, 7}));
    EXPECT_EQ(model(0).RefFreq, 10000.5);
    EXPECT_EQ(model(0).SpeedMin, 0) << "a key the file does not give stays 0";
    EXPECT_EQ(GetSpinstandName(1), "Beta");
    EXPECT_EQ(GetSpinstandName(4), "");
    EXPECT_EQ(GetSpinstandName(-1), "");

    // An empty name is a value like any other (the window's list ends there).
    ASSERT_TRUE(read("3\nName,\"A\",\"\",\"C\"\nSpeedMin,1,2,3\n"));
    EXPECT_EQ(GetSpinstandName(1), "");
    EXPECT_EQ(model(2).Name, "C");
    EXPECT_EQ(model(2).SpeedMin, 3);
}

std::string repeated(const std::string& head, const std::string& field, int times) {
    std::string text = head;
    for (int i = 0; i < times; ++i)
        text += field;
    return text;
}

// A line of a million fields of unknown keys keeps the catalogue usable: fifty messages, then a count.
TEST_F(Catalogue, AFloodOfUnknownKeysIsCountedAfterFiftyMessages) {
    ASSERT_TRUE(read(repeated("1\nName,A\n", "x,", 1000000)));
    ASSERT_EQ(sink.messages.size(), 51u);
    EXPECT_EQ(sink.messages[49].text, "Unknown Parameter : x");
    EXPECT_EQ(sink.messages[50].text,
              "499950 more values of unknown keys were skipped in " + dir.path("VssTool.ini") + ".");
    EXPECT_EQ(GetSpinstandName(0), "A");
}

// A catalogue that cannot be used says so once, naming the file and the fault, keeps no model of it, and
// takes bounded time whatever the file holds.
TEST_F(Catalogue, AMalformedCatalogueIsReportedOnceAndLeavesTheTableEmpty) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "holds no field at all"},
        {"; models, three\n3\nName,a,b,c\n", "the number of models, is \"three\", not a number"},
        {"-2\nName,a,b\n", "the number of models is -2; a catalogue holds 1 to 1000 models"},
        {"30000\nName,a\n", "the number of models is 30000"},
        {"2\nName,a,b\nSpeedMin,1000,fast\n", "the value \"fast\" of SpeedMin for model 1 is not a number"},
        {"1\nName,a\nSpinstandType,40000\n",
         "of SpinstandType for model 0 is not a number from -32768 to 32767"},
        {"3\nName,a,b,c\nSpeedMin,1000,2000\n", "ends after 2 of the 3 values of \"SpeedMin\""},
        {"2\nName,a,b\nSpeedMin\n", "ends after 0 of the 2 values of \"SpeedMin\""},
        {repeated("", std::string("\x01\xff,\"\0", 5), 2000), "not a number"},
    };
    for (const auto& [text, fault] : cases) {
        SCOPED_TRACE(fault);
        ASSERT_TRUE(read("1\nName,good\n"));
        sink.messages.clear();
        EXPECT_FALSE(read(text));
        EXPECT_TRUE(spinstandDefinitions().empty());
        ASSERT_FALSE(sink.messages.empty());
        EXPECT_EQ(sink.messages.size(), 1u);
        const std::string& message = sink.messages.back().text;
        EXPECT_EQ(message.find("The spinstand catalogue " + dir.path("VssTool.ini") + " cannot be used: "),
                  0u);
        EXPECT_NE(message.find(fault), std::string::npos) << message;
    }
    sink.messages.clear();
    EXPECT_FALSE(ReadSpinstandDefinitions(dir.path("missing.ini"), sink));
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].text, "The spinstand catalogue " + dir.path("missing.ini") +
                                         " cannot be used: No such file or directory.");
    EXPECT_TRUE(sink.messages[0].where.fileFailed);
}

// ---- writing a model to the instrument

class ApplyingAModel : public Catalogue {
protected:
    ApplyingAModel() : instrument_(sim::SimOptions{":memory:"}), object_(instrument_.createObject()) {
        acquireHandles(*object_, handles_);
        handles_.driver->Open("QTB::R2208C");
    }
    ~ApplyingAModel() override { handles_.driver->Close(); }

    bool apply(std::size_t index) {
        instrument_.trace().clear();
        return ApplySpinstandDefinition(static_cast<std::int16_t>(index), service(), sink);
    }
    IDriverService& service() { return *handles_.service; }
    Lines trace() { return instrument_.trace().lines(); }
    // What reached the instrument: the writes and the spindle driver checks after them.
    Lines writes() {
        Lines out;
        for (const std::string& line : trace())
            if (line.starts_with("IDriverService.Set") || line.starts_with("IDriverService.GetSpindleDriver"))
                out.push_back(line);
        return out;
    }

    sim::SimInstrument instrument_;

private:
    std::shared_ptr<DriverObject> object_;
    DriverHandles handles_;
};

// Model 0 expects the simulator's spindle driver (CW, sensorless), model 1 a hall-sensor one, model 2 a
// counter-clockwise one.
const std::string kModels =
    "3\nName,First,Second,Third\nHardwareRevision,R-1,R-2,R-3\nSpinstandType,2,1,0\n"
    "HeadFace,SSHEADFACE_UPFACE,SSHEADFACE_DOWNFACE,SSHEADFACE_UPFACE\nDiskSizeMin,0.02,0.03,0."
    "03\nDiskSizeMax,0.04,0.045,0."
    "045\n"
    "GearInvert,1,0,0\ntStprUp,201,0,0\ntStprDn,202,0,0\ntStprThru,203,0,0\ntBrake,204,0,0\ntSettle,205,0,0\n"
    "tCover,206,0,0\ntLockdown,207,0,0\ntStopper,208,0,0\ntMove,209,0,0\ntMotorOff,210,0,0\n"
    "SpeedMin,3000,4000,4000\nSpeedMax,12000,15000,15000\nRotation,1,0,0\nBrakeTime,2500,0,0\nRefClock,1,0,"
    "0\n"
    "RefFreq,20000.5,1,1\nReadyPol,0,0,0\nIndexDiv,2,1,1\nDriver,1,0,0\nPoleNum,12,2,2\ntRdy,4000,0,0\n"
    "tSpindleSet,400,0,0\ntSpindleOff,7000,0,0\ntLock,1500,0,0\ntLockSettle,450,0,0\nDriverRot,0,0,1\n"
    "DriverType,0,1,0\nStopperOuter,30.5,30,30\nStopperInner,9.25,9,9\nStage2Spindle,80,79,79\n"
    "Stage2Ref,71,70,70\nStageOffset,4.5,5,5\n";

TEST_F(ApplyingAModel, WritesEveryValueWithItsOwnTypeInTheInstrumentsOrder) {
    ASSERT_TRUE(read(kModels));
    EXPECT_TRUE(apply(0));
    Lines expected{"SetHardwareRevision(\"R-1\")", "SetSpinstandType(2)", "SetHeadFace(0)",
                   "SetDiskSizeRange(0.02, 0.04)", "SetStageProperty(0, (Integer)1)"};
    for (int i = 1; i <= 10; ++i)
        expected.push_back("SetStageProperty(" + std::to_string(i) + ", (Long)" + std::to_string(200 + i) +
                           ")");
    expected.push_back("SetSpeedRange(3000, 12000)");
    const char* spindle[] = {"(Integer)1", "(Long)2500", "(Integer)1", "(Double)20000.5", "(Integer)0",
                             "(Long)2",    "(Integer)1", "(Long)12",   "(Long)4000",      "(Long)400",
                             "(Long)7000", "(Long)1500", "(Long)450"};
    for (int i = 0; i < 13; ++i)
        expected.push_back("SetSpindleProperty(" + std::to_string(i) + ", " + spindle[i] + ")");
    expected.insert(expected.end(),
                    {"SetStopperPosition(1, 30.5)", "SetStopperPosition(0, 9.25)", "SetStageGeometry(0, 80)",
                     "SetStageGeometry(1, 71)", "SetStageGeometry(2, 4.5)",
                     "GetSpindleDriver(0) -> (Integer)0", "GetSpindleDriver(1) -> (Integer)0"});
    for (std::string& line : expected)
        line = "IDriverService." + line;
    EXPECT_EQ(writes(), expected);
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(ApplyingAModel, ADifferentSpindleDriverIsWarnedAboutAfterEveryValueAndAFailureStopsTheRest) {
    ASSERT_TRUE(read(kModels));
    EXPECT_FALSE(apply(1)); // the type differs: both items are read
    EXPECT_EQ(trace().back(), "IDriverService.GetSpindleDriver(1) -> (Integer)0");
    EXPECT_FALSE(apply(2)); // the rotation differs: the type is not asked for
    EXPECT_EQ(trace().back(), "IDriverService.GetSpindleDriver(0) -> (Integer)0");
    EXPECT_EQ(sink.texts(), Lines(2, "Warning : Invalid Spindle Driver."));
    EXPECT_EQ(service().GetStageGeometry(0), 79.0) << "what was written stays written";

    // A refusal the instrument's lists could not foretell names what was written and what was not.
    instrument_.failOperation("IDriverService.SetSpeedRange", "The speed range is locked.");
    try {
        apply(0);
        ADD_FAILURE() << "the refusal was not passed on";
    } catch (const DriverError& e) {
        EXPECT_EQ(e.description(),
                  "The speed range is locked. The model 0 \"First\" is applied in part: written "
                  "HardwareRevision, SpinstandType, HeadFace, DiskSizeMin and DiskSizeMax, "
                  "GearInvert, tStprUp, tStprDn, tStprThru, tBrake, tSettle, tCover, tLockdown, "
                  "tStopper, tMove, tMotorOff; refused SpeedMin and SpeedMax; not written Rotation, "
                  "BrakeTime, RefClock, RefFreq, ReadyPol, IndexDiv, Driver, PoleNum, tRdy, "
                  "tSpindleSet, tSpindleOff, tLock, tLockSettle, StopperOuter, StopperInner, "
                  "Stage2Spindle, Stage2Ref, StageOffset.");
    }
    EXPECT_EQ(trace().back(), "IDriverService.SetSpeedRange(3000, 12000) !! The speed range is locked.");
    EXPECT_THROW(apply(3), std::out_of_range);
    EXPECT_TRUE(trace().empty());
}

// Every problem that the instrument's lists and the model's own ranges show is found before the first write.
TEST_F(ApplyingAModel, AModelTheInstrumentWouldRefuseIsRefusedWholeBeforeAnyWrite) {
    std::string models = kModels;
    for (const auto& [from, to] :
         {std::pair<std::string, std::string>{"SpinstandType,2,", "SpinstandType,7,"},
          {"GearInvert,1,", "GearInvert,5,"},
          {"DiskSizeMin,0.02,", "DiskSizeMin,0.05,"},
          {"SpeedMax,12000,", "SpeedMax,3000,"}})
        models.replace(models.find(from), from.size(), to);
    ASSERT_TRUE(read(models));
    try {
        apply(0);
        ADD_FAILURE() << "a model with an empty speed range was applied";
    } catch (const std::runtime_error& e) {
        const std::string text = e.what();
        for (const char* problem :
             {"The model 0 \"First\" cannot be applied: SpinstandType 7 is not one of the instrument's "
              "spinstand types",
              "the disk size range 0.05 to 0.04 (DiskSizeMin to DiskSizeMax) is reversed",
              "GearInvert 5 is not one of the instrument's choices (0, 1)",
              "the speed range 3000 to 3000 rpm (SpeedMin to SpeedMax) is empty", ". Nothing was written."})
            EXPECT_NE(text.find(problem), std::string::npos) << problem << " in " << text;
    }
    EXPECT_EQ(writes(), Lines{});
}

// The catalogue's defaults stay; each model that takes one says so once, naming the keys and the values
// used.
TEST_F(ApplyingAModel, DefaultsAreKeptAndWarnedAboutOncePerModel) {
    std::string models = kModels;
    models.erase(models.find("tStprUp,201,0,0\n"), 16);
    models.replace(models.find("HeadFace,SSHEADFACE_UPFACE,"), 27, "HeadFace,sideways,");
    ASSERT_TRUE(read(models));
    apply(0);
    const Lines written = writes();
    EXPECT_NE(std::find(written.begin(), written.end(), "IDriverService.SetHeadFace(0)"), written.end());
    EXPECT_NE(std::find(written.begin(), written.end(), "IDriverService.SetStageProperty(1, (Long)0)"),
              written.end());
    apply(1);
    EXPECT_EQ(sink.texts(),
              (Lines{"Warning : The model 0 \"First\" takes defaults: HeadFace \"sideways\" is neither "
                     "SSHEADFACE_DOWNFACE nor SSHEADFACE_UPFACE, SSHEADFACE_UPFACE (0) is used; tStprUp is "
                     "not given, 0 is used.",
                     "Warning : The model 1 \"Second\" takes defaults: tStprUp is not given, 0 is used.",
                     "Warning : Invalid Spindle Driver."}));
}

} // namespace
} // namespace vss

// The service panel with real clicks on the simulated instrument: what each control sends, what the status
// tick reads, the options refreshed without commands, and the backlash moves putting back what they change.

#include "controls/userProperty.h"
#include "driver/Trace.h"
#include "kit/modGlobal.h"
#include "service/frmSer.h"
#include "tests/support/FailureSweep.h"
#include "tests/support/FieldInput.h"
#include "tests/support/WindowHarness.h"

#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>
#include <string_view>

namespace vss {
namespace {

using testing::enterValue;
using testing::WindowHarness;
using Lines = std::vector<std::string>;

// An instrument without a non-volatile file.
sim::SimOptions inMemory() {
    sim::SimOptions options;
    options.statePath = ":memory:";
    return options;
}

const FormFactory kPanel = [](QWidget* parent) { return std::make_unique<frmSer>(parent); };

// A session on an initialized instrument whose spindle runs when the heads are home (or stays off).
void openInstrument(WindowHarness& harness, std::int32_t homeState = homestate::Run) {
    harness.openSession();
    harness.prepareInstrument();
    handles().driver->SetHomeState(homeState);
}

// Runs `during` with the panel up, then closes it with "Return" if it is still open.
void withPanel(WindowHarness& harness, const std::function<void(frmSer&)>& during) {
    harness.whenActive<frmSer>([&](frmSer& panel) {
        during(panel);
        if (panel.isVisible())
            WindowHarness::click(panel, "cmdReturn");
    });
    harness.showModal(kPanel);
}

std::string textOf(QWidget& window, const char* name) {
    return WindowHarness::control<QLineEdit>(window, name).text().toStdString();
}

// A click on a button, or on an option's round mark (a wide option takes clicks only on its mark and text).
void click(QWidget& window, const char* name) {
    if (auto* option = qobject_cast<QRadioButton*>(&WindowHarness::control(window, name)))
        QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(6, option->height() / 2));
    else
        WindowHarness::click(window, name);
}

bool checked(QWidget& window, const char* name) {
    return WindowHarness::control<QRadioButton>(window, name).isChecked();
}

// The driver calls without their results.
Lines calls(const Lines& lines) {
    Lines kept;
    for (const std::string& l : lines)
        if (l.starts_with("IDriver"))
            kept.push_back(l.substr(0, l.find(')') + 1));
    return kept;
}

// The calls that change the instrument: every call but the reads.
Lines commands(const Lines& lines) {
    Lines kept = calls(lines);
    std::erase_if(kept, [](const std::string& l) { return l.find(".Get") != std::string::npos; });
    return kept;
}

TEST(ServicePanel, OpeningAndClosingLeaveTheStageMotorOffAndRefreshesSendNothing) {
    WindowHarness harness(inMemory());
    openInstrument(harness);
    IDriverService& service = *handles().service;
    service.SetStopper(true);
    service.SetStageMotor(1);
    service.SetSpindleState(spindlestate::Unlock);
    harness.clearTrace();
    withPanel(harness, [&](frmSer& panel) {
        EXPECT_EQ(panel.windowTitle(), "Velkor Spinstand Tool (Service use only)");
        EXPECT_EQ(commands(harness.trace()), Lines{"IDriverService.SetStageMotor(0)"})
            << "only the load's own";
        EXPECT_TRUE(checked(panel, "optStopper_0")) << "Up";
        EXPECT_TRUE(checked(panel, "optHeadLoader_0")) << "Up (Unload)";
        EXPECT_TRUE(checked(panel, "optLockdown_1")) << "Free";
        EXPECT_TRUE(checked(panel, "optStageMotor_0"));
        for (const char* option : {"optSpindle_0", "optSpindle_1", "optSpindle_2"})
            EXPECT_FALSE(checked(panel, option)) << "an unlocked spindle matches no option";

        harness.clearTrace();
        WindowHarness::click(panel, "cmdReset");
        EXPECT_EQ(commands(harness.trace()),
                  (Lines{"IDriverService.ResetService()", "IDriverService.SetStageMotor(0)"}));
        EXPECT_TRUE(checked(panel, "optSpindle_2")) << "the home state runs the spindle";
        EXPECT_TRUE(checked(panel, "optStopper_1"));
        harness.clearTrace();
    });
    EXPECT_EQ(commands(harness.trace()), Lines{"IDriverService.SetStageMotor(0)"});
    EXPECT_TRUE(harness.messages().empty());
}

TEST(ServicePanel, TheTickReadsTheNineItemsAndAFailingReadBlanksOnlyItsItem) {
    WindowHarness harness(inMemory());
    openInstrument(harness);
    withPanel(harness, [&](frmSer& panel) {
        harness.clearTrace();
        panel.tmrUpdate_Timer();
        EXPECT_EQ(calls(harness.trace()),
                  (Lines{"IDriverService.GetSpindleState()", "IDriverService.GetEmergency()",
                         "IDriverService.GetOuterCover()", "IDriverService.GetVacuum()",
                         "IDriverService.GetSpindleSet()", "IDriverService.GetLockdownSensor()",
                         "IDriverService.GetStopperSensors()", "IDriverService.GetStagePositionFlags()",
                         "IDriverService.GetStageRegion()"}));
        EXPECT_EQ(textOf(panel, "txtSpindleState"), "RUN");
        EXPECT_EQ(textOf(panel, "txtEmergency"), "Normal");
        EXPECT_EQ(textOf(panel, "txtStopperDn"), "DN");
        EXPECT_EQ(textOf(panel, "txtPosHome"), "HOME");
        EXPECT_EQ(WindowHarness::control<userProperty>(panel, "usrPropRegion").Value(),
                  Variant(std::int32_t{0}));

        harness.sim().failOperation("IDriverService.GetEmergency", "no answer", -1);
        harness.sim().failOperation("IDriverService.GetStageRegion", "no answer", -1);
        harness.sim().setInput(sim::Input::OuterCover, true);
        panel.tmrUpdate_Timer();
        EXPECT_EQ(textOf(panel, "txtEmergency"), "");
        EXPECT_EQ(textOf(panel, "txtOuterCover"), "Open") << "the other items go on";
        harness.sim().clearFailures();
        panel.tmrUpdate_Timer();
        EXPECT_EQ(textOf(panel, "txtEmergency"), "Normal");

        WindowHarness::click(panel, "cmdReturn");
        harness.clearTrace();
        QTest::qWait(3 * frmSer::kPollMs);
        EXPECT_TRUE(harness.trace().empty()) << "no poll after Return";
    });
    EXPECT_TRUE(harness.messages().empty());
}

TEST(ServicePanel, EveryOptionAndButtonSendsItsMappedCall) {
    struct Case {
        const char* control;
        const char* sent;
    };
    // In an order the instrument accepts from home: the heads go down and up again off the disk, the stage
    // ends at home before the jogs.
    const Case cases[] = {
        {"optStopper_0", "IDriverService.SetStopper(true)"},
        {"optStopper_1", "IDriverService.SetStopper(false)"},
        {"optLockdown_0", "IDriverService.SetLockdown(true)"},
        {"optLockdown_1", "IDriverService.SetLockdown(false)"},
        {"optStageMotor_1", "IDriverService.SetStageMotor(1)"},
        {"optStageMotor_0", "IDriverService.SetStageMotor(0)"},
        {"optSpindle_1", "IDriverService.SetSpindleState(1)"},
        {"optSpindle_0", "IDriverService.SetSpindleState(0)"},
        {"optSpindle_2", "IDriverService.SetSpindleState(2)"},
        {"optHeadLoader_1", "IDriverService.SetHeadLoaderState(false)"},
        {"optHeadLoader_0", "IDriverService.SetHeadLoaderState(true)"},
        {"cmdPosition_2", "IDriverService.MoveToPosition(2)"},
        {"cmdPosition_1", "IDriverService.MoveToPosition(1)"},
        {"cmdPosition_0", "IDriverService.MoveToPosition(0)"},
        {"cmdJogExec", "IDriverService.Jog(true, 101)"},
    };
    WindowHarness harness(inMemory());
    openInstrument(harness);
    withPanel(harness, [&](frmSer& panel) {
        for (const Case& c : cases) {
            harness.clearTrace();
            click(panel, c.control);
            EXPECT_EQ(commands(harness.trace()), Lines{c.sent}) << c.control;
        }
        EXPECT_TRUE(checked(panel, "optStageMotor_1")) << "a stage move refreshes the stage options";

        // "To Home" passes false whatever the count.
        auto* direction = WindowHarness::control(panel, "usrDir").findChild<QComboBox*>();
        direction->setFocus();
        QTest::keyClick(direction, Qt::Key_Down);
        enterValue(panel, "usrCount1", "7");
        harness.clearTrace();
        WindowHarness::click(panel, "cmdJogExec");
        EXPECT_EQ(commands(harness.trace()), Lines{"IDriverService.Jog(false, 7)"});
    });
    EXPECT_TRUE(harness.messages().empty()) << harness.messages().front().text;
}

TEST(ServicePanel, RefusedInputAndCommandsEndInOneMessageAndThePanelShowsTheInstrumentsState) {
    WindowHarness harness(inMemory());
    openInstrument(harness);
    withPanel(harness, [&](frmSer& panel) {
        harness.clearTrace();
        enterValue(panel, "usrRpm", "5400");
        EXPECT_EQ(calls(harness.trace()),
                  (Lines{"IDriverService.SetSpindleRpm(5400)", "IDriverService.GetSpindleRpm()"}));

        harness.clearTrace();
        enterValue(panel, "usrRpm", "fast");
        EXPECT_EQ(calls(harness.trace()), Lines{})
            << "text leaves the value as it was: no edit, nothing sent";

        enterValue(panel, "usrRpm", "99999");
        ASSERT_EQ(harness.messages().size(), 1U);
        EXPECT_NE(harness.messages()[0].text.find("outside the range"), std::string::npos);
        EXPECT_EQ(WindowHarness::control<userProperty>(panel, "usrRpm").Value(), Variant(std::int32_t{5400}));

        enterValue(panel, "usrCount1", "-3");
        WindowHarness::click(panel, "cmdJogExec");
        EXPECT_EQ(harness.messages().size(), 2U);
        EXPECT_TRUE(WindowHarness::control(panel, "cmdJogExec").isEnabled());

        // A refused option gives way to the one that shows the instrument's state, read again.
        click(panel, "optSpindle_0");
        harness.sim().setInput(sim::Input::OuterCover, true);
        click(panel, "optSpindle_2");
        ASSERT_EQ(harness.messages().size(), 3U);
        EXPECT_NE(harness.messages()[2].text.find("outer cover is open"), std::string::npos);
        const std::int32_t state = handles().service->GetSpindleState();
        for (const int option : {0, 1, 2})
            EXPECT_EQ(checked(panel, ("optSpindle_" + std::to_string(option)).c_str()), option == state)
                << state;
    });
}

// The speed field stays in step with the instrument when the read-back after a write fails: a speed that went
// through counts as the instrument's (typing the old one again sends it), a refused one is not shown.
TEST(ServicePanel, ASpeedWhoseReadBackFailsStaysInStepWithTheInstrument) {
    WindowHarness harness(inMemory());
    openInstrument(harness);
    withPanel(harness, [&](frmSer& panel) {
        const std::int32_t before = WindowHarness::control<userProperty>(panel, "usrRpm").Value().int32();
        const std::int32_t other = before == 5400 ? 4200 : 5400;
        harness.sim().failOperation("IDriverService.GetSpindleRpm", "no answer");
        enterValue(panel, "usrRpm", QString::number(other));
        harness.clearTrace();
        enterValue(panel, "usrRpm", QString::number(before));
        EXPECT_EQ(commands(harness.trace()),
                  Lines{"IDriverService.SetSpindleRpm(" + std::to_string(before) + ")"})
            << "the speed that went through counts as the instrument's";

        harness.sim().failOperation("IDriverService.SetSpindleRpm", "refused");
        harness.sim().failOperation("IDriverService.GetSpindleRpm", "no answer");
        enterValue(panel, "usrRpm", "10000");
        EXPECT_EQ(WindowHarness::control<userProperty>(panel, "usrRpm").Value(), Variant(before))
            << "a refused speed gives way to the one last shown";
    });
}

TEST(ServicePanel, DataButtonsOpenTheirWindowsWhenTheyAreBuilt) {
    struct StandIn : Form {
        StandIn(QWidget* parent, std::vector<std::string>& opened, std::string what) : Form(parent) {
            opened.push_back(std::move(what));
        }
    };
    std::vector<std::string> opened;
    WindowHarness harness(inMemory());
    openInstrument(harness);
    withPanel(harness, [&](frmSer& panel) {
        WindowHarness::click(panel, "cmdPiezo");
        WindowHarness::click(panel, "cmdSetBacklashData");
        EXPECT_TRUE(panel.isVisible() && panel.isEnabled() && harness.messages().empty()) << "inert";
        menuWindows().piezoInformation = [&](QWidget* parent) {
            return std::make_unique<StandIn>(parent, opened, "piezo");
        };
        menuWindows().backlashCompensation = [&](QWidget* parent, bool viewOnly) {
            return std::make_unique<StandIn>(parent, opened, viewOnly ? "backlash view" : "backlash edit");
        };
        for (const char* button : {"cmdPiezo", "cmdSetBacklashData"}) {
            harness.whenActive<StandIn>([&](StandIn& w) {
                harness.clearTrace();
                panel.tmrUpdate_Timer();
                EXPECT_TRUE(harness.trace().empty())
                    << "the panel's status waits while a window it opened is up";
                w.accept();
            });
            WindowHarness::click(panel, button);
        }
    });
    EXPECT_EQ(opened, (std::vector<std::string>{"piezo", "backlash edit"}));
}

struct Remembered {
    LoadPosition load;
    bool restriction;
    friend bool operator==(const Remembered&, const Remembered&) = default;
};
Remembered remembered() {
    return {handles().loadPosition->GetLoadPosition(loadposition::Load),
            handles().diskSize->GetDiskSizeRestriction()};
}

// A load position with a skew of its own, which a move must put back with its radius.
void setSkewedLoadPosition() {
    handles().loadPosition->SetLoadPosition(loadposition::Load, {0.03, -5.5}, -1);
}

TEST(BacklashMoves, EachMoveMakesItsCallsInOrderAndPutsBackTheLoadSetting) {
    WindowHarness harness(inMemory());
    openInstrument(harness);
    setSkewedLoadPosition();
    const Remembered before = remembered();
    const Lines prologue{"IDriver.GetState()",
                         "IDriver.Reset()",
                         "IDriverLoadPosition.GetLoadPosition(1)",
                         "IDriverDiskSize.GetDiskSizeRestriction()",
                         "IDriverDiskSize.SetDiskSizeRestriction(false)",
                         "IDriverLoadPosition.SetLoadPosition(1, {0.05, 9.91e+37}, -1)",
                         "IDriver.Load()"};
    const Lines epilogue{"IDriverLoadPosition.SetLoadPosition(1, {0.03, -5.5}, -1)",
                         "IDriverDiskSize.SetDiskSizeRestriction(true)"};
    withPanel(harness, [&](frmSer& panel) {
        for (const frmSer::BacklashMove& move : frmSer::kBacklashMoves) {
            Lines expected = prologue;
            if (move.start) {
                const std::string start = std::to_string(*move.start);
                expected.push_back("IDriverService.GetMeasurementPosition(" + start + ")");
                expected.push_back(
                    "IDriverStage.MoveTo(" +
                    traceformat::number(handles().service->GetMeasurementPosition(*move.start).radius) + ")");
                expected.push_back("IDriverStage.MoveTo(" + traceformat::number(move.target) + ")");
            }
            harness.clearTrace();
            WindowHarness::click(panel, move.name);
            expected.insert(expected.end(), epilogue.begin(), epilogue.end());
            EXPECT_EQ(calls(harness.trace()), expected) << move.caption;
            EXPECT_EQ(remembered(), before) << move.caption;
        }
    });
    EXPECT_TRUE(harness.messages().empty()) << harness.messages().front().text;
}

TEST(BacklashMoves, AFailedMoveShowsOneMessageAndStillPutsBackTheLoadSetting) {
    WindowHarness harness(inMemory());
    openInstrument(harness, homestate::Stop);
    setSkewedLoadPosition();
    const Remembered before = remembered();
    withPanel(harness, [&](frmSer& panel) {
        WindowHarness::click(panel, "cmdBacklashE");
        EXPECT_TRUE(harness.messages().empty()) << "E moves nothing over the disk";
        WindowHarness::click(panel, "cmdBacklashA");
        ASSERT_EQ(harness.messages().size(), 1U);
        EXPECT_NE(harness.messages()[0].text.find("not spinning"), std::string::npos)
            << harness.messages()[0].text;
        EXPECT_EQ(remembered(), before);

        handles().driver->SetHomeState(homestate::Run);
        harness.clearMessages();
        harness.sim().failOperation("IDriverStage.MoveTo", "The stage stalled.", 1);
        WindowHarness::click(panel, "cmdBacklashC");
        EXPECT_EQ(harness.messages().size(), 1U);
        EXPECT_EQ(remembered(), before);

        // When the restore fails too, a second message says what is left changed.
        harness.clearMessages();
        harness.sim().failOperation("IDriverLoadPosition.SetLoadPosition", "Memory busy.", 2);
        WindowHarness::click(panel, "cmdBacklashB");
        ASSERT_EQ(harness.messages().size(), 2U);
        EXPECT_EQ(harness.messages()[0].text, "Memory busy.");
        EXPECT_EQ(harness.messages()[1].text,
                  "The load position (radius 30 mm) could not be put back: Memory busy.");
        EXPECT_TRUE(remembered().restriction) << "the restriction is put back on its own";
        EXPECT_TRUE(WindowHarness::control(panel, "cmdBacklashB").isEnabled());
    });
}

TEST(ServicePanel, EveryCommandHandlerJoinsTheFailureSweep) {
    WindowHarness harness(inMemory());
    openInstrument(harness);
    // An option clicked is an edit: refused, it shows the instrument's state again.
    const auto clicking = [](const char* control) {
        return testing::SweptHandler{.name = control,
                                     .run = [control](WindowHarness&, Form& w) { click(w, control); },
                                     .edits = std::string_view(control).starts_with("opt") ? control : ""};
    };
    std::vector<testing::SweptHandler> handlers;
    for (const char* control :
         {"optStopper_0",    "optStopper_1",  "optLockdown_0", "optLockdown_1", "optStageMotor_1",
          "optStageMotor_0", "optSpindle_1",  "optSpindle_0",  "optSpindle_2",  "optHeadLoader_1",
          "optHeadLoader_0", "cmdPosition_2", "cmdJogExec",    "cmdPosition_1", "cmdPosition_0",
          "cmdReset",        "cmdBacklashA",  "cmdBacklashB",  "cmdBacklashC",  "cmdBacklashD",
          "cmdBacklashE"})
        handlers.push_back(clicking(control));
    handlers.push_back({.name = "usrRpm",
                        .run =
                            [](WindowHarness&, Form& w) {
                                const bool at5400 =
                                    w.findChild<userProperty*>("usrRpm")->Value().int32() == 5400;
                                enterValue(w, "usrRpm", at5400 ? "7200" : "5400");
                            },
                        .edits = "usrRpm"});
    testing::SweepOptions options;
    for (const char* read :
         {"GetSpindleState", "GetEmergency", "GetOuterCover", "GetVacuum", "GetSpindleSet",
          "GetLockdownSensor", "GetStopperSensors", "GetStagePositionFlags", "GetStageRegion"})
        options.ignored.insert(std::string("IDriverService.") + read);
    EXPECT_GT(testing::sweepFailures(harness, kPanel, handlers, options), 60);
}

} // namespace
} // namespace vss

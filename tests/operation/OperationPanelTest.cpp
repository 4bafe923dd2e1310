// The operation panel with real clicks and keys on the simulated instrument, checked against its trace.

#include "controls/Twips.h"
#include "controls/userProperty.h"
#include "kit/Messages.h"
#include "kit/frmVersion.h"
#include "kit/modGlobal.h"
#include "operation/frmIniPiezo.h"
#include "operation/frmIniSetting.h"
#include "tests/operation/OperationHarness.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

namespace vss {
namespace {

using testing::commandCalls;
using testing::contains;
using testing::enterValue;
using testing::fieldBox;
using testing::textOf;
using WindowHarness = testing::SessionHarness;
using testing::withoutPolling;
using testing::withPanel;
using Lines = std::vector<std::string>;

constexpr const char* kPositionButtons[] = {"cmdPosInner", "cmdPosOuter", "cmdPos1", "cmdPos2", "cmdPos3"};

bool enabled(QWidget& panel, const char* name) {
    return WindowHarness::control(panel, name).isEnabled();
}

// Every control is enabled except, unless the heads are loaded, the five position buttons.
void expectUsable(frmIni& panel, bool loaded) {
    for (QWidget* c : panel.controls()) {
        const std::string name = c->objectName().toStdString();
        const bool positionButton = std::find(std::begin(kPositionButtons), std::end(kPositionButtons),
                                              name) != std::end(kPositionButtons);
        EXPECT_EQ(c->isEnabled(), !positionButton || loaded) << name;
    }
    EXPECT_FALSE(WindowHarness::waitCursorShown());
}

// The window's close box: the window system asks the window to close.
void clickCloseBox(QWidget& window) {
    QCloseEvent close;
    QCoreApplication::sendEvent(window.windowHandle(), &close);
}

// Types into a value field and leaves the text there, not committed.
void typeWithoutCommit(QWidget& window, const char* fieldName, const QString& text) {
    QLineEdit& box = fieldBox(window, fieldName);
    box.setFocus();
    box.selectAll();
    QTest::keyClicks(&box, text);
}

Lines spindleSpeedsSent(const Lines& trace) {
    Lines sent;
    std::copy_if(trace.begin(), trace.end(), std::back_inserter(sent),
                 [](const std::string& l) { return l.starts_with("IDriver.SetSpindleSpeed("); });
    return sent;
}

void loadHeads(frmIni& panel) {
    WindowHarness::click(panel, "cmdSpindleRun");
    WindowHarness::click(panel, "cmdLoad");
    ASSERT_EQ(textOf(panel, "txtState"), "LOADED");
}

TEST(OperationPanel, EnteringInitializesOnceThenResetsAndShowsTheInstrument) {
    WindowHarness harness;
    registerOperationWindows(menuWindows());
    std::vector<Lines> entries;
    harness.runSession([&](frmOpen& menu) {
        for (int i = 0; i < 2; ++i) {
            harness.clearTrace();
            harness.whenActive<frmIni>([&](frmIni& panel) {
                entries.push_back(harness.trace());
                EXPECT_EQ(panel.windowTitle(), "Velkor Spinstand Tool : Operation Check");
                EXPECT_EQ(textOf(panel, "txtState"), "HOME(OFF)");
                EXPECT_EQ(textOf(panel, "txtMediaChange"), "Yes");
                EXPECT_EQ(textOf(panel, "txtHeadLoader"), "Unload");
                EXPECT_EQ(WindowHarness::control<QComboBox>(panel, "cmbStateAtHome").currentText(),
                          "Off (i.e. Media Change)");
                EXPECT_EQ(fieldBox(panel, "usrRpm").text(), "7200");
                EXPECT_EQ(fieldBox(panel, "usrRpmMax").text(), "15000");
                for (const char* name : kPositionButtons)
                    EXPECT_FALSE(enabled(panel, name)) << name;
                WindowHarness::click(panel, "cmdReturn");
            });
            WindowHarness::click(menu, "cmdInitialize");
        }
    });
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_TRUE(contains(entries[0], "IDriver.Initialize()"));
    EXPECT_FALSE(contains(entries[0], "IDriver.Reset()"));
    EXPECT_TRUE(contains(entries[1], "IDriver.Reset()"));
    EXPECT_FALSE(contains(entries[1], "IDriver.Initialize()"));
    EXPECT_TRUE(harness.messages().empty());
}

TEST(OperationPanel, WithoutAHeadLoaderItsButtonsOnlyRefreshAndItReadsLoad) {
    WindowHarness harness;
    harness.sim().setHeadLoaderPresent(false);
    withPanel(harness, [&](frmIni& panel) {
        EXPECT_EQ(handles().headLoader, nullptr);
        EXPECT_EQ(textOf(panel, "txtHeadLoader"), "Load");
        panel.setDirectControlsShown(true);
        for (const char* button : {"cmdHeadLoaderDn", "cmdHeadLoaderUp"}) {
            harness.clearTrace();
            WindowHarness::click(panel, button);
            const Lines calls = harness.trace();
            EXPECT_FALSE(contains(calls, "IDriverHeadLoader")) << button;
            EXPECT_TRUE(contains(calls, "IDriver.GetState()")) << button << ": the status is refreshed";
        }
        expectUsable(panel, false);
    });
    EXPECT_TRUE(harness.messages().empty()) << "a missing head loader is not reported";
}

TEST(OperationPanel, PositionButtonsAndStateTextsFollowTheStateAfterEveryCommand) {
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        panel.setDirectControlsShown(true);
        WindowHarness::click(panel, "cmdSpindleRun");
        EXPECT_EQ(textOf(panel, "txtState"), "HOME(RUN)");
        EXPECT_EQ(textOf(panel, "txtSpindleState"), "RUN");
        EXPECT_EQ(textOf(panel, "txtMediaChange"), "No");
        EXPECT_EQ(textOf(panel, "txtMotor"), "Motor On");
        EXPECT_EQ(textOf(panel, "txtClamp"), "Clamp On");
        expectUsable(panel, false);

        WindowHarness::click(panel, "cmdLoad");
        EXPECT_EQ(textOf(panel, "txtState"), "LOADED");
        expectUsable(panel, true);

        WindowHarness::click(panel, "cmdUnload");
        EXPECT_EQ(textOf(panel, "txtState"), "HOME(OFF)")
            << "unloading brings the spindle to its home setting";
        expectUsable(panel, false);

        // The emergency stop leaves a spindle state the instrument cannot tell.
        harness.sim().setInput(sim::Input::Emergency, true);
        WindowHarness::click(panel, "cmdSpindleStop");
        EXPECT_EQ(textOf(panel, "txtSpindleState"), "UNKNOWN");
        EXPECT_EQ(textOf(panel, "txtMediaChange"), "No");
        QTest::qWait(frmIni::kPollMs * 2);
        EXPECT_EQ(textOf(panel, "txtEmergency"), "Emergency");
    });
    ASSERT_EQ(harness.messages().size(), 1U) << "Standby is refused during the emergency stop";
}

TEST(OperationPanel, SpindleCommandsSwitchClampAndMotorInTheirOrder) {
    struct Case {
        const char* button;
        bool clamp, motor; // before the click
        Lines calls;
    };
    const Case cases[] = {
        {"cmdSpindleRun",
         false,
         false,
         {"IDriverClamp.GetClamp() -> false", "IDriverClamp.SetClamp(true)",
          "IDriverSpindle.GetMotor() -> false", "IDriverSpindle.SetMotor(true)"}},
        {"cmdSpindleStop",
         true,
         true,
         {"IDriverSpindle.GetMotor() -> true", "IDriverSpindle.SetMotor(false)",
          "IDriverClamp.GetClamp() -> true"}},
        {"cmdSpindleStop",
         false,
         false,
         {"IDriverSpindle.GetMotor() -> false", "IDriverClamp.GetClamp() -> false",
          "IDriverClamp.SetClamp(true)"}},
        {"cmdSpindleOff",
         true,
         true,
         {"IDriverSpindle.GetMotor() -> true", "IDriverSpindle.SetMotor(false)",
          "IDriverClamp.GetClamp() -> true", "IDriverClamp.SetClamp(false)"}},
        {"cmdSpindleOff",
         false,
         false,
         {"IDriverSpindle.GetMotor() -> false", "IDriverClamp.GetClamp() -> false"}},
    };
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        panel.setDirectControlsShown(true);
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.button) + (c.motor ? " from running" : " from stopped"));
            handles().spindle->SetMotor(false);
            handles().clamp->SetClamp(c.clamp);
            handles().spindle->SetMotor(c.motor);
            harness.clearTrace();
            WindowHarness::click(panel, c.button);
            EXPECT_EQ(commandCalls(harness.trace()), c.calls);
        }
    });
    EXPECT_TRUE(harness.messages().empty());
}

TEST(OperationPanel, SpeedStepsThroughTheListWithinTheRange) {
    struct Case {
        std::int32_t from;
        SpeedRange range;
        const char* arrow;
        std::int32_t sent;
    };
    const Case cases[] = {
        {5000, {4000, 15000}, "down", 4200}, {5000, {4000, 15000}, "up", 7200},
        {4000, {4000, 15000}, "down", 4000}, {15000, {4000, 15000}, "up", 15000},
        {7200, {4000, 8000}, "up", 8000},
    };
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        QWidget& updn = WindowHarness::control(panel, "updnRpm");
        for (const Case& c : cases) {
            SCOPED_TRACE(std::to_string(c.from) + " " + c.arrow);
            handles().service->SetSpeedRange(c.range.min, c.range.max);
            handles().driver->SetSpindleSpeed(c.from);
            harness.clearTrace();
            QTest::mouseClick(updn.findChild<QAbstractButton*>(QString::fromLatin1(c.arrow)), Qt::LeftButton);
            const Lines calls = commandCalls(harness.trace());
            ASSERT_GE(calls.size(), 4U) << ::testing::PrintToString(harness.trace());
            EXPECT_EQ(calls[calls.size() - 2], "IDriver.SetSpindleSpeed(" + std::to_string(c.sent) + ")");
            EXPECT_EQ(fieldBox(panel, "usrRpm").text().toStdString(), std::to_string(c.sent));
        }
    });
    EXPECT_TRUE(harness.messages().empty());
}

TEST(OperationPanel, ATypedSpeedGoesToTheInstrumentWhichDecides) {
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        harness.clearTrace();
        enterValue(panel, "usrRpm", "5400");
        EXPECT_EQ(handles().driver->GetSpindleSpeed(), 5400);
        const Lines calls = harness.trace();
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "IDriver.SetSpindleSpeed(5400)"), 1)
            << "the field leaving the focus while the panel turns busy sends nothing more";

        enterValue(panel, "usrRpm", "20000");
        ASSERT_EQ(harness.messages().size(), 1U);
        EXPECT_NE(harness.messages()[0].text.find("20000 rpm is outside the range"), std::string::npos);
        EXPECT_EQ(handles().driver->GetSpindleSpeed(), 5400);
        EXPECT_EQ(fieldBox(panel, "usrRpm").text(), "5400")
            << "the refused speed gives way to the instrument's";
        expectUsable(panel, false);
    });
}

TEST(OperationPanel, PosFieldsStartThreePointZeroFiveMillimetresInsideTheMeasurementPositions) {
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        EXPECT_EQ(fieldBox(panel, "usrInnerRadius").text(), "12.00");
        EXPECT_EQ(fieldBox(panel, "usrOuterRadius").text(), "40.00");
        EXPECT_EQ(fieldBox(panel, "usrPos1Radius").text(), "15.05");
        EXPECT_EQ(fieldBox(panel, "usrPos2Radius").text(), "26.00");
        EXPECT_EQ(fieldBox(panel, "usrPos3Radius").text(), "36.95");

        loadHeads(panel);
        enterValue(panel, "usrPos2Radius", "20");
        harness.clearTrace();
        WindowHarness::click(panel, "cmdPos2");
        EXPECT_EQ(commandCalls(harness.trace()), Lines{"IDriverStage.MoveTo(0.02) -> 0.02"});
        harness.clearTrace();
        WindowHarness::click(panel, "cmdPosOuter");
        const Lines calls = withoutPolling(harness.trace());
        ASSERT_GE(calls.size(), 2U);
        EXPECT_EQ(calls[0], "IDriverService.GetMeasurementPosition(1) -> 0.04, " +
                                calls[0].substr(calls[0].rfind(' ') + 1));
        EXPECT_TRUE(calls[1].starts_with("IDriverStage.MoveTo(0.04)")) << calls[1];

        WindowHarness::click(panel, "cmdReset");
        EXPECT_EQ(fieldBox(panel, "usrPos2Radius").text(), "26.00") << "Reset restores the defaults";
    });
    EXPECT_TRUE(harness.messages().empty());
}

TEST(OperationPanel, EveryFailingCommandShowsOneMessageAndLeavesAUsablePanel) {
    struct Case {
        const char* button;
        const char* operation;
    };
    const Case cases[] = {
        {"cmdLoad", "IDriver.Load"},
        {"cmdUnload", "IDriver.Unload"},
        {"cmdReset", "IDriver.Reset"},
        {"cmdSpindleRun", "IDriverClamp.SetClamp"},
        {"cmdSpindleOff", "IDriverSpindle.GetMotor"},
        {"cmdHeadLoaderDn", "IDriverHeadLoader.SetHeadLoader"},
    };
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        panel.setDirectControlsShown(true);
        for (const Case& c : cases) {
            SCOPED_TRACE(c.button);
            harness.clearMessages();
            harness.sim().failOperation(c.operation, std::string(c.operation) + " refused");
            harness.clearTrace();
            WindowHarness::click(panel, c.button);
            ASSERT_EQ(harness.messages().size(), 1U);
            EXPECT_EQ(harness.messages()[0].text, std::string(c.operation) + " refused");
            EXPECT_TRUE(contains(harness.trace(), "IDriver.GetState()"))
                << "the state is refreshed all the same";
            expectUsable(panel, false);
        }
        // A spindle state that cannot be read shows as an undefined one.
        harness.clearMessages();
        harness.sim().failOperation("IDriverService.GetSpindleState", "no answer", -1);
        WindowHarness::click(panel, "cmdReset");
        EXPECT_EQ(textOf(panel, "txtSpindleState"), "");
        EXPECT_EQ(textOf(panel, "txtMediaChange"), "");
        EXPECT_TRUE(harness.messages().empty()) << "the failing read is not reported";
    });
}

TEST(OperationPanel, TheInterlockClosesThePanelAfterOneMessageAndPollingStops) {
    WindowHarness harness;
    int messages = 0;
    bool panelClosed = false;
    // A message box waits for the user: the event loop runs meanwhile and so would the timer.
    setMessageHandler([&](const std::string& text, const std::string&) {
        ++messages;
        EXPECT_EQ(text, "Interlock is detected.");
        QTest::qWait(frmIni::kPollMs * 3);
    });
    registerOperationWindows(menuWindows());
    harness.runSession([&](frmOpen& menu) {
        harness.whenActive<frmIni>([&](frmIni& panel) {
            // A failing read counts as no interlock.
            harness.sim().failOperation("IDriverInterlock.GetInterlock", "no answer", -1);
            QTest::qWait(frmIni::kPollMs * 3);
            EXPECT_TRUE(panel.isVisible());
            EXPECT_EQ(messages, 0);
            harness.sim().clearFailures();

            harness.sim().setInput(sim::Input::Interlock, true);
            panelClosed = QTest::qWaitFor([&] { return !panel.isVisible(); }, frmIni::kPollMs * 10);
        });
        WindowHarness::click(menu, "cmdInitialize");
        harness.clearTrace();
        QTest::qWait(frmIni::kPollMs * 3);
        EXPECT_FALSE(contains(harness.trace(), "IDriverInterlock")) << "no poll after the panel closed";
    });
    EXPECT_TRUE(panelClosed);
    EXPECT_EQ(messages, 1);
}

// The speed field gives up the focus when the panel turns busy: a speed typed but not committed is dropped
// then, whether the panel is closed with its close box or another command starts.
TEST(OperationPanel, ASpeedTypedButNotCommittedIsDroppedWhenThePanelTurnsBusy) {
    {
        SCOPED_TRACE("close box");
        WindowHarness harness;
        withPanel(harness, [&](frmIni& panel) {
            typeWithoutCommit(panel, "usrRpm", "5400");
            harness.clearTrace();
            clickCloseBox(panel);
            EXPECT_FALSE(panel.isVisible());
            EXPECT_EQ(spindleSpeedsSent(harness.trace()), Lines{});
            EXPECT_EQ(withoutPolling(harness.trace()), Lines{}) << "a closing panel reads nothing either";
        });
        EXPECT_TRUE(harness.messages().empty());
    }
    {
        SCOPED_TRACE("up arrow");
        WindowHarness harness;
        withPanel(harness, [&](frmIni& panel) {
            typeWithoutCommit(panel, "usrRpm", "5400");
            harness.clearTrace();
            QTest::mouseClick(WindowHarness::control(panel, "updnRpm").findChild<QAbstractButton*>("up"),
                              Qt::LeftButton);
            EXPECT_EQ(spindleSpeedsSent(harness.trace()), Lines{"IDriver.SetSpindleSpeed(10000)"})
                << "one step up from the instrument's 7200 rpm, and nothing else";
            EXPECT_EQ(fieldBox(panel, "usrRpm").text(), "10000");
            expectUsable(panel, false);
        });
        EXPECT_TRUE(harness.messages().empty());
    }
}

// While a command's error message is up the panel goes on polling; an interlock then closes the panel, and
// once everything has closed no wait cursor is left over.
TEST(OperationPanel, AnInterlockWhileACommandsErrorIsUpLeavesNoWaitCursor) {
    WindowHarness harness;
    Lines shown;
    setMessageHandler([&](const std::string& text, const std::string&) {
        shown.push_back(text);
        if (shown.size() == 1) {
            harness.sim().setInput(sim::Input::Interlock, true);
            QTest::qWait(frmIni::kPollMs * 3);
        }
    });
    withPanel(harness, [&](frmIni& panel) {
        harness.sim().failOperation("IDriver.Load", "Load refused");
        WindowHarness::click(panel, "cmdLoad");
        EXPECT_FALSE(panel.isVisible());
    });
    EXPECT_EQ(shown, (Lines{"Load refused", "Interlock is detected."}));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

// An interlock while a window opened from the panel is up ends the whole check: that window closes too,
// without a driver call of its own, then the panel, after one message; nothing polls afterwards.
template <class Neighbour> void interlockWhileOpen(const char* button) {
    SCOPED_TRACE(button);
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        harness.whenActive<Neighbour>([&](Neighbour& neighbour) {
            harness.clearTrace();
            harness.sim().setInput(sim::Input::Interlock, true);
            const bool closed = QTest::qWaitFor([&] { return !neighbour.isVisible(); }, frmIni::kPollMs * 10);
            EXPECT_TRUE(closed);
            if (!closed)
                WindowHarness::click(neighbour, "cmdReturn");
        });
        WindowHarness::click(panel, button);
        EXPECT_FALSE(panel.isVisible());
        const Lines calls = harness.trace();
        EXPECT_FALSE(calls.empty());
        for (const std::string& call : calls)
            EXPECT_TRUE(call.starts_with("IDriverInterlock.GetInterlock()")) << call;

        harness.clearTrace();
        QTest::qWait(frmIni::kPollMs * 3);
        EXPECT_FALSE(contains(harness.trace(), "IDriverInterlock")) << "no poll after the panel closed";
    });
    ASSERT_EQ(harness.messages().size(), 1U);
    EXPECT_EQ(harness.messages()[0].text, "Interlock is detected.");
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(OperationPanel, AnInterlockClosesTheWindowOpenedFromThePanelAndThenThePanel) {
    interlockWhileOpen<frmIniSetting>("cmdSetting");
    interlockWhileOpen<frmIniPiezo>("cmdPiezo");
    interlockWhileOpen<frmVersion>("cmdVersion");
}

TEST(OperationPanel, TheGestureShowsAndHidesTheDirectControls) {
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        const QPoint background(twipsToPixels(6650), twipsToPixels(3400));
        const auto gesture = [&](Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
            QTest::mouseClick(&panel, button, modifiers, background);
        };
        const int shortHeight = twipsToPixels(frmIni::kHeightTwips - 405);
        const int tallHeight = twipsToPixels(frmIni::kTallHeightTwips - 405);
        EXPECT_EQ(panel.height(), shortHeight);
        EXPECT_FALSE(WindowHarness::control(panel, "frmSpindleState").isVisible());

        gesture(Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier);
        gesture(Qt::RightButton, Qt::ShiftModifier);
        EXPECT_EQ(panel.height(), shortHeight) << "only the right button with Shift and Ctrl counts";

        gesture(Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier);
        EXPECT_EQ(panel.height(), tallHeight);
        EXPECT_TRUE(WindowHarness::control(panel, "frmSpindleState").isVisible());
        EXPECT_TRUE(WindowHarness::control(panel, "frmHeadLoader").isVisible());
        EXPECT_TRUE(panel.rect().contains(WindowHarness::control(panel, "frmHeadLoader").geometry()));

        gesture(Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier);
        EXPECT_EQ(panel.height(), shortHeight);
        EXPECT_FALSE(WindowHarness::control(panel, "frmHeadLoader").isVisible());
    });
}

// Watches the spindle motor command as the instrument receives it.
class WatchedSpindle : public IDriverSpindle {
public:
    WatchedSpindle(std::shared_ptr<IDriverSpindle> inner, std::function<void()> onSetMotor)
        : inner_(std::move(inner)), onSetMotor_(std::move(onSetMotor)) {}
    bool GetMotor() override { return inner_->GetMotor(); }
    void SetMotor(bool on) override {
        onSetMotor_();
        inner_->SetMotor(on);
    }
    std::int32_t GetRotation() override { return inner_->GetRotation(); }

private:
    std::shared_ptr<IDriverSpindle> inner_;
    std::function<void()> onSetMotor_;
};

// Counts the paint events a widget receives.
class PaintCounter : public QObject {
public:
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

TEST(OperationPanel, WhileTheInstrumentWorksThePanelShowsItIsBusy) {
    WindowHarness harness;
    withPanel(harness, [&](frmIni& panel) {
        harness.sim().setDelays(true);
        PaintCounter painted;
        QWidget& runButton = WindowHarness::control(panel, "cmdLoad");
        runButton.installEventFilter(&painted);
        bool disabled = false, waitCursor = false;
        int paintsBeforeCall = 0;
        const std::shared_ptr<IDriverSpindle> spindle = handles().spindle;
        handles().spindle = std::make_shared<WatchedSpindle>(spindle, [&] {
            disabled = !runButton.isEnabled();
            waitCursor = WindowHarness::waitCursorShown();
            paintsBeforeCall = painted.paints;
        });
        panel.setDirectControlsShown(true);
        WindowHarness::click(panel, "cmdSpindleRun");
        handles().spindle = spindle;
        harness.sim().setDelays(false);
        EXPECT_TRUE(disabled);
        EXPECT_TRUE(waitCursor);
        EXPECT_GT(paintsBeforeCall, 0) << "the disabled panel is painted before the instrument is commanded";
        expectUsable(panel, false);
        EXPECT_EQ(textOf(panel, "txtMotor"), "Motor On");
    });
    EXPECT_TRUE(harness.messages().empty());
}

} // namespace
} // namespace vss

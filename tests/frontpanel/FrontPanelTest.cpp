// The front panel plays the instrument's side while the tool's windows are up: its switches and failures
// reach the tool only through the driver, its scenarios and memory reset refuse what is wrong, and a real
// driver has no front panel.

#include "app/frmOpen.h"
#include "driver/DriverError.h"
#include "simulator/Factory.h"
#include "simulator/SimulatedInstrument.h"
#include "kit/Messages.h"
#include "kit/modGlobal.h"
#include "operation/OperationWindows.h"
#include "operation/frmIni.h"
#include "frontpanel/frmSimPanel.h"
#include "tests/support/WindowHarness.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vss {
namespace {

using testing::SessionHarness;
using testing::WindowHarness;

// A shown front panel on the harness's instrument whose messages and questions are kept and answered here.
struct Panel {
    explicit Panel(std::shared_ptr<sim::SimInstrument> instrument) : window(std::move(instrument)) {
        window.setPrompts({
            [this](const QString& text) { told.push_back(text.toStdString()); },
            [this](const QString&) { return confirm; },
            [this] { return scenario; },
        });
        window.show();
    }
    std::string text(const char* name) {
        return WindowHarness::control<QLineEdit>(window, name).text().toStdString();
    }
    // A failure entered in the panel's fields; repeat: 0 once, 1 N times, 2 until cleared.
    void enterFailure(const QString& operation, int repeat, const QString& count, const QString& message) {
        auto& op = WindowHarness::control<QComboBox>(window, "cboOperation");
        op.lineEdit()->selectAll();
        QTest::keyClicks(op.lineEdit(), operation);
        WindowHarness::control<QComboBox>(window, "cboRepeat").setCurrentIndex(repeat);
        WindowHarness::control<QLineEdit>(window, "txtCount").setText(count);
        WindowHarness::control<QLineEdit>(window, "txtFailText").setText(message);
        WindowHarness::click(window, "cmdFail");
    }

    frmSimPanel window;
    std::vector<std::string> told;
    bool confirm = false;
    QString scenario;
};

std::shared_ptr<sim::SimInstrument> harnessInstrument() {
    return simulatedInstrument(globals().driverOptions);
}

// Runs `during` with the operation panel up, opened as an operator opens it.
void withOperationCheck(SessionHarness& harness, const std::function<void(frmIni&)>& during) {
    registerOperationWindows(menuWindows());
    harness.runSession([&](frmOpen& menu) {
        harness.whenActive<frmIni>([&](frmIni& check) {
            during(check);
            if (check.isVisible())
                WindowHarness::click(check, "cmdReturn");
        });
        WindowHarness::click(menu, "cmdInitialize");
    });
}

TEST(FrontPanel, TheInterlockSwitchedOnThePanelClosesTheOperationCheckAfterOneMessage) {
    SessionHarness harness;
    Panel panel(harnessInstrument());
    std::vector<std::string> shown;
    setMessageHandler([&](const std::string& text, const std::string&) {
        shown.push_back(text);
        QTest::qWait(frmIni::kPollMs * 3); // a message waits for the user while both windows go on polling
    });
    bool closed = false;
    withOperationCheck(harness, [&](frmIni& check) {
        // Modal to the menu it was opened from, not to the application: the front panel stays usable.
        EXPECT_EQ(check.windowModality(), Qt::WindowModal);
        EXPECT_FALSE(panel.window.isAncestorOf(&check));
        // A click the window system delivers, which a blocked window would not get.
        auto& interlock = WindowHarness::control<QCheckBox>(panel.window, "chkInput_0");
        QTest::mouseClick(panel.window.windowHandle(), Qt::LeftButton, {},
                          interlock.mapTo(&panel.window, WindowHarness::clickPoint(interlock)));
        closed = QTest::qWaitFor([&] { return !check.isVisible(); }, frmIni::kPollMs * 10);
    });
    EXPECT_TRUE(closed);
    EXPECT_EQ(shown, std::vector<std::string>{"Interlock is detected."});
    EXPECT_TRUE(WindowHarness::control<QCheckBox>(panel.window, "chkInput_0").isChecked());
}

TEST(FrontPanel, AFailureSetOnThePanelReachesTheCallingWindowsMessagesAsOftenAsAsked) {
    struct Case {
        int repeat;
        QString count;
        int failedRuns; // of four clicks on Run
    };
    for (const Case& c : {Case{0, {}, 1}, Case{1, QStringLiteral("2"), 2}, Case{2, {}, 4}}) {
        SCOPED_TRACE(c.repeat);
        SessionHarness harness;
        Panel panel(harnessInstrument());
        withOperationCheck(harness, [&](frmIni& check) {
            panel.enterFailure(QStringLiteral("IDriverClamp.SetClamp"), c.repeat, c.count,
                               QStringLiteral("Clamp jammed (drill)"));
            EXPECT_EQ(panel.told, std::vector<std::string>{});
            for (int click = 0; click < 4; ++click)
                WindowHarness::click(check, "cmdSpindleRun");
            EXPECT_EQ(harness.messages().size(), static_cast<std::size_t>(c.failedRuns));
            for (const auto& m : harness.messages())
                EXPECT_EQ(m.text, "Clamp jammed (drill)");
            if (c.repeat == 2) { // until cleared: Clear on the panel ends it
                WindowHarness::click(panel.window, "cmdClear");
                WindowHarness::click(check, "cmdSpindleRun");
                EXPECT_EQ(harness.messages().size(), 4u);
            }
            // The panel follows what the tool did to the instrument.
            EXPECT_TRUE(QTest::qWaitFor([&] { return panel.text("txtSpindle") == "RUN"; }, 1000));
            EXPECT_EQ(panel.text("txtClamp"), "ON");
            EXPECT_EQ(panel.text("txtState"), "0x2214 HOME(RUN)");
        });
    }
}

TEST(FrontPanel, AWrongFailureIsRefusedWithAClearMessageAndSetsNothing) {
    struct Case {
        QString operation;
        int repeat;
        QString count;
        QString text;
        std::string says;
    };
    const std::vector<Case> cases{
        {QStringLiteral("IDriver.Lode"), 0, {}, QStringLiteral("x"), "unknown operation \"IDriver.Lode\""},
        {QStringLiteral("IDriver.Load"), 1, QStringLiteral("-1"), QStringLiteral("x"), "the count \"-1\""},
        {QStringLiteral("IDriver.Load"), 1, QStringLiteral("lots"), QStringLiteral("x"),
         "the count \"lots\""},
        {QStringLiteral("IDriver.Load"), 0, {}, {}, "the failure's text is empty"},
        {QStringLiteral("IDriver.Load"), 0, {}, QString(501, QLatin1Char('x')), "500 at most"},
    };
    auto instrument = std::make_shared<sim::SimInstrument>(sim::SimOptions{":memory:"});
    Panel panel(instrument);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.says);
        panel.told.clear();
        panel.enterFailure(c.operation, c.repeat, c.count, c.text);
        ASSERT_EQ(panel.told.size(), 1u);
        EXPECT_EQ(panel.told[0].rfind("Cannot set the failure: ", 0), 0u) << panel.told[0];
        EXPECT_NE(panel.told[0].find(c.says), std::string::npos) << panel.told[0];
        EXPECT_TRUE(instrument->failures().empty());
    }
}

TEST(FrontPanel, AScenarioLoadedOnThePanelIsRefusedWithItsLineOrPlayed) {
    const auto dir = std::filesystem::temp_directory_path();
    const auto bad = dir / "vss-panel-bad.txt";
    const auto good = dir / "vss-panel-good.txt";
    std::ofstream(bad) << "after 1s: set emergency on\nafter 1s: fail IDriver.Load 2 times\n";
    std::ofstream(good) << "after 0ms: set emergency on\n";
    auto instrument = std::make_shared<sim::SimInstrument>(sim::SimOptions{":memory:"});
    Panel panel(instrument);

    panel.scenario = QString::fromStdString(bad.string());
    WindowHarness::click(panel.window, "cmdLoadScenario");
    ASSERT_EQ(panel.told.size(), 1u);
    EXPECT_EQ(panel.told[0].rfind(bad.string() + ", line 2: ", 0), 0u) << panel.told[0];
    EXPECT_EQ(panel.text("txtScenario"), "none");

    panel.scenario = QString::fromStdString(good.string());
    WindowHarness::click(panel.window, "cmdLoadScenario");
    // Without a driver call, the panel's own timer plays the timed step.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return WindowHarness::control<QCheckBox>(panel.window, "chkInput_1").isChecked(); }, 1000));
    EXPECT_EQ(panel.text("txtScenario"), good.string() + ": 1 of 1 steps done");
    EXPECT_EQ(panel.told.size(), 1u);
    std::filesystem::remove(bad);
    std::filesystem::remove(good);
}

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(FrontPanel, TheMemoryIsResetOnlyAfterTheConfirmation) {
    const auto file = std::filesystem::temp_directory_path() / "vss-panel-memory.txt";
    std::filesystem::remove(file);
    auto instrument =
        std::make_shared<sim::SimInstrument>(sim::SimOptions{file.string(), false, true, {}, true});
    const auto object = instrument->createObject();
    const auto service = QueryInterface<IDriverService>(*object);
    QueryInterface<IDriver>(*object)->Open(std::string(kDefaultResource));
    service->BeginService();
    const SpeedRange factory = service->GetSpeedRange();
    service->SetSpeedRange(factory.min, factory.max - 1000);
    service->SaveSpindleProperty();
    const std::string saved = contentsOf(file);

    Panel panel(instrument);
    WindowHarness::click(panel.window, "cmdResetMemory");
    EXPECT_EQ(contentsOf(file), saved) << "not confirmed: the memory file is left alone";
    EXPECT_TRUE(panel.told.empty());

    panel.confirm = true;
    WindowHarness::click(panel.window, "cmdResetMemory");
    service->RecallSpindleProperty();
    EXPECT_EQ(service->GetSpeedRange().max, factory.max);
    EXPECT_EQ(panel.told.size(), 1u);
    QueryInterface<IDriver>(*object)->Close();
    std::filesystem::remove(file);
    std::filesystem::remove(file.string() + ".working");
}

TEST(FrontPanel, ARealDriverShowsNoFrontPanelAndTakesNoScenario) {
    auto registered = sim::SimInstrument(sim::SimOptions{":memory:"}).createObject();
    setPlatformResolver([&](std::string_view) { return registered; });
    DriverOptions options;
    EXPECT_EQ(frontPanelFor(options), nullptr);
    options.simScenario = "drill.txt";
    EXPECT_THROW(frontPanelFor(options), DriverError);
    setPlatformResolver(nullptr);
    options.simScenario.clear();
    options.simulator = std::make_shared<sim::SimInstrument>(sim::SimOptions{":memory:"});
    EXPECT_NE(frontPanelFor(options), nullptr)
        << "where no driver is registered, the simulator has its panel";
}

} // namespace
} // namespace vss

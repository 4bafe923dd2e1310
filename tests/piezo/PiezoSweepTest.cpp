// The failure sweep of the piezo windows: every handler that talks to the instrument, with each driver
// operation it calls failing in turn, ends in the failure's one message (Export and Import end without one)
// and leaves a usable window. The adjust window's balance poll swallows its failures and is not swept.
// Opening a window whose reads fail reports the failure once and does not show the window.

#include "kit/Messages.h"
#include "kit/modGlobal.h"
#include "piezo/frmFacPiezo.h"
#include "piezo/frmFacPiezoControl.h"
#include "piezo/frmPiezoAdjust.h"
#include "piezo/frmSerPiezo.h"
#include "storage/modConfigFile.h"
#include "tests/piezo/PiezoTestSupport.h"
#include "tests/support/FailureSweep.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace vss {
namespace {

using testing::enterValue;
using testing::FailureEnds;
using testing::SweptHandler;
using testing::WindowHarness;

SweptHandler clicking(std::string name, const char* button, std::string edits = {}) {
    return {.name = std::move(name),
            .run = [button](WindowHarness&, Form& w) { WindowHarness::click(w, button); },
            .edits = std::move(edits)};
}

// Types a value that differs from run to run: a value equal to the one shown writes nothing.
SweptHandler entering(std::string name, const char* field, std::function<QString(int run)> value) {
    auto runs = std::make_shared<int>(0);
    return {.name = std::move(name),
            .run = [field, value, runs](WindowHarness&, Form& w) { enterValue(w, field, value(++*runs)); },
            .edits = field};
}

SweptHandler transferring(std::string name, const char* button, std::string file) {
    return {std::move(name),
            [button, file](WindowHarness& h, Form& w) {
                h.answerFileDialog(file);
                WindowHarness::click(w, button);
            },
            FailureEnds::Transfer};
}

template <class W> FormFactory factory() {
    return [](QWidget* parent) { return std::make_unique<W>(parent); };
}

class PiezoSweep : public ::testing::Test {
protected:
    PiezoSweep() {
        harness.openSession();
        ExportGroup(SettingGroup::PiezoData, piezoFile, handles(), messageSink());
        ExportGroup(SettingGroup::PiezoControlData, controlFile, handles(), messageSink());
    }
    WindowHarness harness;
    QTemporaryDir dir;
    std::string exported = dir.filePath(QStringLiteral("export.csv")).toStdString();
    std::string piezoFile = dir.filePath(QStringLiteral("piezo.csv")).toStdString();
    std::string controlFile = dir.filePath(QStringLiteral("control.csv")).toStdString();
};

TEST_F(PiezoSweep, PiezoDataAndControlData) {
    const std::vector<SweptHandler> piezo{
        entering("Serial", "usrPiezoSerial", [](int run) { return QStringLiteral("PZ-%1").arg(run); }),
        entering("Adjust", "usrAdjust_1", [](int run) { return QString::number(2000 + run); }),
        entering("Range", "usrVmin", [](int run) { return QString::number(run); }),
        entering("Coefficient", "usrCalCoef_1",
                 [](int run) { return QStringLiteral("4.%1E-8").arg(run + 1); }),
        {"Advanced",
         [](WindowHarness& h, Form& w) {
             h.whenActive<frmFacPiezoControl>(
                 [](frmFacPiezoControl& control) { WindowHarness::click(control, "cmdOK"); });
             WindowHarness::click(w, "cmdAdvanced");
         }},
        clicking("Save", "cmdSave"),
        clicking("Recall", "cmdRecall"),
        transferring("Export", "cmdExport", exported),
        transferring("Import", "cmdImport", piezoFile),
    };
    int cases = testing::sweepFailures(harness, factory<frmFacPiezo>(), piezo);

    const std::vector<SweptHandler> control{
        entering("Control value", "usrCtrlTa_1", [](int run) { return QStringLiteral("0.00%1").arg(run); }),
        clicking("Cancel", "cmdCancel"),
        transferring("Export", "cmdExport", exported),
        transferring("Import", "cmdImport", controlFile),
    };
    cases += testing::sweepFailures(harness, factory<frmFacPiezoControl>(), control);
    EXPECT_GT(cases, 25);
}

TEST_F(PiezoSweep, AdjustAndInformation) {
    const std::vector<SweptHandler> adjust{
        clicking("Loop", "chkPiezoLoop", "chkPiezoLoop"),
        entering("Adjust", "usrAdjust_0", [](int run) { return QString::number(2040 + run); }),
        transferring("Export", "cmdExport", exported),
        transferring("Import", "cmdImport", piezoFile),
    };
    int cases = testing::sweepFailures(harness, factory<frmPiezoAdjust>(), adjust,
                                       {.ignored = {"IDriverService.GetPiezoBalanced"}});
    cases += testing::sweepFailures(harness, factory<frmSerPiezo>(),
                                    {transferring("Export", "cmdExport", exported)});
    EXPECT_GT(cases, 10);
}

TEST_F(PiezoSweep, AReadFailingWhileOpeningIsReportedOnceAndTheWindowIsNotShown) {
    const std::vector<std::pair<const char*, FormFactory>> windows{
        {"frmFacPiezo", factory<frmFacPiezo>()},
        {"frmFacPiezoControl", factory<frmFacPiezoControl>()},
        {"frmPiezoAdjust", factory<frmPiezoAdjust>()},
        {"frmSerPiezo", factory<frmSerPiezo>()},
    };
    for (const auto& [name, make] : windows) {
        harness.clearTrace();
        make(nullptr);
        for (const std::string& op : testing::operationsOf(harness.trace())) {
            SCOPED_TRACE(std::string(name) + " with " + op + " failing");
            harness.clearMessages();
            harness.whenActive<Form>([](Form& w) { w.close(); });
            harness.sim().failOperation(op, "Opening: " + op, 1);
            harness.showModal(make);
            ASSERT_EQ(harness.messages().size(), 1U);
            EXPECT_EQ(harness.messages()[0].text, "Opening: " + op);
            EXPECT_TRUE(harness.stepsPending()) << "the window was shown";
            harness.dropSteps();
            harness.sim().clearFailures();
        }
    }
}

} // namespace
} // namespace vss

// The piezo windows with real clicks and keys on the simulated instrument: what each edit sends, what the
// windows show afterwards, the restore on "Cancel", the balance poll and the information report.

#include "driver/Types.h"
#include "kit/Messages.h"
#include "kit/modGlobal.h"
#include "piezo/frmFacPiezo.h"
#include "piezo/frmFacPiezoControl.h"
#include "piezo/frmPiezoAdjust.h"
#include "piezo/frmSerPiezo.h"
#include "storage/modConfigFile.h"
#include "tests/piezo/PiezoTestSupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QTableWidget>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace vss {
namespace {

using testing::contains;
using testing::enterValue;
using testing::fieldBox;
using testing::Lines;
using testing::shownText;
using testing::WindowHarness;
using testing::withWindow;
using testing::writes;

IDriverService& service() {
    return *handles().service;
}

std::string fileText(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().toStdString();
}

void writeFile(const std::string& path, const char* text) {
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

class PiezoWindows : public ::testing::Test {
protected:
    PiezoWindows() { harness.openSession(); }
    WindowHarness harness;
    QTemporaryDir dir;
    std::string path(const char* name) const { return dir.filePath(QString::fromLatin1(name)).toStdString(); }
};

// ---- piezo data

TEST_F(PiezoWindows, ACalibrationEditWritesTheWholeSetInOneCallAndTextIsNotTaken) {
    const PiezoCalCoef before = service().GetPiezoCalCoef();
    withWindow<frmFacPiezo>(harness, [&](frmFacPiezo& w) {
        EXPECT_EQ(w.windowTitle(), "Piezo Data (Factory use only)");
        EXPECT_EQ(WindowHarness::control<userProperty>(w, "usrCalCoef_2").Caption(), "K2");
        EXPECT_EQ(WindowHarness::control<userProperty>(w, "usrAdjust_5").Caption(), "Drift");

        harness.clearTrace();
        enterValue(w, "usrCalCoef_2", "-2E-11");
        const Lines sent = writes(harness.trace());
        ASSERT_EQ(sent.size(), 1U) << "one write, also with the busy bracket taking the focus";
        // the calibration goes out whole: the ranges, then every coefficient
        EXPECT_EQ(sent[0], "IDriverService.SetPiezoCalCoef(0, 100, 0, 4e-06, [0, 4.1e-08, -2e-11, 0, 0])");
        PiezoCalCoef expected = before;
        expected.coef[2] = -2e-11;
        EXPECT_EQ(service().GetPiezoCalCoef(), expected);

        harness.clearTrace();
        enterValue(w, "usrVmax", "abc");
        EXPECT_DOUBLE_EQ(WindowHarness::control<userText>(w, "usrVmax").Value().dbl(), 100.0)
            << "text typed into a number keeps the value";
        EXPECT_EQ(service().GetPiezoCalCoef(), expected);
        enterValue(w, "usrVmax", "120");
        EXPECT_EQ(service().GetPiezoCalCoef().vmax, 120.0);
        EXPECT_EQ(service().GetPiezoCalCoef().coef, expected.coef);

        harness.clearTrace();
        fieldBox(w, "usrVmin").setFocus();
        for (int i = 0; i < 10; ++i)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_TRUE(writes(harness.trace()).empty())
            << "the keyboard passing through the fields writes nothing";
    });
    EXPECT_TRUE(harness.messages().empty());
}

TEST_F(PiezoWindows, AnAdjustEditShowsWhatTheInstrumentKeptAndTheSerialIsWrittenAsText) {
    withWindow<frmFacPiezo>(harness, [&](frmFacPiezo& w) {
        enterValue(w, "usrPiezoSerial", "PZ-1234");
        EXPECT_EQ(service().GetPiezoSerial(), "PZ-1234");
        WindowHarness::click(w, "cmdRecall");
        EXPECT_EQ(shownText(w, "usrPiezoSerial"), "PZ-0815") << "recalled from the non-volatile memory";

        harness.clearTrace();
        enterValue(w, "usrAdjust_4", "3000");
        EXPECT_EQ(writes(harness.trace()), (Lines{"IDriverService.SetPiezoAdjust(4, 3000)"}));
        EXPECT_TRUE(contains(harness.trace(), "IDriverService.GetPiezoAdjust(4)")) << "read back";
        EXPECT_EQ(shownText(w, "usrAdjust_4"), "2047") << "the bias DAC keeps its top count";
        EXPECT_TRUE(harness.messages().empty());

        enterValue(w, "usrAdjust_0", "5000");
        ASSERT_EQ(harness.messages().size(), 1U) << "out of the DAC's range";
        EXPECT_EQ(shownText(w, "usrAdjust_0"), "2048") << "the instrument's value, read back";
        EXPECT_EQ(service().GetPiezoAdjust(0), 2048);
    });
}

// A driver that numbers its lists from 1: field i shows the point of index i, so field 0 has no point and is
// hidden, and no index outside the list reaches the driver.
TEST(PiezoWindowsOnOneBasedLists, EveryFieldShowsThePointOfItsIndex) {
    WindowHarness harness(sim::SimOptions{.statePath = ":memory:", .listLower = 1});
    harness.openSession();
    service().SetPiezoAdjust(1, 1001);
    service().SetPiezoAdjust(4, 1004);
    auto fieldsShowTheirPoints = [&](QWidget& w) {
        EXPECT_FALSE(WindowHarness::control(w, "usrAdjust_0").isVisible());
        EXPECT_EQ(WindowHarness::control<userProperty>(w, "usrAdjust_1").Caption(), "Zero");
        EXPECT_EQ(shownText(w, "usrAdjust_1"), "1001");
        EXPECT_EQ(WindowHarness::control<userProperty>(w, "usrAdjust_4").Caption(), "Offset Y");
        EXPECT_EQ(shownText(w, "usrAdjust_4"), "1004");
    };
    withWindow<frmFacPiezo>(harness, [&](frmFacPiezo& w) {
        fieldsShowTheirPoints(w);
        EXPECT_EQ(WindowHarness::control<userProperty>(w, "usrAdjust_5").Caption(), "Bias");
        harness.clearTrace();
        enterValue(w, "usrAdjust_5", "3000");
        EXPECT_EQ(writes(harness.trace()), (Lines{"IDriverService.SetPiezoAdjust(5, 3000)"}));
        EXPECT_EQ(shownText(w, "usrAdjust_5"), "2047") << "read back from the same point";
        EXPECT_EQ(WindowHarness::control<userProperty>(w, "usrCalCoef_0").Caption(), "K0")
            << "the coefficients pair with their names by position";
    });
    withWindow<frmPiezoAdjust>(harness, [&](frmPiezoAdjust& w) { fieldsShowTheirPoints(w); });
    EXPECT_FALSE(contains(harness.trace(), "GetPiezoAdjust(0)"));
    EXPECT_TRUE(harness.messages().empty());
}

TEST_F(PiezoWindows, ControlDataIsReadOnlyHereAndShowsWhatAdvancedWrote) {
    withWindow<frmFacPiezo>(harness, [&](frmFacPiezo& w) {
        EXPECT_TRUE(fieldBox(w, "usrCtrlKs_1").isReadOnly());
        EXPECT_EQ(shownText(w, "usrCtrlTa_0"), "2.000E-3");
        harness.whenActive<frmFacPiezoControl>([](frmFacPiezoControl& control) {
            enterValue(control, "usrCtrlTa_0", "0.003");
            WindowHarness::click(control, "cmdOK");
        });
        WindowHarness::click(w, "cmdAdvanced");
        EXPECT_EQ(service().GetPiezoControlData().ta, (std::vector<double>{0.003, 0.005}));
        EXPECT_EQ(shownText(w, "usrCtrlTa_0"), "3.000E-3");
    });
    EXPECT_TRUE(harness.messages().empty());
}

// ---- control data

TEST_F(PiezoWindows, CancelPutsBackWhatTheInstrumentHeldAfterEditsAndAnImport) {
    PiezoControlData opened = service().GetPiezoControlData();
    opened.lth[1] = 7e-9;
    opened.tstep[1] = 3e-4;
    PiezoControlData other = opened;
    other.ks = {2e-4, 6e-5};
    service().SetPiezoControlData(other);
    ExportGroup(SettingGroup::PiezoControlData, path("control.csv"), handles(), messageSink());
    service().SetPiezoControlData(opened);

    withWindow<frmFacPiezoControl>(harness, [&](frmFacPiezoControl& w) {
        EXPECT_FALSE(WindowHarness::control(w, "usrCtrlLth_1").isVisible());
        EXPECT_FALSE(WindowHarness::control(w, "usrCtrlTstep_1").isVisible());
        harness.clearTrace();
        enterValue(w, "usrCtrlLstep_1", "3E-8");
        EXPECT_EQ(writes(harness.trace()),
                  (Lines{"IDriverService.SetPiezoControlData([5e-08, 7e-09], [0.002, 0.005], [1e-04, 5e-05], "
                         "[1e-08, 3e-08], [0.001, 3e-04])"}))
            << "the hidden rows go back as they were";
        harness.answerFileDialog(path("control.csv"));
        WindowHarness::click(w, "cmdImport");
        EXPECT_EQ(service().GetPiezoControlData().ks, other.ks);
        EXPECT_EQ(shownText(w, "usrCtrlKs_0"), "200.0E-6") << "refreshed after the import";
        WindowHarness::click(w, "cmdCancel");
        EXPECT_FALSE(w.isVisible());
    });
    EXPECT_EQ(service().GetPiezoControlData(), opened);
    EXPECT_EQ(harness.fileDialogs().back().title, "Import Piezo Control Data");
    EXPECT_TRUE(harness.messages().empty());
}

// ---- DAC adjust

TEST_F(PiezoWindows, AFailingBalanceQueryShowsUnbalanceWithoutAMessageAndReturnEndsThePolling) {
    withWindow<frmPiezoAdjust>(harness, [&](frmPiezoAdjust& w) {
        auto& loop = WindowHarness::control<QCheckBox>(w, "chkPiezoLoop");
        EXPECT_FALSE(loop.isChecked());
        QTest::mouseClick(&loop, Qt::LeftButton);
        EXPECT_TRUE(service().GetPiezoLoop());
        QTest::qWait(500);
        EXPECT_EQ(WindowHarness::control<QLineEdit>(w, "txtBalanced").text(), "Balanced");

        harness.sim().failOperation("IDriverService.GetPiezoBalanced", "The loop does not answer.", -1);
        QTest::qWait(500);
        EXPECT_EQ(WindowHarness::control<QLineEdit>(w, "txtBalanced").text(), "Unbalance");
        EXPECT_TRUE(harness.messages().empty());
        harness.sim().clearFailures();

        WindowHarness::click(w, "cmdReturn");
        harness.clearTrace();
        QTest::qWait(3 * PollingForm::kPollMs);
        EXPECT_FALSE(contains(harness.trace(), "GetPiezoBalanced")) << "a poll after Return";
    });
}

TEST_F(PiezoWindows, ImportingAdjustDataFromAPiezoDataFileRefreshesTheValuesAndTheLoop) {
    for (std::int16_t i = 0; i < 6; ++i)
        service().SetPiezoAdjust(i, 1000 + i);
    ExportGroup(SettingGroup::PiezoData, path("piezo.csv"), handles(), messageSink());
    for (std::int16_t i = 0; i < 6; ++i)
        service().SetPiezoAdjust(i, 2048);

    withWindow<frmPiezoAdjust>(harness, [&](frmPiezoAdjust& w) {
        EXPECT_EQ(WindowHarness::control<userProperty>(w, "usrAdjust_4").Caption(), "Bias");
        service().SetPiezoLoop(true); // changed behind the window: the import's refresh shows it
        harness.answerFileDialog(path("piezo.csv"));
        WindowHarness::click(w, "cmdImport");
        EXPECT_EQ(shownText(w, "usrAdjust_0"), "1000");
        EXPECT_EQ(shownText(w, "usrAdjust_4"), "1004");
        EXPECT_TRUE(WindowHarness::control<QCheckBox>(w, "chkPiezoLoop").isChecked());
        EXPECT_EQ(service().GetPiezoAdjust(5), 1005) << "the file's points, beyond the window's rows too";

        enterValue(w, "usrAdjust_4", "4000");
        EXPECT_EQ(shownText(w, "usrAdjust_4"), "2047");
    });
    EXPECT_EQ(harness.fileDialogs().back().title, "Import Piezo Adjust Data");
    EXPECT_TRUE(harness.messages().empty());
}

// ---- information report

TEST_F(PiezoWindows, TheReportGridsHoldOneRowPerPointAndEachValueWithItsUnit) {
    PiezoControlData control = service().GetPiezoControlData();
    control.lth[0] = 0.5;
    service().SetPiezoControlData(control);
    withWindow<frmSerPiezo>(harness, [&](frmSerPiezo& w) {
        EXPECT_EQ(w.windowTitle(), "Velkor Spinstand Tool : Piezo Information");
        EXPECT_EQ(shownText(w, "usrSerial"), "PZ-0815");
        auto& cal = WindowHarness::control<QTableWidget>(w, "grdPiezoCal");
        const auto points = service().GetPiezoCalData().volt.size();
        ASSERT_EQ(cal.rowCount(), static_cast<int>(points) + 1) << "upper bound + 2";
        const auto cell = [](QTableWidget& grid, int r, int c) {
            return grid.item(r, c) ? grid.item(r, c)->text().toStdString() : std::string("(none)");
        };
        EXPECT_EQ(cell(cal, 0, 0), "Volt(V)");
        EXPECT_EQ(cell(cal, 1, 0), "0.000");
        EXPECT_EQ(cell(cal, 11, 0), "100.0");
        EXPECT_EQ(cell(cal, 11, 1), "4.000E-6");

        auto& grid = WindowHarness::control<QTableWidget>(w, "grdPiezoControl");
        ASSERT_EQ(grid.rowCount(), 5);
        EXPECT_EQ(grid.verticalHeaderItem(4)->text(), "Tstep");
        EXPECT_EQ(cell(grid, 0, 0), "500.0E-3m");
        EXPECT_EQ(cell(grid, 2, 1), "50.00E-6m/s");

        harness.answerFileDialog(path("info.csv"));
        harness.clearTrace();
        WindowHarness::click(w, "cmdExport");
        EXPECT_TRUE(writes(harness.trace()).empty());
    });
    EXPECT_EQ(harness.fileDialogs().back().title, "Export Piezo Information");
    const std::string report = fileText(path("info.csv"));
    EXPECT_NE(report.find("Piezo Information"), std::string::npos);
    EXPECT_NE(report.find("%PiezoCalData"), std::string::npos);
}

// ---- bad input

TEST_F(PiezoWindows, AMalformedPiezoFileNeverWritesInventedCalibration) {
    const char* files[] = {
        // a huge count with two coefficients
        "%PiezoCalCoef\r\n\"Volt\",0,50,\r\n\"Position\",0,2E-6,\r\n\"Nop\",30000,\r\n\"Coef\",1,2,\r\n",
        // a negative count
        "%PiezoCalCoef\r\n\"Volt\",0,50,\r\n\"Position\",0,2E-6,\r\n\"Nop\",-5,\r\n\"Coef\",1,2,3,4,5,\r\n",
        // fewer values than announced, then the next section
        "%PiezoCalCoef\r\n\"Volt\",0,50,\r\n\"Position\",0,2E-6,\r\n\"Nop\",5,\r\n\"Coef\",1,2,\r\n"
        "%PiezoAdjust\r\n\"Nop\",6,\r\n\"DAC\",1,2,3,4,5,6,\r\n",
    };
    const PiezoCalCoef before = service().GetPiezoCalCoef();
    withWindow<frmFacPiezo>(harness, [&](frmFacPiezo& w) {
        for (const char* text : files) {
            SCOPED_TRACE(text);
            writeFile(path("bad.csv"), text);
            harness.clearMessages();
            harness.answerFileDialog(path("bad.csv"));
            WindowHarness::click(w, "cmdImport");
            EXPECT_EQ(service().GetPiezoCalCoef(), before);
            for (const auto& m : harness.messages())
                EXPECT_EQ(m.title, "error") << m.text;
            EXPECT_EQ(shownText(w, "usrVmax"), "100.0");
            for (QWidget* c : w.controls())
                EXPECT_TRUE(c->isEnabled()) << c->objectName().toStdString();
        }
    });
}

} // namespace
} // namespace vss

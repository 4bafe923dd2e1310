// The windows the operation panel opens, and the version window from the factory menu, with real events on
// the simulated instrument.

#include "app/frmFac.h"
#include "kit/frmVersion.h"
#include "kit/modGlobal.h"
#include "operation/frmIniPiezo.h"
#include "operation/frmIniSetting.h"
#include "tests/operation/OperationHarness.h"

#include <QCheckBox>
#include <QComboBox>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace vss {
namespace {

using testing::contains;
using testing::enterValue;
using testing::fieldBox;
using testing::textOf;
using testing::writes;
using WindowHarness = testing::SessionHarness;
using testing::withPanel;
using Lines = std::vector<std::string>;

// Runs `during` with a window the panel opens with one of its buttons.
template <class W>
void fromPanel(WindowHarness& harness, const char* button, std::function<void(W&)> during) {
    withPanel(harness, [&](frmIni& panel) {
        harness.whenActive<W>([&](W& window) {
            during(window);
            if (window.isVisible())
                WindowHarness::click(window, "cmdReturn");
        });
        WindowHarness::click(panel, button);
    });
}

TEST(MeasurementSettings, SettingTheLoadPositionSendsOnlyTheRadii) {
    WindowHarness harness;
    fromPanel<frmIniSetting>(harness, "cmdSetting", [&](frmIniSetting& w) {
        EXPECT_EQ(w.windowTitle(), "Velkor Spinstand Tool : Settings");
        EXPECT_TRUE(fieldBox(w, "usrLoadSkew").isReadOnly());
        EXPECT_TRUE(fieldBox(w, "usrUnloadSkew").isReadOnly());
        enterValue(w, "usrLoadRadius", "30");
        enterValue(w, "usrUnloadRadius", "31.5");
        harness.clearTrace();
        WindowHarness::click(w, "cmdLoadPosition");
        EXPECT_EQ(writes(harness.trace()),
                  (Lines{"IDriverLoadPosition.SetLoadPosition(1, {0.03, 9.91e+37}, -1)",
                         "IDriverLoadPosition.SetLoadPosition(2, {0.0315, 9.91e+37}, -1)"}));
        EXPECT_TRUE(contains(harness.trace(), "IDriverLoadPosition.GetLoadPosition(2)")) << "read back";
        EXPECT_EQ(fieldBox(w, "usrUnloadRadius").text(), "31.50");
    });
    EXPECT_TRUE(harness.messages().empty());
}

TEST(MeasurementSettings, TheOuterRadiusFollowsEveryCommittedEditBeforeAnythingIsSent) {
    WindowHarness harness;
    fromPanel<frmIniSetting>(harness, "cmdSetting", [&](frmIniSetting& w) {
        const DataArea before = handles().driver->GetDataArea();
        harness.clearTrace();
        enterValue(w, "usrInnerRadius", "10");
        enterValue(w, "usrMaxTrack", "10000");
        enterValue(w, "usrPitch", "2");
        EXPECT_EQ(fieldBox(w, "usrOuterRadius").text(), "30.00") << "10 mm + 10000 x 2 um";
        EXPECT_TRUE(writes(harness.trace()).empty());

        WindowHarness::click(w, "cmdDataAreaReset");
        EXPECT_EQ(handles().driver->GetDataArea(), before);
        const auto shown = [&](const char* name) { return fieldBox(w, name).text().toStdString(); };
        EXPECT_NE(shown("usrMaxTrack"), "10000");
        EXPECT_NE(shown("usrOuterRadius"), "30.00");

        enterValue(w, "usrMaxTrack", "10000");
        harness.clearTrace();
        WindowHarness::click(w, "cmdDataArea");
        const Lines sent = writes(harness.trace());
        ASSERT_EQ(sent.size(), 1U);
        EXPECT_TRUE(sent[0].starts_with("IDriver.SetDataArea(")) << sent[0];
        EXPECT_EQ(handles().driver->GetDataArea().maxTrack, 10000);
    });
}

TEST(MeasurementSettings, ListAndCheckBoxWriteAndARefusalIsReportedOnceAndReadBack) {
    WindowHarness harness;
    fromPanel<frmIniSetting>(harness, "cmdSetting", [&](frmIniSetting& w) {
        auto& list = WindowHarness::control<QComboBox>(w, "cmbLoadMethod");
        auto& restrictionOff = WindowHarness::control<QCheckBox>(w, "chkDiskSizeRestrictionOn");
        EXPECT_EQ(list.count(), 3);
        EXPECT_EQ(list.currentIndex(), 0);
        EXPECT_FALSE(restrictionOff.isChecked()) << "the restriction is on";

        list.setFocus();
        QTest::keyClick(&list, Qt::Key_Down);
        EXPECT_EQ(handles().driver->GetLoadMethod(), 1);
        WindowHarness::click(w, "chkDiskSizeRestrictionOn");
        EXPECT_FALSE(handles().diskSize->GetDiskSizeRestriction());

        harness.sim().failOperation("IDriver.SetDataArea", "The data area does not fit the disk.");
        harness.clearTrace();
        WindowHarness::click(w, "cmdDataArea");
        ASSERT_EQ(harness.messages().size(), 1U);
        EXPECT_EQ(harness.messages()[0].text, "The data area does not fit the disk.");
        EXPECT_TRUE(contains(harness.trace(), "GetDataArea")) << "the fields show the instrument's data area";
        for (QWidget* c : w.controls())
            EXPECT_TRUE(c->isEnabled()) << c->objectName().toStdString();
    });
}

// The next two file dialogs, Export's and then Import's, both choose one scratch setting file.
void answerExportThenImport(WindowHarness& harness, const QTemporaryDir& dir) {
    const std::string file = dir.filePath(QStringLiteral("setting.csv")).toStdString();
    harness.answerFileDialog(file);
    harness.answerFileDialog(file);
}

TEST(MeasurementSettings, ExportAndImportRestoreTheSettingGroup) {
    WindowHarness harness;
    QTemporaryDir dir;
    answerExportThenImport(harness, dir);
    fromPanel<frmIniSetting>(harness, "cmdSetting", [&](frmIniSetting& w) {
        WindowHarness::click(w, "cmdExport");
        handles().driver->SetLoadMethod(2);
        handles().driver->SetDataArea(0.011, 5000, 3e-6);
        WindowHarness::click(w, "cmdImport");
        EXPECT_EQ(handles().driver->GetLoadMethod(), 0);
        EXPECT_EQ(WindowHarness::control<QComboBox>(w, "cmbLoadMethod").currentIndex(), 0)
            << "the window shows the imported values";
        EXPECT_NE(handles().driver->GetDataArea().maxTrack, 5000);
        for (QWidget* c : w.controls())
            EXPECT_TRUE(c->isEnabled()) << c->objectName().toStdString();
    });
    ASSERT_EQ(harness.fileDialogs().size(), 2U);
    EXPECT_EQ(harness.fileDialogs()[0].title, "Export Setting");
    EXPECT_TRUE(harness.fileDialogs()[0].save);
    EXPECT_EQ(harness.fileDialogs()[1].title, "Import Setting");
    EXPECT_FALSE(harness.fileDialogs()[1].save);
    EXPECT_EQ(harness.fileDialogs()[1].filter, "Text Files(*.csv)|*.csv|All Files(*.*)|*.*");
    EXPECT_TRUE(harness.messages().empty());
}

// The instrument refusing a value ends the import there, without a message of the window's own: the sections
// before it are applied, the ones after it are not, and the window is usable again.
TEST(MeasurementSettings, AnImportTheInstrumentRefusesStopsThereWithoutAMessage) {
    WindowHarness harness;
    QTemporaryDir dir;
    answerExportThenImport(harness, dir);
    fromPanel<frmIniSetting>(harness, "cmdSetting", [&](frmIniSetting& w) {
        WindowHarness::click(w, "cmdExport");
        const bool restriction = handles().diskSize->GetDiskSizeRestriction();
        handles().driver->SetLoadMethod(2);
        handles().diskSize->SetDiskSizeRestriction(!restriction);
        harness.sim().failOperation("IDriver.SetDataArea", "Data area refused");
        WindowHarness::click(w, "cmdImport");
        EXPECT_EQ(handles().driver->GetLoadMethod(), 0) << "read before the refusal";
        EXPECT_EQ(handles().diskSize->GetDiskSizeRestriction(), !restriction) << "not read after it";
        for (QWidget* c : w.controls())
            EXPECT_TRUE(c->isEnabled()) << c->objectName().toStdString();
    });
    EXPECT_TRUE(harness.messages().empty());
}

TEST(PiezoCheck, ReadsOnceInTwoStepsAndTakesNoInput) {
    struct Case {
        const char* failing;
        bool serialShown;
        bool resolutionRead;
    };
    for (const Case c :
         {Case{"IDriverService.GetPiezoSerial", false, true}, Case{"IDriver.GetPosition", true, false}}) {
        SCOPED_TRACE(c.failing);
        WindowHarness harness;
        withPanel(harness, [&](frmIni& panel) {
            harness.sim().failOperation(c.failing, "no answer");
            harness.clearTrace();
            harness.whenActive<frmIniPiezo>([&](frmIniPiezo& w) {
                EXPECT_EQ(w.windowTitle(), "Velkor Spinstand Tool : Piezo Information");
                EXPECT_EQ(fieldBox(w, "usrSerial").text() == "PZ-0815", c.serialShown);
                EXPECT_EQ(contains(harness.trace(), "IDriverPiezo.GetPiezoReading"), c.resolutionRead);
                for (const char* name : {"usrSerial", "usrResolution", "usrRadius", "usrSkew"}) {
                    QLineEdit& box = fieldBox(w, name);
                    const QString before = box.text();
                    box.setFocus();
                    QTest::keyClicks(&box, "12");
                    EXPECT_EQ(box.text(), before) << name << " takes no input";
                }
                WindowHarness::click(w, "cmdReturn");
            });
            WindowHarness::click(panel, "cmdPiezo");
        });
        ASSERT_EQ(harness.messages().size(), 1U);
        EXPECT_EQ(harness.messages()[0].text, "no answer");
        EXPECT_TRUE(writes(harness.trace()).empty());
    }
}

TEST(VersionWindow, InNormalModeNothingIsWritten) {
    WindowHarness harness;
    fromPanel<frmVersion>(harness, "cmdVersion", [&](frmVersion& w) {
        EXPECT_EQ(w.windowTitle(), "Velkor Spinstand Tool : Version Information");
        EXPECT_EQ(textOf(w, "txtHwRevision"), handles().driver->GetHardwareRevision());
        EXPECT_EQ(textOf(w, "txtDrvRevision"), handles().driver->GetDriverRevision());
        harness.clearTrace();
        for (const char* box : {"txtHwRevision", "txtSerialNumber"}) {
            WindowHarness::control(w, box).setFocus();
            WindowHarness::typeText(w, box, "X");
            WindowHarness::pressKey(w, box, Qt::Key_Return);
        }
        WindowHarness::click(w, "cmdSave");
        WindowHarness::click(w, "cmdRecall");
        EXPECT_FALSE(WindowHarness::control(w, "cmdSave").isEnabled());
        EXPECT_TRUE(harness.trace().empty());
    });
}

TEST(VersionWindow, InFactoryModeEnterWritesTheTextAndShowsTheInstrumentsValue) {
    WindowHarness harness;
    registerOperationWindows(menuWindows());
    harness.runSession([&](frmOpen& menu) {
        menu.setLevel(2);
        harness.whenActive<frmFac>([&](frmFac& factory) {
            harness.whenActive<frmVersion>([&](frmVersion& w) {
                EXPECT_EQ(w.windowTitle(), "Version Data (Factory use only)");
                WindowHarness::control(w, "txtSerialNumber").setFocus();
                harness.clearTrace();
                WindowHarness::pressKey(w, "txtSerialNumber", Qt::Key_Return);
                EXPECT_EQ(harness.trace(), Lines{}) << "Enter on the text as read writes nothing";

                WindowHarness::control(w, "txtHwRevision").setFocus();
                WindowHarness::control<QLineEdit>(w, "txtHwRevision").clear();
                WindowHarness::typeText(w, "txtHwRevision", "R2208C-C");
                WindowHarness::control(w, "txtSerialNumber").setFocus(); // leaving the box writes it
                EXPECT_EQ(handles().service->GetHardwareRevision(), "R2208C-C");
                WindowHarness::control(w, "txtHwRevision").setFocus();
                harness.clearTrace();
                WindowHarness::control(w, "txtSerialNumber").setFocus(); // unchanged since it was read back
                EXPECT_EQ(harness.trace(), Lines{});

                harness.sim().failOperation("IDriverService.SaveVersionData", "EEPROM write failed");
                WindowHarness::click(w, "cmdSave");
                WindowHarness::click(w, "cmdRecall");
                EXPECT_EQ(textOf(w, "txtHwRevision"), "R2208C-B") << "Recall reloads the stored data";

                // A read that fails stops the refresh there: the boxes before it are filled already.
                WindowHarness::control<QLineEdit>(w, "txtHwRevision").setText("stale");
                harness.sim().failOperation("IDriverService.GetDriverRevision", "Driver revision unreadable");
                const std::string firmware = textOf(w, "txtFwRevision");
                WindowHarness::click(w, "cmdRecall");
                EXPECT_EQ(textOf(w, "txtHwRevision"), "R2208C-B");
                EXPECT_EQ(textOf(w, "txtFwRevision"), firmware);
                WindowHarness::click(w, "cmdReturn");
            });
            WindowHarness::click(factory, "cmdVersion");
            WindowHarness::click(factory, "cmdReturn");
        });
        WindowHarness::click(menu, "cmdFactory");
    });
    ASSERT_EQ(harness.messages().size(), 2U);
    EXPECT_EQ(harness.messages()[0].text, "EEPROM write failed");
    EXPECT_EQ(harness.messages()[1].text, "Driver revision unreadable");
}

} // namespace
} // namespace vss

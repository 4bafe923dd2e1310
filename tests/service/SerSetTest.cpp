// The service settings window with real events on the simulated instrument.

#include "kit/modGlobal.h"
#include "service/frmSerSet.h"
#include "tests/support/FailureSweep.h"
#include "tests/support/FieldInput.h"
#include "tests/support/WindowHarness.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#ifndef VSS_SHIPPED_CATALOGUE
#error "VSS_SHIPPED_CATALOGUE names the catalogue shipped with the program"
#endif

namespace vss {
namespace {

using testing::enterValue;
using testing::fieldBox;
using testing::SweptHandler;
using testing::WindowHarness;
using testing::writes;
using Lines = std::vector<std::string>;

QComboBox& modelList(QWidget& window) {
    return WindowHarness::control<QComboBox>(window, "cmbSpinstand");
}

// Chooses a list entry with the keyboard: Home the first model, Down the next, End "Recalled"; then Enter.
void choose(QWidget& window, Qt::Key key) {
    modelList(window).setFocus();
    QTest::keyClick(&modelList(window), key);
    QTest::keyClick(&modelList(window), Qt::Key_Return);
}

const FormFactory kSerSet = [](QWidget* parent) { return std::make_unique<frmSerSet>(parent); };

class SerSet : public ::testing::Test {
protected:
    SerSet() {
        globals().catalogueFile = VSS_SHIPPED_CATALOGUE;
        harness.openSession();
    }
    void withWindow(const std::function<void(frmSerSet&)>& during) {
        harness.whenActive<frmSerSet>([&](frmSerSet& w) {
            during(w);
            WindowHarness::click(w, "cmdReturn");
        });
        harness.showModal(kSerSet);
        EXPECT_FALSE(harness.stepsPending());
    }

    WindowHarness harness;
};

TEST_F(SerSet, ChoosingAModelWritesItAndRefreshesWhileRecalledSendsNothing) {
    harness.clearTrace();
    withWindow([&](frmSerSet& w) {
        EXPECT_EQ(modelList(w).count(), 4);
        EXPECT_EQ(modelList(w).currentText(), "Recalled");
        EXPECT_EQ(fieldBox(w, "usrSerialNumber").text(), "SS2208-0147");
        EXPECT_TRUE(fieldBox(w, "usrHardwareRevision").isReadOnly());
        EXPECT_EQ(writes(harness.trace()), Lines{}) << "opening sends nothing";

        choose(w, Qt::Key_Home); // the model whose spindle driver the instrument has: no warning
        EXPECT_TRUE(harness.messages().empty());
        choose(w, Qt::Key_Down); // a model that expects a hall-sensor spindle driver
        ASSERT_EQ(harness.messages().size(), 1u);
        EXPECT_EQ(harness.messages()[0].text, "Warning : Invalid Spindle Driver.");
        EXPECT_EQ(fieldBox(w, "usrHardwareRevision").text(), "R2208H-A") << "refreshed after the model";
        EXPECT_EQ(handles().service->GetSpeedRange().min, 5400);

        harness.clearTrace();
        choose(w, Qt::Key_End);
        EXPECT_EQ(harness.trace(), Lines{});
        enterValue(w, "usrSerialNumber", "SS2208-0999");
        WindowHarness::click(w, "optSetting_1");
        WindowHarness::click(w, "optSetting_0");
        EXPECT_EQ(writes(harness.trace()), (Lines{"IDriverService.SetSerialNumber(\"SS2208-0999\")",
                                                  "IDriverService.SetSettingUnknown(true)",
                                                  "IDriverService.SetSettingUnknown(false)"}));
    });
}

// Moving through the list, closed or open, only selects; Enter applies the model selected, and so does the
// key that closes the open list on an item. Escape closes the open list with nothing applied.
TEST_F(SerSet, BrowsingTheModelListAppliesNothingUntilAModelIsChosen) {
    withWindow([&](frmSerSet& w) {
        QComboBox& list = modelList(w);
        QWidget& open = *list.view();
        const auto applied = [&] { // the model application's first write, if any
            const Lines written = writes(harness.trace());
            harness.clearTrace();
            return written.empty() ? std::string() : written.front();
        };
        list.setFocus();
        harness.clearTrace();
        for (Qt::Key key : {Qt::Key_Home, Qt::Key_Down, Qt::Key_PageDown, Qt::Key_Up, Qt::Key_End, Qt::Key_V})
            QTest::keyClick(&list, key);
        EXPECT_EQ(list.currentIndex(), 0) << "typing finds the first model";
        EXPECT_EQ(applied(), "");
        QTest::keyClick(&list, Qt::Key_Return);
        EXPECT_EQ(applied(), "IDriverService.SetHardwareRevision(\"R2208C-B\")");

        list.showPopup();
        QTest::keyClick(&open, Qt::Key_Down);
        QTest::keyClick(&open, Qt::Key_Escape);
        EXPECT_EQ(applied(), "");
        for (Qt::Key close : {Qt::Key_Return, Qt::Key_F4}) {
            list.showPopup();
            QTest::keyClick(&open, Qt::Key_Down);
            QTest::keyClick(&open, close);
            EXPECT_FALSE(open.isVisible());
            EXPECT_EQ(applied(), close == Qt::Key_Return
                                     ? "IDriverService.SetHardwareRevision(\"R2208H-A\")"
                                     : "IDriverService.SetHardwareRevision(\"R2208K-A\")");
        }
    });
}

TEST_F(SerSet, SaveAndRecallTakeTheFiveGroupsInOrderAndAFailureStopsTheRest) {
    withWindow([&](frmSerSet& w) {
        for (const char* verb : {"Save", "Recall"}) {
            const std::string v = verb;
            const Lines groups{
                "IDriverService." + v + "VersionData()", "IDriverService." + v + "SpinstandConfiguration()",
                "IDriverService." + v + "SpindleProperty()", "IDriverService." + v + "StageProperty()",
                "IDriverService." + v + "CustomerConfiguration()"};
            const char* button = v == "Save" ? "cmdSave" : "cmdRecall";
            choose(w, Qt::Key_Home);
            WindowHarness::click(w, "optSetting_1");
            harness.sim().failOperation("IDriverService." + v + "SpindleProperty", "No answer.");
            harness.clearTrace();
            WindowHarness::click(w, button);
            EXPECT_EQ(harness.trace(), (Lines{groups[0], groups[1],
                                              "IDriverService." + v + "SpindleProperty() !! No answer."}));
            EXPECT_EQ(modelList(w).currentIndex(), 0) << verb << " failed: the list stays";

            harness.clearTrace();
            WindowHarness::click(w, button);
            EXPECT_EQ(writes(harness.trace()), groups);
        }
        // Another model and "Normal", not saved: Recall shows the saved model 0 and "Service" again.
        choose(w, Qt::Key_Up);
        WindowHarness::click(w, "optSetting_0");
        EXPECT_EQ(fieldBox(w, "usrHardwareRevision").text(), "R2208K-A");
        WindowHarness::click(w, "cmdRecall");
        EXPECT_EQ(modelList(w).currentText(), "Recalled");
        EXPECT_EQ(fieldBox(w, "usrHardwareRevision").text(), "R2208C-B");
        EXPECT_TRUE(WindowHarness::control<QRadioButton>(w, "optSetting_1").isChecked());
    });
}

TEST_F(SerSet, TheViewButtonsOpenTheirPagesViewOnlyAndBacklashCompensationEditable) {
    Lines opened; // each page as it came up: its flag, and whether this window was locked meanwhile
    const auto standIn = [&opened](const std::string& page) {
        return [&opened, page](QWidget* parent, bool viewOnly) {
            auto w = std::make_unique<Form>(parent);
            QTimer::singleShot(0, w.get(), [&opened, page, viewOnly, parent, w = w.get()] {
                const bool locked = !WindowHarness::control(*parent, "cmdSave").isEnabled();
                opened.push_back(page + (viewOnly ? " view-only" : " editable") + (locked ? ", locked" : ""));
                w->accept();
            });
            return w;
        };
    };
    MenuWindows& windows = menuWindows();
    windows.spinstandSettings = standIn("spinstand");
    windows.spindleProperty = standIn("spindle");
    windows.stageProperty = standIn("stage");
    windows.measurementPositions = standIn("positions");
    windows.backlashCompensation = standIn("backlash");
    withWindow([&](frmSerSet& w) {
        for (const char* button :
             {"cmdSpinstand", "cmdSpindle", "cmdStage", "cmdCustomize", "cmdBacklashComp"})
            WindowHarness::click(w, button);
    });
    EXPECT_EQ(opened, (Lines{"spinstand view-only, locked", "spindle view-only, locked",
                             "stage view-only, locked", "positions view-only, locked", "backlash editable"}));
}

// The list ends at the first empty name. A catalogue that cannot be used leaves only "Recalled", after one
// message naming the file, and nothing is sent.
TEST_F(SerSet, TheListEndsAtAnEmptyNameAndAnUnusableCatalogueLeavesOnlyRecalled) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("VssTool.ini"));
    globals().catalogueFile = file.toStdString();
    for (const char* text : {"3\nName,\"A\",\"\",\"C\"\n", "3\nName,\"A\",\"B\",\"C\"\nSpeedMin,1,x,3\n"}) {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(text);
        out.close();
        harness.clearMessages();
        harness.clearTrace();
        withWindow([&](frmSerSet& w) {
            QStringList items;
            for (int i = 0; i < modelList(w).count(); ++i)
                items << modelList(w).itemText(i);
            EXPECT_EQ(items,
                      harness.messages().empty() ? QStringList({"A", "Recalled"}) : QStringList{"Recalled"});
            choose(w, Qt::Key_End);
        });
        EXPECT_EQ(writes(harness.trace()), Lines{});
    }
    ASSERT_EQ(harness.messages().size(), 1u);
    EXPECT_EQ(harness.messages()[0].text,
              "The spinstand catalogue " + globals().catalogueFile +
                  " cannot be used: the value \"x\" of SpeedMin for model 1 is not a "
                  "number from -2147483648 to 2147483647.");
}

// As in the console tool: a model that takes defaults is warned about, and one the instrument would refuse is
// refused whole, before any write.
TEST_F(SerSet, AModelIsWarnedAboutForItsDefaultsAndRefusedWholeBeforeAnyWrite) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("VssTool.ini"));
    globals().catalogueFile = file.toStdString();
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write("1\nName,\"Bad\"\nSpinstandType,0\nSpeedMin,5000\nSpeedMax,4000\n");
    out.close();
    harness.clearTrace();
    withWindow([&](frmSerSet& w) {
        choose(w, Qt::Key_Home);
        ASSERT_EQ(harness.messages().size(), 2u);
        EXPECT_TRUE(harness.messages()[0].text.starts_with(
            "Warning : The model 0 \"Bad\" takes defaults: HardwareRevision is not given, an empty text is "
            "used; "
            "HeadFace is not given, SSHEADFACE_UPFACE (0) is used; DiskSizeMin is not given, 0 is used;"))
            << harness.messages()[0].text;
        EXPECT_EQ(harness.messages()[1].text,
                  "The model 0 \"Bad\" cannot be applied: the speed range 5000 to 4000 "
                  "rpm (SpeedMin to SpeedMax) is empty. Nothing was written.");
    });
    EXPECT_EQ(writes(harness.trace()), Lines{});
}

SweptHandler clicking(std::string name, const char* button) {
    return {std::move(name), [button](WindowHarness&, Form& w) { WindowHarness::click(w, button); }};
}

// An option clicked from the other status: a refused one shows the instrument's status again.
SweptHandler choosingStatus(std::string name, const char* option, bool service) {
    return {.name = std::move(name),
            .run = [option](WindowHarness&, Form& w) { WindowHarness::click(w, option); },
            .prepare = [service](WindowHarness&) { handles().service->SetSettingUnknown(!service); },
            .edits = "frmSetting"};
}

TEST(FailureSweep, ServiceSettings) {
    globals().catalogueFile = VSS_SHIPPED_CATALOGUE;
    WindowHarness harness;
    harness.openSession();
    const std::vector<SweptHandler> handlers{
        // A failure while a model is applied adds what of the model was written to the driver's text.
        {"Choose a model", [](WindowHarness&, Form& w) { choose(w, Qt::Key_Home); },
         testing::FailureEnds::Transfer},
        {.name = "Serial number",
         .run = [](WindowHarness&, Form& w) { enterValue(w, "usrSerialNumber", "SS-1"); },
         .prepare = [](WindowHarness&) { handles().service->SetSerialNumber("SS-0"); },
         .edits = "usrSerialNumber"},
        choosingStatus("Service", "optSetting_1", true),
        choosingStatus("Normal", "optSetting_0", false),
        clicking("Save", "cmdSave"),
        clicking("Recall", "cmdRecall"),
    };
    // Applying a model calls ten distinct operations and its refresh three more.
    EXPECT_GE(testing::sweepFailures(harness, kSerSet, handlers), 29);
}

} // namespace
} // namespace vss

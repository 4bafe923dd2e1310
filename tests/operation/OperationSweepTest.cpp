// The failure sweep of the operation windows and the version window: every handler that talks to the
// instrument, with each driver operation it calls failing in turn, ends in the failure's one message (the
// Export and Import flow ends without one) and leaves a usable window.

#include "kit/Messages.h"
#include "kit/frmVersion.h"
#include "kit/modGlobal.h"
#include "operation/frmIni.h"
#include "operation/frmIniPiezo.h"
#include "operation/frmIniSetting.h"
#include "storage/modConfigFile.h"
#include "tests/support/FailureSweep.h"
#include "tests/support/FieldInput.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace vss {
namespace {

using testing::FailureEnds;
using testing::SweptHandler;
using testing::WindowHarness;

// The instrument at home with its spindle stopped; spinning; loaded.
void atHome(WindowHarness&) {
    DriverHandles& h = handles();
    if (h.driver->GetState() == state::Uninitialized)
        h.driver->Initialize();
    h.driver->Reset();
    h.spindle->SetMotor(false);
}
void spinning(WindowHarness& harness) {
    atHome(harness);
    handles().clamp->SetClamp(true);
    handles().spindle->SetMotor(true);
}
void loaded(WindowHarness& harness) {
    spinning(harness);
    handles().driver->Load();
}

SweptHandler clicking(std::string name, const char* button,
                      std::function<void(WindowHarness&)> prepare = atHome) {
    return {std::move(name), [button](WindowHarness&, Form& w) { WindowHarness::click(w, button); },
            FailureEnds::OneMessage, std::move(prepare)};
}

// A neighbouring window opened from the panel and closed again with its "Return".
template <class W> SweptHandler opening(std::string name, const char* button) {
    return {std::move(name), [button](WindowHarness& harness, Form& w) {
                harness.whenActive<W>([](W& neighbour) { WindowHarness::click(neighbour, "cmdReturn"); });
                WindowHarness::click(w, button);
            }};
}

SweptHandler selectingNext(std::string name, const char* list) {
    return {.name = std::move(name),
            .run =
                [list](WindowHarness&, Form& w) {
                    auto& combo = WindowHarness::control<QComboBox>(w, list);
                    combo.setFocus();
                    QTest::keyClick(&combo,
                                    combo.currentIndex() + 1 < combo.count() ? Qt::Key_Down : Qt::Key_Up);
                },
            .edits = list};
}

// An arrow of the speed spinner; the stepping tolerates a speed range it cannot read.
SweptHandler stepping(std::string name, const char* arrow) {
    return {std::move(name),
            [arrow](WindowHarness&, Form& w) {
                QTest::mouseClick(w.findChild<QWidget*>(QStringLiteral("updnRpm"))
                                      ->findChild<QWidget*>(QString::fromLatin1(arrow)),
                                  Qt::LeftButton);
            },
            FailureEnds::OneMessage,
            atHome,
            {"IDriver.GetSpeedRange"}};
}

// Types into a field a text that differs from run to run (a value equal to the one read writes nothing), then
// presses the button that sends it, or Enter.
SweptHandler typing(std::string name, const char* field, std::function<QString(int run)> text,
                    const char* button = nullptr) {
    auto runs = std::make_shared<int>(0);
    return {.name = std::move(name),
            .run =
                [field, text, button, runs](WindowHarness&, Form& w) {
                    auto* box = WindowHarness::control(w, field).findChild<QLineEdit*>(QStringLiteral("txt"));
                    if (!box)
                        box = &WindowHarness::control<QLineEdit>(w, field);
                    box->setFocus();
                    box->selectAll();
                    QTest::keyClicks(box, text(++*runs));
                    if (button)
                        WindowHarness::click(w, button);
                    else
                        QTest::keyClick(box, Qt::Key_Return);
                },
            .edits = field};
}

TEST(FailureSweep, OperationPanel) {
    WindowHarness harness;
    harness.openSession();
    const std::vector<SweptHandler> handlers{
        clicking("Inner", "cmdPosInner", loaded),
        clicking("Outer", "cmdPosOuter", loaded),
        clicking("Pos1", "cmdPos1", loaded),
        clicking("Pos2", "cmdPos2", loaded),
        clicking("Pos3", "cmdPos3", loaded),
        clicking("Load", "cmdLoad", spinning),
        clicking("Unload", "cmdUnload", loaded),
        clicking("Run", "cmdSpindleRun"),
        clicking("Standby", "cmdSpindleStop", spinning),
        clicking("Off", "cmdSpindleOff", spinning),
        clicking("Head loader down", "cmdHeadLoaderDn"),
        clicking("Head loader up", "cmdHeadLoaderUp"),
        clicking("Reset", "cmdReset"),
        selectingNext("Spindle setting at home", "cmbStateAtHome"),
        typing("Typed speed", "usrRpm", [](int run) { return QString::number(4000 + 100 * run); }),
        stepping("Speed up", "up"),
        stepping("Speed down", "down"),
        opening<frmIniSetting>("Setting", "cmdSetting"),
        opening<frmIniPiezo>("Piezo Info", "cmdPiezo"),
        opening<frmVersion>("Version", "cmdVersion"),
    };
    const FormFactory panel = [](QWidget* parent) {
        auto w = std::make_unique<frmIni>(parent);
        w->setDirectControlsShown(true);
        return w;
    };
    const int cases = testing::sweepFailures(
        harness, panel, handlers,
        {.ignored = {"IDriverInterlock.GetInterlock", "IDriverService.GetEmergency",
                     "IDriverService.GetOuterCover"},
         // The spindle state shows no text when it cannot be read.
         .tolerated = {"IDriverService.GetSpindleState"},
         // The position buttons follow the instrument's state: a refresh that fails leaves them as they were.
         .mayChangeEnabled = {"cmdPosInner", "cmdPosOuter", "cmdPos1", "cmdPos2", "cmdPos3"}});
    EXPECT_GT(cases, 100);
}

TEST(FailureSweep, MeasurementSettingsAndVersion) {
    WindowHarness harness;
    harness.openSession();
    harness.prepareInstrument();
    QTemporaryDir dir;
    const std::string exported = dir.filePath(QStringLiteral("export.csv")).toStdString();
    const std::string imported = dir.filePath(QStringLiteral("setting.csv")).toStdString();
    ExportGroup(SettingGroup::Setting, imported, handles(), messageSink());

    const std::vector<SweptHandler> settings{
        selectingNext("Load method", "cmbLoadMethod"),
        typing(
            "Set load position", "usrLoadRadius", [](int run) { return QString::number(20 + run); },
            "cmdLoadPosition"),
        clicking("Reset load position", "cmdLoadPositionReset"),
        typing(
            "Set data area", "usrInnerRadius", [](int run) { return QString::number(15 + run); },
            "cmdDataArea"),
        clicking("Reset data area", "cmdDataAreaReset"),
        {.name = "Disk size restriction",
         .run = [](WindowHarness&, Form& w) { WindowHarness::click(w, "chkDiskSizeRestrictionOn"); },
         .prepare = atHome,
         .edits = "chkDiskSizeRestrictionOn"},
        {"Export",
         [exported](WindowHarness& h, Form& w) {
             h.answerFileDialog(exported);
             WindowHarness::click(w, "cmdExport");
         },
         FailureEnds::Transfer},
        {"Import",
         [imported](WindowHarness& h, Form& w) {
             h.answerFileDialog(imported);
             WindowHarness::click(w, "cmdImport");
         },
         FailureEnds::Transfer},
    };
    int cases = testing::sweepFailures(
        harness, [](QWidget* p) { return std::make_unique<frmIniSetting>(p); }, settings);

    const std::vector<SweptHandler> version{
        typing("Hardware revision", "txtHwRevision",
               [](int run) { return QStringLiteral("HW-%1").arg(run); }),
        typing("Serial number", "txtSerialNumber", [](int run) { return QStringLiteral("SN-%1").arg(run); }),
        clicking("Save", "cmdSave"),
        clicking("Recall", "cmdRecall"),
    };
    cases += testing::sweepFailures(
        harness, [](QWidget* p) { return std::make_unique<frmVersion>(p, true); }, version);
    EXPECT_GT(cases, 20);
}

} // namespace
} // namespace vss

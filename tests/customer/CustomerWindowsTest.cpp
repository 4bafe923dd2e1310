// The measurement position page and the stage configuration page with real clicks and keys on the simulated
// instrument, and their failure sweep.

#include "customer/CustomerWindows.h"

#include "customer/frmCus.h"
#include "customer/frmCusStageConfig.h"
#include "kit/Messages.h"
#include "kit/modGlobal.h"
#include "simulator/StageGeometry.h"
#include "storage/modConfigFile.h"
#include "tests/support/FailureSweep.h"
#include "tests/support/FieldInput.h"

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace vss {
namespace {

using testing::fieldBox;
using testing::shownText;
using testing::WindowHarness;
using Lines = std::vector<std::string>;

const Lines kRefreshAll{"IDriverService.GetStopperPosition(0)", "IDriverService.GetMeasurementPosition(0)",
                        "IDriverService.GetStopperPosition(1)", "IDriverService.GetMeasurementPosition(1)",
                        "IDriverService.GetStageGeometry(0)",   "IDriverService.GetStageGeometry(1)",
                        "IDriverService.GetStageGeometry(2)"};

// The driver calls traced since the last clearTrace, without results or errors.
Lines calls(const WindowHarness& harness) {
    Lines kept;
    for (const std::string& line : harness.trace())
        if (line.starts_with("IDriver"))
            kept.push_back(line.substr(0, std::min(line.find(" ->"), line.find(" !!"))));
    return kept;
}

// Focus into the field, type text if any, then Enter (or the key given).
void commit(QWidget& w, const char* field, const QString& text = {}, Qt::Key key = Qt::Key_Return) {
    fieldBox(w, field).setFocus();
    if (!text.isEmpty()) {
        fieldBox(w, field).selectAll();
        QTest::keyClicks(&fieldBox(w, field), text);
    }
    QTest::keyClick(&fieldBox(w, field), key);
}

// Presses a button with the space bar: the focus stays where it is, so no field commits on the way.
void press(QWidget& w, const char* button) {
    WindowHarness::pressKey(w, button, Qt::Key_Space);
}

void expectAllEnabled(const Form& w) {
    for (QWidget* c : w.controls())
        EXPECT_TRUE(c->isEnabled()) << c->objectName().toStdString();
}

FormFactory page(bool viewOnly = false) {
    registerCustomerWindows(menuWindows());
    return withViewOnly(menuWindows().measurementPositions, viewOnly);
}

void withPage(WindowHarness& harness, const FormFactory& make, const std::function<void(frmCus&)>& during) {
    harness.whenActive<frmCus>([&](frmCus& w) {
        during(w);
        press(w, "cmdReturn");
    });
    harness.showModal(make);
}

TEST(MeasurementPositions, OpensWithSevenReadsAndAnEditedStopperIsWrittenAndItsSideReread) {
    WindowHarness harness;
    harness.openSession();
    handles().service->SetStopperPosition(0, *sim::angleFor(sim::StageGeometry{}, 0.0125));
    harness.clearTrace();
    withPage(harness, page(), [&](frmCus& w) {
        EXPECT_EQ(calls(harness), kRefreshAll);
        EXPECT_EQ(shownText(w, "usrRadiusID"), "12.50");
        EXPECT_EQ(WindowHarness::control<userText>(w, "usrRadiusID").OptStr(), "mm");
        EXPECT_FALSE(fieldBox(w, "usrStopperOD").isReadOnly());
        EXPECT_TRUE(fieldBox(w, "usrSkewOD").isReadOnly());

        // One write, and only the outer side read back; text that is not a number is no edit.
        const std::string radius = shownText(w, "usrRadiusOD");
        harness.clearTrace();
        commit(w, "usrStopperOD", QStringLiteral("20"));
        EXPECT_EQ(calls(harness),
                  (Lines{"IDriverService.SetStopperPosition(1, 20)", kRefreshAll[2], kRefreshAll[3]}));
        EXPECT_EQ(WindowHarness::control<userText>(w, "usrRadiusOD").Value().toDouble(),
                  handles().service->GetMeasurementPosition(1).radius);
        EXPECT_NE(shownText(w, "usrRadiusOD"), radius);
        const std::string inner = shownText(w, "usrStopperID");
        harness.clearTrace();
        commit(w, "usrStopperID", QStringLiteral("abc"));
        EXPECT_EQ(calls(harness), Lines{});

        // A refused stopper is reported once and read back: the field shows the instrument's stopper.
        commit(w, "usrStopperID", QStringLiteral("99"));
        EXPECT_EQ(harness.messages().size(), 1U);
        EXPECT_EQ(shownText(w, "usrStopperID"), inner);
        expectAllEnabled(w);
    });
}

// Viewing: only "Return" works and nothing takes typing; leaving a locked stopper writes nothing and leaves
// the page as locked as it was.
TEST(MeasurementPositions, ViewOnlyLocksThePageAndALeftStopperWritesNothing) {
    WindowHarness harness;
    harness.openSession();
    withPage(harness, page(true), [&](frmCus& w) {
        for (QLineEdit* b : w.findChildren<QLineEdit*>())
            EXPECT_TRUE(b->isReadOnly());
        harness.clearTrace();
        commit(w, "usrStopperOD", QStringLiteral("25"), Qt::Key_Tab);
        EXPECT_EQ(calls(harness), Lines{});
        for (QPushButton* b : w.findChildren<QPushButton*>())
            EXPECT_EQ(b->isEnabled(), b->objectName() == "cmdReturn") << b->objectName().toStdString();
    });
}

// Save reads nothing back; Recall and Import refresh every field. Each Export appends a whole report, and
// importing that file applies both copies of the stoppers, never the informational stage block.
TEST(MeasurementPositions, GroupButtonsSaveRecallExportAndImport) {
    WindowHarness harness;
    harness.openSession();
    QTemporaryDir dir;
    const std::string file = dir.filePath(QStringLiteral("customer.csv")).toStdString();
    for (int i = 0; i < 3; ++i)
        harness.answerFileDialog(file);
    const double outer = handles().service->GetStopperPosition(1);
    withPage(harness, page(), [&](frmCus& w) {
        harness.clearTrace();
        press(w, "cmdSave");
        EXPECT_EQ(calls(harness), Lines{"IDriverService.SaveCustomerConfiguration()"});
        handles().service->SetStopperPosition(1, 25.0);
        harness.clearTrace();
        press(w, "cmdRecall");
        EXPECT_EQ(calls(harness).size(), 1 + kRefreshAll.size());
        EXPECT_EQ(WindowHarness::control<userText>(w, "usrStopperOD").Value().toDouble(), outer);

        press(w, "cmdExport");
        press(w, "cmdExport");
        QFile exported(QString::fromStdString(file));
        ASSERT_TRUE(exported.open(QIODevice::ReadOnly));
        const QByteArray text = exported.readAll();
        EXPECT_EQ(text.count("Customer Configuration"), 2);
        EXPECT_EQ(text.count("# %StageConfiguration"), 4)
            << "each report holds the information block, named twice";

        handles().service->SetStopperPosition(1, 30.0);
        handles().service->SetStageGeometry(2, 6.0);
        harness.clearTrace();
        press(w, "cmdImport");
        const Lines made = calls(harness);
        EXPECT_EQ(std::count_if(made.begin(), made.end(),
                                [](const std::string& l) { return l.find(".Set") != l.npos; }),
                  4);
        EXPECT_EQ(Lines(made.end() - 7, made.end()), kRefreshAll);
        EXPECT_EQ(handles().service->GetStopperPosition(1), outer);
        EXPECT_EQ(shownText(w, "usrOFST"), "6.000") << "the stage block is not imported";
    });
    EXPECT_TRUE(harness.messages().empty());
    EXPECT_EQ(harness.fileDialogs()[0].title, "Export Customer Configuration");
    EXPECT_EQ(harness.fileDialogs()[2].title, "Import Customer Configuration");
}

// A file of another group changes nothing and says nothing; a hostile one gives only the reader's messages.
TEST(MeasurementPositions, ForeignAndHostileImportFiles) {
    WindowHarness harness;
    harness.openSession();
    QTemporaryDir dir;
    const std::string foreign = dir.filePath(QStringLiteral("stage.csv")).toStdString();
    const std::string hostile = dir.filePath(QStringLiteral("hostile.csv")).toStdString();
    ExportGroup(SettingGroup::CustomerStageConfiguration, foreign, handles(), messageSink());
    QFile f(QString::fromStdString(hostile));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("%StopperPosition\r\n\"Outer\",abc,1e999999,\r\n\"%StopperPosition\",,\"open\r\n" +
            QByteArray(5000, ','));
    f.write(QByteArray("\0\xff%StopperPosition", 18));
    f.close();
    harness.answerFileDialog(foreign);
    harness.answerFileDialog(hostile);
    withPage(harness, page(), [&](frmCus& w) {
        harness.clearTrace();
        press(w, "cmdImport");
        EXPECT_EQ(calls(harness), kRefreshAll);
        EXPECT_TRUE(harness.messages().empty());
        press(w, "cmdImport");
        EXPECT_FALSE(harness.messages().empty());
        for (const testing::ShownMessage& m : harness.messages())
            EXPECT_EQ(m.title, "error") << m.text;
        expectAllEnabled(w);
    });
}

// "Advanced": an edit and an import on the stage page, then "Cancel", leave the instrument with the values of
// the page's opening, written back in index order; the measurement page shows them on its return.
TEST(StageConfiguration, CancelRestoresTheValuesOfTheOpeningAfterAnEditAndAnImport) {
    WindowHarness harness;
    harness.openSession();
    QTemporaryDir dir;
    const std::string file = dir.filePath(QStringLiteral("stage.csv")).toStdString();
    handles().service->SetStageGeometry(0, 90.0);
    ExportGroup(SettingGroup::CustomerStageConfiguration, file, handles(), messageSink());
    handles().service->SetStageGeometry(0, 79.0);
    harness.answerFileDialog(file);
    withPage(harness, page(), [&](frmCus& w) {
        harness.whenActive<frmCusStageConfig>([&](frmCusStageConfig& stage) {
            fieldBox(stage, "usrTCRP").setFocus(); // the field left commits: not watched here
            harness.clearTrace();
            commit(stage, "usrTCRP", QStringLiteral("72"));
            EXPECT_EQ(calls(harness), (Lines{"IDriverService.SetStageGeometry(1, 72)",
                                             "IDriverService.GetStageGeometry(1)"}));
            press(stage, "cmdImport");
            EXPECT_EQ(shownText(stage, "usrTCSC"), "90.00");
            harness.clearTrace();
            press(stage, "cmdCancel");
            EXPECT_EQ(calls(harness), (Lines{"IDriverService.SetStageGeometry(0, 79)",
                                             "IDriverService.SetStageGeometry(1, 70)",
                                             "IDriverService.SetStageGeometry(2, 5)"}));
        });
        press(w, "cmdAdvanced");
        EXPECT_EQ(shownText(w, "usrTCRP"), "70.00");
    });
    EXPECT_EQ(handles().service->GetStageGeometry(0), 79.0);
    EXPECT_EQ(handles().service->GetStageGeometry(1), 70.0);
    EXPECT_TRUE(harness.messages().empty());
}

using testing::FailureEnds;
using testing::SweptHandler;

SweptHandler pressing(std::string name, const char* button, std::string file = {}) {
    return {std::move(name),
            [button, file](WindowHarness& h, Form& w) {
                if (!file.empty())
                    h.answerFileDialog(file);
                press(w, button);
            },
            file.empty() ? FailureEnds::OneMessage : FailureEnds::Transfer};
}

// Commits a value that differs from run to run: a value equal to the one read writes nothing.
SweptHandler committing(const char* field, double first) {
    auto runs = std::make_shared<int>(0);
    return {.name = field,
            .run = [field, first, runs](WindowHarness&,
                                        Form& w) { commit(w, field, QString::number(first + ++*runs)); },
            .edits = field};
}

// Cancel refused: one message and the page stays open (the sweep checks both).
TEST(FailureSweep, CustomerWindows) {
    WindowHarness harness;
    harness.openSession();
    QTemporaryDir dir;
    const std::string exported = dir.filePath(QStringLiteral("export.csv")).toStdString();
    const std::string customer = dir.filePath(QStringLiteral("customer.csv")).toStdString();
    const std::string stage = dir.filePath(QStringLiteral("stage.csv")).toStdString();
    ExportGroup(SettingGroup::Customer, customer, handles(), messageSink());
    ExportGroup(SettingGroup::CustomerStageConfiguration, stage, handles(), messageSink());

    int cases = testing::sweepFailures(harness, page(),
                                       {committing("usrStopperID", 10),
                                        committing("usrStopperOD", 25),
                                        {"Advanced",
                                         [](WindowHarness& h, Form& w) {
                                             h.whenActive<frmCusStageConfig>(
                                                 [](frmCusStageConfig& s) { press(s, "cmdOK"); });
                                             press(w, "cmdAdvanced");
                                         }},
                                        pressing("Recall", "cmdRecall"),
                                        pressing("Save", "cmdSave"),
                                        pressing("Import", "cmdImport", customer),
                                        pressing("Export", "cmdExport", exported)});
    cases += testing::sweepFailures(
        harness, [](QWidget* p) { return std::make_unique<frmCusStageConfig>(p); },
        {committing("usrTCSC", 80), committing("usrTCRP", 71), committing("usrOFST", 6),
         pressing("Cancel", "cmdCancel"), pressing("Import", "cmdImport", stage),
         pressing("Export", "cmdExport", exported)});
    EXPECT_GT(cases, 30);
}

} // namespace
} // namespace vss

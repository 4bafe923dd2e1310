// The factory pages with real keys and clicks on the simulated instrument: what each page reads as it opens,
// what a commit writes (once, with the type the instrument gave), the look-up of list codes, view-only, and
// the refresh after Recall and Import.

#include "factory/frmBacklashCompen.h"
#include "factory/frmFacSpinstand.h"
#include "factory/frmFacSpinstandSpindle.h"
#include "factory/frmFacSpinstandStage.h"
#include "kit/Messages.h"
#include "storage/modConfigFile.h"
#include "tests/factory/FactoryHarness.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace vss {
namespace {

using namespace vss::testing;
using WindowHarness = vss::testing::WindowHarness;

template <class W> FormFactory page(bool viewOnly = false) {
    return [viewOnly](QWidget* parent) { return std::make_unique<W>(parent, viewOnly); };
}

bool enabled(QWidget& w, const char* name) {
    return WindowHarness::control(w, name).isEnabled();
}
bool locked(QWidget& w, const char* name) {
    return WindowHarness::control<userProperty>(w, name).Locked();
}

TEST(SpinstandPage, OpensReadingTheListsThenTheGroup) {
    FactorySession s;
    s.with<frmFacSpinstand>(page<frmFacSpinstand>(), [&](frmFacSpinstand& w) {
        EXPECT_EQ(callsOf(s.trace()),
                  (Lines{"IDriverService.GetSpinstandTypeList()", "IDriverService.GetSpindleDriverItems()",
                         "IDriverService.GetSpindleDriver(0)", "IDriverService.GetSpindleDriverChoices(0)",
                         "IDriverService.GetSpindleDriver(1)", "IDriverService.GetSpindleDriverChoices(1)",
                         "IDriverService.GetSettingUnknown()", "IDriverService.GetSpinstandType()",
                         "IDriverService.GetHeadFace()", "IDriverService.GetDiskSizeRange()",
                         "IDriverService.GetSpindleDriver(0)", "IDriverService.GetSpindleDriver(1)"}));
        EXPECT_EQ(fieldList(w, "usrHeadFace").currentText(), "DOWN");
        EXPECT_EQ(fieldList(w, "usrProperty_1").itemText(1), "Hall sensor");
        EXPECT_EQ(fieldBox(w, "usrDiskSizeMin").text(), "32.50");
    });
}

// Either radius sends both, once, whether committed with Enter or by leaving the field; a refusal is shown
// once.
TEST(SpinstandPage, CommitsWriteOnceAndReadBack) {
    FactorySession s;
    s.with<frmFacSpinstand>(page<frmFacSpinstand>(), [&](frmFacSpinstand& w) {
        s.enter(w, "usrDiskSizeMin", "30");
        EXPECT_EQ(callsOf(s.trace()), (Lines{"IDriverService.SetDiskSizeRange(0.03, 0.0475)",
                                             "IDriverService.GetDiskSizeRange()"}));
        s.enter(w, "usrDiskSizeMax", "46", Qt::Key_Tab);
        EXPECT_EQ(writesOf(s.trace()), (Lines{"IDriverService.SetDiskSizeRange(0.03, 0.046)"}));
        s.chooseNextIn(w, "usrHeadFace"); // "DOWN" to "UP"
        EXPECT_EQ(callsOf(s.trace()),
                  (Lines{"IDriverService.SetHeadFace(0)", "IDriverService.GetHeadFace()"}));
        EXPECT_TRUE(s.messages().empty());

        s.enter(w, "usrDiskSizeMin", "60"); // beyond the maximum
        EXPECT_EQ(s.messages().size(), 1U);
        EXPECT_EQ(handles().service->GetDiskSizeRange(), (DoubleRange{0.03, 0.046}));
    });
}

// The code sent is the item data of the entry whose position equals the selected entry's code. The
// instrument's type is 0; the selection moves one entry down from the entry showing it (from none, to the
// first).
TEST(SpinstandPage, TypeCodeIsLookedUpTwice) {
    struct Case {
        std::vector<std::int16_t> codes;
        Lines writes;
        std::string message;
    };
    for (const Case& c : {
             Case{{}, {"IDriverService.SetSpinstandType(1)"}, ""}, // codes equal positions
             Case{{2, 0, 1},
                  {"IDriverService.SetSpinstandType(0)"},
                  ""},                                        // "Compact": code 1, position 1 has 0
             Case{{10, 20, 30}, {}, "Invalid list index 10"}, // "Standard": no position 10
         }) {
        FactorySession s({.statePath = ":memory:", .spinstandTypeCodes = c.codes});
        s.with<frmFacSpinstand>(page<frmFacSpinstand>(), [&](frmFacSpinstand& w) {
            s.chooseNextIn(w, "usrSsType");
            EXPECT_EQ(writesOf(s.trace()), c.writes);
            EXPECT_EQ(s.messages().empty() ? "" : s.messages()[0].text, c.message);
        });
    }
}

TEST(SpinstandPage, ViewOnlyLocksTheRowsAndUnknownSettingStaysDisabledAfterACommand) {
    FactorySession s;
    s.with<frmFacSpinstand>(page<frmFacSpinstand>(true), [&](frmFacSpinstand& w) {
        for (const char* row :
             {"usrSsType", "usrHeadFace", "usrDiskSizeMin", "usrDiskSizeMax", "usrProperty_1"})
            EXPECT_TRUE(locked(w, row)) << row;
        for (const char* off :
             {"cmdStage", "cmdSave", "cmdRecall", "cmdImport", "cmdExport", "chkSettingUnknown"})
            EXPECT_FALSE(enabled(w, off)) << off;
        EXPECT_TRUE(enabled(w, "cmdSpindle"));
        s.chooseNextIn(w, "usrSsType");
        s.enter(w, "usrDiskSizeMin", "30");
        EXPECT_TRUE(writesOf(s.trace()).empty()) << "a view-only page sends nothing";

        // The spindle page opens view-only too; afterwards the page is as locked as before.
        s.whenActive<frmFacSpinstandSpindle>([](frmFacSpinstandSpindle& spindle) {
            EXPECT_TRUE(spindle.ViewOnly());
            spindle.close();
        });
        WindowHarness::click(w, "cmdSpindle");
        EXPECT_FALSE(enabled(w, "chkSettingUnknown"));
        EXPECT_FALSE(enabled(w, "cmdSave"));
    });
    s.with<frmFacSpinstand>(page<frmFacSpinstand>(), [&](frmFacSpinstand& w) {
        s.clearTrace();
        WindowHarness::click(w, "chkSettingUnknown");
        EXPECT_EQ(writesOf(s.trace()), (Lines{"IDriverService.SetSettingUnknown(true)"}));
        EXPECT_TRUE(enabled(w, "chkSettingUnknown"));
    });
}

TEST(SpindlePage, RowsFromTheListEachCommittedWithItsType) {
    FactorySession s;
    s.with<frmFacSpinstandSpindle>(page<frmFacSpinstandSpindle>(), [&](frmFacSpinstandSpindle& w) {
        const Lines load = callsOf(s.trace());
        ASSERT_EQ(load.size(), 1U + 13 + 4 + 13 + 1)
            << "list, values, choices of 4 coded rows, refresh, range";
        EXPECT_EQ(load[2], "IDriverService.GetSpindlePropertyChoices(0)");
        EXPECT_EQ(load[18], "IDriverService.GetSpindleProperty(0)") << "the refresh after the build";
        EXPECT_EQ(load.back(), "IDriverService.GetSpeedRange()");
        EXPECT_EQ(fieldList(w, "usrProperty_2").itemText(1), "External");
        EXPECT_EQ(fieldBox(w, "usrProperty_3").text(), "10.0000E+3") << "six significant digits";

        s.chooseNextIn(w, "usrProperty_2");
        EXPECT_EQ(callsOf(s.trace()), (Lines{"IDriverService.SetSpindleProperty(2, (Integer)1)",
                                             "IDriverService.GetSpindleProperty(2)"}));
        s.enter(w, "usrProperty_3", "12345.6");
        EXPECT_EQ(writesOf(s.trace()), (Lines{"IDriverService.SetSpindleProperty(3, (Double)12345.6)"}));
        s.enter(w, "usrProperty_1", "abc"); // not a number: the field keeps its value, which is no edit
        EXPECT_EQ(writesOf(s.trace()), Lines{});
        s.enter(w, "usrRpmMax", "12000");
        EXPECT_EQ(writesOf(s.trace()), (Lines{"IDriverService.SetSpeedRange(4000, 12000)"}));
        EXPECT_TRUE(s.messages().empty());
        s.enter(w, "usrProperty_1", "99999999"); // beyond the property's range
        EXPECT_EQ(s.messages().size(), 1U);
    });
}

TEST(PropertyPages, ViewOnlyLocksTheRowsAndDisablesImportSaveRecall) {
    FactorySession s;
    const auto check = [](QWidget& w, std::vector<const char*> rows) {
        for (const char* row : rows)
            EXPECT_TRUE(locked(w, row)) << row;
        for (const char* off : {"cmdImport", "cmdSave", "cmdRecall"})
            EXPECT_FALSE(enabled(w, off)) << off;
        EXPECT_TRUE(enabled(w, "cmdExport"));
    };
    s.with<frmFacSpinstandSpindle>(page<frmFacSpinstandSpindle>(true), [&](frmFacSpinstandSpindle& w) {
        check(w, {"usrProperty_0", "usrProperty_3", "usrRpmMin", "usrRpmMax"});
    });
    s.with<frmFacSpinstandStage>(page<frmFacSpinstandStage>(true), [&](frmFacSpinstandStage& w) {
        check(w, {"usrProperty_0", "usrProperty_10"});
        s.whenActive<frmBacklashCompen>([](frmBacklashCompen& backlash) {
            for (const char* off : {"usrBacklash_0", "usrBacklash_4", "usrPropBacklashDate",
                                    "cmdExpBacklashDat", "cmdImpBacklashDat", "cmdSave", "cmdRecall"})
                EXPECT_FALSE(enabled(backlash, off)) << off;
            backlash.close();
        });
        WindowHarness::click(w, "cmdBacklashCompen");
    });
}

std::vector<QString> shownBacklash(QWidget& w) {
    std::vector<QString> shown;
    for (const char* field : {"usrBacklash_0", "usrBacklash_1", "usrBacklash_2", "usrBacklash_3",
                              "usrBacklash_4", "usrPropBacklashDate"})
        shown.push_back(fieldBox(w, field).text());
    return shown;
}

std::vector<QString> instrumentBacklash() {
    std::vector<QString> values;
    for (std::int16_t k = 0; k < frmBacklashCompen::kEntries; ++k)
        values.push_back(QString::number(handles().service->GetBacklashCompensation(k)));
    values.push_back(QString::fromStdString(handles().service->GetBacklashDate()));
    return values;
}

// An edit writes its entry only and leaves the date; Recall and Import show all five values and the date.
TEST(BacklashPage, EditsWriteOneEntryAndRefreshesShowTheInstruments) {
    FactorySession s;
    QTemporaryDir dir;
    const std::string file = dir.filePath(QStringLiteral("backlash.csv")).toStdString();
    for (std::int16_t k = 0; k < frmBacklashCompen::kEntries; ++k)
        handles().service->SetBacklashCompensation(k, 200 + k);
    ExportGroup(SettingGroup::BacklashCompensation, file, handles(), messageSink());
    handles().service->RecallBacklashCompensation();
    s.clearTrace();

    s.with<frmBacklashCompen>(page<frmBacklashCompen>(), [&](frmBacklashCompen& w) {
        EXPECT_EQ(callsOf(s.trace()).front(), "IDriverService.GetBacklashDate()");
        EXPECT_EQ(shownBacklash(w), instrumentBacklash());
        const QString date = fieldBox(w, "usrPropBacklashDate").text();
        s.enter(w, "usrBacklash_2", "150");
        EXPECT_EQ(s.trace(), (Lines{"IDriverService.SetBacklashCompensation(2, 150)"}));
        handles().service->SaveBacklashCompensation(); // the instrument stamps a new date
        EXPECT_EQ(fieldBox(w, "usrPropBacklashDate").text(), date);

        WindowHarness::click(w, "cmdRecall");
        EXPECT_EQ(shownBacklash(w), instrumentBacklash());
        s.answerFileDialog(file);
        WindowHarness::click(w, "cmdImpBacklashDat");
        EXPECT_EQ(shownBacklash(w)[4], "204");
        EXPECT_EQ(shownBacklash(w), instrumentBacklash());
    });
}

} // namespace
} // namespace vss

// The failure sweep of the factory pages: every handler that talks to the instrument, with each driver
// operation it calls failing in turn, ends in the failure's one message (Export and Import end without one)
// and leaves a usable page.

#include "factory/frmBacklashCompen.h"
#include "factory/frmFacSpinstand.h"
#include "factory/frmFacSpinstandSpindle.h"
#include "factory/frmFacSpinstandStage.h"
#include "kit/Messages.h"
#include "storage/modConfigFile.h"
#include "tests/factory/FactoryHarness.h"
#include "tests/support/FailureSweep.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace vss {
namespace {

using testing::FailureEnds;
using testing::SweptHandler;
using testing::WindowHarness;

SweptHandler clicking(const char* button, std::string edits = {}) {
    return {.name = button,
            .run = [button](WindowHarness&, Form& w) { WindowHarness::click(w, button); },
            .edits = std::move(edits)};
}
// Enters a number that differs from run to run: a value equal to the one read writes nothing.
SweptHandler entering(const char* field, int first) {
    auto runs = std::make_shared<int>(first);
    return {.name = field,
            .run = [field, runs](WindowHarness&,
                                 Form& w) { testing::enterValue(w, field, QString::number(++*runs)); },
            .edits = field};
}
SweptHandler choosing(const char* field) {
    return {.name = field,
            .run = [field](WindowHarness&, Form& w) { testing::chooseNext(w, field); },
            .edits = field};
}

// A page opened from this one, closed with its close box ("Return" would first take the focus from the page's
// first field, which commits it: a write that depends on whether the field had the focus).
template <class W> SweptHandler opening(const char* button) {
    return {button, [button](WindowHarness& harness, Form& w) {
                harness.whenActive<W>([](W& opened) { opened.close(); });
                WindowHarness::click(w, button);
            }};
}

// The page's Export and Import with the group's file.
void addTransfers(std::vector<SweptHandler>& handlers, SettingGroup group, const QTemporaryDir& dir,
                  const char* exportButton = "cmdExport", const char* importButton = "cmdImport") {
    const std::string exported = dir.filePath(QStringLiteral("export.csv")).toStdString();
    const std::string imported = dir.filePath(QStringLiteral("import.csv")).toStdString();
    ExportGroup(group, imported, handles(), messageSink());
    for (const auto& [button, file] : {std::pair{exportButton, exported}, std::pair{importButton, imported}})
        handlers.push_back({button,
                            [file, button](WindowHarness& h, Form& w) {
                                h.answerFileDialog(file);
                                WindowHarness::click(w, button);
                            },
                            FailureEnds::Transfer});
}

template <class W>
int sweep(WindowHarness& harness, std::vector<SweptHandler> handlers, SettingGroup group,
          const char* exportButton = "cmdExport", const char* importButton = "cmdImport") {
    const QTemporaryDir dir;
    addTransfers(handlers, group, dir, exportButton, importButton);
    handlers.push_back(clicking("cmdSave"));
    handlers.push_back(clicking("cmdRecall"));
    return testing::sweepFailures(
        harness, [](QWidget* p) { return std::make_unique<W>(p, false); }, handlers);
}

TEST(FailureSweep, FactoryPages) {
    testing::FactorySession harness;
    int cases = sweep<frmFacSpinstand>(
        harness,
        {choosing("usrSsType"), choosing("usrHeadFace"), entering("usrDiskSizeMin", 30),
         entering("usrDiskSizeMax", 46), clicking("chkSettingUnknown", "chkSettingUnknown"),
         opening<frmFacSpinstandSpindle>("cmdSpindle"), opening<frmFacSpinstandStage>("cmdStage")},
        SettingGroup::Spinstand);
    cases += sweep<frmFacSpinstandSpindle>(harness,
                                           {choosing("usrProperty_0"), entering("usrProperty_1", 3500),
                                            entering("usrProperty_3", 12000), entering("usrRpmMin", 4200),
                                            entering("usrRpmMax", 12000)},
                                           SettingGroup::SpindleProperty);
    cases += sweep<frmFacSpinstandStage>(harness,
                                         {choosing("usrProperty_0"), entering("usrProperty_9", 4000),
                                          opening<frmBacklashCompen>("cmdBacklashCompen")},
                                         SettingGroup::StageProperty);
    cases += sweep<frmBacklashCompen>(harness, {entering("usrBacklash_3", 140)},
                                      SettingGroup::BacklashCompensation, "cmdExpBacklashDat",
                                      "cmdImpBacklashDat");
    EXPECT_GE(cases, 100);
}

} // namespace
} // namespace vss

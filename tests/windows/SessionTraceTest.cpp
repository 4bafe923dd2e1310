// One operator's session through the program's own windows, the same on every platform: "Open" on the top
// window, "Operation Check", a spindle command on the panel, "Export" in its settings window, then back out
// and "Close". On Windows the driver object is whatever is registered under the driver's ProgID (the
// simulator's COM server in the test run, through the COM client the program installs at start-up); elsewhere
// it is the simulated instrument. The calls, without the panel's 200 ms polling, must equal session.trace
// line for line after the creation line, so a Windows build makes exactly the calls the Linux build makes.

#include "app/frmOpen.h"
#include "kit/modGlobal.h"
#include "operation/frmIni.h"
#include "operation/frmIniSetting.h"
#include "tests/support/WindowHarness.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#if VSS_HAVE_COM
#include "com/ComClient.h"
#include "simulator/Factory.h"
#endif

namespace vss {
namespace {

using WindowHarness = testing::SessionHarness;
using Lines = std::vector<std::string>;

#if VSS_HAVE_COM
constexpr std::string_view kMade = "driver";
#else
constexpr std::string_view kMade = "simulator";
#endif

// The panel and the settings window read the interlock, the emergency stop and the outer cover every 200 ms:
// how often depends on the machine's speed, so those reads are left out on both sides.
bool isPolling(const std::string& line) {
    return line.starts_with("IDriverInterlock.") || line.starts_with("IDriverService.GetEmergency") ||
           line.starts_with("IDriverService.GetOuterCover");
}

Lines withoutPolling(const Lines& lines) {
    Lines kept;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(kept),
                 [](const auto& l) { return !isPolling(l); });
    return kept;
}

QString besideProgram(const char* name) {
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

Lines readLines(const QString& path) {
    QFile file(path);
    Lines lines;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return lines;
    while (!file.atEnd())
        lines.push_back(file.readLine().trimmed().toStdString());
    return lines;
}

// The driver comes from where the program itself takes it: the platform's registered driver when there is a
// resolver for one, otherwise the process's simulated instrument. The harness's trace buffer stays.
void useTheProgramsDriver() {
    DriverOptions& options = globals().driverOptions;
#if VSS_HAVE_COM
    setPlatformResolver(com::ComDriverObject::create);
    options.forceSimulator = false;
    options.simulator = nullptr;
#else
    options.forceSimulator = true;
#endif
}

TEST(WholeSession, MakesTheRecordedCallsAndExportsTheSettingFile) {
    WindowHarness harness;
    useTheProgramsDriver();
    QTemporaryDir dir;
    const QString exported = dir.filePath(QStringLiteral("Settings export.csv"));
    harness.answerFileDialog(exported.toStdString());

    harness.runSession([&](frmOpen& menu) {
        harness.whenActive<frmIni>([&](frmIni& panel) {
            WindowHarness::click(panel, "cmdSpindleRun");
            harness.whenActive<frmIniSetting>([](frmIniSetting& settings) {
                WindowHarness::click(settings, "cmdExport");
                WindowHarness::click(settings, "cmdReturn");
            });
            WindowHarness::click(panel, "cmdSetting");
            WindowHarness::click(panel, "cmdReturn");
        });
        WindowHarness::click(menu, "cmdInitialize");
    });

    EXPECT_FALSE(harness.stepsPending()) << "a window the session needed did not open";
    for (const auto& message : harness.messages())
        ADD_FAILURE() << "message shown: " << message.text;
    ASSERT_EQ(harness.fileDialogs().size(), 1U);
    EXPECT_EQ(harness.fileDialogs()[0].title, "Export Setting");
    QFile file(exported);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << "the setting file was not written";
    EXPECT_GT(file.size(), 0);

    // What this platform made, kept for a look at a difference and for recording the session anew.
    const Lines actual = withoutPolling(harness.trace());
    std::ofstream kept(besideProgram("session.trace.actual").toStdString());
    for (const auto& line : actual)
        kept << line << '\n';
    kept.close();

    const Lines recorded = readLines(besideProgram("session.trace"));
    ASSERT_FALSE(recorded.empty()) << "session.trace is missing beside the test program";
    ASSERT_FALSE(actual.empty());
    EXPECT_EQ(actual[0], R"(CoDriver.Create("Vlkd2208.CoDriver") -> )" + std::string(kMade));
    const Lines afterCreation(actual.begin() + 1, actual.end());
    const Lines recordedAfterCreation(recorded.begin() + 1, recorded.end());
    for (std::size_t i = 0; i < std::max(afterCreation.size(), recordedAfterCreation.size()); ++i) {
        const std::string got = i < afterCreation.size() ? afterCreation[i] : "(no line)";
        const std::string want = i < recordedAfterCreation.size() ? recordedAfterCreation[i] : "(no line)";
        if (got != want) {
            ADD_FAILURE() << "line " << i + 2 << " differs\n  recorded: " << want << "\n  this run: " << got
                          << "\n(whole run: " << besideProgram("session.trace.actual").toStdString() << ")";
            break;
        }
    }
}

} // namespace
} // namespace vss

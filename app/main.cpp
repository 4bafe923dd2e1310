// vsstool: the operator, factory and service program of the spinstand.

#include "app/CommandLine.h"
#include "app/Navigation.h"
#include "app/Screenshots.h"
#include "app/frmTop.h"
#include "driver/DriverError.h"
#include "driver/ShownText.h"
#include "frontpanel/frmSimPanel.h"
#include "kit/modGlobal.h"

#include <QApplication>

#if VSS_HAVE_COM
#include "com/ComClient.h"
#include "simulator/Factory.h"
#endif

#include <clocale>
#include <cstdio>
#include <memory>
#include <variant>

namespace {

void nameApplication() {
    QCoreApplication::setApplicationName(QStringLiteral("vsstool"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VSS_VERSION));
}

// The command line is read before the window system is asked for, so that --help, --version and a wrong
// option answer on a machine without a display too.
std::variant<vss::CommandLine, int> readCommandLine(int argc, char* argv[]) {
    const QCoreApplication console(argc, argv);
    nameApplication();
    return vss::parseCommandLine(QCoreApplication::arguments());
}

} // namespace

int main(int argc, char* argv[]) {
    auto parsed = readCommandLine(argc, argv);
    if (const int* exitCode = std::get_if<int>(&parsed))
        return *exitCode;
    const vss::CommandLine& line = std::get<vss::CommandLine>(parsed);

    QApplication app(argc, argv);
    nameApplication();
    std::setlocale(LC_TIME, ""); // the setting files' date and time in the system's forms, on every platform

#if VSS_HAVE_COM
    // The registered driver, where there is one; the simulator runs only when asked for (--simulate): a ProgID
    // that is not registered is an error, so a broken driver installation never passes for the instrument.
    vss::setPlatformResolver(vss::com::ComDriverObject::create);
#endif
    vss::setUpGlobals();
    vss::registerWindows(vss::menuWindows());
    vss::globals().driverOptions = line.driver;
    vss::globals().catalogueFile =
        (line.catalogueFile.isEmpty() ? QApplication::applicationDirPath() + QStringLiteral("/VssTool.ini")
                                      : line.catalogueFile)
            .toStdString();
    if (!line.screenshotDir.isEmpty())
        return vss::runScreenshots(line.screenshotDir, line.driver);

    // On the simulated instrument its front panel stands beside the tool. A scenario is checked before anything
    // runs, and a real driver takes none.
    std::unique_ptr<vss::frmSimPanel> panel;
    try {
        panel = vss::frontPanelFor(line.driver);
    } catch (const vss::DriverError& e) {
        std::fprintf(stderr, "vsstool: %s\n", vss::shownText(e.what()).c_str());
        return 2;
    }

    vss::frmTop top;
    top.show();
    if (panel) {
        panel->move(top.frameGeometry().topRight() + QPoint(16, 0));
        panel->show();
    }
    return QApplication::exec();
}

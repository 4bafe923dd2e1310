// vsstool: the operator, factory and service program of the spinstand.

#include "app/CommandLine.h"
#include "app/Navigation.h"
#include "app/Screenshots.h"
#include "app/frmTop.h"
#include "kit/modGlobal.h"

#include <QApplication>

#if VSS_HAVE_COM
#include "driver/com/ComClient.h"
#endif

#include <clocale>
#include <variant>

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    std::setlocale(LC_TIME, ""); // the setting files' date and time in the system's forms, on every platform
    QApplication::setApplicationName(QStringLiteral("vsstool"));
    QApplication::setApplicationVersion(QStringLiteral(VSS_VERSION));

    auto parsed = vss::parseCommandLine(QApplication::arguments());
    if (const int* exitCode = std::get_if<int>(&parsed))
        return *exitCode;
    const vss::CommandLine& line = std::get<vss::CommandLine>(parsed);

#if VSS_HAVE_COM
    // The registered driver, where there is one; the simulator stands in otherwise.
    vss::com::InstallPlatformResolver();
#endif
    vss::setUpGlobals();
    vss::registerWindows(vss::menuWindows());
    vss::globals().driverOptions = line.driver;
    if (!line.screenshotDir.isEmpty())
        return vss::runScreenshots(line.screenshotDir, line.driver);

    vss::frmTop top;
    top.show();
    return QApplication::exec();
}

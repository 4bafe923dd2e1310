#include "app/CommandLine.h"

#include "driver/Trace.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <exception>

namespace vss {
namespace {

void print(std::FILE* stream, const QString& text) {
    const QByteArray bytes = text.toLocal8Bit();
    std::fputs(bytes.constData(), stream);
    std::fflush(stream);
}

} // namespace

std::variant<CommandLine, int> parseCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The operator, factory and service tool of the Velkor spinstand."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption simulate(
        QStringLiteral("simulate"),
        QStringLiteral("Use the simulated instrument even where a driver is registered."));
    const QCommandLineOption simState(QStringLiteral("sim-state"),
                                      QStringLiteral("The simulated instrument's non-volatile memory file."),
                                      QStringLiteral("FILE"));
    const QCommandLineOption powerCycle(
        QStringLiteral("power-cycle"),
        QStringLiteral("Start the simulated instrument as after switching it off and on: its working values "
                       "from its non-volatile memory."));
    const QCommandLineOption simDelays(QStringLiteral("sim-delays"),
                                       QStringLiteral("Give the simulated instrument realistic timing."));
    const QCommandLineOption simScenario(
        QStringLiteral("sim-scenario"),
        QStringLiteral("Play the timed steps of the scenario FILE on the simulated instrument."),
        QStringLiteral("FILE"));
    const QCommandLineOption oneBasedLists(
        QStringLiteral("sim-one-based-lists"),
        QStringLiteral("Number the simulated instrument's lists from 1, as some drivers do."));
    const QCommandLineOption trace(QStringLiteral("trace"),
                                   QStringLiteral("Write every driver call to FILE, one line each."),
                                   QStringLiteral("FILE"));
    const QCommandLineOption catalogue(
        QStringLiteral("catalogue"),
        QStringLiteral("Read the spinstand catalogue from FILE instead of VssTool.ini beside the program."),
        QStringLiteral("FILE"));
    const QCommandLineOption screenshots(
        QStringLiteral("screenshots"),
        QStringLiteral("Render every window on the simulated instrument to a PNG file in DIR, then exit."),
        QStringLiteral("DIR"));
    parser.addOptions(
        {simulate, simState, powerCycle, simDelays, simScenario, oneBasedLists, trace, catalogue, screenshots});

    const QString usage = parser.helpText();
    if (!parser.parse(arguments)) {
        print(stderr, parser.errorText() + QLatin1Char('\n') + usage);
        return 2;
    }
    if (!parser.positionalArguments().isEmpty()) {
        print(stderr,
              QStringLiteral("Unexpected argument '%1'.\n").arg(parser.positionalArguments().constFirst()) +
                  usage);
        return 2;
    }
    if (parser.isSet(help)) {
        print(stdout, usage);
        return 0;
    }
    if (parser.isSet(version)) {
        print(stdout, QCoreApplication::applicationName() + QLatin1Char(' ') +
                          QCoreApplication::applicationVersion() + QLatin1Char('\n'));
        return 0;
    }

    CommandLine line;
    line.driver.forceSimulator = parser.isSet(simulate);
    line.driver.simStatePath = parser.value(simState).toStdString();
    line.driver.simDelays = parser.isSet(simDelays);
    line.driver.simPowerCycle = parser.isSet(powerCycle);
    line.driver.simScenario = parser.value(simScenario).toStdString();
    line.driver.simOneBasedLists = parser.isSet(oneBasedLists);
    line.catalogueFile = parser.value(catalogue);
    line.screenshotDir = parser.value(screenshots);
    if (parser.isSet(trace)) {
        try {
            line.driver.trace = std::make_shared<TraceFile>(parser.value(trace).toStdString());
        } catch (const std::exception& e) {
            print(stderr, QStringLiteral("--trace %1: %2\n")
                              .arg(parser.value(trace), QString::fromUtf8(e.what())));
            return 1;
        }
    }
    return line;
}

} // namespace vss

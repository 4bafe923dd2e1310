#include "app/CommandLine.h"

#include "simulator/SimOptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <exception>
#include <utility>
#include <vector>

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
    // The simulated instrument's options and the trace, then the program's own.
    std::vector<std::pair<const SimOption*, QCommandLineOption>> simulator;
    for (const SimOption* option : simOptions(Program::Vsstool)) {
        QCommandLineOption qtOption(QString::fromUtf8(option->name),
                                    QString::fromUtf8(option->in(Program::Vsstool).help),
                                    QString::fromUtf8(option->valueName));
        parser.addOption(qtOption);
        simulator.emplace_back(option, std::move(qtOption));
    }
    const QCommandLineOption catalogue(
        QStringLiteral("catalogue"),
        QStringLiteral("Read the spinstand catalogue from FILE instead of VssTool.ini beside the program."),
        QStringLiteral("FILE"));
    const QCommandLineOption screenshots(
        QStringLiteral("screenshots"),
        QStringLiteral("Render every window on the simulated instrument to a PNG file in DIR, then exit."),
        QStringLiteral("DIR"));
    parser.addOptions({catalogue, screenshots});

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
    line.catalogueFile = parser.value(catalogue);
    line.screenshotDir = parser.value(screenshots);
    for (const auto& [option, qtOption] : simulator) {
        if (!parser.isSet(qtOption))
            continue;
        const QString value = parser.value(qtOption);
        try {
            option->apply(line.driver, value.toStdString());
        } catch (const std::exception& e) {
            print(stderr, QStringLiteral("--%1 %2: %3\n")
                              .arg(QString::fromUtf8(option->name), value, QString::fromUtf8(e.what())));
            return 1;
        }
    }
    return line;
}

} // namespace vss

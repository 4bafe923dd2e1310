// The programs as users start them: options, errors, the trace, and the screenshot mode.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSize>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>
#include <utility>

namespace {

struct Outcome {
    int exitCode = -1;
    QString out;
    QString err;
};

Outcome start(const QString& program, const QStringList& arguments, int scale = 1) {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("QT_SCALE_FACTOR"), QString::number(scale));
    process.setProcessEnvironment(env);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString() << " did not finish";
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromLocal8Bit(process.readAllStandardOutput()),
            QString::fromLocal8Bit(process.readAllStandardError())};
}

Outcome vsstool(const QStringList& arguments) {
    return start(QStringLiteral(VSSTOOL_PATH), arguments);
}

// A PNG file's width and height, from its header.
QSize pngSize(const QString& path) {
    QFile file(path);
    const QByteArray header = file.open(QIODevice::ReadOnly) ? file.read(24) : QByteArray();
    if (header.size() < 24)
        return {};
    return {static_cast<int>(qFromBigEndian<quint32>(header.constData() + 16)),
            static_cast<int>(qFromBigEndian<quint32>(header.constData() + 20))};
}

Outcome vsstoolConfig(const QStringList& arguments) {
    return start(QStringLiteral(VSSTOOL_CONFIG_PATH), arguments);
}

// Every long option a help text lists, with a value where it names one ("--trace <FILE>", "--trace FILE").
QStringList everyListedOption(const QString& help) {
    QStringList arguments;
    QRegularExpressionMatchIterator it =
        QRegularExpression(QStringLiteral("(?m)^  (?:-[a-z], )?(--[a-z][a-z-]*)( <?[A-Z]+>?)?"))
            .globalMatch(help);
    while (it.hasNext()) {
        const QRegularExpressionMatch option = it.next();
        arguments << option.captured(1);
        if (option.hasCaptured(2))
            arguments << QStringLiteral("/proc/no/such/file");
    }
    return arguments;
}

TEST(CommandLine, UnknownOptionsAndArgumentsGiveTheErrorTheUsageAndExitCode2) {
    const Outcome option = vsstool({QStringLiteral("--simulate"), QStringLiteral("--frobnicate")});
    EXPECT_EQ(option.exitCode, 2);
    EXPECT_TRUE(option.err.contains(QStringLiteral("Unknown option 'frobnicate'")))
        << option.err.toStdString();
    EXPECT_TRUE(option.err.contains(QStringLiteral("Usage:"))) << option.err.toStdString();
    EXPECT_TRUE(option.err.contains(QStringLiteral("--sim-state <FILE>")));

    const Outcome missingValue = vsstool({QStringLiteral("--trace")});
    EXPECT_EQ(missingValue.exitCode, 2);
    EXPECT_TRUE(missingValue.err.contains(QStringLiteral("Missing value after '--trace'")))
        << missingValue.err.toStdString();

    const Outcome stray = vsstool({QStringLiteral("extra")});
    EXPECT_EQ(stray.exitCode, 2);
    EXPECT_TRUE(stray.err.contains(QStringLiteral("extra")));
}

TEST(CommandLine, HelpAndVersionPrintAndSucceed) {
    const Outcome help = vsstool({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    for (const char* option :
         {"--simulate", "--sim-state <FILE>", "--sim-delays", "--trace <FILE>", "--screenshots <DIR>"})
        EXPECT_TRUE(help.out.contains(QLatin1String(option))) << option;

    const Outcome version = vsstool({QStringLiteral("--version")});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(version.out.startsWith(QStringLiteral("vsstool "))) << version.out.toStdString();
}

// The simulated instrument's options are described once for both programs; each program's parser must take
// every option its help lists. The values are never opened: --help answers before any option is applied.
TEST(CommandLine, EachProgramTakesEveryOptionItsHelpLists) {
    for (const auto& [name, run] :
         {std::pair{"vsstool", &vsstool}, std::pair{"vsstool-config", &vsstoolConfig}}) {
        const QStringList options = everyListedOption(run({QStringLiteral("--help")}).out);
        for (const char* shared : {"--simulate", "--sim-state", "--power-cycle", "--sim-scenario",
                                   "--sim-one-based-lists", "--trace"})
            EXPECT_TRUE(options.contains(QLatin1String(shared))) << name << " " << shared;
        const Outcome all = run(options + QStringList{QStringLiteral("--help")});
        EXPECT_EQ(all.exitCode, 0) << name << ": " << options.join(QLatin1Char(' ')).toStdString() << "\n"
                                   << all.err.toStdString();
    }
}

// vsstool-config opens the trace as its session starts: a file that cannot be opened is an error of the
// session (exit code 2), and of a trace given twice only the later one is opened.
TEST(CommandLine, VsstoolConfigOpensTheLastTraceGivenAsTheSessionStarts) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QStringList session{QStringLiteral("--simulate"), QStringLiteral("--sim-state"),
                              dir.filePath(QStringLiteral("memory.txt"))};
    const QString trace = dir.filePath(QStringLiteral("calls.txt"));
    const QString unwritable = dir.filePath(QStringLiteral("no/such/dir/t.txt"));

    const Outcome refused =
        vsstoolConfig(session + QStringList{QStringLiteral("--trace"), unwritable, QStringLiteral("models")});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_TRUE(refused.err.startsWith(QStringLiteral("error: ")) && refused.err.contains(unwritable))
        << refused.err.toStdString();
    EXPECT_EQ(refused.out, QString());

    const Outcome later =
        vsstoolConfig(session + QStringList{QStringLiteral("--trace"), unwritable, QStringLiteral("--trace"),
                                            trace, QStringLiteral("models")});
    EXPECT_EQ(later.exitCode, 0) << later.err.toStdString();
    QFile file(trace);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("IDriver.Open("));
}

TEST(CommandLine, ScreenshotsRenderEveryShellWindowAndTheTraceRecordsTheSession) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString trace = dir.filePath(QStringLiteral("calls.txt"));
    const QString shots = dir.filePath(QStringLiteral("shots"));
    const Outcome run = vsstool({QStringLiteral("--simulate"), QStringLiteral("--trace"), trace,
                                 QStringLiteral("--screenshots"), shots});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    for (const char* png : {"frmTop.png", "frmOpen-level0.png", "frmOpen-level1.png", "frmOpen-level2.png",
                            "frmFac.png", "frmSerStageMotor.png"})
        EXPECT_TRUE(QFile::exists(QDir(shots).filePath(QLatin1String(png)))) << png;
    // At 200 % every window, with its frame, is rendered at twice the pixels.
    const QString shots200 = dir.filePath(QStringLiteral("shots200"));
    ASSERT_EQ(start(QStringLiteral(VSSTOOL_PATH),
                    {QStringLiteral("--simulate"), QStringLiteral("--screenshots"), shots200}, 2)
                  .exitCode,
              0);
    const QSize top = pngSize(QDir(shots).filePath(QStringLiteral("frmTop.png")));
    EXPECT_FALSE(top.isEmpty());
    EXPECT_EQ(pngSize(QDir(shots200).filePath(QStringLiteral("frmTop.png"))), top * 2);

    QFile file(trace);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString calls = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(calls.contains(QStringLiteral("IDriver.Open(\"QTB::R2208C\")"))) << calls.toStdString();
    EXPECT_TRUE(calls.contains(QStringLiteral("IDriver.Close()")));

    const Outcome unwritableTrace =
        vsstool({QStringLiteral("--trace"), dir.filePath(QStringLiteral("no/such/dir/t.txt"))});
    EXPECT_EQ(unwritableTrace.exitCode, 1);
    EXPECT_TRUE(unwritableTrace.err.contains(QStringLiteral("no/such/dir")))
        << unwritableTrace.err.toStdString();
}

} // namespace

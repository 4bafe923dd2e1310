// The program as users start it: options, errors, and the screenshot mode with a trace.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Outcome {
    int exitCode = -1;
    QString out;
    QString err;
};

Outcome vsstool(const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(VSSTOOL_PATH), arguments);
    EXPECT_TRUE(process.waitForFinished(60000)) << "vsstool did not finish";
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromLocal8Bit(process.readAllStandardOutput()),
            QString::fromLocal8Bit(process.readAllStandardError())};
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

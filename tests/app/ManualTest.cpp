// The manual pages and --help say the same things: every option (and every vsstool-config action) that one
// names, the other names too.

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <set>

namespace {

using Names = std::set<std::string>;

QString helpOf(const QString& program) {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(env);
    process.start(program, {QStringLiteral("--help")});
    EXPECT_TRUE(process.waitForFinished(60000));
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

QString manual(const char* path) {
    QFile file(QString::fromUtf8(path));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    // roff writes a minus as \- and a font change as \fB ... \fR
    return QString::fromUtf8(file.readAll())
        .replace(QStringLiteral("\\-"), QStringLiteral("-"))
        .remove(QRegularExpression(QStringLiteral("\\\\f[BIRP]")));
}

Names matches(const QString& text, const QString& pattern) {
    Names names;
    QRegularExpressionMatchIterator it = QRegularExpression(pattern).globalMatch(text);
    while (it.hasNext())
        names.insert(it.next().captured(1).toStdString());
    return names;
}

Names longOptions(const QString& text) {
    return matches(text, QStringLiteral("(--[a-z][a-z-]*)"));
}

TEST(Manual, VsstoolNamesTheOptionsOfItsHelp) {
    const QString help = helpOf(QStringLiteral(VSSTOOL_PATH));
    ASSERT_FALSE(help.isEmpty());
    EXPECT_EQ(longOptions(manual(VSSTOOL_MANUAL)), longOptions(help));
}

TEST(Manual, VsstoolConfigNamesTheOptionsAndActionsOfItsHelp) {
    const QString help = helpOf(QStringLiteral(VSSTOOL_CONFIG_PATH));
    ASSERT_FALSE(help.isEmpty());
    const QString page = manual(VSSTOOL_CONFIG_MANUAL);
    EXPECT_EQ(longOptions(page), longOptions(help));
    // The actions: the first word of each line of the help's action list, and of the manual's ACTIONS.
    const QString actionList = help.section(QStringLiteral("actions:"), 1).section(QStringLiteral("\n\n"), 0, 0);
    const Names helpActions = matches(actionList, QStringLiteral("(?m)^  ([a-z][a-z-]*)"));
    const QString actionSection = page.section(QStringLiteral(".SH ACTIONS"), 1).section(QStringLiteral(".SH "), 0, 0);
    const Names pageActions =
        matches(actionSection, QStringLiteral("(?m)^\\.TP\n\\.(?:BI|BR|B) \"?([a-z][a-z-]*)")); // each tag line
    EXPECT_FALSE(helpActions.empty());
    EXPECT_EQ(pageActions, helpActions);
}

} // namespace

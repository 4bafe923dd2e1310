// Every control can be found and worked the way a screen reader or UI automation finds it: by the name that
// the accessibility interface reports, which is the caption a person sees. Hidden controls take no focus.

#include "app/Screenshots.h"
#include "app/frmOpen.h"
#include "controls/Twips.h"
#include "controls/userProperty.h"
#include "controls/userText.h"
#include "kit/Form.h"
#include "tests/support/WindowHarness.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>
#include <set>

namespace vss {
namespace {

using testing::SessionHarness;

QString accessibleName(QWidget* w) {
    QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(w);
    return iface ? iface->text(QAccessible::Name).trimmed() : QString();
}

// A control a person can reach: shown, enabled, and taking the focus or a click.
bool reachable(const QWidget* w) {
    return w->isVisible() && w->isEnabled() &&
           (w->focusPolicy() != Qt::NoFocus || qobject_cast<const QAbstractButton*>(w));
}

TEST(Accessibility, EveryReachableControlOfEveryWindowHasAName) {
    SessionHarness harness;
    harness.openSession();
    harness.prepareInstrument();
    int windows = 0;
    for (auto& [file, make] : screenshotScenes()) {
        SCOPED_TRACE(file.toStdString());
        std::unique_ptr<QWidget> window = make(nullptr);
        window->show();
        ++windows;
        for (QWidget* w : window->findChildren<QWidget*>()) {
            if (!reachable(w))
                continue;
            EXPECT_FALSE(accessibleName(w).isEmpty())
                << w->metaObject()->className() << " " << w->objectName().toStdString() << " in "
                << (w->parentWidget() ? w->parentWidget()->objectName().toStdString() : std::string());
        }
        // A value field is found by its caption: its text box, which takes the focus, bears the field's name.
        for (auto* field : window->findChildren<userText*>()) {
            auto* box = field->findChild<QWidget*>(QStringLiteral("txt"));
            if (field->isVisible() && box) {
                EXPECT_EQ(accessibleName(box), accessibleName(field)) << field->objectName().toStdString();
            }
        }
    }
    EXPECT_GE(windows, 13);
}

TEST(Accessibility, ValueFieldsCarryTheCaptionsAPersonReads) {
    SessionHarness harness;
    harness.openSession();
    harness.prepareInstrument();
    std::map<std::string, std::set<std::string>> names; // window file -> names of its value fields
    for (auto& [file, make] : screenshotScenes()) {
        std::unique_ptr<QWidget> window = make(nullptr);
        window->show();
        for (QWidget* w : window->findChildren<QWidget*>()) {
            if (qobject_cast<userText*>(w) || qobject_cast<userProperty*>(w))
                names[file.toStdString()].insert(accessibleName(w).toStdString());
        }
    }
    // A caption of its own, a label left of the field, the row's button, and the unit-less rows.
    EXPECT_TRUE(names["frmIniSetting"].contains("Inner Radius"));
    EXPECT_TRUE(names["frmIniSetting"].contains("Min"));
    EXPECT_TRUE(names["frmIni"].contains("Pos1"));
    EXPECT_TRUE(names["frmIni"].contains("Load"));
    EXPECT_TRUE(names["frmIni"].contains("Radius"));
}

TEST(Accessibility, TheSpeedArrowsAreNamed) {
    SessionHarness harness;
    harness.openSession();
    harness.prepareInstrument();
    for (auto& [file, make] : screenshotScenes()) {
        if (file != QStringLiteral("frmIni"))
            continue;
        std::unique_ptr<QWidget> panel = make(nullptr);
        panel->show();
        std::set<QString> arrows;
        for (QWidget* w : panel->findChild<QWidget*>(QStringLiteral("updnRpm"))->findChildren<QWidget*>())
            arrows.insert(accessibleName(w));
        EXPECT_EQ(arrows, (std::set<QString>{QStringLiteral("Speed up"), QStringLiteral("Speed down")}));
    }
}

// The buttons that Tab reaches, going once round the window.
std::set<std::string> tabStops(QWidget& window) {
    std::set<std::string> stops;
    QApplication::setActiveWindow(&window);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    QWidget* first = nullptr;
    for (int i = 0; i < 50; ++i) {
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window, Qt::Key_Tab);
        QWidget* focus = QApplication::focusWidget();
        if (!focus || focus == first)
            break;
        if (!first)
            first = focus;
        stops.insert(focus->objectName().toStdString());
    }
    return stops;
}

TEST(Keyboard, HiddenMenuButtonsTakeNoFocusUntilTheGestureRevealsThem) {
    SessionHarness harness;
    std::vector<std::set<std::string>> stopsByLevel;
    harness.runSession([&](frmOpen& menu) {
        for (int level : {0, 1, 2}) {
            menu.setLevel(level);
            stopsByLevel.push_back(tabStops(menu));
        }
        menu.setLevel(0);
        QTest::keyClick(&menu, Qt::Key_Space); // no hidden button answers a key
    });
    ASSERT_EQ(stopsByLevel.size(), 3U);
    EXPECT_EQ(stopsByLevel[0], (std::set<std::string>{"cmdClose", "cmdInitialize", "cmdCustomize"}));
    EXPECT_TRUE(stopsByLevel[1].contains("cmdService") && stopsByLevel[1].contains("cmdSerSet"));
    EXPECT_FALSE(stopsByLevel[1].contains("cmdFactory"));
    EXPECT_TRUE(stopsByLevel[2].contains("cmdFactory") && stopsByLevel[2].contains("cmdPiezo"));
    EXPECT_TRUE(harness.messages().empty());
}

} // namespace
} // namespace vss

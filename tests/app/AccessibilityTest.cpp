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
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QStyleOption>
#include <QTableView>
#include <QTest>
#include <gtest/gtest.h>
#include <optional>
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
    // Rows of the same caption on two sides are told apart by their side.
    for (const char* name : {"Inner stopper", "Inner radius", "Inner skew", "Outer stopper", "Outer skew"})
        EXPECT_TRUE(names["frmCus"].contains(name)) << name;
}

// What a control shows of its caption: the room the control gives the text against the width the text needs,
// in pixels; nothing for a control without a caption.
struct CaptionRoom {
    QString text;
    int room = 0;
    int needed = 0;
};

std::optional<CaptionRoom> captionRoom(QWidget* w) {
    const auto room = [w](const QString& text, int width) -> std::optional<CaptionRoom> {
        const QString shown = QString(text).remove(QLatin1Char('&'));
        if (shown.trimmed().isEmpty())
            return std::nullopt;
        return CaptionRoom{shown, width, w->fontMetrics().horizontalAdvance(shown)};
    };
    if (auto* label = qobject_cast<QLabel*>(w))
        return label->wordWrap() ? std::nullopt : room(label->text(), label->contentsRect().width());
    if (auto* button = qobject_cast<QAbstractButton*>(w)) {
        QStyleOptionButton option;
        option.initFrom(button);
        option.text = button->text();
        const QStyle::SubElement contents = qobject_cast<QRadioButton*>(w) ? QStyle::SE_RadioButtonContents
                                            : qobject_cast<QCheckBox*>(w)  ? QStyle::SE_CheckBoxContents
                                                                           : QStyle::SE_PushButtonContents;
        return room(button->text(), w->style()->subElementRect(contents, &option, w).width());
    }
    if (auto* frame = qobject_cast<QGroupBox*>(w)) {
        QStyleOptionGroupBox option;
        option.initFrom(frame);
        option.text = frame->title();
        option.subControls = QStyle::SC_GroupBoxLabel | QStyle::SC_GroupBoxFrame;
        const QRect label =
            w->style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, w);
        return room(frame->title(), w->width() - label.left());
    }
    if (auto* list = qobject_cast<QComboBox*>(w)) {
        QStyleOptionComboBox option;
        option.initFrom(list);
        const QRect field =
            w->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, w);
        return room(list->currentText(), field.width());
    }
    return std::nullopt;
}

// Every caption shows whole: labels, buttons, options, frame titles and the entry a list shows, and the
// window's title across the window's width as a title bar (and the screenshots) draw it in bold. Each grid
// shows whole rows only. The window tests run at 100 % and at 200 %.
TEST(Layout, EveryCaptionOfEveryWindowShowsWholeAndGridsShowWholeRows) {
    SessionHarness harness;
    harness.openSession();
    harness.prepareInstrument();
    for (auto& [file, make] : screenshotScenes()) {
        SCOPED_TRACE(file.toStdString());
        std::unique_ptr<QWidget> window = make(nullptr);
        window->show();
        QFont bold = window->font();
        bold.setBold(true);
        EXPECT_LE(QFontMetrics(bold).horizontalAdvance(window->windowTitle()), window->width() - 16)
            << window->windowTitle().toStdString();
        for (QWidget* w : window->findChildren<QWidget*>()) {
            const std::optional<CaptionRoom> caption = w->isVisible() ? captionRoom(w) : std::nullopt;
            if (caption) {
                EXPECT_LE(caption->needed, caption->room)
                    << w->objectName().toStdString() << " \"" << caption->text.toStdString() << "\"";
            }
        }
        for (auto* grid : window->findChildren<QTableView*>()) {
            const int shown = grid->viewport()->height();
            for (int row = 0; row < grid->model()->rowCount(); ++row) {
                const int top = grid->rowViewportPosition(row);
                if (top >= 0 && top < shown) {
                    EXPECT_LE(top + grid->rowHeight(row), shown)
                        << grid->objectName().toStdString() << " row " << row;
                }
            }
        }
    }
}

// A locked text box or list shows the button face, an editable one the window background, in every window.
TEST(Layout, LockedFieldsAndListsLookLockedInEveryWindow) {
    SessionHarness harness;
    harness.openSession();
    harness.prepareInstrument();
    const QColor buttonFace = QApplication::palette().color(QPalette::Button);
    int lockedLists = 0;
    for (auto& [file, make] : screenshotScenes()) {
        SCOPED_TRACE(file.toStdString());
        std::unique_ptr<QWidget> window = make(nullptr);
        window->show();
        for (QWidget* w : window->findChildren<QWidget*>()) {
            auto* list = qobject_cast<QComboBox*>(w);
            auto* property = qobject_cast<userProperty*>(w->parentWidget());
            auto* box = qobject_cast<QLineEdit*>(w);
            if (!w->isVisible() || !(box || (list && property)) ||
                qobject_cast<QComboBox*>(w->parentWidget()))
                continue;
            const bool locked = box ? box->isReadOnly() : property->Locked();
            lockedLists += list && locked;
            const QImage image = w->grab().toImage(); // inside the border, right of any text, above an arrow
            const QColor fill = image.pixelColor(image.width() * 19 / 20, image.height() / 4 + 1);
            EXPECT_EQ(fill == buttonFace, locked)
                << w->objectName().toStdString() << " in " << w->parentWidget()->objectName().toStdString()
                << " " << fill.name().toStdString();
        }
    }
    EXPECT_GT(lockedLists, 0);
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

// What no click, key or cancelled dialog may do on any window of the program: write from a view-only page or
// bring its locked buttons back, use a file when its dialog was cancelled, or leave a window with "Cancel"
// by Escape or the close box without undoing what Cancel undoes.

#include "app/Screenshots.h"
#include "kit/Messages.h"
#include "kit/PollingForm.h"
#include "kit/SettingsPage.h"
#include "kit/dlgConfigFile.h"
#include "kit/modGlobal.h"
#include "storage/modConfigFile.h"
#include "tests/support/FailureSweep.h"
#include "tests/support/FieldInput.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <set>

namespace vss {
namespace {

using testing::Lines;
using testing::SessionHarness;
using testing::writes;

// A window of a scene, shown and active as a person finds it; null for a scene that is not a window.
std::unique_ptr<Form> showForm(const ScreenshotMaker& make) {
    std::unique_ptr<QWidget> made = make(nullptr);
    if (!dynamic_cast<Form*>(made.get()))
        return nullptr;
    std::unique_ptr<Form> form(static_cast<Form*>(made.release()));
    form->show();
    QApplication::setActiveWindow(form.get());
    return form;
}

QAbstractButton* button(QWidget& w, const char* caption) {
    for (QAbstractButton* b : w.findChildren<QAbstractButton*>())
        if (b->isVisible() && b->text().remove(QLatin1Char('&')) == QLatin1String(caption))
            return b;
    return nullptr;
}

// Presses a button with the space bar: the focus stays where it is.
void press(QAbstractButton& b) {
    QTest::keyClick(&b, Qt::Key_Space);
}

// The window's controls in order, each with whether it is enabled.
std::vector<std::pair<std::string, bool>> enabledStates(const Form& w) {
    std::vector<std::pair<std::string, bool>> states;
    for (QWidget* c : w.controls())
        states.emplace_back(c->objectName().toStdString(), c->isEnabled());
    return states;
}

// The driver calls since the trace was cleared, without the reads a polling window makes on its own.
class Calls {
public:
    Calls(SessionHarness& h, Form& w) : h_(h) {
        if (auto* polling = dynamic_cast<PollingForm*>(&w)) {
            h.clearTrace();
            polling->pollOnce();
            for (const std::string& op : testing::operationsOf(h.trace()))
                polls_.insert(op);
        }
        h.clearTrace();
    }
    Lines made() const {
        Lines kept;
        for (const std::string& l : h_.trace())
            if (l.starts_with("IDriver") && !polls_.contains(l.substr(0, l.find('('))))
                kept.push_back(l.substr(0, l.find(" ->")));
        return kept;
    }

private:
    SessionHarness& h_;
    std::set<std::string> polls_;
};

class WindowSafety : public ::testing::Test {
protected:
    WindowSafety() {
        h.openSession();
        h.prepareInstrument();
    }
    SessionHarness h;
    QTemporaryDir dir;
    std::string file(const char* name) const { return dir.filePath(QString::fromLatin1(name)).toStdString(); }
};

// The dialog holds the file of an earlier transfer; cancelling it neither appends to that file nor imports
// it.
TEST_F(WindowSafety, ACancelledFileDialogEndsTheTransferWithNoCall) {
    const std::string last = file("last.csv");
    ExportGroup(SettingGroup::Setting, last, handles(), messageSink());
    h.answerFileDialog(last);
    dlgConfigFile::instance().showOpen("Import Setting");
    const qint64 size = QFileInfo(QString::fromStdString(last)).size();
    int cancelled = 0;
    for (const auto& [scene, make] : screenshotScenes()) {
        for (const char* caption : {"Export", "Import"}) {
            const std::unique_ptr<Form> w = showForm(make);
            QAbstractButton* transfer = w ? button(*w, caption) : nullptr;
            if (!transfer || !transfer->isEnabled())
                continue;
            SCOPED_TRACE(scene.toStdString() + " " + caption);
            const auto before = enabledStates(*w);
            const Calls calls(h, *w);
            h.clearMessages();
            h.answerFileDialog(std::nullopt);
            press(*transfer);
            EXPECT_EQ(calls.made(), Lines{});
            EXPECT_TRUE(h.messages().empty());
            EXPECT_EQ(enabledStates(*w), before);
            ++cancelled;
        }
    }
    EXPECT_EQ(QFileInfo(QString::fromStdString(last)).size(), size);
    EXPECT_GE(cancelled, 21) << "eleven windows export, ten of them import";
}

// Escape and the close box do what the window's "Cancel" does, call for call; a window without one closes
// as its "Return" closes it.
TEST_F(WindowSafety, EscapeAndTheCloseBoxDoWhatCancelOrReturnDoes) {
    int withCancel = 0;
    for (const auto& [scene, make] : screenshotScenes()) {
        Lines byButton;
        for (const std::string way : {"button", "Escape", "close box"}) {
            const std::unique_ptr<Form> w = showForm(make);
            QAbstractButton* closer = w ? button(*w, "Cancel") : nullptr;
            if (w && !closer)
                closer = button(*w, "Return");
            if (!closer)
                break;
            SCOPED_TRACE(scene.toStdString() + " " + closer->text().toStdString() + " by " + way);
            const Calls calls(h, *w);
            if (way == "button") {
                press(*closer);
            } else if (way == "Escape") {
                QWidget* focused = w->focusWidget();
                QTest::keyClick(focused ? focused : w.get(), Qt::Key_Escape);
            } else {
                w->close();
            }
            EXPECT_FALSE(w->isVisible());
            if (way == "button") {
                byButton = calls.made();
                withCancel += closer->text() == "Cancel";
            } else {
                EXPECT_EQ(calls.made(), byButton);
            }
        }
    }
    EXPECT_EQ(withCancel, 2) << "the stage configuration and the piezo control data";
}

// Tabs out of every field and presses every usable button but "Return", the Export of a view-only page
// included; a page it opens is checked the same way. Nothing is written, and every control stays as usable as
// it was. Returns how many pages were checked.
int checkStaysViewOnly(SessionHarness& h, SettingsPage& page, const std::string& exportFile) {
    SCOPED_TRACE(page.metaObject()->className());
    EXPECT_TRUE(page.ViewOnly());
    const auto before = enabledStates(page);
    int pages = 1;
    h.clearTrace();
    for (QLineEdit* box : page.findChildren<QLineEdit*>()) {
        if (!box->isVisible() || !box->isEnabled())
            continue;
        box->setFocus();
        QTest::keyClicks(box, QStringLiteral("1"));
        QTest::keyClick(box, Qt::Key_Tab);
    }
    EXPECT_EQ(writes(h.trace()), Lines{}) << "tabbing through the fields";
    for (QAbstractButton* b : page.findChildren<QAbstractButton*>()) {
        if (!b->isVisible() || !b->isEnabled() || b->text() == "Return")
            continue;
        h.answerFileDialog(exportFile);
        h.whenActive<SettingsPage>([&](SettingsPage& opened) {
            pages += checkStaysViewOnly(h, opened, exportFile);
            opened.close();
        });
        h.clearTrace();
        press(*b);
        h.dropSteps();
        h.dropFileAnswers();
        EXPECT_EQ(writes(h.trace()), Lines{}) << b->text().toStdString();
    }
    EXPECT_EQ(enabledStates(page), before);
    return pages;
}

TEST_F(WindowSafety, AViewOnlyPageAndThePagesItOpensStayViewOnly) {
    int pages = 0;
    for (const auto& [scene, make] : screenshotScenes()) {
        if (!scene.endsWith(QLatin1String("-viewonly")))
            continue;
        const std::unique_ptr<Form> w = showForm(make);
        ASSERT_TRUE(dynamic_cast<SettingsPage*>(w.get())) << scene.toStdString();
        pages += checkStaysViewOnly(h, static_cast<SettingsPage&>(*w), file("view.csv"));
    }
    EXPECT_EQ(pages, 7) << "five view-only pages, the spindle page and the backlash page they open";
    EXPECT_TRUE(h.messages().empty());
}

} // namespace
} // namespace vss

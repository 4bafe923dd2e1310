// The busy bracket, the error trap and the two seams that every window uses.

#include "driver/DriverError.h"
#include "kit/Form.h"
#include "kit/Messages.h"
#include "kit/dlgConfigFile.h"
#include "tests/support/WindowHarness.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <gtest/gtest.h>
#include <memory>

namespace vss {
namespace {

using testing::WindowHarness;

// A window with a frame of its own controls, and a counter of how often its extended EnableAllControls ran.
class SampleWindow : public Form {
public:
    SampleWindow() {
        addButton("cmdGo", "Go", 120, 120, 975, 375);
        frame = new QGroupBox(QStringLiteral("Frame"), this);
        place(frame, "frmInner", 120, 600, 2000, 900);
        inner = new QCheckBox(QStringLiteral("Inner"), frame);
        inner->setObjectName(QStringLiteral("chkInner"));
        text = new QLineEdit(this);
        place(text, "txtValue", 120, 1600, 1500, 285);
        other = new Form(this); // another window: not one of this window's controls
        otherButton = new QPushButton(other);
    }
    void EnableAllControls() override {
        Form::EnableAllControls();
        ++refreshes;
    }
    QGroupBox* frame;
    QCheckBox* inner;
    QLineEdit* text;
    Form* other;
    QPushButton* otherButton;
    int refreshes = 0;
};

// The bracket puts every control back as it found it: a button a view-only page disabled stays disabled.
TEST(BusyBracket, DisablesEveryControlOfTheWindowIncludingFramesButNoOtherWindowAndPutsThemBack) {
    WindowHarness harness;
    SampleWindow w;
    w.show();
    EXPECT_EQ(w.controls().size(), 4) << "cmdGo, the frame, its check box, the text box";
    QWidget& go = WindowHarness::control(w, "cmdGo");
    go.setEnabled(false);

    w.DisableAllControls();
    for (QWidget* c : w.controls())
        EXPECT_FALSE(c->isEnabled()) << c->objectName().toStdString();
    EXPECT_FALSE(w.inner->isEnabledTo(w.frame)) << "the control inside the frame is disabled itself";
    EXPECT_TRUE(w.otherButton->isEnabled());
    EXPECT_TRUE(WindowHarness::waitCursorShown());
    EXPECT_TRUE(w.isBusy());

    w.DisableAllControls(); // a second disabling inside the bracket changes what it found
    w.EnableAllControls();
    for (QWidget* c : w.controls())
        EXPECT_EQ(c->isEnabled(), c != &go) << c->objectName().toStdString();
    EXPECT_FALSE(WindowHarness::waitCursorShown());
}

TEST(BusyBracket, AFailingStepStopsTheHandlerShowsItsTextOnceAndEnablesAgain) {
    WindowHarness harness;
    SampleWindow w;
    w.show();
    std::vector<int> ran;
    const bool ok = w.runBusy([&] {
        ran.push_back(1);
        EXPECT_FALSE(w.text->isEnabled());
        EXPECT_TRUE(WindowHarness::waitCursorShown());
        throw DriverError("Spindle fault");
        ran.push_back(2);
    });
    EXPECT_FALSE(ok);
    EXPECT_EQ(ran, std::vector<int>{1});
    ASSERT_EQ(harness.messages().size(), 1U);
    EXPECT_EQ(harness.messages()[0].text, "Spindle fault");
    EXPECT_EQ(harness.messages()[0].title, "Velkor Spinstand Tool");
    EXPECT_FALSE(harness.messages()[0].waitCursor) << "the user answers the message with the normal cursor";
    EXPECT_TRUE(w.text->isEnabled());
    EXPECT_EQ(w.refreshes, 1) << "the window's own EnableAllControls runs after a failure too";
    EXPECT_FALSE(WindowHarness::waitCursorShown());

    EXPECT_TRUE(w.runBusy([] {}));
    EXPECT_EQ(harness.messages().size(), 1U);
}

TEST(BusyBracket, ClosingABusyWindowTakesItsWaitCursorAway) {
    WindowHarness harness;
    auto w = std::make_unique<SampleWindow>();
    w->show();
    w->DisableAllControls();
    w->DisableAllControls();
    w->accept();
    EXPECT_FALSE(WindowHarness::waitCursorShown());
}

// Whether the window was busy each time the watched control lost the focus.
class FocusOutWatch : public QObject {
public:
    explicit FocusOutWatch(const Form& window) : window_(window) {}
    std::vector<bool> busy;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::FocusOut)
            busy.push_back(window_.isBusy());
        return false;
    }

private:
    const Form& window_;
};

TEST(BusyBracket, AControlLosingTheFocusAsItIsDisabledFindsTheWindowBusy) {
    WindowHarness harness;
    SampleWindow w;
    w.show();
    QApplication::setActiveWindow(&w);
    // The text box is disabled itself; the check box loses the focus when its frame is disabled.
    for (QWidget* focused : {static_cast<QWidget*>(w.text), static_cast<QWidget*>(w.inner)}) {
        SCOPED_TRACE(focused->objectName().toStdString());
        QTest::mouseClick(focused, Qt::LeftButton);
        ASSERT_TRUE(focused->hasFocus());
        FocusOutWatch watch(w);
        focused->installEventFilter(&watch);
        EXPECT_TRUE(w.runBusy([] {}));
        focused->removeEventFilter(&watch);
        ASSERT_EQ(watch.busy.size(), 1U);
        EXPECT_TRUE(watch.busy[0]) << "what the control commits as it loses the focus must see a busy window";
    }
}

// A timer that closes the window while it repaints at the start of the bracket (the operation panel's
// interlock poll does) leaves nothing to run on the closed window.
TEST(BusyBracket, AWindowClosedAsTheBracketStartsRunsNoStep) {
    WindowHarness harness;
    SampleWindow w;
    w.show();
    QTimer::singleShot(0, &w, [&w] { w.accept(); });
    bool ran = false;
    EXPECT_FALSE(w.runBusy([&ran] { ran = true; }));
    EXPECT_FALSE(ran);
    EXPECT_FALSE(WindowHarness::waitCursorShown());
}

// A field whose commit runs a command as the user leaves it: the focus lands where the user moved it, and a
// command started from a field (Enter) gives the focus back to that field, so that typing goes on.
TEST(BusyBracket, AfterTheBracketTheFocusIsWhereTheUserPutIt) {
    WindowHarness harness;
    SampleWindow w;
    w.show();
    QApplication::setActiveWindow(&w);
    int commands = 0;
    struct CommitOnLeave : QObject {
        SampleWindow* window;
        int* commands;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::FocusOut && !window->isBusy())
                window->runBusy([this] { ++*commands; });
            return false;
        }
    } commitOnLeave;
    commitOnLeave.window = &w;
    commitOnLeave.commands = &commands;
    w.text->installEventFilter(&commitOnLeave);

    QTest::mouseClick(w.text, Qt::LeftButton);
    QTest::mouseClick(w.inner, Qt::LeftButton); // leaving the field for the check box
    EXPECT_EQ(commands, 1);
    EXPECT_TRUE(w.inner->hasFocus());

    w.text->setFocus();
    EXPECT_EQ(commands, 1);
    EXPECT_TRUE(w.runBusy([] {})); // a command from the field itself, as Enter starts one
    EXPECT_TRUE(w.text->hasFocus());
    EXPECT_EQ(commands, 1) << "the bracket's own focus changes commit nothing";
    w.text->removeEventFilter(&commitOnLeave);
}

// A window that another opens modally.
class ChildWindow : public Form {
public:
    using Form::Form;
};

TEST(BusyBracket, AWindowClosedWhileItsWaitCursorIsLiftedLeavesNoCursorBehind) {
    WindowHarness harness;
    {
        // Closed while the message of its failed step is up.
        SampleWindow w;
        w.show();
        setMessageHandler([&](const std::string&, const std::string&) { w.close(); });
        EXPECT_FALSE(w.runBusy([] { throw DriverError("Spindle fault"); }));
        EXPECT_FALSE(w.isVisible());
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    }
    {
        // Closed while a window it opened is up.
        SampleWindow w;
        w.show();
        harness.whenActive<ChildWindow>([&](ChildWindow& child) {
            w.close();
            EXPECT_FALSE(WindowHarness::waitCursorShown()) << "the child is answered with the normal cursor";
            child.close();
        });
        EXPECT_TRUE(w.openModal([](QWidget* parent) { return std::make_unique<ChildWindow>(parent); }));
        EXPECT_FALSE(w.isVisible());
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    }
    {
        // Still busy when the child closes: its cursor is back until it is done.
        SampleWindow w;
        w.show();
        harness.whenActive<ChildWindow>([](ChildWindow& child) { child.close(); });
        w.DisableAllControls();
        Form::execModal(*std::make_unique<ChildWindow>(&w));
        EXPECT_TRUE(WindowHarness::waitCursorShown());
        w.EnableAllControls();
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    }
}

TEST(MessageSeam, StorageMessagesAndWindowMessagesArriveWithTheirTitles) {
    WindowHarness harness;
    messageSink().show("Line 3: the field is not a number", "error");
    showMessage("Clamp open");
    ASSERT_EQ(harness.messages().size(), 2U);
    EXPECT_EQ(harness.messages()[0].title, "error");
    EXPECT_EQ(harness.messages()[0].text, "Line 3: the field is not a number");
    EXPECT_EQ(harness.messages()[1].title, "Velkor Spinstand Tool");
}

// A cancelled dialog gives no file, so that no caller goes on with the last one; the last file chosen is
// what the dialog holds when it opens again.
TEST(FileDialogSeam, RemembersTheLastFileAndGivesNoneWhenCancelled) {
    WindowHarness harness;
    dlgConfigFile& dialog = dlgConfigFile::instance();
    harness.answerFileDialog("/tmp/setting.csv");
    harness.answerFileDialog(std::nullopt);

    EXPECT_EQ(dialog.showSave("Export Setting"), "/tmp/setting.csv");
    EXPECT_EQ(dialog.showOpen("Import Setting"), std::nullopt);

    const std::vector<FileDialogRequest>& asked = harness.fileDialogs();
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_TRUE(asked[0].save);
    EXPECT_FALSE(asked[1].save);
    EXPECT_EQ(asked[1].title, "Import Setting");
    EXPECT_EQ(asked[1].fileName, "/tmp/setting.csv");
    EXPECT_EQ(asked[1].filter, "Text Files(*.csv)|*.csv|All Files(*.*)|*.*");
}

TEST(FileDialogSeam, FilterPairsBecomeQtFilters) {
    EXPECT_EQ(qtFileFilter(kSettingFileFilter), "Text Files(*.csv);;All Files(*.*)");
    EXPECT_EQ(qtFileFilter("Reports|*.txt"), "Reports (*.txt)");
    EXPECT_EQ(qtFileFilter(""), "");
}

} // namespace
} // namespace vss

namespace vss {
namespace {

// A wheel turned over a list of a window passes it by: only a click or a key picks an entry, so that moving
// the pointer across a settings page sends nothing to the instrument.
TEST(Lists, AWheelOverAListOfAWindowChangesNothing) {
    WindowHarness harness;
    Form w;
    auto* list = new QComboBox(&w);
    list->addItems({QStringLiteral("Run"), QStringLiteral("Standby"), QStringLiteral("Off")});
    list->setCurrentIndex(0);
    int picked = 0;
    QObject::connect(list, &QComboBox::activated, [&picked] { ++picked; });
    w.show();
    QApplication::setActiveWindow(&w);
    list->setFocus();
    for (const int delta : {-120, 120, -120}) {
        QWheelEvent wheel(QPointF(5, 5), list->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, delta),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(list, &wheel);
    }
    EXPECT_EQ(list->currentIndex(), 0);
    EXPECT_EQ(picked, 0);
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(list->currentIndex(), 1) << "the keys still pick";
}

} // namespace
} // namespace vss

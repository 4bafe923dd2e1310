// The busy bracket, the error trap and the two seams that every window uses.

#include "app/Form.h"
#include "app/Messages.h"
#include "app/dlgConfigFile.h"
#include "driver/DriverError.h"
#include "tests/support/WindowHarness.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <gtest/gtest.h>

namespace vss {
namespace {

using testing::WindowHarness;

// A window with a frame of its own controls, and a counter of how often its extended enableAllControls ran.
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
    void enableAllControls() override {
        Form::enableAllControls();
        ++refreshes;
    }
    QGroupBox* frame;
    QCheckBox* inner;
    QLineEdit* text;
    Form* other;
    QPushButton* otherButton;
    int refreshes = 0;
};

TEST(BusyBracket, DisablesEveryControlOfTheWindowIncludingFramesButNoOtherWindow) {
    WindowHarness harness;
    SampleWindow w;
    w.show();
    EXPECT_EQ(w.controls().size(), 4) << "cmdGo, the frame, its check box, the text box";

    w.disableAllControls();
    for (QWidget* c : w.controls())
        EXPECT_FALSE(c->isEnabled()) << c->objectName().toStdString();
    EXPECT_FALSE(w.inner->isEnabledTo(w.frame)) << "the control inside the frame is disabled itself";
    EXPECT_TRUE(w.otherButton->isEnabled());
    EXPECT_TRUE(WindowHarness::waitCursorShown());
    EXPECT_TRUE(w.isBusy());

    w.enableAllControls();
    for (QWidget* c : w.controls())
        EXPECT_TRUE(c->isEnabled()) << c->objectName().toStdString();
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
    EXPECT_EQ(w.refreshes, 1) << "the window's own enableAllControls runs after a failure too";
    EXPECT_FALSE(WindowHarness::waitCursorShown());

    EXPECT_TRUE(w.runBusy([] {}));
    EXPECT_EQ(harness.messages().size(), 1U);
}

TEST(BusyBracket, ClosingABusyWindowTakesItsWaitCursorAway) {
    WindowHarness harness;
    auto w = std::make_unique<SampleWindow>();
    w->show();
    w->disableAllControls();
    w->disableAllControls();
    w->accept();
    EXPECT_FALSE(WindowHarness::waitCursorShown());
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

TEST(FileDialogSeam, RemembersTheLastFileAndKeepsItWhenCancelled) {
    WindowHarness harness;
    dlgConfigFile& dialog = dlgConfigFile::instance();
    harness.answerFileDialog(std::nullopt);
    harness.answerFileDialog("/tmp/setting.csv");
    harness.answerFileDialog(std::nullopt);

    EXPECT_EQ(dialog.showSave("Export Setting"), "") << "cancelled on first use: no file";
    EXPECT_EQ(dialog.showSave("Export Setting"), "/tmp/setting.csv");
    EXPECT_EQ(dialog.showOpen("Import Setting"), "/tmp/setting.csv") << "cancelled: the last file again";

    const std::vector<FileDialogRequest>& asked = harness.fileDialogs();
    ASSERT_EQ(asked.size(), 3U);
    EXPECT_TRUE(asked[0].save);
    EXPECT_FALSE(asked[2].save);
    EXPECT_EQ(asked[2].title, "Import Setting");
    EXPECT_EQ(asked[2].fileName, "/tmp/setting.csv");
    EXPECT_EQ(asked[2].filter, "Text Files(*.csv)|*.csv|All Files(*.*)|*.*");
}

TEST(FileDialogSeam, FilterPairsBecomeQtFilters) {
    EXPECT_EQ(qtFileFilter(kSettingFileFilter), "Text Files(*.csv);;All Files(*.*)");
    EXPECT_EQ(qtFileFilter("Reports|*.txt"), "Reports (*.txt)");
    EXPECT_EQ(qtFileFilter(""), "");
}

} // namespace
} // namespace vss

// The main menu's levels and gestures, the factory menu and the opening of other windows, with real events.

#include "kit/Navigation.h"
#include "app/frmFac.h"
#include "app/frmOpen.h"
#include "kit/frmVersion.h"
#include "kit/modGlobal.h"
#include "controls/Twips.h"
#include "driver/DriverError.h"
#include "tests/support/WindowHarness.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>

namespace vss {
namespace {

using WindowHarness = testing::SessionHarness;

constexpr Qt::KeyboardModifiers kShiftCtrl = Qt::ShiftModifier | Qt::ControlModifier;

TEST(MenuLevel, GesturesMoveBetweenTheThreeLevels) {
    struct Case {
        int level;
        MenuGesture gesture;
        int next;
    };
    for (const Case c :
         {Case{0, MenuGesture::A, 1}, Case{0, MenuGesture::B, 0}, Case{1, MenuGesture::A, 0},
          Case{1, MenuGesture::B, 2}, Case{2, MenuGesture::A, 2}, Case{2, MenuGesture::B, 1},
          Case{1, MenuGesture::None, 1}, Case{7, MenuGesture::A, 0}, Case{-1, MenuGesture::B, 0}})
        EXPECT_EQ(nextMenuLevel(c.level, c.gesture), c.next) << "level " << c.level;
}

TEST(MenuLevel, OnlyShiftAndCtrlTogetherMakeAGesture) {
    EXPECT_EQ(menuGesture(Qt::RightButton, kShiftCtrl), MenuGesture::A);
    EXPECT_EQ(menuGesture(Qt::LeftButton, kShiftCtrl), MenuGesture::B);
    EXPECT_EQ(menuGesture(Qt::LeftButton, kShiftCtrl | Qt::KeypadModifier), MenuGesture::B);
    EXPECT_EQ(menuGesture(Qt::RightButton, kShiftCtrl | Qt::AltModifier), MenuGesture::None);
    EXPECT_EQ(menuGesture(Qt::RightButton, Qt::ShiftModifier), MenuGesture::None);
    EXPECT_EQ(menuGesture(Qt::LeftButton, Qt::ControlModifier), MenuGesture::None);
    EXPECT_EQ(menuGesture(Qt::MiddleButton, kShiftCtrl), MenuGesture::None);
}

// The buttons whose whole rectangle lies inside the window's client area.
std::vector<std::string> reachableButtons(frmOpen& menu) {
    std::vector<std::string> names;
    for (QAbstractButton* b : menu.findChildren<QAbstractButton*>())
        if (menu.rect().contains(b->geometry()))
            names.push_back(b->objectName().toStdString());
    std::sort(names.begin(), names.end());
    return names;
}

void gesture(frmOpen& menu, Qt::MouseButton button) {
    // A spot of the background right of the long buttons and below "Close".
    QTest::mouseClick(&menu, button, kShiftCtrl, QPoint(twipsToPixels(4500), twipsToPixels(700)));
}

TEST(MainMenu, GesturesOnTheBackgroundRevealTheHiddenButtons) {
    WindowHarness harness;
    harness.runSession([](frmOpen& menu) {
        const std::vector<std::string> level0{"cmdClose", "cmdCustomize", "cmdInitialize"};
        const std::vector<std::string> level1{"cmdClose", "cmdCustomize", "cmdInitialize", "cmdSerSet",
                                              "cmdService"};
        const std::vector<std::string> level2{"cmdClose", "cmdCustomize", "cmdFactory", "cmdInitialize",
                                              "cmdPiezo", "cmdSerSet",    "cmdService"};
        struct Step {
            Qt::MouseButton button;
            int level;
            const std::vector<std::string>& shown;
        };
        EXPECT_EQ(reachableButtons(menu), level0);
        for (const Step s : {Step{Qt::LeftButton, 0, level0}, Step{Qt::RightButton, 1, level1},
                             Step{Qt::LeftButton, 2, level2}, Step{Qt::RightButton, 2, level2},
                             Step{Qt::LeftButton, 1, level1}, Step{Qt::RightButton, 0, level0}}) {
            gesture(menu, s.button);
            EXPECT_EQ(menu.level(), s.level);
            EXPECT_EQ(menu.height(), twipsToPixels(menuHeightTwips(s.level) - 405));
            EXPECT_EQ(reachableButtons(menu), s.shown) << "at level " << s.level;
        }
        QTest::mouseClick(&menu, Qt::RightButton, Qt::ShiftModifier,
                          QPoint(twipsToPixels(4500), twipsToPixels(700)));
        EXPECT_EQ(menu.level(), 0) << "Shift alone is no gesture";

        menu.setLevel(2);
    });
    harness.runSession(
        [](frmOpen& menu) { EXPECT_EQ(menu.level(), 0) << "a new session starts at level 0"; });
}

TEST(MainMenu, TabOrderRunsFromCloseDownTheMenu) {
    WindowHarness harness;
    harness.runSession([](frmOpen& menu) {
        menu.setLevel(2);
        QWidget* w = &WindowHarness::control(menu, "cmdClose");
        std::vector<std::string> order;
        for (int i = 0; i < 7; ++i, w = w->nextInFocusChain())
            order.push_back(w->objectName().toStdString());
        EXPECT_EQ(order, (std::vector<std::string>{"cmdClose", "cmdInitialize", "cmdCustomize", "cmdService",
                                                   "cmdFactory", "cmdSerSet", "cmdPiezo"}));
    });
}

bool menuEnabled(frmOpen& menu) {
    const QList<QWidget*> controls = menu.controls();
    return std::all_of(controls.begin(), controls.end(), [](QWidget* c) { return c->isEnabled(); });
}

TEST(MainMenu, FactoryMenuOpensModallyWithTheMainMenuDisabledBeneathIt) {
    WindowHarness harness;
    bool factoryShown = false;
    QString versionTitle;
    harness.runSession([&](frmOpen& menu) {
        menu.setLevel(2);
        harness.whenActive<frmFac>([&](frmFac& factory) {
            factoryShown = true;
            EXPECT_EQ(factory.windowTitle(), "Velkor Spinstand Tool (Factory use only)");
            EXPECT_FALSE(WindowHarness::control(menu, "cmdClose").isEnabled());
            EXPECT_FALSE(WindowHarness::waitCursorShown());
            harness.whenActive<frmVersion>([&](frmVersion& version) {
                versionTitle = version.windowTitle();
                WindowHarness::click(version, "cmdReturn");
            });
            WindowHarness::click(factory, "cmdVersion");
            WindowHarness::click(factory, "cmdReturn");
        });
        WindowHarness::click(menu, "cmdFactory");
        EXPECT_TRUE(menuEnabled(menu));
    });
    EXPECT_TRUE(factoryShown);
    EXPECT_EQ(versionTitle, "Version Data (Factory use only)"); // the factory menu opens it in factory mode
    EXPECT_TRUE(harness.messages().empty());
}

// A window that fails while it loads, the way a window fails when its first driver read fails.
class FailingWindow : public Form {
public:
    explicit FailingWindow(QWidget* parent) : Form(parent) { throw DriverError("Stage not referenced"); }
};

TEST(MainMenu, AWindowThatFailsToOpenIsReportedAndTheMenuIsUsableAgain) {
    WindowHarness harness;
    menuWindows().measurementPositions = [](QWidget* p, bool) { return std::make_unique<FailingWindow>(p); };
    harness.runSession([&](frmOpen& menu) {
        WindowHarness::click(menu, "cmdCustomize");
        EXPECT_TRUE(menuEnabled(menu));
        EXPECT_FALSE(WindowHarness::waitCursorShown());
    });
    ASSERT_EQ(harness.messages().size(), 1U);
    EXPECT_EQ(harness.messages()[0].text, "Stage not referenced");
}

TEST(MainMenu, ButtonsOfWindowsNotBuiltDoNothing) {
    WindowHarness harness;
    menuWindows() = {};
    harness.runSession([&](frmOpen& menu) {
        menu.setLevel(2);
        harness.clearTrace();
        for (const char* button : {"cmdInitialize", "cmdCustomize", "cmdService", "cmdSerSet", "cmdPiezo"})
            WindowHarness::click(menu, button);
        EXPECT_TRUE(harness.trace().empty());
        EXPECT_TRUE(menuEnabled(menu));
    });
}

class PanelStandIn : public Form {
public:
    explicit PanelStandIn(QWidget* parent) : Form(parent) {
        addButton("cmdReturn", "Return", 0, 0, 975, 375);
    }
};

// Operation Check twice in one session: the first finds the instrument uninitialized, the second initialized.
TEST(MainMenu, OperationCheckPreparesTheInstrumentBeforeThePanelOpens) {
    for (const bool headLoader : {true, false}) {
        SCOPED_TRACE(headLoader ? "with head loader" : "without head loader");
        WindowHarness harness;
        harness.sim().setHeadLoaderPresent(headLoader);
        menuWindows().operationPanel = [](QWidget* p) { return std::make_unique<PanelStandIn>(p); };
        std::vector<std::vector<std::string>> preparations;
        bool headLoaderHeld = !headLoader;
        harness.runSession([&](frmOpen& menu) {
            for (int i = 0; i < 2; ++i) {
                harness.clearTrace();
                harness.whenActive<PanelStandIn>([&](PanelStandIn& panel) {
                    preparations.push_back(harness.trace());
                    headLoaderHeld = handles().headLoader != nullptr;
                    panel.accept();
                });
                WindowHarness::click(menu, "cmdInitialize");
            }
        });
        const std::string uninitialized = "IDriver.GetState() -> " + std::to_string(state::Uninitialized);
        ASSERT_EQ(preparations.size(), 2U);
        for (const std::vector<std::string>& steps : preparations) {
            ASSERT_GE(steps.size(), 2U);
            EXPECT_TRUE(steps[0].starts_with("IDriver.GetState() -> ")) << steps[0];
            EXPECT_EQ(steps[1], steps[0] == uninitialized ? "IDriver.Initialize()" : "IDriver.Reset()");
        }
        EXPECT_EQ(preparations[0][0], uninitialized) << "a newly opened instrument is uninitialized";
        EXPECT_NE(preparations[1][0], uninitialized);
        ASSERT_GE(preparations[0].size(), 3U);
        EXPECT_TRUE(preparations[0][2].starts_with("IDriverHeadLoader.GetHeadLoader()"))
            << preparations[0][2];
        EXPECT_EQ(headLoaderHeld, headLoader);
        EXPECT_TRUE(harness.messages().empty()) << "a missing head loader is not reported";
    }
}

} // namespace
} // namespace vss

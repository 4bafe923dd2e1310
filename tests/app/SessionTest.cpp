// The instrument session of the top window, driven with real clicks on the simulated instrument.

#include "app/frmOpen.h"
#include "app/frmTop.h"
#include "kit/modGlobal.h"
#include "driver/Trace.h"
#include "tests/support/WindowHarness.h"

#include <QAbstractButton>
#include <QApplication>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vss {
namespace {

using WindowHarness = testing::SessionHarness;

// The driver object's interfaces in the order the session takes them.
const std::vector<std::pair<std::string_view, Guid>> kQueryOrder{
    {IDriver::kName, IDriver::kIid},
    {IDriverPiezo::kName, IDriverPiezo::kIid},
    {IDriverStage::kName, IDriverStage::kIid},
    {IDriverLoadPosition::kName, IDriverLoadPosition::kIid},
    {IDriverHeadLoader::kName, IDriverHeadLoader::kIid},
    {IDriverSpindle::kName, IDriverSpindle::kIid},
    {IDriverClamp::kName, IDriverClamp::kIid},
    {IDriverHeadFace::kName, IDriverHeadFace::kIid},
    {IDriverIndex::kName, IDriverIndex::kIid},
    {IDriverInterlock::kName, IDriverInterlock::kIid},
    {IDriverService::kName, IDriverService::kIid},
    {IDriverDiskSize::kName, IDriverDiskSize::kIid},
};

std::vector<std::string> connectLines() {
    std::vector<std::string> lines{R"(CoDriver.Create("Vlkd2208.CoDriver") -> simulator)"};
    for (const auto& [name, iid] : kQueryOrder)
        lines.push_back("CoDriver.QueryInterface(" + std::string(name) + ") -> " + iid.toString());
    return lines;
}

// Every handle but the disk-size one, released in the query order.
std::vector<std::string> releaseLines() {
    std::vector<std::string> lines;
    for (const auto& [name, iid] : kQueryOrder)
        if (name != IDriverDiskSize::kName)
            lines.push_back(std::string(name) + ".Release()");
    return lines;
}

std::vector<std::string> concat(std::initializer_list<std::vector<std::string>> parts) {
    std::vector<std::string> all;
    for (const auto& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

void expectOnlyDiskSizeHeld() {
    const DriverHandles& h = handles();
    EXPECT_FALSE(h.driver || h.piezo || h.stage || h.loadPosition || h.headLoader || h.spindle || h.clamp ||
                 h.headFace || h.index || h.interlock || h.service);
    EXPECT_TRUE(h.diskSize);
}

bool openEnabled(WindowHarness& harness) {
    return WindowHarness::control<QAbstractButton>(harness.top(), "cmdOpen").isEnabled();
}

TEST(Session, NormalSessionMakesTheSessionCallsInOrderAndAnotherReplacesIt) {
    WindowHarness harness;
    bool menuShown = false;
    harness.runSession([&](frmOpen& menu) {
        menuShown = true;
        EXPECT_FALSE(openEnabled(harness)) << "the top window stays disabled during the session";
        EXPECT_TRUE(menu.isModal());
    });

    EXPECT_TRUE(menuShown);
    const std::vector<std::string> session =
        concat({connectLines(),
                {R"(IDriver.Open("QTB::R2208C"))", "IDriverService.BeginService()", "IDriver.Close()"},
                releaseLines()});
    EXPECT_EQ(harness.trace(), session);
    EXPECT_TRUE(harness.messages().empty());
    EXPECT_TRUE(openEnabled(harness));
    expectOnlyDiskSizeHeld();

    const std::weak_ptr<IDriverDiskSize> firstDiskSize = handles().diskSize;
    harness.clearTrace();
    harness.runSession();
    EXPECT_TRUE(firstDiskSize.expired()) << "the next session replaces the disk-size handle";
    EXPECT_TRUE(handles().diskSize);
    std::vector<std::string> second = session;
    const auto replaced = second.begin() + static_cast<std::ptrdiff_t>(connectLines().size());
    second.insert(replaced, "IDriverDiskSize.Release()");
    EXPECT_EQ(harness.trace(), second);
}

// A driver failure anywhere in the session: one message with the driver's text, the top window usable again.
struct SessionFailure {
    const char* operation;
    bool menuShown;
};

class SessionFailureTest : public ::testing::TestWithParam<SessionFailure> {};

TEST_P(SessionFailureTest, ShowsOneMessageAndLeavesTheTopWindowUsable) {
    const SessionFailure failure = GetParam();
    WindowHarness harness;
    harness.sim().failOperation(failure.operation, "Instrument not answering");
    bool menuShown = false;
    if (failure.menuShown)
        harness.runSession([&](frmOpen&) { menuShown = true; });
    else
        WindowHarness::click(harness.top(), "cmdOpen");

    EXPECT_EQ(menuShown, failure.menuShown);
    ASSERT_EQ(harness.messages().size(), 1U);
    EXPECT_EQ(harness.messages()[0].text, "Instrument not answering");
    EXPECT_EQ(harness.messages()[0].title, "Velkor Spinstand Tool");
    EXPECT_TRUE(openEnabled(harness));
    EXPECT_FALSE(WindowHarness::waitCursorShown());
    expectOnlyDiskSizeHeld();

    harness.clearMessages();
    harness.runSession();
    EXPECT_TRUE(harness.messages().empty()) << "a session after the failure runs normally";
}

INSTANTIATE_TEST_SUITE_P(Session, SessionFailureTest,
                         ::testing::Values(SessionFailure{"IDriver.Open", false},
                                           SessionFailure{"IDriverService.BeginService", false},
                                           SessionFailure{"IDriver.Close", true}),
                         [](const ::testing::TestParamInfo<SessionFailure>& p) {
                             std::string name = p.param.operation;
                             std::erase(name, '.');
                             return name;
                         });

TEST(Session, UnknownProgIdShowsOneMessageAndTouchesNothing) {
    WindowHarness harness;
    globals().driverProgId = "Vlkd9999.NoSuchDriver";
    WindowHarness::click(harness.top(), "cmdOpen");

    ASSERT_EQ(harness.messages().size(), 1U);
    EXPECT_NE(harness.messages()[0].text.find("Vlkd9999.NoSuchDriver"), std::string::npos)
        << harness.messages()[0].text;
    EXPECT_TRUE(openEnabled(harness));
    EXPECT_FALSE(handles().driver);

    globals().driverProgId = std::string(kDriverProgId);
    harness.clearMessages();
    harness.runSession();
    EXPECT_TRUE(harness.messages().empty());
}

TEST(Session, AFailingQueryKeepsTheHandlesTakenBeforeItUntilTheNextOpenReplacesThem) {
    WindowHarness harness;
    harness.sim().failOperation("CoDriver.QueryInterface(IDriverSpindle)", "No such interface");
    WindowHarness::click(harness.top(), "cmdOpen");

    ASSERT_EQ(harness.messages().size(), 1U);
    EXPECT_EQ(harness.messages()[0].text, "No such interface");
    EXPECT_TRUE(openEnabled(harness));
    std::vector<std::string> queried = connectLines();
    queried.resize(1 + 5); // the creation and the queries before the spindle's
    queried.push_back("CoDriver.QueryInterface(IDriverSpindle) !! No such interface");
    EXPECT_EQ(harness.trace(), queried) << "nothing is opened and nothing released";
    const DriverHandles& h = handles();
    EXPECT_TRUE(h.driver && h.piezo && h.stage && h.loadPosition && h.headLoader);
    EXPECT_FALSE(h.spindle || h.clamp || h.headFace || h.index || h.interlock || h.service);

    const std::weak_ptr<IDriver> kept = h.driver;
    harness.clearMessages();
    harness.runSession();
    EXPECT_TRUE(harness.messages().empty());
    EXPECT_TRUE(kept.expired()) << "the next Open replaces the handles left from the failed one";
    expectOnlyDiskSizeHeld();
}

// Records whether the wait cursor is up when the driver finishes a call.
class CursorWatch : public TraceSink {
public:
    void write(std::string_view line) override {
        if (line.starts_with("IDriver.Open("))
            waitCursorDuringOpen = WindowHarness::waitCursorShown();
    }
    std::optional<bool> waitCursorDuringOpen;
};

TEST(Session, WaitCursorIsShownDuringADriverCallOnlyWhetherItSucceedsOrFails) {
    for (const bool fails : {false, true}) {
        SCOPED_TRACE(fails ? "Open fails" : "Open succeeds");
        WindowHarness harness;
        auto watch = std::make_shared<CursorWatch>();
        globals().driverOptions.trace = watch;
        if (fails)
            harness.sim().failOperation("IDriver.Open", "Resource not found");
        std::optional<bool> waitCursorInMenu;
        if (fails)
            WindowHarness::click(harness.top(), "cmdOpen");
        else
            harness.runSession([&](frmOpen&) { waitCursorInMenu = WindowHarness::waitCursorShown(); });

        EXPECT_EQ(watch->waitCursorDuringOpen, std::optional<bool>(true));
        EXPECT_FALSE(WindowHarness::waitCursorShown());
        if (!fails) {
            EXPECT_EQ(waitCursorInMenu, std::optional<bool>(false))
                << "no wait cursor while the menu is in use";
        }
    }
}

} // namespace
} // namespace vss

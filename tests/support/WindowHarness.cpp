#include "tests/support/WindowHarness.h"

#include "app/Messages.h"
#include "driver/Handles.h"
#include "app/frmOpen.h"
#include "app/frmTop.h"
#include "app/modGlobal.h"

#include <QAbstractButton>
#include <QTest>
#include <gtest/gtest.h>

namespace vss::testing {
namespace {

constexpr int kPollMs = 5;

} // namespace

WindowHarness::WindowHarness(sim::SimOptions options)
    : sim_(std::make_shared<sim::SimInstrument>(std::move(options))), savedMenuWindows_(menuWindows()) {
    setUpGlobals();
    Globals& g = globals();
    g.handles = {};
    g.driverOptions = {};
    g.driverOptions.forceSimulator = true;
    g.driverOptions.simulator = sim_;
    g.driverOptions.trace = trace_;

    setMessageHandler([this](const std::string& text, const std::string& title) {
        messages_.push_back({text, title, waitCursorShown()});
    });
    dlgConfigFile::instance().reset();
    dlgConfigFile::setChooser([this](const FileDialogRequest& request) -> std::optional<std::string> {
        fileDialogs_.push_back(request);
        if (fileAnswers_.empty()) {
            ADD_FAILURE() << "file dialog \"" << request.title << "\" opened without a scripted answer";
            return std::nullopt;
        }
        std::optional<std::string> answer = std::move(fileAnswers_.front());
        fileAnswers_.pop_front();
        return answer;
    });

    stepTimer_.setInterval(kPollMs);
    QObject::connect(&stepTimer_, &QTimer::timeout, [this] { poll(); });
}

WindowHarness::~WindowHarness() {
    if (!steps_.empty()) {
        ADD_FAILURE() << steps_.size() << " step(s) never ran; the first waited for "
                      << steps_.front().windowType;
        steps_.clear();
    }
    stepTimer_.stop();
    top_.reset();
    Globals& g = globals();
    releaseHandles(g.handles);
    g.handles.diskSize.reset();
    g.driverOptions = {};
    menuWindows() = savedMenuWindows_;
    setMessageHandler({});
    dlgConfigFile::setChooser({});
    dlgConfigFile::instance().reset();
}

frmTop& WindowHarness::top() {
    if (!top_) {
        top_ = std::make_unique<frmTop>();
        top_->show();
        QApplication::setActiveWindow(top_.get());
    }
    return *top_;
}

void WindowHarness::runSession(const std::function<void(frmOpen&)>& during) {
    whenActive<frmOpen>([during](frmOpen& menu) {
        if (during)
            during(menu);
        if (menu.isVisible())
            click(menu, "cmdClose");
    });
    click(top(), "cmdOpen");
}

void WindowHarness::queue(std::string windowType, std::function<bool(QWidget*)> matches,
                          std::function<void(QWidget*)> run) {
    steps_.push_back({std::move(windowType), std::move(matches), std::move(run), 0});
    stepTimer_.start();
}

void WindowHarness::poll() {
    if (steps_.empty()) {
        stepTimer_.stop();
        return;
    }
    Step& next = steps_.front();
    QWidget* active = QApplication::activeModalWidget();
    auto* form = qobject_cast<Form*>(active);
    if (active && active->isVisible() && next.matches(active) && !(form && form->isBusy())) {
        Step step = std::move(next);
        steps_.pop_front();
        step.run(active);
        return;
    }
    next.waitedMs += kPollMs;
    if (next.waitedMs >= kStepTimeoutMs) {
        ADD_FAILURE() << "no " << next.windowType << " became the active modal window";
        abandonSteps();
    }
}

void WindowHarness::abandonSteps() {
    steps_.clear();
    while (QWidget* modal = QApplication::activeModalWidget())
        modal->close();
}

void WindowHarness::click(QWidget& window, const char* controlName) {
    QTest::mouseClick(&control<QAbstractButton>(window, controlName), Qt::LeftButton);
}

void WindowHarness::typeText(QWidget& window, const char* controlName, const QString& text) {
    QTest::keyClicks(&control(window, controlName), text);
}

void WindowHarness::pressKey(QWidget& window, const char* controlName, Qt::Key key,
                             Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&control(window, controlName), key, modifiers);
}

bool WindowHarness::waitCursorShown() {
    const QCursor* cursor = QApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::WaitCursor;
}

} // namespace vss::testing

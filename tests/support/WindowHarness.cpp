#include "tests/support/WindowHarness.h"

#include "simulator/Factory.h"
#include "driver/Handles.h"
#include "kit/Messages.h"
#include "kit/modGlobal.h"
#include "driver/Types.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>
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
    if (sessionOpen_ && g.handles.driver) {
        try {
            g.handles.driver->Close();
        } catch (const std::exception&) {
        }
    }
    releaseHandles(g.handles);
    g.handles.diskSize.reset();
    g.driverOptions = {};
    menuWindows() = savedMenuWindows_;
    setMessageHandler({});
    dlgConfigFile::setChooser({});
    dlgConfigFile::instance().reset();
}

void WindowHarness::openSession() {
    Globals& g = globals();
    const std::shared_ptr<DriverObject> object = createDriverObject(g.driverProgId, g.driverOptions);
    acquireHandles(*object, g.handles);
    sessionOpen_ = true;
    g.handles.driver->Open(std::string(kDefaultResource));
    g.handles.service->BeginService();
}

void WindowHarness::prepareInstrument() {
    IDriver& driver = *globals().handles.driver;
    if (driver.GetState() == state::Uninitialized)
        driver.Initialize();
    else
        driver.Reset();
}

void WindowHarness::showModal(const FormFactory& make) {
    std::unique_ptr<Form> window;
    try {
        window = make(nullptr);
    } catch (const std::exception& e) {
        showMessage(e.what());
        return;
    }
    Form::execModal(*window);
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
        // A person works in the window they see on top: it has the keyboard focus, so that keys and focus
        // changes reach its controls as they would.
        if (QApplication::activeWindow() != active)
            QApplication::setActiveWindow(active);
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

// A wide check box or option takes clicks only on its mark and its text.
QPoint WindowHarness::clickPoint(const QAbstractButton& button) {
    const bool check = qobject_cast<const QCheckBox*>(&button);
    if (!check && !qobject_cast<const QRadioButton*>(&button))
        return button.rect().center();
    QStyleOptionButton option;
    option.initFrom(&button);
    return button.style()
        ->subElementRect(check ? QStyle::SE_CheckBoxIndicator : QStyle::SE_RadioButtonIndicator, &option,
                         &button)
        .center();
}

void WindowHarness::click(QWidget& window, const char* controlName) {
    QAbstractButton& button = control<QAbstractButton>(window, controlName);
    QTest::mouseClick(&button, Qt::LeftButton, {}, clickPoint(button));
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

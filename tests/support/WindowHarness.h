#pragma once

// Runs the program's windows in a test, on an in-memory simulated instrument: real mouse and key events,
// message boxes and file dialogs answered from a script (and what they said kept for reading), steps that
// drive whichever modal window is active (a modal window runs its own event loop, so a step is queued before
// the click that opens the window), the simulator's trace, inputs and injected failures.

#include "app/Form.h"
#include "app/Navigation.h"
#include "app/dlgConfigFile.h"
#include "driver/sim/SimInstrument.h"

#include <QApplication>
#include <QString>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace vss {
class frmTop;
class frmOpen;
} // namespace vss

namespace vss::testing {

struct ShownMessage {
    std::string text;
    std::string title;
    bool waitCursor = false; // whether the wait cursor was up while the message was
};

class WindowHarness {
public:
    // One harness per test. It sets up the globals as start-up does, points the driver creation at its own
    // simulated instrument and takes over the message and file-dialog seams until it is destroyed.
    explicit WindowHarness(sim::SimOptions options = {":memory:"});
    ~WindowHarness();
    WindowHarness(const WindowHarness&) = delete;
    WindowHarness& operator=(const WindowHarness&) = delete;

    // The simulated instrument: inputs, injected failures, its own record of the calls made on it.
    sim::SimInstrument& sim() { return *sim_; }

    // The program's trace, as --trace writes it: the creation of the driver object, every query, call and
    // release, in order.
    std::vector<std::string> trace() const { return trace_->lines(); }
    void clearTrace() { trace_->clear(); }

    // Messages shown so far, oldest first.
    const std::vector<ShownMessage>& messages() const { return messages_; }
    void clearMessages() { messages_.clear(); }

    // File dialogs: each request is kept; each is answered by the next scripted answer (nullopt: cancelled).
    // A request without an answer left is a test failure and is cancelled.
    void answerFileDialog(std::optional<std::string> fileName) {
        fileAnswers_.push_back(std::move(fileName));
    }
    const std::vector<FileDialogRequest>& fileDialogs() const { return fileDialogs_; }

    // The top window, shown as at start-up.
    frmTop& top();

    // Queues a step that runs once a window of type W is the active modal window and not busy. Steps run in
    // the order queued; a step may click a button that opens another modal window, and the next step then
    // drives that one.
    template <class W> void whenActive(std::function<void(W&)> step) {
        queue(
            typeid(W).name(), [](QWidget* w) { return dynamic_cast<W*>(w) != nullptr; },
            [step = std::move(step)](QWidget* w) { step(*dynamic_cast<W*>(w)); });
    }
    bool stepsPending() const { return !steps_.empty(); }

    // A whole session through the top window: "Open", then `during` with the main menu up, then its "Close".
    void runSession(const std::function<void(frmOpen&)>& during = {});

    // Real events on a window's controls, found by name.
    static void click(QWidget& window, const char* controlName);
    static void typeText(QWidget& window, const char* controlName, const QString& text);
    static void pressKey(QWidget& window, const char* controlName, Qt::Key key,
                         Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    template <class T = QWidget> static T& control(QWidget& window, const char* name) {
        T* found = window.findChild<T*>(QString::fromLatin1(name));
        if (!found)
            throw std::logic_error(std::string("no control ") + name + " on " +
                                   window.metaObject()->className());
        return *found;
    }

    static bool waitCursorShown();

    // How long a step waits for its window before the test fails and the modal windows are closed.
    static constexpr int kStepTimeoutMs = 10000;

private:
    struct Step {
        std::string windowType;
        std::function<bool(QWidget*)> matches;
        std::function<void(QWidget*)> run;
        int waitedMs = 0;
    };
    void queue(std::string windowType, std::function<bool(QWidget*)> matches,
               std::function<void(QWidget*)> run);
    void poll();
    void abandonSteps();

    std::shared_ptr<sim::SimInstrument> sim_;
    std::shared_ptr<TraceBuffer> trace_ = std::make_shared<TraceBuffer>();
    std::unique_ptr<frmTop> top_;
    std::vector<ShownMessage> messages_;
    std::deque<std::optional<std::string>> fileAnswers_;
    std::vector<FileDialogRequest> fileDialogs_;
    std::deque<Step> steps_;
    QTimer stepTimer_;
    MenuWindows savedMenuWindows_;
};

} // namespace vss::testing

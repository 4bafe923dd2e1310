#pragma once

// Runs the program's windows in a test, on an in-memory simulated instrument: real mouse and key events,
// message boxes and file dialogs answered from a script (and what they said kept for reading), steps that
// drive whichever modal window is active (a modal window runs its own event loop, so a step is queued before
// the click that opens the window), the simulator's trace, inputs and injected failures. WindowHarness needs
// only the window kit: a window library's tests open a session and show their windows themselves.
// SessionHarness adds the program's top window and menus.

#include "kit/Form.h"
#include "kit/Navigation.h"
#include "kit/dlgConfigFile.h"
#include "simulator/SimInstrument.h"

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

class QAbstractButton;

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

    // Opens an instrument session as "Open" on the top window does: the driver object, its twelve interfaces,
    // Open and BeginService. The harness closes it when it is destroyed. Throws what the driver throws.
    void openSession();
    // Brings the instrument home as the main menu's "Operation Check" does (initialize or reset).
    void prepareInstrument();

    // Makes a window with make and shows it modally; returns when it has closed. Steps queued before drive
    // it. A window that fails to load is reported like any handler's failure (one message) and not shown.
    void showModal(const FormFactory& make);

    // Queues a step that runs once a window of type W is the active modal window and not busy. Steps run in
    // the order queued; a step may click a button that opens another modal window, and the next step then
    // drives that one.
    template <class W> void whenActive(std::function<void(W&)> step) {
        queue(
            typeid(W).name(), [](QWidget* w) { return dynamic_cast<W*>(w) != nullptr; },
            [step = std::move(step)](QWidget* w) { step(*dynamic_cast<W*>(w)); });
    }
    bool stepsPending() const { return !steps_.empty(); }

    // Drops the steps that have not run (a step waiting for a window that a failure kept from opening).
    void dropSteps() { steps_.clear(); }
    // Drops the scripted file dialog answers that no dialog took.
    void dropFileAnswers() { fileAnswers_.clear(); }

    // Real events on a window's controls, found by name.
    static void click(QWidget& window, const char* controlName);
    // Where a person clicks a button: a check box or an option on its mark, any other button in its middle.
    static QPoint clickPoint(const QAbstractButton& button);
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

protected:
    std::unique_ptr<QWidget> top_;

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
    std::vector<ShownMessage> messages_;
    std::deque<std::optional<std::string>> fileAnswers_;
    std::vector<FileDialogRequest> fileDialogs_;
    std::deque<Step> steps_;
    QTimer stepTimer_;
    MenuWindows savedMenuWindows_;
    bool sessionOpen_ = false;
};

// The whole program's windows: the top window, the main menu and every window the menus open.
class SessionHarness : public WindowHarness {
public:
    explicit SessionHarness(sim::SimOptions options = {":memory:"});

    // The top window, shown as at start-up.
    frmTop& top();

    // A whole session through the top window: "Open", then `during` with the main menu up, then its "Close".
    void runSession(const std::function<void(frmOpen&)>& during = {});
};

} // namespace vss::testing

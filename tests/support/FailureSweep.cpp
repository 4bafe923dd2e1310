#include "tests/support/FailureSweep.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QWidget>
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>

namespace vss::testing {
namespace {

using EnabledStates = std::map<QWidget*, bool>;

EnabledStates enabledStates(const Form& window) {
    EnabledStates states;
    for (QWidget* control : window.controls())
        states[control] = control->isEnabled();
    return states;
}

std::unique_ptr<Form> showWindow(const FormFactory& make) {
    std::unique_ptr<Form> window = make(nullptr);
    window->show();
    QApplication::setActiveWindow(window.get());
    return window;
}

// Closes what a run left open above the window (a dialog a failure kept from being answered).
void closeModalWindows() {
    while (QWidget* modal = QApplication::activeModalWidget()) {
        modal->close();
        QApplication::processEvents();
        if (QApplication::activeModalWidget() == modal)
            break;
    }
}

void endRun(WindowHarness& harness) {
    harness.dropSteps();
    harness.dropFileAnswers();
    closeModalWindows();
}

} // namespace

std::string shownState(const QWidget& control) {
    QList<const QWidget*> parts{&control};
    for (const QWidget* part : control.findChildren<const QWidget*>())
        parts.append(part);
    std::string state;
    for (const QWidget* part : parts) {
        if (const auto* box = qobject_cast<const QLineEdit*>(part))
            state += "[" + box->text().toStdString() + "]";
        else if (const auto* list = qobject_cast<const QComboBox*>(part))
            state += "<" + list->currentText().toStdString() + ">";
        else if (const auto* button = qobject_cast<const QAbstractButton*>(part);
                 button && button->isCheckable())
            state += button->isChecked() ? "(x)" : "( )";
    }
    return state;
}

std::vector<std::string> operationsOf(const std::vector<std::string>& traceLines) {
    std::vector<std::string> ops;
    for (const std::string& line : traceLines) {
        if (!line.starts_with("IDriver"))
            continue;
        const std::string op = line.substr(0, line.find('('));
        if (std::find(ops.begin(), ops.end(), op) == ops.end())
            ops.push_back(op);
    }
    return ops;
}

int sweepFailures(WindowHarness& harness, const FormFactory& make, const std::vector<SweptHandler>& handlers,
                  const SweepOptions& options) {
    int cases = 0;
    for (const SweptHandler& handler : handlers) {
        std::vector<std::string> ops;
        {
            if (handler.prepare)
                handler.prepare(harness);
            std::unique_ptr<Form> window = showWindow(make);
            harness.clearTrace();
            harness.clearMessages();
            handler.run(harness, *window);
            ops = operationsOf(harness.trace());
            EXPECT_TRUE(harness.messages().empty())
                << handler.name << " showed a message without a failure: " << harness.messages().front().text;
            endRun(harness);
        }
        EXPECT_FALSE(ops.empty()) << handler.name << " called no driver operation";

        for (const std::string& op : ops) {
            if (options.ignored.contains(op))
                continue;
            SCOPED_TRACE(handler.name + " with " + op + " failing");
            ++cases;
            if (handler.prepare)
                handler.prepare(harness);
            std::unique_ptr<Form> window = showWindow(make);
            const EnabledStates before = enabledStates(*window);
            const std::string description = "Sweep: " + op + " failed.";
            harness.clearMessages();
            harness.sim().failOperation(op, description, 1);
            handler.run(harness, *window);
            harness.sim().clearFailures();

            const std::vector<ShownMessage>& shown = harness.messages();
            for (const ShownMessage& m : shown) {
                // A transfer's message may say where in the file the refused value stood.
                if (handler.ends == FailureEnds::Transfer)
                    EXPECT_NE(m.text.find(description), std::string::npos)
                        << "a message that is not the failure's";
                else
                    EXPECT_EQ(m.text, description) << "a message that is not the failure's";
            }
            const bool tolerated = options.tolerated.contains(op) || handler.tolerated.contains(op);
            switch (tolerated ? FailureEnds::Transfer : handler.ends) {
            case FailureEnds::OneMessage:
                EXPECT_EQ(shown.size(), 1U);
                break;
            case FailureEnds::Transfer:
            case FailureEnds::Closing:
                EXPECT_LE(shown.size(), 1U);
                break;
            }
            if (handler.ends == FailureEnds::Closing) {
                endRun(harness);
                continue;
            }
            EXPECT_TRUE(window->isVisible()) << "the window closed";
            EXPECT_FALSE(window->isBusy()) << "the window stayed busy";
            for (const auto& [control, enabled] : enabledStates(*window)) {
                const auto was = before.find(control);
                if (was == before.end() ||
                    options.mayChangeEnabled.contains(control->objectName().toStdString()))
                    continue;
                EXPECT_EQ(enabled, was->second)
                    << control->objectName().toStdString() << " is not as usable as before";
            }
            if (!handler.edits.empty() && op.find(".Set") != std::string::npos) {
                const char* edited = handler.edits.c_str();
                const std::unique_ptr<Form> afresh = make(nullptr);
                EXPECT_EQ(shownState(WindowHarness::control(*window, edited)),
                          shownState(WindowHarness::control(*afresh, edited)))
                    << edited << " shows a value the instrument refused";
            }
            endRun(harness);
        }
    }
    std::printf("failure sweep: %zu handlers, %d (handler x operation) cases\n", handlers.size(), cases);
    ::testing::Test::RecordProperty("failure_sweep_cases", cases);
    return cases;
}

} // namespace vss::testing

#pragma once

// Opens the operation panel the way an operator does: "Open" on the top window, then "Operation Check" on
// the main menu, with the operation windows registered in the menus.

#include "app/frmOpen.h"
#include "operation/OperationWindows.h"
#include "operation/frmIni.h"
#include "tests/support/FieldInput.h"
#include "tests/support/WindowHarness.h"

#include <QLineEdit>
#include <QTest>
#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vss::testing {

// Runs `during` with the panel up; the panel is closed with "Return" afterwards if it is still open.
inline void withPanel(SessionHarness& harness, const std::function<void(frmIni&)>& during) {
    registerOperationWindows(menuWindows());
    harness.runSession([&](frmOpen& menu) {
        harness.whenActive<frmIni>([&](frmIni& panel) {
            during(panel);
            if (panel.isVisible())
                WindowHarness::click(panel, "cmdReturn");
        });
        WindowHarness::click(menu, "cmdInitialize");
    });
}

inline std::string textOf(QWidget& window, const char* name) {
    return WindowHarness::control<QLineEdit>(window, name).text().toStdString();
}

// The trace lines that change the instrument or read what a command reads, without the timer's polling.
inline std::vector<std::string> withoutPolling(const std::vector<std::string>& lines) {
    std::vector<std::string> kept;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(kept), [](const std::string& l) {
        return !l.starts_with("IDriverInterlock.") && !l.starts_with("IDriverService.GetEmergency") &&
               !l.starts_with("IDriverService.GetOuterCover");
    });
    return kept;
}

// A command's own calls: the trace up to the status refresh that follows every command.
inline std::vector<std::string> commandCalls(const std::vector<std::string>& lines) {
    std::vector<std::string> kept = withoutPolling(lines);
    const auto refresh = std::find_if(
        kept.begin(), kept.end(), [](const std::string& l) { return l.starts_with("IDriver.GetState()"); });
    kept.erase(refresh, kept.end());
    return kept;
}

} // namespace vss::testing

#pragma once

// The failure sweep: every handler of a window, with each driver operation it calls failing in turn. A
// handler is first run once on the simulated instrument to learn from the trace which operations it calls;
// then, for each of them, a fresh window runs the handler again with that operation failing once. Every run
// must end as a failure of that handler ends: the failure's one message (or none, or the window closing,
// where the window's rules say so), every control as usable as before, and the window still open unless it
// closes. A handler that writes what the user set in a control names the control: when one of its writes is
// refused, the control shows what the instrument holds, as the same window opened afresh shows it.

#include "kit/Form.h"
#include "tests/support/WindowHarness.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace vss::testing {

enum class FailureEnds {
    OneMessage, // the driver's description, once
    Transfer, // Export and Import: a failed transfer ends without a message; a refresh after it reports once
    Closing,  // the window closes; no more than the one message
};

struct SweptHandler {
    std::string name;
    // Runs the handler on the shown window: a click, a commit, a selection. It answers the file dialogs and
    // queues the steps for the windows the handler opens; what a failure leaves unused is dropped.
    std::function<void(WindowHarness&, Form&)> run;
    FailureEnds ends = FailureEnds::OneMessage;
    // Brings the instrument into a state where the handler can run, before each run's window opens.
    std::function<void(WindowHarness&)> prepare = {};
    // Reads of this handler whose failure it tolerates by design: no message, a default stands in.
    std::set<std::string> tolerated = {};
    // The control the handler edits (its object name; a frame stands for the options in it).
    std::string edits = {};
};

// What a control shows: the texts of its text boxes and lists and the state of its check boxes and options,
// its own and its parts'.
std::string shownState(const QWidget& control);

struct SweepOptions {
    // Operations not swept: what a polling window reads on its own between the handler's steps.
    std::set<std::string> ignored = {};
    // Reads that every handler of the window tolerates by design: no message, a default stands in.
    std::set<std::string> tolerated = {};
    // Controls whose enabled state follows the instrument's state rather than the handler (object names).
    std::set<std::string> mayChangeEnabled = {};
};

// Runs the sweep and returns how many (handler x operation) cases ran. Failures are reported to GoogleTest.
int sweepFailures(WindowHarness& harness, const FormFactory& make, const std::vector<SweptHandler>& handlers,
                  const SweepOptions& options = {});

// The distinct operations ("Interface.Operation") of trace lines, in the order of their first call.
std::vector<std::string> operationsOf(const std::vector<std::string>& traceLines);

} // namespace vss::testing

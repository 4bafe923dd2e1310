#pragma once

// Runs the actions of a vsstool-config command line in one instrument session and prints what happened.

#include "storage/Messages.h"
#include "tools/vsstool-config/CommandLine.h"

#include <iosfwd>

namespace vss::config {

// Prints every message as "error: <text>" (a warning of the window program's as "warning: <text>"), naming
// the file and the field where a reader raised it. Every text goes out under the one rule for outside texts.
class ConsoleSink : public PositionedMessageSink {
public:
    explicit ConsoleSink(std::ostream& err) : err_(err) {}
    void showAt(std::string_view text, std::string_view title, const FieldPosition& where) override;
    // An error that is not a reader's message (a driver error, a number out of range).
    void error(std::string_view text);
    // Something the user should know that is not a message of the window program; it leaves the exit code.
    void warning(std::string_view text);
    // Tells how the tool runs (which instrument it uses); it leaves the exit code.
    void note(std::string_view text);

    int messages() const { return messages_; }
    int fileFailures() const { return fileFailures_; }

private:
    void print(std::string_view prefix, std::string_view text);

    std::ostream& err_;
    int messages_ = 0;
    int fileFailures_ = 0;
};

// Exit status: 0 when no message was raised, 1 when messages were raised, a diff found values that differ, a
// restore was declined or stopped or an import stopped (either ends the run), 2 for a file that could not be
// opened or written or an instrument session that could not start. `driverInstalled`: the platform has a driver of its own; without one, and without
// --simulate, the tool says once that it uses the simulated instrument.
int runTool(const CommandLine& line, std::istream& in, std::ostream& out, std::ostream& err,
            bool driverInstalled = false);

} // namespace vss::config

#pragma once

// Runs the actions of a vsstool-config command line in one instrument session and prints what happened.

#include "storage/Messages.h"
#include "tools/vsstool-config/CommandLine.h"

#include <iosfwd>

namespace vss::config {

inline constexpr std::string_view kAppTitle = "Velkor Spinstand Tool";

// Prints every message as "error: <title>: <text>", naming the file and the field where a reader raised it.
class ConsoleSink : public PositionedMessageSink {
public:
    explicit ConsoleSink(std::ostream& err) : err_(err) {}
    void showAt(std::string_view text, std::string_view title, const FieldPosition& where) override;
    // An error that is not a reader's message (a driver error, a number out of range).
    void error(std::string_view text);
    // Something the user should know that is not a message of the window program; it leaves the exit code.
    void warning(std::string_view text);

    int messages() const { return messages_; }
    int fileFailures() const { return fileFailures_; }

private:
    std::ostream& err_;
    int messages_ = 0;
    int fileFailures_ = 0;
};

// Exit status: 0 when no message was raised, 1 when messages were raised, 2 for a file that could not be
// opened or written.
int runTool(const CommandLine& line, std::istream& in, std::ostream& out, std::ostream& err);

} // namespace vss::config

#pragma once

// Where a message of the file reader arose, and the sink that wants to know it. The window program shows the
// bare text in a box; the console tool names the file, the line and the field as well. Both show every text
// under the one rule of driver/ShownText.h; a message quotes outside texts with inQuotes() or printable().

#include "driver/ShownText.h"
#include "storage/MessageSink.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vss {

// Title of the reader's validation messages.
inline constexpr std::string_view kErrorTitle = "error";

struct FieldPosition {
    std::string fileName;
    std::int64_t line = 0;  // 1-based; 0 when the message is about the file as a whole
    std::int64_t field = 0; // 1-based within the line
    bool fileFailed = false; // the file could not be opened, or not written
};

// A sink that also receives the position. Sinks that do not derive from it get the text and title only.
class PositionedMessageSink : public MessageSink {
public:
    virtual void showAt(std::string_view text, std::string_view title, const FieldPosition& where) = 0;
    void show(std::string_view text, std::string_view title) override { showAt(text, title, FieldPosition{}); }
};

// Hands a message to the sink, with its position when the sink takes one.
inline void report(MessageSink& sink, std::string_view text, std::string_view title, const FieldPosition& where) {
    if (auto* positioned = dynamic_cast<PositionedMessageSink*>(&sink))
        positioned->showAt(text, title, where);
    else
        sink.show(text, title);
}

} // namespace vss

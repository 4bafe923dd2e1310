#pragma once

// Where a message of the file reader arose, and the sink that wants to know it. The window program shows the
// bare text in a box; the console tool names the file, the line and the field as well.

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

// A text from a file or from the instrument made safe to print on one line: a backslash, a double quote and
// every control character are written as escapes (\\, \", \r, \n, \t, \xHH), so that a value can neither
// forge a line nor move the terminal's cursor. Texts longer than `maxChars` are cut there and end in "...".
inline std::string printable(std::string_view text, std::size_t maxChars = std::string_view::npos) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    const std::size_t shown = text.size() < maxChars ? text.size() : maxChars;
    out.reserve(shown + 8);
    for (const char c : text.substr(0, shown)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\' || c == '"') {
            out += '\\';
            out += c;
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\t') {
            out += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            out += "\\x";
            out += kHex[byte >> 4];
            out += kHex[byte & 0xF];
        } else {
            out += c;
        }
    }
    if (shown < text.size())
        out += "...";
    return out;
}

// Hands a message to the sink, with its position when the sink takes one.
inline void report(MessageSink& sink, std::string_view text, std::string_view title, const FieldPosition& where) {
    if (auto* positioned = dynamic_cast<PositionedMessageSink*>(&sink))
        positioned->showAt(text, title, where);
    else
        sink.show(text, title);
}

} // namespace vss

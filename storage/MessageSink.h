#pragma once

// The seam through which the storage reports messages to the user. The window program shows them in a message
// box (OK only); the console tool prints them. The storage never opens a window itself.

#include <string>
#include <string_view>

namespace vss {

class MessageSink {
public:
    virtual ~MessageSink() = default;
    // Shows `text` under `title`; an empty title means the application's title. Returns when the user has
    // acknowledged it.
    virtual void show(std::string_view text, std::string_view title) = 0;
};

} // namespace vss

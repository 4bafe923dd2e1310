#pragma once

// Every message box of the program goes through this one seam: a text, a title (empty: the application's
// title) and an OK button. The storage reaches it through vss::MessageSink. Tests and the screenshot mode
// replace the box with a handler that answers at once.

#include "storage/MessageSink.h"

#include <functional>
#include <string>
#include <string_view>

namespace vss {

// Shows the message and returns when it has been acknowledged.
void showMessage(std::string_view text, std::string_view title = {});

// Receives every message with its title already resolved. An empty handler restores the message box.
using MessageHandler = std::function<void(const std::string& text, const std::string& title)>;

// Installs handler and returns the one it replaces.
MessageHandler setMessageHandler(MessageHandler handler);

// The seam as the storage sees it.
MessageSink& messageSink();

} // namespace vss

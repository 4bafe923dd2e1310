#pragma once

// The wait cursor of busy windows. A window in its busy bracket shows it; whatever the user has to answer
// meanwhile (a modal window, a message box, a file dialog) lifts it while it is up.

#include <cstdint>
#include <vector>

namespace vss {

// One busy window's wait cursor: shown for as long as it lives, except while a lift is up.
class WaitCursor {
public:
    WaitCursor();
    ~WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    std::uint64_t id_;
};

// Lifts every wait cursor shown for as long as it lives, then shows again those that still exist: a window
// that stopped being busy or closed meanwhile leaves nothing behind.
class WaitCursorLift {
public:
    WaitCursorLift();
    ~WaitCursorLift();
    WaitCursorLift(const WaitCursorLift&) = delete;
    WaitCursorLift& operator=(const WaitCursorLift&) = delete;

private:
    std::vector<std::uint64_t> lifted_;
};

} // namespace vss

#pragma once

// The wait cursor of busy windows. A window in its busy bracket shows it; whatever the user has to answer
// meanwhile (a modal window, a message box, a file dialog) lifts it while it is up.

namespace vss {

void pushWaitCursor();
void popWaitCursor();

// Lifts every wait cursor shown for as long as it lives, then shows them again.
class WaitCursorLift {
public:
    WaitCursorLift();
    ~WaitCursorLift();
    WaitCursorLift(const WaitCursorLift&) = delete;
    WaitCursorLift& operator=(const WaitCursorLift&) = delete;

private:
    int lifted_;
};

} // namespace vss

#include "kit/CommandForm.h"

#include <exception>

namespace vss {

bool CommandForm::command(const std::function<void()>& steps, const std::function<void()>& followUp) {
    if (!runBusy(steps))
        return false;
    return !followUp || trapErrors(followUp);
}

// No control goes on showing a value the instrument refused: after a refusal the control is read back, also
// where a written value is otherwise not.
bool CommandForm::writeValue(const std::function<void()>& write, const std::function<void()>& followUp,
                             const std::function<void()>& restore) {
    if (isBusy())
        return false;
    if (runBusy(write)) {
        if (followUp)
            trapErrors(followUp);
        return true;
    }
    if (restore && !isUnloaded()) {
        try {
            restore();
        } catch (const std::exception&) {
            // the refusal has been reported; the read-back failing too says nothing new
        }
    }
    return false;
}

} // namespace vss

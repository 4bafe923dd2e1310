#include "kit/CommandForm.h"

namespace vss {

bool CommandForm::command(const std::function<void()>& steps, const std::function<void()>& followUp) {
    if (!runBusy(steps))
        return false;
    return !followUp || trapErrors(followUp);
}

} // namespace vss

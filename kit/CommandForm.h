#pragma once

// The command frame of windows that command the instrument: a command's steps run in the busy bracket; when they all ran, its
// follow-up (usually a refresh of what it changed) runs after the controls are enabled again. A failure of
// either is shown once; a failed command skips its follow-up.

#include "kit/Form.h"

#include <functional>

namespace vss {

class CommandForm : public Form {
    Q_OBJECT

public:
    using Form::Form;

protected:
    bool command(const std::function<void()>& steps, const std::function<void()>& followUp = {});
};

} // namespace vss

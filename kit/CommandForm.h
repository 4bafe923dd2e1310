#pragma once

// The command frame of windows that command the instrument: a command's steps run in the busy bracket; when
// they all ran, its follow-up (usually a refresh of what it changed) runs after the controls are enabled
// again. A failure of either is shown once; a failed command skips its follow-up.
//
// A value the user set in a control (a committed field, a picked entry, a clicked box) is written with
// writeValue: a write the instrument refuses is followed by a read-back instead, so that no control goes on
// showing a value the instrument refused.

#include "kit/Form.h"

#include <functional>

namespace vss {

class CommandForm : public Form {
    Q_OBJECT

public:
    using Form::Form;

protected:
    bool command(const std::function<void()>& steps, const std::function<void()>& followUp = {});

    // Writes what the user set in a control: the write in the busy bracket, then, when it went through, its
    // follow-up as command does. When it was refused, `restore` reads the instrument's value into the control
    // again; a restore that fails as well adds no message to the refusal's. A commit raised while the window
    // is busy belongs to the write under way and writes nothing. Returns whether the write went through.
    // The value field whose commit raised the write (the signal's sender, or `field` where a page relays the
    // commit) is kept in step: after a write that went through its value is the instrument's even when the
    // follow-up cannot read it back; after a refusal it shows what the window last set before the restore.
    bool writeValue(const std::function<void()>& write, const std::function<void()>& followUp,
                    const std::function<void()>& restore);
    bool writeValue(QObject* field, const std::function<void()>& write, const std::function<void()>& followUp,
                    const std::function<void()>& restore);
    // The usual case: the same read-back after a write that went through and after a refused one.
    bool writeValue(const std::function<void()>& write, const std::function<void()>& readBack) {
        return writeValue(write, readBack, readBack);
    }
};

} // namespace vss

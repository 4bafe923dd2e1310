#pragma once

// The Export and Import buttons of a settings window: the window turns busy, the file dialog asks for the
// file, the group is written to or read from the file, and the controls are put back in every case. A
// cancelled dialog ends the transfer with nothing written and nothing read. An error ends the transfer where
// it happened, without a message of its own: the only messages are the file reader's. Each returns whether
// the transfer ran to its end: a window reads back what an import changed only then.

#include "storage/modConfigFile.h"

namespace vss {

class Form;

bool exportSettingGroup(Form& form, SettingGroup group);
bool importSettingGroup(Form& form, SettingGroup group);

} // namespace vss

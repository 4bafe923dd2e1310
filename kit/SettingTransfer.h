#pragma once

// The Export and Import buttons of a settings window: the window turns busy, the file dialog asks for the
// file (a cancelled dialog goes on with the name it held), the group is written to or read from the file,
// and the window is enabled again in every case. An error ends the transfer where it happened, without a
// message of its own: the only messages are the file reader's.

#include "storage/modConfigFile.h"

namespace vss {

class Form;

void exportSettingGroup(Form& form, SettingGroup group);
void importSettingGroup(Form& form, SettingGroup group);

} // namespace vss

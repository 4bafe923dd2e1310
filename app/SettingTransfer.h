#pragma once

// The Export and Import buttons of a settings window: the window turns busy, the file dialog asks for the
// file (a cancelled dialog goes on with the name it held), the group is written to or read from the file,
// and the window is enabled again in every case. A refusal of the instrument is shown with its text; a
// problem with the file has been reported by the file reader, and nothing more is shown.

#include "storage/modConfigFile.h"

namespace vss {

class Form;

void exportSettingGroup(Form& form, SettingGroup group);
void importSettingGroup(Form& form, SettingGroup group);

} // namespace vss

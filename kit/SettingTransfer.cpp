#include "kit/SettingTransfer.h"

#include "kit/Form.h"
#include "kit/Messages.h"
#include "kit/dlgConfigFile.h"
#include "kit/modGlobal.h"

#include <exception>
#include <functional>
#include <string>

namespace vss {
namespace {

// An error ends the transfer without a message of its own (a refusal of the instrument, a number too large
// for its field): what is said about the file is said by the file reader, field by field, as it reads.
bool transfer(Form& form, const std::function<void()>& steps) {
    form.DisableAllControls();
    bool done = false;
    try {
        steps();
        done = true;
    } catch (const std::exception&) {
    }
    form.EnableAllControls();
    return done;
}

dlgConfigFile& settingFileDialog() {
    dlgConfigFile& dialog = dlgConfigFile::instance();
    dialog.setFilter(std::string(kSettingFileFilter));
    return dialog;
}

} // namespace

bool exportSettingGroup(Form& form, SettingGroup group) {
    const GroupDef& def = groupDef(group);
    return transfer(form, [&] {
        const std::string file = settingFileDialog().showSave(def.exportTitle);
        ExportGroup(group, file, handles(), messageSink());
    });
}

bool importSettingGroup(Form& form, SettingGroup group) {
    const GroupDef& def = groupDef(group);
    return transfer(form, [&] {
        const std::string file = settingFileDialog().showOpen(def.importTitle);
        ImportGroup(def.importCode, file, handles(), messageSink());
    });
}

} // namespace vss

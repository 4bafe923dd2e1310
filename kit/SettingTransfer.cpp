#include "kit/SettingTransfer.h"

#include "kit/Form.h"
#include "kit/Messages.h"
#include "kit/dlgConfigFile.h"
#include "kit/modGlobal.h"

#include <exception>
#include <functional>
#include <optional>
#include <string>

namespace vss {
namespace {

// An error ends the transfer without a message of its own (a refusal of the instrument, a number too large
// for its field): what is said about the file is said by the file reader, field by field, as it reads. The
// steps return false when the file dialog was cancelled.
bool transfer(Form& form, const std::function<bool()>& steps) {
    form.DisableAllControls();
    bool done = false;
    try {
        done = steps();
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
        const std::optional<std::string> file = settingFileDialog().showSave(def.exportTitle);
        if (!file)
            return false; // cancelled: the last file is not appended to again
        ExportGroup(group, *file, handles(), messageSink());
        return true;
    });
}

bool importSettingGroup(Form& form, SettingGroup group) {
    const GroupDef& def = groupDef(group);
    return transfer(form, [&] {
        const std::optional<std::string> file = settingFileDialog().showOpen(def.importTitle);
        if (!file)
            return false; // cancelled: the last file is not imported again, and nothing is read back
        ImportGroup(def.importCode, *file, handles(), messageSink());
        return true;
    });
}

} // namespace vss

#include "app/SettingTransfer.h"

#include "app/Form.h"
#include "app/Messages.h"
#include "app/dlgConfigFile.h"
#include "app/modGlobal.h"

#include <exception>
#include <functional>
#include <string>

namespace vss {
namespace {

void transfer(Form& form, const std::function<void()>& steps) {
    form.disableAllControls();
    try {
        steps();
    } catch (const DriverError& e) {
        showMessage(e.description());
    } catch (const std::exception&) {
        // The file reader has already said what is wrong with the file.
    }
    form.enableAllControls();
}

dlgConfigFile& settingFileDialog() {
    dlgConfigFile& dialog = dlgConfigFile::instance();
    dialog.setFilter(std::string(kSettingFileFilter));
    return dialog;
}

} // namespace

void exportSettingGroup(Form& form, SettingGroup group) {
    const GroupDef& def = groupDef(group);
    transfer(form, [&] {
        const std::string file = settingFileDialog().showSave(def.exportTitle);
        ExportGroup(group, file, handles(), messageSink());
    });
}

void importSettingGroup(Form& form, SettingGroup group) {
    const GroupDef& def = groupDef(group);
    transfer(form, [&] {
        const std::string file = settingFileDialog().showOpen(def.importTitle);
        ImportGroup(def.importCode, file, handles(), messageSink());
    });
}

} // namespace vss

#include "operation/OperationWindows.h"

#include "operation/frmIni.h"
#include "operation/frmIniPiezo.h"
#include "operation/frmIniSetting.h"

namespace vss {

void registerOperationWindows(MenuWindows& windows) {
    windows.operationPanel = [](QWidget* parent) { return std::make_unique<frmIni>(parent); };
}

ScreenshotScenes operationScreenshots() {
    const auto panel = [](bool directControls) {
        return [directControls](QWidget* parent) -> std::unique_ptr<QWidget> {
            auto w = std::make_unique<frmIni>(parent);
            w->setDirectControlsShown(directControls);
            return w;
        };
    };
    return {
        {QStringLiteral("frmIni"), panel(false)},
        {QStringLiteral("frmIni-direct"), panel(true)},
        {QStringLiteral("frmIniSetting"),
         [](QWidget* parent) -> std::unique_ptr<QWidget> { return std::make_unique<frmIniSetting>(parent); }},
        {QStringLiteral("frmIniPiezo"),
         [](QWidget* parent) -> std::unique_ptr<QWidget> { return std::make_unique<frmIniPiezo>(parent); }},
    };
}

} // namespace vss

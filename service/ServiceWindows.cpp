#include "service/ServiceWindows.h"

#include "service/frmSer.h"

namespace vss {

void registerServiceWindows(MenuWindows& windows) {
    windows.servicePanel = [](QWidget* parent) { return std::make_unique<frmSer>(parent); };
}

ScreenshotScenes serviceScreenshots() {
    return {{QStringLiteral("frmSer"),
             [](QWidget* parent) -> std::unique_ptr<QWidget> { return std::make_unique<frmSer>(parent); }}};
}

} // namespace vss

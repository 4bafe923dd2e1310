#include "customer/CustomerWindows.h"

#include "customer/frmCus.h"
#include "customer/frmCusStageConfig.h"

namespace vss {

void registerCustomerWindows(MenuWindows& windows) {
    windows.measurementPositions = [](QWidget* parent, bool viewOnly) -> std::unique_ptr<Form> {
        return std::make_unique<frmCus>(parent, viewOnly);
    };
}

ScreenshotScenes customerScreenshots() {
    const auto measurementPositions = [](bool viewOnly) {
        return [viewOnly](QWidget* parent) -> std::unique_ptr<QWidget> {
            return std::make_unique<frmCus>(parent, viewOnly);
        };
    };
    return {
        {QStringLiteral("frmCus"), measurementPositions(false)},
        {QStringLiteral("frmCus-viewonly"), measurementPositions(true)},
        {QStringLiteral("frmCusStageConfig"),
         [](QWidget* parent) -> std::unique_ptr<QWidget> {
             return std::make_unique<frmCusStageConfig>(parent);
         }},
    };
}

} // namespace vss

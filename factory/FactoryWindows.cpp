#include "factory/FactoryWindows.h"

#include "factory/frmBacklashCompen.h"
#include "factory/frmFacSpinstand.h"
#include "factory/frmFacSpinstandSpindle.h"
#include "factory/frmFacSpinstandStage.h"

namespace vss {
namespace {

template <class Page> ViewFactory viewFactory() {
    return [](QWidget* parent, bool viewOnly) -> std::unique_ptr<Form> {
        return std::make_unique<Page>(parent, viewOnly);
    };
}

template <class Page> ScreenshotMaker scene(bool viewOnly) {
    return [viewOnly](QWidget* parent) -> std::unique_ptr<QWidget> {
        return std::make_unique<Page>(parent, viewOnly);
    };
}

} // namespace

void registerFactoryWindows(MenuWindows& windows) {
    windows.spinstandSettings = viewFactory<frmFacSpinstand>();
    windows.spindleProperty = viewFactory<frmFacSpinstandSpindle>();
    windows.stageProperty = viewFactory<frmFacSpinstandStage>();
    windows.backlashCompensation = viewFactory<frmBacklashCompen>();
}

ScreenshotScenes factoryScreenshots() {
    return {
        {QStringLiteral("frmFacSpinstand"), scene<frmFacSpinstand>(false)},
        {QStringLiteral("frmFacSpinstand-viewonly"), scene<frmFacSpinstand>(true)},
        {QStringLiteral("frmFacSpinstandSpindle"), scene<frmFacSpinstandSpindle>(false)},
        {QStringLiteral("frmFacSpinstandSpindle-viewonly"), scene<frmFacSpinstandSpindle>(true)},
        {QStringLiteral("frmFacSpinstandStage"), scene<frmFacSpinstandStage>(false)},
        {QStringLiteral("frmFacSpinstandStage-viewonly"), scene<frmFacSpinstandStage>(true)},
        {QStringLiteral("frmBacklashCompen"), scene<frmBacklashCompen>(false)},
        {QStringLiteral("frmBacklashCompen-viewonly"), scene<frmBacklashCompen>(true)},
    };
}

} // namespace vss

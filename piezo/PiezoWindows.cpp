#include "piezo/PiezoWindows.h"

#include "piezo/frmFacPiezo.h"
#include "piezo/frmFacPiezoControl.h"
#include "piezo/frmPiezoAdjust.h"
#include "piezo/frmSerPiezo.h"

namespace vss {
namespace {

template <class W> std::unique_ptr<Form> make(QWidget* parent) {
    return std::make_unique<W>(parent);
}

template <class W> std::pair<QString, ScreenshotMaker> scene(const char* file) {
    return {QString::fromLatin1(file),
            [](QWidget* parent) -> std::unique_ptr<QWidget> { return make<W>(parent); }};
}

} // namespace

void registerPiezoWindows(MenuWindows& windows) {
    windows.piezoSettings = make<frmFacPiezo>;
    windows.piezoAdjust = make<frmPiezoAdjust>;
    windows.piezoInformation = make<frmSerPiezo>;
}

ScreenshotScenes piezoScreenshots() {
    return {
        scene<frmFacPiezo>("frmFacPiezo"),
        scene<frmFacPiezoControl>("frmFacPiezoControl"),
        scene<frmPiezoAdjust>("frmPiezoAdjust"),
        scene<frmSerPiezo>("frmSerPiezo"),
    };
}

} // namespace vss

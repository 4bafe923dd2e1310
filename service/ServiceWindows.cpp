#include "service/ServiceWindows.h"

#include "service/frmSer.h"
#include "service/frmSerSet.h"

namespace vss {
namespace {

template <class W> std::unique_ptr<W> make(QWidget* parent) {
    return std::make_unique<W>(parent);
}

} // namespace

void registerServiceWindows(MenuWindows& windows) {
    windows.servicePanel = make<frmSer>;
    windows.serviceSettings = make<frmSerSet>;
}

ScreenshotScenes serviceScreenshots() {
    return {{QStringLiteral("frmSer"), make<frmSer>}, {QStringLiteral("frmSerSet"), make<frmSerSet>}};
}

} // namespace vss

#include "app/Navigation.h"
#include "app/frmOpen.h"
#include "app/frmTop.h"
#include "tests/support/WindowHarness.h"

#include <QApplication>

namespace vss::testing {

SessionHarness::SessionHarness(sim::SimOptions options) : WindowHarness(std::move(options)) {
    registerWindows(menuWindows());
}

frmTop& SessionHarness::top() {
    if (!top_) {
        top_ = std::make_unique<frmTop>();
        top_->show();
        QApplication::setActiveWindow(top_.get());
    }
    return static_cast<frmTop&>(*top_);
}

void SessionHarness::runSession(const std::function<void(frmOpen&)>& during) {
    whenActive<frmOpen>([during](frmOpen& menu) {
        if (during)
            during(menu);
        if (menu.isVisible())
            click(menu, "cmdClose");
    });
    click(top(), "cmdOpen");
}

} // namespace vss::testing

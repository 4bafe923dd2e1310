#include "app/WaitCursor.h"

#include <QApplication>

namespace vss {
namespace {

// Wait cursors that busy windows have put on the application's cursor stack.
int waitCursorsShown = 0;

} // namespace

void pushWaitCursor() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ++waitCursorsShown;
}

void popWaitCursor() {
    if (waitCursorsShown == 0)
        return;
    QApplication::restoreOverrideCursor();
    --waitCursorsShown;
}

WaitCursorLift::WaitCursorLift() : lifted_(waitCursorsShown) {
    for (int i = 0; i < lifted_; ++i)
        popWaitCursor();
}

WaitCursorLift::~WaitCursorLift() {
    for (int i = 0; i < lifted_; ++i)
        pushWaitCursor();
}

} // namespace vss

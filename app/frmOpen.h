#pragma once

// The main menu, shown modally for the whole instrument session. Its less common buttons lie below the
// window's visible height; a mouse gesture on the background changes the menu level and so the height.
// Closing the menu closes the instrument session.

#include "kit/Form.h"
#include "kit/Gestures.h"
#include "driver/Handles.h"

#include <Qt>

namespace vss {

// Level 0 shows the operator's buttons, 1 adds the service buttons, 2 the factory buttons. A at 0 gives 1 and
// at 1 gives 0; B at 1 gives 2 and at 2 gives 1; anything else keeps the level.
int nextMenuLevel(int level, MenuGesture gesture);

// The window's outer height at a level (title bar and borders included); an unknown level counts as 0.
int menuHeightTwips(int level);

// What "Operation Check" does before it shows the panel: reset the instrument (initialize it when it is
// uninitialized) and probe the head loader once. An instrument whose head loader cannot be read has none: its
// handle is emptied for the rest of the session, without a message.
void prepareOperationCheck(DriverHandles& handles);

class frmOpen : public Form {
    Q_OBJECT

public:
    explicit frmOpen(QWidget* parent = nullptr);

    int level() const { return level_; }
    // Sets the level and applies its height at once; any value but 0, 1 and 2 sets level 0.
    void setLevel(int level);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void onUnload() override;

private:
    void cmdInitialize_Click();

    int level_ = 0;
};

} // namespace vss

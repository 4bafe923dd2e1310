#pragma once

// A window that watches the instrument while it is shown: a 200 ms timer that starts once the window has
// loaded, stops first thing when the window closes (before its unload handler runs), and never runs a tick
// inside another (a tick that shows a message box lets the timer fire again meanwhile: that tick is skipped).
// What a failing read in a tick does is the window's own decision, made in onPoll.

#include "kit/CommandForm.h"

#include <QTimer>

namespace vss {

class PollingForm : public CommandForm {
    Q_OBJECT

public:
    static constexpr int kPollMs = 200;

    // One tick, as the timer runs it.
    void pollOnce();
    bool isPolling() const { return timer_.isActive(); }

protected:
    explicit PollingForm(QWidget* parent = nullptr);

    // Starts the timer; called by the window at the end of its loading.
    void startPolling();
    // Stops the timer; no tick runs afterwards, not even one already due.
    void stopPolling();

    // The window's reads of one tick.
    virtual void onPoll() = 0;

    void done(int result) override;

private:
    QTimer timer_;
    bool inTick_ = false;
};

} // namespace vss

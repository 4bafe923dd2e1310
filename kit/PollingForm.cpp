#include "kit/PollingForm.h"

#include <utility>

namespace vss {

PollingForm::PollingForm(QWidget* parent) : CommandForm(parent) {
    timer_.setInterval(kPollMs);
    connect(&timer_, &QTimer::timeout, this, &PollingForm::pollOnce);
}

void PollingForm::startPolling() {
    timer_.start();
}

void PollingForm::stopPolling() {
    timer_.stop();
}

void PollingForm::pollOnce() {
    if (inTick_ || isUnloaded())
        return;
    inTick_ = true;
    onPoll();
    inTick_ = false;
}

void PollingForm::done(int result) {
    stopPolling();
    CommandForm::done(result);
}

} // namespace vss

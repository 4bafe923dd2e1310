#pragma once

// Small helpers of the piezo window tests: showing a window with steps, and the field helpers every window
// test shares.

#include "controls/userProperty.h"
#include "controls/userText.h"
#include "kit/Form.h"
#include "tests/support/FieldInput.h"
#include "tests/support/WindowHarness.h"

#include <QLineEdit>
#include <QTest>
#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace vss::testing {

// Shows a window of type W modally, runs `during` on it and closes it with `closer` if it is still open.
template <class W>
void withWindow(WindowHarness& harness, const std::function<void(W&)>& during,
                const char* closer = "cmdReturn") {
    harness.whenActive<W>([&](W& w) {
        during(w);
        if (w.isVisible())
            WindowHarness::click(w, closer);
    });
    harness.showModal([](QWidget* parent) { return std::make_unique<W>(parent); });
}

} // namespace vss::testing

#pragma once

// Small helpers of the piezo window tests: typing into value fields, showing a window with steps, and
// picking the instrument's writes out of the trace.

#include "controls/userProperty.h"
#include "controls/userText.h"
#include "kit/Form.h"
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

using Lines = std::vector<std::string>;

// The text box inside a value field (a userText, or the text editor of a userProperty).
inline QLineEdit& fieldBox(QWidget& window, const char* fieldName) {
    QWidget& field = WindowHarness::control(window, fieldName);
    auto* box = field.findChild<QLineEdit*>(QStringLiteral("txt"));
    if (!box)
        throw std::logic_error(std::string("no text box in ") + fieldName);
    return *box;
}

inline std::string shownText(QWidget& window, const char* fieldName) {
    return fieldBox(window, fieldName).text().toStdString();
}

// Types into a value field and commits with Enter.
inline void enterValue(QWidget& window, const char* fieldName, const QString& text) {
    QLineEdit& box = fieldBox(window, fieldName);
    box.setFocus();
    box.selectAll();
    QTest::keyClicks(&box, text);
    QTest::keyClick(&box, Qt::Key_Return);
}

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

// The calls that change the instrument.
inline Lines writes(const Lines& lines) {
    Lines kept;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(kept), [](const std::string& l) {
        return l.find(".Set") != std::string::npos || l.find(".Save") != std::string::npos ||
               l.find(".Recall") != std::string::npos;
    });
    return kept;
}

inline bool contains(const Lines& lines, std::string_view part) {
    return std::any_of(lines.begin(), lines.end(),
                       [part](const std::string& l) { return l.find(part) != std::string::npos; });
}

} // namespace vss::testing

#pragma once

// Typing into a window's value fields the way a person does, reading what they show, and picking what a test
// looks for out of the call trace.

#include "tests/support/WindowHarness.h"

#include <QLineEdit>
#include <QTest>
#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
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

// Types into a value field and commits with Enter (or leaves it with the key given).
inline void enterValue(QWidget& window, const char* fieldName, const QString& text, Qt::Key key = Qt::Key_Return) {
    QLineEdit& box = fieldBox(window, fieldName);
    box.setFocus();
    box.selectAll();
    QTest::keyClicks(&box, text);
    QTest::keyClick(&box, key);
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

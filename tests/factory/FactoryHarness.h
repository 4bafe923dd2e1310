#pragma once

// The factory page tests' session on the simulator, the trace read as calls, and value fields driven with
// keys.

#include "kit/modGlobal.h"
#include "tests/support/FieldInput.h"
#include "tests/support/WindowHarness.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <string>
#include <vector>

namespace vss::testing {

using Lines = std::vector<std::string>;

// The calls of trace lines with their arguments, without what they returned.
inline Lines callsOf(const Lines& lines) {
    Lines calls;
    for (const std::string& l : lines)
        calls.push_back(l.substr(0, l.find(" -> ")));
    return calls;
}

inline Lines writesOf(const Lines& lines) {
    Lines kept;
    for (const std::string& l : lines)
        if (l.find(".Set") != std::string::npos || l.find(".Save") != std::string::npos)
            kept.push_back(l);
    return kept;
}

// The list inside a value field.
inline QComboBox& fieldList(QWidget& window, const char* field) {
    return *WindowHarness::control(window, field).findChild<QComboBox*>(QStringLiteral("cmb"));
}

// Moves a list field's selection one entry down (up from the last entry) with an arrow key.
inline void chooseNext(QWidget& window, const char* field) {
    QComboBox& list = fieldList(window, field);
    QTest::keyClick(&list, list.currentIndex() + 1 < list.count() ? Qt::Key_Down : Qt::Key_Up);
}

struct FactorySession : WindowHarness {
    explicit FactorySession(sim::SimOptions options = {":memory:"}) : WindowHarness(std::move(options)) {
        openSession();
        clearTrace();
    }

    // A commit with only its own calls in the trace: the field that had the focus commits as it loses it, so
    // the trace is cleared once the field has the focus.
    void enter(QWidget& w, const char* field, const QString& text, Qt::Key key = Qt::Key_Return) {
        fieldBox(w, field).setFocus();
        clearTrace();
        enterValue(w, field, text, key);
    }
    void chooseNextIn(QWidget& w, const char* field) {
        fieldList(w, field).setFocus();
        clearTrace();
        chooseNext(w, field);
    }

    // Shows a window made by make, runs `during` on it and closes it if it is still open.
    template <class W> void with(const FormFactory& make, const std::function<void(W&)>& during) {
        whenActive<W>([&](W& w) {
            during(w);
            w.close();
        });
        showModal(make);
    }
};

} // namespace vss::testing

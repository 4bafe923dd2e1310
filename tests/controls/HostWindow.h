#pragma once

// A window for one control under test, a second text box to move the focus to, and a ChangeValue count.

#include "controls/Twips.h"
#include "driver/Variant.h"

#include <QLineEdit>
#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>
#include <ostream>

namespace vss {
// Failures show a value as its type and text.
inline void PrintTo(const Variant& v, std::ostream* os) {
    *os << Variant::typeName(v.type());
    if (v.type() == Variant::Type::Text)
        *os << " \"" << v.text() << '"';
    else if (v.isNumeric())
        *os << ' ' << v.toDouble();
}
} // namespace vss

template <typename Control> class HostWindow : public ::testing::Test {
protected:
    void SetUp() override {
        window.resize(vss::twipsSize(6000, 1500));
        control = new Control(&window);
        control->setGeometry(vss::twipsRect(0, 0, 3000, 300));
        other = new QLineEdit(&window);
        other->setGeometry(vss::twipsRect(0, 600, 3000, 300));
        QObject::connect(control, &Control::ChangeValue, &window, [this] { ++changes; });
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    template <typename Child> Child* child(const char* name) const {
        return control->template findChild<Child*>(name);
    }

    // Clicks into a text box and replaces its text by typing.
    static void typeInto(QLineEdit* box, const QString& text) {
        QTest::mouseClick(box, Qt::LeftButton);
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, text);
    }

    void leaveField() { QTest::mouseClick(other, Qt::LeftButton); }

    QWidget window;
    Control* control = nullptr;
    QLineEdit* other = nullptr;
    int changes = 0;
};

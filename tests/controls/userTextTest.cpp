#include "controls/userText.h"

#include "HostWindow.h"

#include <QLabel>

using vss::Variant;

namespace {

class UserTextTest : public HostWindow<vss::userText> {
protected:
    QLineEdit* txt() const { return child<QLineEdit>("txt"); }

    void makeMillimetreField(double metres) {
        control->setDblScale(0.001);
        control->setOptStr("mm");
        control->setValue(metres);
    }

    void commitByEnter(const QString& text) {
        typeInto(txt(), text);
        QTest::keyClick(txt(), Qt::Key_Return);
    }
};

} // namespace

TEST_F(UserTextTest, CommitsScaledNumbersOnEnterAndAgainOnLeaving) {
    makeMillimetreField(0.0125);
    EXPECT_EQ(txt()->text(), "12.50");
    commitByEnter("25");
    EXPECT_DOUBLE_EQ(control->Value().dbl(), 0.025);
    EXPECT_EQ(txt()->text(), "25.00");
    EXPECT_EQ(changes, 1);
    leaveField();
    EXPECT_EQ(changes, 2);

    typeInto(txt(), "-1.5e1");
    leaveField();
    EXPECT_DOUBLE_EQ(control->Value().dbl(), -0.015);
    EXPECT_EQ(changes, 3);
}

// The program taking the focus away (a window turning busy disables its controls, a closing one hides them)
// is not the user leaving the field: nothing is committed, and the typed text waits for the user's own
// commit.
TEST_F(UserTextTest, DisablingOrHidingTheFieldWithTheFocusCommitsNothing) {
    makeMillimetreField(0.0125);
    typeInto(txt(), "30");
    window.setEnabled(false);
    EXPECT_FALSE(control->Enabled());
    EXPECT_EQ(changes, 0);
    EXPECT_DOUBLE_EQ(control->Value().dbl(), 0.0125);
    window.setEnabled(true);
    EXPECT_TRUE(control->Enabled());

    typeInto(txt(), "40");
    control->hide();
    EXPECT_EQ(changes, 0);
    control->show();
    commitByEnter("50");
    EXPECT_DOUBLE_EQ(control->Value().dbl(), 0.05);
    EXPECT_EQ(changes, 1);
}

TEST_F(UserTextTest, KeepsTheValueAndTheTypedTextWhenTheTextIsRejected) {
    makeMillimetreField(0.0125);
    commitByEnter("abc");
    EXPECT_EQ(control->Value(), Variant(0.0125));
    EXPECT_EQ(txt()->text(), "abc");
    EXPECT_TRUE(txt()->hasFocus());
    EXPECT_EQ(changes, 1);

    control->setValue(std::int16_t{5});
    commitByEnter("70000");
    EXPECT_EQ(control->Value(), Variant(std::int16_t{5}));
    EXPECT_EQ(txt()->text(), "70000");

    control->setValue("old");
    commitByEnter("123");
    EXPECT_EQ(control->Value(), Variant("old"));
    commitByEnter("abc");
    EXPECT_EQ(control->Value(), Variant("abc"));
}

TEST_F(UserTextTest, RefreshesTheTextOnlyWhenTheValueChanges) {
    control->setValue(1.0);
    control->setDigitNum(6);
    control->setValue(1.0);
    EXPECT_EQ(txt()->text(), "1.000");
    commitByEnter("1.0");
    EXPECT_EQ(txt()->text(), "1.0");
    control->setValue(2.0);
    EXPECT_EQ(txt()->text(), "2.00000");
    EXPECT_EQ(changes, 1); // the host's own assignments raise nothing

    // Passing through the field does not round its value to the digits shown.
    makeMillimetreField(0.0123456);
    QTest::mouseClick(txt(), Qt::LeftButton);
    leaveField();
    EXPECT_EQ(control->Value(), Variant(0.0123456));
}

TEST_F(UserTextTest, LockingMakesTheBoxReadOnlyWithTheButtonFaceBackground) {
    control->setValue(std::int32_t{42});
    control->setLocked(true);
    EXPECT_EQ(txt()->palette().color(QPalette::Base), QApplication::palette(txt()).color(QPalette::Button));
    commitByEnter("7");
    EXPECT_EQ(control->Value(), Variant(std::int32_t{42}));
    control->setLocked(false);
    EXPECT_EQ(txt()->palette().color(QPalette::Base), QApplication::palette(txt()).color(QPalette::Base));
}

TEST_F(UserTextTest, GivesTheUnitAStripAtTheRightOnlyWhenThereIsAUnit) {
    control->setOptStrWidth(600);
    EXPECT_EQ(txt()->width(), vss::twipsToPixels(3000));
    control->setOptStr("mm");
    EXPECT_EQ(txt()->geometry(), QRect(0, 0, vss::twipsToPixels(2400), control->height()));
    EXPECT_EQ(child<QLabel>("opt")->geometry(), vss::twipsRect(2400, 0, 600, 300));
    control->setGeometry(vss::twipsRect(0, 0, 4500, 300)); // the strip stays at the right edge
    EXPECT_EQ(child<QLabel>("opt")->x(), vss::twipsToPixels(vss::pixelsToTwips(control->width()) - 600));
}

// A commit that leaves the value the host set is no edit: passing through, Enter on it, the same number typed
// again, rejected text. Another value is one until the host sets a value again.
TEST_F(UserTextTest, AnEditIsACommittedValueOtherThanTheOneTheHostSet) {
    control->setValue(std::int32_t{42});
    leaveField();
    for (const char* same : {"42", "42.0", "abc"}) {
        commitByEnter(same);
        EXPECT_FALSE(control->Edited()) << same;
    }
    commitByEnter("43");
    EXPECT_TRUE(control->Edited());
    control->setValue(std::int32_t{43}); // the value read back is the one committed: nothing new shown
    EXPECT_FALSE(control->Edited());
    commitByEnter("44");
    control->setValue(std::int32_t{42});
    EXPECT_EQ(txt()->text(), "42");
    EXPECT_FALSE(control->Edited());
}

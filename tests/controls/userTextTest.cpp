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
        control->setDigitNum(4);
        control->setOptStr("mm");
        control->setValue(metres);
    }

    void commitByEnter(const QString& text) {
        typeInto(txt(), text);
        QTest::keyClick(txt(), Qt::Key_Return);
    }
};

} // namespace

TEST_F(UserTextTest, ShowsAScaledDoubleAndCommitsTypedNumbersOnEnter) {
    makeMillimetreField(0.0125);
    EXPECT_EQ(txt()->text(), "12.50");
    EXPECT_TRUE(txt()->alignment() & Qt::AlignRight);

    commitByEnter("25");
    EXPECT_DOUBLE_EQ(control->Value().dbl(), 0.025);
    EXPECT_EQ(txt()->text(), "25.00");
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
    EXPECT_EQ(changes, 2);
}

TEST_F(UserTextTest, CommitsOnEnterAndAgainOnLeavingTheField) {
    makeMillimetreField(0.0125);
    commitByEnter("25");
    leaveField();
    EXPECT_EQ(changes, 2);
    EXPECT_DOUBLE_EQ(control->Value().dbl(), 0.025);

    // Typing and leaving without Enter commits too.
    typeInto(txt(), "-1.5e1");
    leaveField();
    EXPECT_DOUBLE_EQ(control->Value().dbl(), -0.015);
    EXPECT_EQ(changes, 3);
}

TEST_F(UserTextTest, PassingThroughAFieldDoesNotRoundItsValueToTheDigitsShown) {
    makeMillimetreField(0.0123456);
    QTest::mouseClick(txt(), Qt::LeftButton);
    leaveField();
    EXPECT_EQ(control->Value(), Variant(0.0123456));
    EXPECT_EQ(changes, 1);
}

TEST_F(UserTextTest, LetsTextFieldsTakeOnlyTextAndNullFieldsNothing) {
    control->setValue("old");
    EXPECT_FALSE(txt()->alignment() & Qt::AlignRight);
    commitByEnter("123");
    EXPECT_EQ(control->Value(), Variant("old"));
    commitByEnter("abc");
    EXPECT_EQ(control->Value(), Variant("abc"));

    vss::userText empty(&window);
    QLineEdit* box = empty.findChild<QLineEdit*>("txt");
    empty.show();
    for (const char* text : {"12", "abc"}) {
        typeInto(box, text);
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_TRUE(empty.Value().isNull()) << text;
    }
}

TEST_F(UserTextTest, RefreshesTheTextOnlyWhenTheValueChanges) {
    control->setValue(1.0);
    EXPECT_EQ(txt()->text(), "1.000");
    control->setDigitNum(6);
    control->setValue(1.0);
    EXPECT_EQ(txt()->text(), "1.000");
    commitByEnter("1.0");
    EXPECT_EQ(txt()->text(), "1.0");
    control->setValue(2.0);
    EXPECT_EQ(txt()->text(), "2.00000");
    // Only commits raise ChangeValue, never the host's own assignments.
    EXPECT_EQ(changes, 1);
}

TEST_F(UserTextTest, NeverChangesTheTypeOfItsValueWhateverIsTyped) {
    const Variant kinds[] = {
        Variant(std::int16_t{1}), Variant(std::int32_t{1}), Variant(1.0), Variant("x"), Variant(true),
        Variant::null()};
    const char* texts[] = {"",     " ",   "-",   "+.",    "1e999", "-32769",   "2147483648",
                           "0x1F", "1,5", "nan", "12abc", "3.5",   "\xc2\xb5m"};
    for (const Variant& kind : kinds) {
        vss::userText field(&window);
        field.show();
        field.setValue(kind);
        for (const char* text : texts) {
            QLineEdit* box = field.findChild<QLineEdit*>("txt");
            typeInto(box, QString::fromUtf8(text));
            QTest::keyClick(box, Qt::Key_Return);
            EXPECT_EQ(field.Value().type(), kind.type()) << Variant::typeName(kind.type()) << " <- " << text;
        }
    }
}

TEST_F(UserTextTest, LockingMakesTheBoxReadOnlyWithTheButtonFaceBackground) {
    control->setValue(std::int32_t{42});
    control->setLocked(true);
    EXPECT_TRUE(control->Locked());
    EXPECT_EQ(txt()->palette().color(QPalette::Base), QApplication::palette(txt()).color(QPalette::Button));
    QTest::keyClicks(txt(), "7");
    QTest::keyClick(txt(), Qt::Key_Return);
    EXPECT_EQ(control->Value(), Variant(std::int32_t{42}));

    control->setLocked(false);
    EXPECT_EQ(txt()->palette().color(QPalette::Base), QApplication::palette(txt()).color(QPalette::Base));
}

TEST_F(UserTextTest, GivesTheUnitAStripAtTheRightOnlyWhenThereIsAUnit) {
    auto* opt = child<QLabel>("opt");
    control->setOptStrWidth(600);
    EXPECT_EQ(txt()->geometry(), QRect(0, 0, vss::twipsToPixels(3000), control->height()));

    control->setOptStr("mm");
    EXPECT_EQ(txt()->width(), vss::twipsToPixels(2400));
    EXPECT_EQ(opt->geometry(),
              QRect(vss::twipsToPixels(2400), 0, vss::twipsToPixels(600), control->height()));

    control->setGeometry(vss::twipsRect(0, 0, 4500, 300));
    EXPECT_EQ(txt()->width(), vss::twipsToPixels(3900));
    EXPECT_EQ(opt->x(), vss::twipsToPixels(3900));
}

#include "controls/userProperty.h"

#include "HostWindow.h"
#include "controls/userText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QStyle>
#include <QStyleOptionButton>

using vss::twipsToPixels;
using vss::Variant;

namespace {

class UserPropertyTest : public HostWindow<vss::userProperty> {
protected:
    QLabel* lbl() const { return child<QLabel>("lbl"); }
    vss::userText* txt() const { return child<vss::userText>("txt"); }
    QComboBox* cmb() const { return child<QComboBox>("cmb"); }
    QCheckBox* chk() const { return child<QCheckBox>("chk"); }

    // Entries "a", "b", "c", ... carrying the given item data, in display order.
    void fillList(std::initializer_list<std::int32_t> data) {
        std::int16_t i = 0;
        for (std::int32_t d : data) {
            control->AddItem(QString(QChar('a' + i)), i);
            control->setItemData(i, d);
            ++i;
        }
    }

    QString visibleEditor() const {
        QString names;
        for (QWidget* editor :
             {static_cast<QWidget*>(txt()), static_cast<QWidget*>(cmb()), static_cast<QWidget*>(chk())})
            names += editor->isVisible() ? editor->objectName() : QString();
        return names;
    }

    // The box itself: a check box without text takes clicks only there.
    void clickCheckBox() const {
        QStyleOptionButton option;
        option.initFrom(chk());
        const QRect box = chk()->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, chk());
        QTest::mouseClick(chk(), Qt::LeftButton, {}, box.center());
    }

    // Left and width in pixels of a span given in twips.
    static std::pair<int, int> span(int left, int width) {
        return {twipsToPixels(left), twipsToPixels(width)};
    }
    static std::pair<int, int> span(const QWidget* w) { return {w->x(), w->width()}; }
};

} // namespace

TEST_F(UserPropertyTest, SplitsTheRowHalfAndHalfOrAtTheLabelWidth) {
    control->setValue(1.5);
    EXPECT_EQ(span(lbl()), span(5, 1490));
    EXPECT_EQ(span(txt()), span(1505, 1490));
    EXPECT_EQ(txt()->height(), control->height());

    control->setLabelWidth(1200);
    control->setLayoutAuto(false);
    EXPECT_EQ(span(lbl()), span(5, 1200));
    EXPECT_EQ(span(txt()), span(1215, 1790));

    // Every editor follows the layout, also one switched in later.
    control->setValue(true);
    EXPECT_EQ(span(chk()), span(1215, 1790));
}

TEST_F(UserPropertyTest, ShowsTheEditorThatTheTypeOfTheValueAsksFor) {
    EXPECT_EQ(visibleEditor(), "");
    fillList({0, 1});
    control->setValue(std::int16_t{1});
    EXPECT_EQ(visibleEditor(), "cmb");
    control->setValue(2.5);
    EXPECT_EQ(visibleEditor(), "txt");
    EXPECT_EQ(control->Value(), Variant(2.5));
    control->setValue(true);
    EXPECT_EQ(visibleEditor(), "chk");
    EXPECT_EQ(control->Value(), Variant(true));
    control->setValue(std::int16_t{1});
    EXPECT_EQ(visibleEditor(), "cmb");
    EXPECT_EQ(control->Value(), Variant(std::int16_t{1}));
    // A value with no editor of its own leaves the shown one.
    control->setValue(Variant::null());
    EXPECT_EQ(visibleEditor(), "cmb");
    EXPECT_TRUE(control->Value().isEmpty());
}

TEST_F(UserPropertyTest, SelectsTheLastEntryCarryingTheValueAndKeepsTheSelectionOtherwise) {
    fillList({10, 20, 10, 40000});
    EXPECT_EQ(cmb()->currentIndex(), -1);
    control->setValue(std::int16_t{5});
    EXPECT_TRUE(control->Value().isEmpty());

    control->setValue(std::int16_t{10});
    EXPECT_EQ(cmb()->currentIndex(), 2);
    EXPECT_EQ(changes, 1);
    control->setValue(std::int16_t{10});
    EXPECT_EQ(changes, 1);
    control->setValue(std::int16_t{99});
    EXPECT_EQ(cmb()->currentIndex(), 2);
    EXPECT_EQ(control->Value(), Variant(std::int16_t{10}));

    // Entries inserted before the selection move it along; data beyond 16 bits reads as empty.
    control->AddItem("first", 0);
    control->setItemData(0, 7);
    EXPECT_EQ(control->Value(), Variant(std::int16_t{10}));
    cmb()->setCurrentIndex(4);
    EXPECT_TRUE(control->Value().isEmpty());
    EXPECT_EQ(control->ItemData(99), 0);
}

TEST_F(UserPropertyTest, RaisesChangeValueForEveryUserEdit) {
    fillList({1, 2, 3});
    control->setValue(std::int16_t{1});
    changes = 0;
    cmb()->setFocus();
    QTest::keyClick(cmb(), Qt::Key_Down);
    EXPECT_EQ(control->Value(), Variant(std::int16_t{2}));
    EXPECT_EQ(changes, 1);

    control->setValue(false);
    clickCheckBox();
    EXPECT_EQ(control->Value(), Variant(true));
    EXPECT_EQ(changes, 2);

    control->setDblScale(0.001);
    control->setValue(0.0125);
    auto* box = txt()->findChild<QLineEdit*>("txt");
    typeInto(box, "25");
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(control->Value(), Variant(0.025));
    EXPECT_EQ(changes, 3);
}

TEST_F(UserPropertyTest, LockingHoldsTheListAndTheTextButNotTheCheckBox) {
    fillList({1, 2});
    control->setValue(std::int16_t{1});
    control->setLocked(true);
    EXPECT_TRUE(control->Locked());
    EXPECT_EQ(cmb()->palette().color(QPalette::Button), QApplication::palette(cmb()).color(QPalette::Button));
    cmb()->setFocus();
    QTest::keyClick(cmb(), Qt::Key_Down);
    QTest::mouseClick(cmb(), Qt::LeftButton);
    EXPECT_EQ(control->Value(), Variant(std::int16_t{1}));
    EXPECT_TRUE(txt()->Locked());

    control->setValue(false);
    clickCheckBox();
    EXPECT_EQ(control->Value(), Variant(true));

    control->setLocked(false);
    EXPECT_EQ(cmb()->palette().color(QPalette::Button), QApplication::palette(cmb()).color(QPalette::Base));
}

#include "controls/userProperty.h"

#include "HostWindow.h"
#include "controls/FieldLayout.h"
#include "controls/userText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QStyle>
#include <QStyleOptionButton>

using vss::twipsRect;
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
        for (QWidget* editor : control->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            names += editor != lbl() && editor->isVisible() ? editor->objectName() : QString();
        return names;
    }

    // The box itself: a check box without text takes clicks only there.
    void clickCheckBox() const {
        QStyleOptionButton option;
        option.initFrom(chk());
        const QRect box = chk()->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, chk());
        QTest::mouseClick(chk(), Qt::LeftButton, {}, box.center());
    }
};

} // namespace

// The row is split by the field's own width, in twips to the pixel (the arithmetic: FieldLayout's test).
TEST_F(UserPropertyTest, SplitsTheRowHalfAndHalfOrAtTheLabelWidth) {
    const int row = vss::pixelsToTwips(control->width());
    const auto placed = [](vss::Span span) { return twipsRect(span.left, 0, span.width, 300); };
    control->setValue(1.5);
    EXPECT_EQ(txt()->geometry(), placed(vss::propertyRowLayout(row, true, 0).editor));
    control->setLabelWidth(1200);
    control->setLayoutAuto(false);
    const vss::PropertyRowLayout fixed = vss::propertyRowLayout(row, false, 1200);
    EXPECT_EQ(lbl()->geometry(), placed(fixed.caption));
    EXPECT_EQ(txt()->geometry(), placed(fixed.editor));
    control->setValue(true); // an editor switched in later follows the layout too
    EXPECT_EQ(chk()->geometry(), placed(fixed.editor));
}

TEST_F(UserPropertyTest, ShowsTheEditorThatTheTypeOfTheValueAsksFor) {
    EXPECT_EQ(visibleEditor(), "");
    fillList({0, 1});
    const std::pair<Variant, const char*> steps[] = {
        {std::int16_t{1}, "cmb"}, {2.5, "txt"}, {"x", "txt"}, {true, "chk"}, {std::int16_t{1}, "cmb"}};
    for (const auto& [value, editor] : steps) {
        control->setValue(value);
        EXPECT_EQ(visibleEditor(), editor);
        EXPECT_EQ(control->Value(), value);
    }
    // A value with no editor of its own leaves the shown one.
    control->setValue(Variant::null());
    EXPECT_EQ(visibleEditor(), "cmb");
    EXPECT_TRUE(control->Value().isEmpty());
}

TEST_F(UserPropertyTest, SelectsTheLastEntryCarryingTheValueAndKeepsTheSelectionOtherwise) {
    fillList({10, 20, 10, 40000});
    control->setValue(std::int16_t{5});
    EXPECT_TRUE(control->Value().isEmpty()); // nothing selected yet

    control->setValue(std::int16_t{10});
    control->setValue(std::int16_t{10});
    EXPECT_EQ(cmb()->currentIndex(), 2);
    EXPECT_EQ(changes, 1);
    control->setValue(std::int16_t{99});
    EXPECT_EQ(control->Value(), Variant(std::int16_t{10}));

    // An entry inserted before the selection moves it along; data beyond 16 bits reads as empty.
    control->AddItem("first", 0);
    EXPECT_EQ(control->Value(), Variant(std::int16_t{10}));
    cmb()->setCurrentIndex(4);
    EXPECT_TRUE(control->Value().isEmpty());
}

TEST_F(UserPropertyTest, RaisesChangeValueForEveryUserEdit) {
    fillList({1, 2, 3});
    control->setValue(std::int16_t{1});
    cmb()->setFocus();
    QTest::keyClick(cmb(), Qt::Key_Down);
    EXPECT_EQ(control->Value(), Variant(std::int16_t{2}));
    EXPECT_EQ(changes, 2);

    control->setValue(false);
    clickCheckBox();
    EXPECT_EQ(control->Value(), Variant(true));
    EXPECT_EQ(changes, 3);

    control->setValue(std::int32_t{7});
    auto* box = txt()->findChild<QLineEdit*>("txt");
    typeInto(box, "25");
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(control->Value(), Variant(std::int32_t{25}));
    EXPECT_EQ(changes, 4);
}

TEST_F(UserPropertyTest, LockingHoldsTheListAndTheTextButNotTheCheckBox) {
    fillList({1, 2});
    control->setValue(std::int16_t{1});
    control->setLocked(true);
    EXPECT_TRUE(txt()->Locked());
    EXPECT_EQ(cmb()->palette().color(QPalette::Button), QApplication::palette(cmb()).color(QPalette::Button));
    cmb()->setFocus();
    QTest::keyClick(cmb(), Qt::Key_Down);
    QTest::mouseClick(cmb(), Qt::LeftButton);
    EXPECT_EQ(control->Value(), Variant(std::int16_t{1}));

    control->setValue(false);
    clickCheckBox();
    EXPECT_EQ(control->Value(), Variant(true));
    control->setLocked(false);
    EXPECT_EQ(cmb()->palette().color(QPalette::Button), QApplication::palette(cmb()).color(QPalette::Base));
}

TEST_F(UserPropertyTest, PickingTheEntryShownIsNoEditAndTheCheckBoxAlwaysIsOne) {
    fillList({10, 20});
    control->setValue(std::int16_t{20});
    emit cmb()->activated(1);
    EXPECT_FALSE(control->Edited());
    cmb()->setCurrentIndex(0);
    emit cmb()->activated(0);
    EXPECT_TRUE(control->Edited());

    control->setValue(false);
    clickCheckBox();
    EXPECT_TRUE(control->Edited());
    control->setValue(std::int32_t{7}); // the text editor's own rule
    EXPECT_FALSE(control->Edited());
}

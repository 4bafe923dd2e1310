// A commit that changes nothing writes nothing, on every window of the program: Enter in a field as it was
// read and leaving it so, an entry picked again in a list, the setting status chosen again. Tabbing through a
// page never writes, so it never sends a value that another program has changed since the page read it.

#include "app/Screenshots.h"
#include "controls/userProperty.h"
#include "kit/Form.h"
#include "tests/support/FieldInput.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QTest>
#include <gtest/gtest.h>

namespace vss {
namespace {

using testing::Lines;
using testing::SessionHarness;
using testing::writes;

bool usable(const QWidget& w) {
    return w.isVisible() && w.isEnabled();
}

TEST(EveryWindow, ACommitWithoutAChangeWritesNothing) {
    SessionHarness h;
    h.openSession();
    h.prepareInstrument();
    int fields = 0;
    int lists = 0;
    for (const auto& [scene, make] : screenshotScenes()) {
        const std::unique_ptr<QWidget> w = make(nullptr);
        if (!dynamic_cast<Form*>(w.get()))
            continue;
        SCOPED_TRACE(scene.toStdString());
        w->show();
        QApplication::setActiveWindow(w.get());
        h.clearTrace();
        for (QLineEdit* box : w->findChildren<QLineEdit*>()) {
            if (!usable(*box) || box->isReadOnly())
                continue;
            box->setFocus();
            QTest::keyClick(box, Qt::Key_Return);
            QTest::keyClick(box, Qt::Key_Tab);
            ++fields;
        }
        for (QComboBox* list : w->findChildren<QComboBox*>()) {
            const auto* row = qobject_cast<const userProperty*>(list->parentWidget());
            if (!usable(*list) || list->currentIndex() < 0 || (row && row->Locked()))
                continue;
            emit list->activated(list->currentIndex()); // a click on the entry already selected
            ++lists;
        }
        // The service panel's options are commands, not settings: a click sends, also on the option shown.
        for (QRadioButton* option : w->findChildren<QRadioButton*>()) {
            if (usable(*option) && option->isChecked() && scene != QLatin1String("frmSer"))
                option->click();
        }
        EXPECT_EQ(writes(h.trace()), Lines{});
    }
    EXPECT_GE(fields, 70);
    EXPECT_GE(lists, 10);
}

} // namespace
} // namespace vss

#include "controls/userText.h"

#include "controls/FieldLayout.h"
#include "controls/FieldLook.h"
#include "controls/FieldText.h"

#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>

namespace vss {

userText::userText(QWidget* parent) : QWidget(parent), txt_(new QLineEdit(this)), opt_(new QLabel(this)) {
    txt_->setObjectName("txt");
    opt_->setObjectName("opt");
    opt_->setIndent(2);
    showLockedBackground(txt_, false);
    txt_->installEventFilter(this);
    // The Enter key is not consumed: after the commit it goes on to the window (its default button, say).
    connect(txt_, &QLineEdit::returnPressed, this, &userText::commit);
}

void userText::setValue(const Variant& value) {
    assigned_ = value;
    display(value);
}

void userText::display(const Variant& value) {
    if (value.equals(value_))
        return;
    txt_->setText(QString::fromStdString(FormatValueText(value, dblScale_, digitNum_)));
    txt_->setAlignment((isRightAligned(value.type()) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    value_ = value;
}

QString userText::OptStr() const {
    return opt_->text();
}

void userText::setOptStr(const QString& unit) {
    opt_->setText(unit);
    layoutChildren();
}

void userText::setOptStrWidth(std::int32_t twips) {
    optStrWidth_ = twips;
    layoutChildren();
}

bool userText::Enabled() const {
    return txt_->isEnabled();
}

bool userText::Locked() const {
    return txt_->isReadOnly();
}

void userText::setLocked(bool locked) {
    txt_->setReadOnly(locked);
    showLockedBackground(txt_, txt_->isReadOnly());
}

QSize userText::sizeHint() const {
    return {twipsToPixels(1500), txt_->sizeHint().height()};
}

void userText::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutChildren();
}

void userText::setCaptionName(const QString& caption) {
    setAccessibleName(caption);
    txt_->setAccessibleName(caption);
}

bool userText::eventFilter(QObject* watched, QEvent* event) {
    // Leaving the field commits when the user leaves it. Not when the focus only went to the box's own
    // context menu or to another window (the field still has the focus within its window then and commits
    // when it really loses it), and not when the program took the focus away by disabling or hiding the box,
    // as a window does when it turns busy or closes.
    if (watched == txt_ && event->type() == QEvent::FocusOut) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason && txt_->isEnabled() &&
            txt_->isVisible())
            commit();
    }
    return QWidget::eventFilter(watched, event);
}

// The one place where typed text becomes a value. Text the user has not edited since it was shown is not read
// again, so that passing through a field does not round its value to the digits shown.
void userText::commit() {
    if (txt_->isModified()) {
        const std::string separator = QLocale().decimalPoint().toStdString();
        display(valueFromTypedText(value_, txt_->text().toStdString(), dblScale_, separator));
    }
    emit ChangeValue();
}

void userText::layoutChildren() {
    const UnitStripLayout layout =
        unitStripLayout(pixelsToTwips(width()), !opt_->text().isEmpty(), optStrWidth_);
    placeAt(txt_, layout.text, height());
    placeAt(opt_, layout.unit, height());
}

} // namespace vss

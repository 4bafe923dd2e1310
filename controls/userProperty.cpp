#include "controls/userProperty.h"

#include "controls/FieldLayout.h"
#include "controls/FieldLook.h"
#include "controls/userText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QSignalBlocker>
#include <limits>

namespace vss {

// A drop-down list that can be locked: while locked it keeps its selection against mouse, keys and wheel but
// still takes the focus, so that a locked row can be tabbed through like a read-only text box.
class LockableComboBox : public QComboBox {
public:
    using QComboBox::QComboBox;

    bool locked() const { return locked_; }
    void setLocked(bool locked) { locked_ = locked; }

protected:
    void mousePressEvent(QMouseEvent* event) override {
        locked_ ? event->ignore() : QComboBox::mousePressEvent(event);
    }
    void keyPressEvent(QKeyEvent* event) override {
        locked_ ? event->ignore() : QComboBox::keyPressEvent(event);
    }
#if QT_CONFIG(wheelevent)
    void wheelEvent(QWheelEvent* event) override {
        locked_ ? event->ignore() : QComboBox::wheelEvent(event);
    }
#endif
    void showPopup() override {
        if (!locked_)
            QComboBox::showPopup();
    }

private:
    bool locked_ = false;
};

namespace {

bool isTextMode(Variant::Type mode) {
    return mode == Variant::Type::Int32 || mode == Variant::Type::Double || mode == Variant::Type::Text;
}

} // namespace

userProperty::userProperty(QWidget* parent)
    : QWidget(parent), lbl_(new QLabel(this)), txt_(new userText(this)), cmb_(new LockableComboBox(this)),
      chk_(new QCheckBox(this)) {
    lbl_->setObjectName("lbl");
    txt_->setObjectName("txt");
    cmb_->setObjectName("cmb");
    chk_->setObjectName("chk");
    lbl_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    showLockedBackground(cmb_, false);
    // No editor is shown until the first value decides which one it is.
    txt_->hide();
    cmb_->hide();
    chk_->hide();

    connect(txt_, &userText::ChangeValue, this, &userProperty::ChangeValue);
    connect(cmb_, &QComboBox::activated, this, &userProperty::ChangeValue);
    connect(chk_, &QCheckBox::clicked, this, &userProperty::ChangeValue);
}

QString userProperty::Caption() const {
    return lbl_->text();
}
void userProperty::setCaption(const QString& caption) {
    lbl_->setText(caption);
    setCaptionName(caption);
}

void userProperty::setCaptionName(const QString& caption) {
    setAccessibleName(caption);
    for (QWidget* editor : {static_cast<QWidget*>(cmb_), static_cast<QWidget*>(chk_)})
        editor->setAccessibleName(caption);
    txt_->setCaptionName(caption);
}

Qt::Alignment userProperty::LabelAlignment() const {
    return lbl_->alignment() & Qt::AlignHorizontal_Mask;
}

void userProperty::setLabelAlignment(Qt::Alignment alignment) {
    lbl_->setAlignment((alignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter);
    layoutChildren();
}

void userProperty::setLabelWidth(std::int32_t twips) {
    labelWidth_ = twips;
    layoutChildren();
}

void userProperty::setLayoutAuto(bool layoutAuto) {
    layoutAuto_ = layoutAuto;
    layoutChildren();
}

double userProperty::DblScale() const {
    return txt_->DblScale();
}
void userProperty::setDblScale(double scale) {
    txt_->setDblScale(scale);
}
std::int16_t userProperty::DigitNum() const {
    return txt_->DigitNum();
}
void userProperty::setDigitNum(std::int16_t digits) {
    txt_->setDigitNum(digits);
}
QString userProperty::OptStr() const {
    return txt_->OptStr();
}
void userProperty::setOptStr(const QString& unit) {
    txt_->setOptStr(unit);
}
std::int32_t userProperty::OptStrWidth() const {
    return txt_->OptStrWidth();
}
void userProperty::setOptStrWidth(std::int32_t twips) {
    txt_->setOptStrWidth(twips);
}

bool userProperty::Enabled() const {
    return txt_->isEnabled();
}

bool userProperty::Locked() const {
    return txt_->Locked();
}

void userProperty::setLocked(bool locked) {
    txt_->setLocked(locked);
    cmb_->setLocked(locked);
    showLockedBackground(cmb_, locked);
}

void userProperty::AddItem(const QString& text, std::int16_t index) {
    // A list starts with no entry selected, as it does before its first value.
    const bool wasEmpty = cmb_->count() == 0;
    const QSignalBlocker quiet(cmb_);
    cmb_->insertItem(index < 0 ? cmb_->count() : index, text);
    if (wasEmpty)
        cmb_->setCurrentIndex(-1);
}

std::int32_t userProperty::ItemData(std::int16_t index) const {
    const QVariant stored = cmb_->itemData(index);
    return stored.isValid() ? stored.toInt() : 0;
}

void userProperty::setItemData(std::int16_t index, std::int32_t itemData) {
    if (index >= 0 && index < cmb_->count())
        cmb_->setItemData(index, itemData);
}

Variant userProperty::Value() const {
    if (mode_ == Variant::Type::Int16) {
        const int index = cmb_->currentIndex();
        if (index < 0)
            return {};
        const std::int32_t itemData = ItemData(static_cast<std::int16_t>(index));
        if (itemData < std::numeric_limits<std::int16_t>::min() ||
            itemData > std::numeric_limits<std::int16_t>::max())
            return {};
        return static_cast<std::int16_t>(itemData);
    }
    if (isTextMode(mode_))
        return txt_->Value();
    if (mode_ == Variant::Type::Bool)
        return chk_->isChecked();
    return {};
}

bool userProperty::Edited() const {
    if (isTextMode(mode_))
        return txt_->Edited();
    const Variant value = Value();
    return !(value == assigned_ || value.equals(assigned_));
}

void userProperty::keepValue() {
    if (isTextMode(mode_))
        txt_->keepValue();
    assigned_ = Value();
}

void userProperty::revert() {
    const QSignalBlocker quiet(this);
    if (isTextMode(mode_))
        txt_->revert();
    else
        setValue(Variant(assigned_));
}

void userProperty::setValue(const Variant& value) {
    assigned_ = value;
    if (value.type() != mode_) {
        mode_ = value.type();
        layoutChildren();
    }
    if (mode_ == Variant::Type::Int16)
        selectByItemData(value.int16());
    else if (isTextMode(mode_))
        txt_->setValue(value);
    else if (mode_ == Variant::Type::Bool)
        chk_->setChecked(value.boolean());
}

// The last entry carrying the data wins; when none does, the selection stays.
void userProperty::selectByItemData(std::int32_t itemData) {
    int match = -1;
    for (int i = 0; i < cmb_->count(); ++i) {
        if (ItemData(static_cast<std::int16_t>(i)) == itemData)
            match = i;
    }
    if (match < 0 || match == cmb_->currentIndex())
        return;
    cmb_->setCurrentIndex(match);
    emit ChangeValue();
}

void userProperty::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutChildren();
}

void userProperty::layoutChildren() {
    const PropertyRowLayout row = propertyRowLayout(pixelsToTwips(width()), layoutAuto_, labelWidth_);
    placeAt(lbl_, row.caption, height());
    placeAt(txt_, row.editor, height());
    placeAt(chk_, row.editor, height());
    placeAt(cmb_, row.editor, cmb_->sizeHint().height());

    if (mode_ == Variant::Type::Int16 || mode_ == Variant::Type::Bool || isTextMode(mode_)) {
        cmb_->setVisible(mode_ == Variant::Type::Int16);
        chk_->setVisible(mode_ == Variant::Type::Bool);
        txt_->setVisible(isTextMode(mode_));
    }
}

} // namespace vss

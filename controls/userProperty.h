#pragma once

// The labelled property field: the one-row editor that the configuration pages stack into property lists. A
// caption on the left and one editor on the right whose kind follows the type of the value: a 16-bit integer
// is chosen from a drop-down list whose entries carry item data, a 32-bit integer, double or text is edited
// in a userText, a Boolean with a check box. The host sees one Value and one ChangeValue whatever the editor.

#include "driver/Variant.h"

#include <QWidget>
#include <cstdint>

class QCheckBox;
class QLabel;

namespace vss {

class LockableComboBox;
class userText;

class userProperty : public QWidget {
    Q_OBJECT
public:
    explicit userProperty(QWidget* parent = nullptr);

    QString Caption() const;
    // The caption also names the row and its editors for screen readers.
    void setCaption(const QString& caption);
    // Names the row and its editors without showing a caption (a row whose caption is left empty).
    void setCaptionName(const QString& caption);
    // Qt::AlignLeft, Qt::AlignRight or Qt::AlignHCenter.
    Qt::Alignment LabelAlignment() const;
    void setLabelAlignment(Qt::Alignment alignment);
    // LayoutAuto: caption and editor share the width half and half; otherwise the caption is LabelWidth twips
    // wide and the editor takes the rest, its right border running 5 twips beyond the row (clipped).
    std::int32_t LabelWidth() const { return labelWidth_; }
    void setLabelWidth(std::int32_t twips);
    bool LayoutAuto() const { return layoutAuto_; }
    void setLayoutAuto(bool layoutAuto);

    // The presentation of the text editor (see userText).
    double DblScale() const;
    void setDblScale(double scale);
    std::int16_t DigitNum() const;
    void setDigitNum(std::int16_t digits);
    QString OptStr() const;
    void setOptStr(const QString& unit);
    std::int32_t OptStrWidth() const;
    void setOptStrWidth(std::int32_t twips);

    // QWidget::setEnabled enables and disables the caption and every editor together.
    bool Enabled() const;
    // Locks the text editor and the list; the check box is never locked.
    bool Locked() const;
    void setLocked(bool locked);

    // The list: AddItem inserts at a position (an index beyond the end appends); ItemData is the number an
    // entry stands for. An index outside the list reads as 0 and is ignored when set.
    void AddItem(const QString& text, std::int16_t index);
    std::int32_t ItemData(std::int16_t index) const;
    void setItemData(std::int16_t index, std::int32_t itemData);

    // Assigning a value of another type than the last one switches the editor. A 16-bit value selects the
    // last list entry whose item data equals it (nothing changes when none does); that selection raises
    // ChangeValue when it changes the selected entry. Read back: the selected entry's item data as a 16-bit
    // integer (Empty when nothing is selected or the data does not fit), the text editor's value, or the
    // check box as a Boolean.
    Variant Value() const;
    void setValue(const Variant& value);

    // Whether the value differs from the one the host last set (as userText::Edited): picking the entry
    // already selected, or a commit of unchanged text, is no edit. A click on the check box always is.
    bool Edited() const;
    // As userText: the committed value kept after a write that went through; the host's last value shown
    // again after a refused one (raising no ChangeValue).
    void keepValue();
    void revert();

signals:
    // Raised when the user picks a list entry (also the one already selected) or clicks the check box, when a
    // value selects another list entry, and after every commit of the text editor.
    void ChangeValue();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void selectByItemData(std::int32_t itemData);
    void layoutChildren();

    QLabel* lbl_;
    userText* txt_;
    LockableComboBox* cmb_;
    QCheckBox* chk_;
    Variant::Type mode_ = Variant::Type::Null;
    Variant assigned_ = Variant::null(); // the host's last setValue
    bool layoutAuto_ = true;
    std::int32_t labelWidth_ = 200;
};

} // namespace vss

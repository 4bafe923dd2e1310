#pragma once

// The numeric text field: one text box that shows and edits one value, and to its right a caption with the
// unit. The value's type (16-bit or 32-bit integer, double, text, or null) decides how it is shown and how
// typed text becomes a value again; doubles are shown through FormatEngNumber, scaled by DblScale.

#include "driver/Variant.h"

#include <QWidget>
#include <cstdint>

class QLabel;
class QLineEdit;

namespace vss {

class userText : public QWidget {
    Q_OBJECT
public:
    explicit userText(QWidget* parent = nullptr);

    // Setting a value that differs (Variant::equals) from the stored one shows it and stores it; setting an
    // equal one changes nothing, not even the text. A stored null never counts as equal. Raises no
    // ChangeValue. Either way the value set is the one that Edited compares with.
    Variant Value() const { return value_; }
    void setValue(const Variant& value);

    // Whether a commit has left a value other than the one the host last set (Variant::equals, two nulls
    // alike). The host sets what it read from the instrument: a commit that is no edit (the keyboard passing
    // through, Enter on the value as shown, the same number typed again) is for the host to write nothing.
    bool Edited() const { return !(value_ == assigned_ || value_.equals(assigned_)); }
    // After a write of the committed value went through: it is the instrument's, and the one Edited compares
    // with, even when it cannot be read back.
    void keepValue() { assigned_ = value_; }
    // After a refused write: the value the host last set is shown again (raising no ChangeValue).
    void revert() { setValue(Variant(assigned_)); }

    // Shown = Value / DblScale; a committed number becomes number * DblScale. Stored only: set it, and
    // DigitNum, before the value, because the shown text is not reformatted.
    double DblScale() const { return dblScale_; }
    void setDblScale(double scale) { dblScale_ = scale; }
    std::int16_t DigitNum() const { return digitNum_; }
    void setDigitNum(std::int16_t digits) { digitNum_ = digits; }

    // The unit caption and the width in twips of its strip (used only when the caption is not empty).
    QString OptStr() const;
    void setOptStr(const QString& unit);
    std::int32_t OptStrWidth() const { return optStrWidth_; }
    void setOptStrWidth(std::int32_t twips);

    // QWidget::setEnabled enables and disables the text box and the caption together.
    bool Enabled() const;
    bool Locked() const;
    void setLocked(bool locked);

    QSize sizeHint() const override;

    // The name a screen reader gives the field: its caption, or the caption of its row.
    void setCaptionName(const QString& caption);

signals:
    // Raised after every commit of typed text (Enter, or the text box losing the focus), also when the text
    // was rejected or the value did not change: handlers re-read Value.
    void ChangeValue();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void commit();
    void display(const Variant& value);
    void layoutChildren();

    QLineEdit* txt_;
    QLabel* opt_;
    Variant value_ = Variant::null();
    Variant assigned_ = Variant::null(); // the host's last setValue
    double dblScale_ = 1.0;
    std::int16_t digitNum_ = 4;
    std::int32_t optStrWidth_ = 300;
};

} // namespace vss

#pragma once

// The piezo DAC adjust window: the factory trims the actuator's DAC adjust values while watching whether the
// piezo position loop balances. The loop status is read every 200 ms; a status that cannot be read counts as
// unbalanced and shows no message. Each adjust value is written as it is edited and then read back.

#include "driver/Types.h"
#include "kit/PollingForm.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QCheckBox;
class QLineEdit;
class QWidget;

namespace vss {

class userProperty;

// The DAC adjust values as labelled fields usrAdjust_<i>, 0 to rows - 1. Field i shows the point whose index
// in the instrument's adjust list is i: the element at that index labels it, and the point is read and
// written with that index. A field whose index the list does not hold is hidden and never read; points beyond
// the fields are not shown. A commit that leaves a field's value as the instrument gave it (the keyboard
// passing through) is not an edit.
class AdjustRows {
public:
    AdjustRows(QWidget* frame, int rows, int left, int top, int width);

    // The instrument's list: labels the fields whose index it holds and hides the others.
    void setLabels(const NameList& points);
    // Reads every field in use, in index order; one field.
    void refreshAll();
    void refresh(int index);
    // The value committed in a field, when it is a number other than the one last read.
    std::optional<std::int32_t> edited(int index) const;
    void write(int index, std::int32_t dac);

    const std::vector<userProperty*>& rows() const { return rows_; }
    // The bottom of the last of `rows` rows placed from `top`, twips inside the frame.
    static int bottomTwips(int rows, int top);

private:
    std::vector<userProperty*> rows_;
    std::vector<bool> inUse_; // the list holds the field's index
};

class frmPiezoAdjust : public PollingForm {
    Q_OBJECT

public:
    static constexpr int kAdjustRows = 5;

    explicit frmPiezoAdjust(QWidget* parent = nullptr);

protected:
    void onPoll() override;

private:
    void refresh();
    void chkPiezoLoop_Click(bool checked);
    void usrAdjust_ChangeValue(int index);
    void cmdImport_Click();
    void cmdReturn_Click();

    QCheckBox* chkPiezoLoop_ = nullptr;
    QLineEdit* txtBalanced_ = nullptr;
    std::optional<AdjustRows> adjust_;
};

} // namespace vss

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

// The DAC adjust values as labelled rows named usrAdjust_<i>, one per point of the instrument's adjust list.
// The list gives the labels and the points' indexes: row i shows the list's element i, whose index the
// instrument numbers from the list's lower bound. Rows beyond the list are hidden, points beyond the rows are
// not shown. A commit that leaves a row's value as the instrument gave it (the keyboard passing through) is
// not an edit.
class AdjustRows {
public:
    AdjustRows(QWidget* frame, int rows, int left, int top, int width);

    // The instrument's list: labels the rows it has and decides how many are in use.
    void setLabels(const NameList& points);
    // Reads every row in use, in index order; one row.
    void refreshAll();
    void refresh(int row);
    // The value committed in a row, when it is a number other than the one last read.
    std::optional<std::int32_t> edited(int row) const;
    // Writes a row's point. Until it is read back, whatever the row then holds counts as an edit.
    void write(int row, std::int32_t dac);

    int inUse() const { return inUse_; }
    const std::vector<userProperty*>& rows() const { return rows_; }
    // The bottom of the last of `rows` rows placed from `top`, twips inside the frame.
    static int bottomTwips(int rows, int top);

private:
    std::int16_t pointAt(int row) const; // the instrument's index of the point in a row

    std::vector<userProperty*> rows_;
    std::vector<std::optional<std::int32_t>> read_; // empty: not read since the last write
    int inUse_ = 0;
    std::int16_t lower_ = 0; // the index of the point in row 0
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

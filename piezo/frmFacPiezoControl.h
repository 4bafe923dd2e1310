#pragma once

// The piezo control data editor, opened by "Advanced" on the piezo data window: five quantities in two rows,
// each edit written to the instrument at once as a whole set. The window remembers what the instrument held
// when it opened; "Cancel" writes that back (so do Escape and the close box), "OK" keeps what was written.
// Row 1 of Lth and Tstep is not shown, but is written back with every edit as it was read.

#include "driver/Types.h"
#include "kit/SettingsPage.h"

#include <array>
#include <memory>

class QWidget;

namespace vss {

class userText;

// The control data as numeric fields: a column per quantity headed by its label (lblCtrlLth, ...), a row per
// row of the instrument's arrays headed by lbl_0 and lbl_1. Fields are named after the quantity and the row
// (usrCtrlLth_0, usrCtrlLth_1, ...) and created row by row, so the keyboard walks a row before the next.
class ControlDataFields {
public:
    static constexpr int kQuantities = 5;
    static constexpr int kRows = 2;

    ControlDataFields(QWidget* frame, bool locked);

    // Shows each quantity's rows; a row the instrument does not have shows nothing.
    void show(const PiezoControlData& data);
    // `read` with the rows the fields hold put in its place: rows the fields do not have, and fields whose
    // value is not a number, keep what was read.
    PiezoControlData edited(PiezoControlData read) const;
    // Whether a field holds a value other than the one shown last.
    bool anyEdited() const;

    userText* field(int quantity, int row) const {
        return fields_[static_cast<std::size_t>(row)][static_cast<std::size_t>(quantity)];
    }
    // The bottom of the last row, twips inside the frame.
    static int bottomTwips();

private:
    std::array<std::array<userText*, kQuantities>, kRows> fields_{};
};

class frmFacPiezoControl : public SettingsPage {
    Q_OBJECT

public:
    explicit frmFacPiezoControl(QWidget* parent = nullptr);
    ~frmFacPiezoControl() override;

private:
    void refresh();
    void field_ChangeValue();
    void cmdCancel_Click();

    std::unique_ptr<ControlDataFields> fields_;
    PiezoControlData restore_; // as the instrument held it when the window opened
    PiezoControlData shown_;   // as last read
};

} // namespace vss

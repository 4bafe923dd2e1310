#pragma once

// The stage geometry of the customer configuration: the distances from the stage centre to the spindle
// centre, from the stage centre to the reference, and from the reference to the gap. Every edited value is
// written to the instrument at once and read back. The values read when the page opened are kept: "Cancel"
// writes them back (so do Escape and the close box), "OK" leaves what was written (storing it is the
// measurement position page's "Save").

#include "kit/CommandForm.h"
#include "kit/FormBuild.h"

#include <array>
#include <cstdint>

namespace vss {

// The rows of both customer pages: a caption, and right of it the field it names. Row 0 is the first row of
// its frame; frameHeightTwips gives the height of a frame of that many rows. Twips.
inline constexpr int kCustomerFrameWidth = 5280;
inline constexpr int kCustomerFieldLeft = 3240;
userText* newCustomerRow(QWidget* frame, const char* name, int row, const FieldLook& look);
int frameHeightTwips(int rows);

// The three stage geometry rows that both customer pages show, in index order: usrTCSC, usrTCRP, usrOFST.
std::array<userText*, 3> newStageGeometryRows(QWidget* frame, bool locked);

class frmCusStageConfig : public CommandForm {
    Q_OBJECT

public:
    explicit frmCusStageConfig(QWidget* parent = nullptr);

private:
    // One geometry value: its field and its index at the instrument.
    struct GeometryField {
        userText* field;
        std::int16_t index;
    };

    void RefreshTCSC();
    void RefreshTCRP();
    void RefreshOFST();
    void RefreshStageAll();
    static void refresh(const GeometryField& value);

    void usrGeometry_ChangeValue(const GeometryField& value);
    void cmdCancel_Click();
    void cmdImport_Click();

    GeometryField tcsc_{};
    GeometryField tcrp_{};
    GeometryField ofst_{};
    std::array<double, 3> atLoad_{}; // in index order
};

} // namespace vss

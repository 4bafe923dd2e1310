#pragma once

// The measurement positions: for the inner and the outer position the operator sets the stopper angle at
// which the stage stops, and the instrument derives the radius and skew of that position, shown read-only.
// The three stage geometry values are shown here and edited on the stage configuration page ("Advanced").
// Save, Recall, Export and Import handle the customer configuration group. A stopper committed with a new
// value is written and its side read back.

#include "kit/SettingsPage.h"

#include <cstdint>

namespace vss {

class frmCus : public SettingsPage {
    Q_OBJECT

public:
    frmCus(QWidget* parent, bool viewOnly);

private:
    // One measurement position: its index at the instrument and its three fields.
    struct Position {
        std::int16_t index;
        userText* stopper;
        userText* radius;
        userText* skew;
    };

    Position buildPosition(const char* frameName, const QString& caption, int top, std::int16_t index,
                           const char* const names[3]);
    void buildStage(int top);

    void RefreshInner();
    void RefreshOuter();
    void RefreshStage();
    void RefreshAll();
    static void refreshPosition(const Position& position);

    void usrStopper_ChangeValue(const Position& position);
    void cmdAdvanced_Click();

    Position inner_{};
    Position outer_{};
    userText* usrTCSC_ = nullptr;
    userText* usrTCRP_ = nullptr;
    userText* usrOFST_ = nullptr;
    QPushButton* cmdAdvanced_ = nullptr;
};

} // namespace vss

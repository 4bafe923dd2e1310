#pragma once

// The top window: "Open" runs an instrument session with the main menu up, "Exit" ends the program.

#include "kit/Form.h"

class QLineEdit;

namespace vss {

class frmTop : public Form {
    Q_OBJECT

public:
    explicit frmTop(QWidget* parent = nullptr);

    // The session: create the driver object, take its interfaces, open the instrument, show the main menu
    // until it closes, then release everything. Returns when the session has ended.
    void cmdOpen_Click();

private:
    QLineEdit* txtRsrcString_ = nullptr;
};

} // namespace vss

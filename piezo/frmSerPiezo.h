#pragma once

// The service engineer's read-only view of the piezo actuator: its serial number, the calibration points and
// the control data, each number written in engineering notation. "Export" writes the same information to a
// report file. Nothing here writes to the instrument.

#include "kit/CommandForm.h"

class QTableWidget;

namespace vss {

class userText;

class frmSerPiezo : public CommandForm {
    Q_OBJECT

public:
    explicit frmSerPiezo(QWidget* parent = nullptr);

private:
    void fillCalibrationGrid();
    void fillControlGrid();

    userText* usrSerial_ = nullptr;
    QTableWidget* grdPiezoCal_ = nullptr;
    QTableWidget* grdPiezoControl_ = nullptr;
};

} // namespace vss

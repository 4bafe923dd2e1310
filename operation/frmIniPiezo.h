#pragma once

// The piezo check: the piezo's serial number, where the head stands (radius and skew) and the piezo's
// resolution coefficient there. It reads once, when it opens, and writes nothing.

#include "kit/Form.h"

namespace vss {

class userProperty;
class userText;

class frmIniPiezo : public Form {
    Q_OBJECT

public:
    explicit frmIniPiezo(QWidget* parent = nullptr);

private:
    userText* usrSerial_;
    userProperty* usrResolution_;
    userProperty* usrRadius_;
    userProperty* usrSkew_;
};

} // namespace vss

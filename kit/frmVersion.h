#pragma once

// The version window: hardware revision, serial number, firmware and driver revision of the instrument. In
// normal mode it only reads, through the main interface. In factory mode (opened from the factory menu) the
// hardware revision and the serial number are edited through the service interface, each written when Enter
// is pressed in its box or when the box is left with a text other than the one read, and Save and Recall
// store and reload the version data.

#include "kit/CommandForm.h"

#include <functional>
#include <string>

class QLineEdit;

namespace vss {

class frmVersion : public CommandForm {
    Q_OBJECT

public:
    explicit frmVersion(QWidget* parent = nullptr, bool factoryMode = false);

    bool FactoryMode() const { return factoryMode_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // A text the factory may edit: its box, how it is written and how it is read back, and the text last
    // read.
    struct EditableText {
        QLineEdit* box;
        std::function<void(const std::string&)> write;
        std::function<std::string()> read;
        std::string shown;
    };

    void refresh();
    static void showRead(EditableText& text, const std::string& read);
    void enterText(EditableText& text);
    EditableText* editableFor(const QObject* box);
    void cmdSave_Click();
    void cmdRecall_Click();

    bool factoryMode_;
    QLineEdit* txtHwRevision_;
    QLineEdit* txtSerialNumber_;
    QLineEdit* txtFwRevision_;
    QLineEdit* txtDrvRevision_;
    EditableText hwRevision_;
    EditableText serialNumber_;
};

} // namespace vss

#include "kit/frmVersion.h"

#include "kit/FormBuild.h"
#include "kit/modGlobal.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace vss {
namespace {

QString qtext(const std::string& s) {
    return QString::fromStdString(s);
}

bool isEnter(const QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<const QKeyEvent*>(event)->key();
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

// The user leaving the box for another control of the window: not for its context menu or another window, and
// not the program taking the focus away by disabling the box (the window turning busy).
bool isLeaving(const QEvent* event, const QWidget* box) {
    if (event->type() != QEvent::FocusOut || !box->isEnabled() || !box->isVisible())
        return false;
    const Qt::FocusReason reason = static_cast<const QFocusEvent*>(event)->reason();
    return reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason;
}

} // namespace

frmVersion::frmVersion(QWidget* parent, bool factoryMode) : CommandForm(parent), factoryMode_(factoryMode) {
    setClientSizeTwips(5430, 2640);
    newLabel(this, "lblHwRevision", QStringLiteral("Hardware Revision"), 120, 165, 2295, 255);
    txtHwRevision_ = newTextBox(this, "txtHwRevision", 2520, 120, 2775, 315, !factoryMode_);
    hwRevision_ = {txtHwRevision_,
                   [](const std::string& t) { handles().service->SetHardwareRevision(t); },
                   [] { return handles().service->GetHardwareRevision(); },
                   {}};
    txtHwRevision_->installEventFilter(this); // Enter and leaving the box: eventFilter, then enterText
    newLabel(this, "lblSerialNumber", QStringLiteral("Spinstand Serial Number"), 120, 585, 2295, 255);
    txtSerialNumber_ = newTextBox(this, "txtSerialNumber", 2520, 540, 2775, 315, !factoryMode_);
    serialNumber_ = {txtSerialNumber_,
                     [](const std::string& t) { handles().service->SetSerialNumber(t); },
                     [] { return handles().service->GetSerialNumber(); },
                     {}};
    txtSerialNumber_->installEventFilter(this); // Enter and leaving the box: eventFilter, then enterText
    newLabel(this, "lblFwRevision", QStringLiteral("Firmware Revision"), 120, 1005, 2295, 255);
    txtFwRevision_ = newTextBox(this, "txtFwRevision", 2520, 960, 2775, 315, true);
    newLabel(this, "lblDrvRevision", QStringLiteral("Driver Revision"), 120, 1425, 2295, 255);
    txtDrvRevision_ = newTextBox(this, "txtDrvRevision", 2520, 1380, 2775, 315, true);
    QPushButton* cmdSave = newButton(this, "cmdSave", QStringLiteral("Save"), 120, 2040, 1215, 375);
    connect(cmdSave, &QPushButton::clicked, this, &frmVersion::cmdSave_Click);
    QPushButton* cmdRecall = newButton(this, "cmdRecall", QStringLiteral("Recall"), 1440, 2040, 1215, 375);
    connect(cmdRecall, &QPushButton::clicked, this, &frmVersion::cmdRecall_Click);
    QPushButton* cmdReturn = newButton(this, "cmdReturn", QStringLiteral("Return"), 4080, 2040, 1215, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);

    if (factoryMode_) {
        setWindowTitle(QStringLiteral("Version Data (Factory use only)"));
    } else {
        setWindowTitle(appTitle() + QStringLiteral(" : Version Information"));
        cmdSave->setEnabled(false);
        cmdRecall->setEnabled(false);
    }
    trapErrors([this] { refresh(); });
}

// Each text is read into its box in this order; a failing read leaves the boxes after it as they were. The
// main and the service interface each answer the four reads.
void frmVersion::refresh() {
    const auto show = [this](auto& from) {
        showRead(hwRevision_, from.GetHardwareRevision());
        showRead(serialNumber_, from.GetSerialNumber());
        txtDrvRevision_->setText(qtext(from.GetDriverRevision()));
        txtFwRevision_->setText(qtext(from.GetFirmwareRevision()));
    };
    if (factoryMode_)
        show(*handles().service);
    else
        show(*handles().driver);
}

void frmVersion::showRead(EditableText& text, const std::string& read) {
    text.shown = read;
    text.box->setText(qtext(read));
}

frmVersion::EditableText* frmVersion::editableFor(const QObject* box) {
    if (box == hwRevision_.box)
        return &hwRevision_;
    if (box == serialNumber_.box)
        return &serialNumber_;
    return nullptr;
}

bool frmVersion::eventFilter(QObject* watched, QEvent* event) {
    EditableText* text = factoryMode_ ? editableFor(watched) : nullptr;
    if (text && (isEnter(event) || isLeaving(event, text->box)))
        enterText(*text);
    return Form::eventFilter(watched, event);
}

// A text other than the one read is written, and the instrument's value is shown after, also when it refused
// the text. Enter on the text as read, or leaving the box unchanged, writes nothing.
void frmVersion::enterText(EditableText& text) {
    const std::string typed = text.box->text().toStdString();
    if (typed == text.shown)
        return;
    writeValue([&] { text.write(typed); }, [&] { showRead(text, text.read()); });
}

void frmVersion::cmdSave_Click() {
    command([] { handles().service->SaveVersionData(); });
}

void frmVersion::cmdRecall_Click() {
    command([] { handles().service->RecallVersionData(); }, [this] { refresh(); });
}

} // namespace vss

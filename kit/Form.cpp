#include "kit/Form.h"

#include "kit/Messages.h"
#include "kit/modGlobal.h"
#include "controls/Twips.h"

#include <QApplication>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <exception>
#include <utility>

namespace vss {
namespace {

// Frames hold controls; every other widget is a control of its own (its inner parts are not walked).
bool isFrame(const QWidget* w) {
    return qobject_cast<const QGroupBox*>(w) || w->metaObject() == &QFrame::staticMetaObject ||
           w->metaObject() == &QWidget::staticMetaObject;
}

void collectControls(const QWidget* parent, QList<QWidget*>& out) {
    for (QObject* child : parent->children()) {
        auto* w = qobject_cast<QWidget*>(child);
        if (!w || w->isWindow() || w->objectName().startsWith(QLatin1String("qt_")))
            continue;
        out.append(w);
        if (isFrame(w))
            collectControls(w, out);
    }
}

// Whether object is owner's child, grandchild and so on, across window boundaries.
bool ownedBy(const QObject* object, const QObject* owner) {
    for (const QObject* p = object->parent(); p; p = p->parent()) {
        if (p == owner)
            return true;
    }
    return false;
}

} // namespace

QString appTitle() {
    return QString::fromUtf8(kAppTitle.data(), static_cast<qsizetype>(kAppTitle.size()));
}

Form::Form(QWidget* parent) : QDialog(parent) {
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
}

Form::~Form() = default;

QList<QWidget*> Form::controls() const {
    QList<QWidget*> out;
    collectControls(this, out);
    return out;
}

void Form::disableAllControls() {
    // Busy first: disabling the control that has the focus, or the frame around it, takes the focus away at
    // once, and a text box commits then.
    busy_ = true;
    if (!waitCursor_)
        waitCursor_.emplace();
    if (!focusBeforeBusy_)
        focusBeforeBusy_ = focusWidget();
    for (QWidget* control : controls())
        control->setEnabled(false);
    QCoreApplication::processEvents();
}

// The focus goes back where it was (or where the user was moving it when a field's commit made the window
// busy), so that the user goes on typing or tabbing as if the window had not been busy.
void Form::enableAllControls() {
    for (QWidget* control : controls())
        control->setEnabled(true);
    const QPointer<QWidget> focus = std::exchange(focusBeforeBusy_, nullptr);
    endBusy();
    if (focus && !unloaded_ && isVisible() && focus->isEnabled() && focus->isVisible() && focus->window() == this)
        focus->setFocus(Qt::OtherFocusReason);
}

void Form::endBusy() {
    busy_ = false;
    waitCursor_.reset();
}

bool Form::trapErrors(const std::function<void()>& steps) {
    try {
        steps();
        return true;
    } catch (const std::exception& e) {
        showMessage(e.what());
    }
    return false;
}

bool Form::runBusy(const std::function<void()>& steps) {
    disableAllControls();
    // The window repaints before the steps, and a timer may close it then (the panel's interlock poll): a
    // closed window starts nothing more.
    const bool ok = !unloaded_ && trapErrors(steps);
    enableAllControls();
    return ok;
}

bool Form::openModal(const FormFactory& make) {
    if (!make)
        return false;
    return runBusy([&] {
        const std::unique_ptr<Form> target = make(this);
        execModal(*target);
    });
}

void Form::closeWindowsAbove() {
    while (QWidget* top = QApplication::activeModalWidget()) {
        if (!ownedBy(top, this) || !top->close() || QApplication::activeModalWidget() == top)
            return;
    }
}

int Form::execModal(Form& target) {
    const WaitCursorLift lift;
    return target.exec();
}

void Form::done(int result) {
    if (!unloaded_) {
        unloaded_ = true;
        onUnload();
    }
    endBusy();
    QDialog::done(result);
}

void Form::keyPressEvent(QKeyEvent* event) {
    // Escape closes no window: each window closes through its own button or the close box.
    if (event->key() == Qt::Key_Escape) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void Form::setClientSizeTwips(int width, int height) {
    setFixedSize(twipsSize(width, height));
}

void Form::place(QWidget* control, const char* name, int left, int top, int width, int height) {
    control->setObjectName(QString::fromLatin1(name));
    control->setGeometry(twipsRect(left, top, width, height));
}

QPushButton* Form::addButton(const char* name, const QString& caption, int left, int top, int width,
                             int height) {
    auto* button = new QPushButton(caption, this);
    button->setAutoDefault(false);
    place(button, name, left, top, width, height);
    return button;
}

QLabel* Form::addLabel(const char* name, const QString& caption, int left, int top, int width, int height) {
    auto* label = new QLabel(caption, this);
    place(label, name, left, top, width, height);
    return label;
}

} // namespace vss

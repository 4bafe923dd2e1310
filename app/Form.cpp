#include "app/Form.h"

#include "app/Messages.h"
#include "app/WaitCursor.h"
#include "app/modGlobal.h"
#include "controls/Twips.h"

#include <QApplication>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <exception>

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

} // namespace

QString appTitle() {
    return QString::fromUtf8(kAppTitle.data(), static_cast<qsizetype>(kAppTitle.size()));
}

Form::Form(QWidget* parent) : QDialog(parent) {
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
}

Form::~Form() {
    releaseWaitCursor();
}

QList<QWidget*> Form::controls() const {
    QList<QWidget*> out;
    collectControls(this, out);
    return out;
}

void Form::disableAllControls() {
    for (QWidget* control : controls())
        control->setEnabled(false);
    if (!waitCursor_) {
        pushWaitCursor();
        waitCursor_ = true;
    }
    QCoreApplication::processEvents();
}

void Form::enableAllControls() {
    for (QWidget* control : controls())
        control->setEnabled(true);
    releaseWaitCursor();
}

void Form::releaseWaitCursor() {
    if (!waitCursor_)
        return;
    waitCursor_ = false;
    popWaitCursor();
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
    const bool ok = trapErrors(steps);
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

int Form::execModal(Form& target) {
    const WaitCursorLift lift;
    return target.exec();
}

void Form::done(int result) {
    if (!unloaded_) {
        unloaded_ = true;
        onUnload();
    }
    releaseWaitCursor();
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

#include "kit/Form.h"

#include "controls/Twips.h"
#include "controls/userProperty.h"
#include "controls/userText.h"
#include "kit/Messages.h"
#include "kit/modGlobal.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
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

bool unnamed(const QWidget* w) {
    return w->accessibleName().trimmed().isEmpty();
}

QString captionText(const QWidget* w) {
    if (const auto* label = qobject_cast<const QLabel*>(w))
        return label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(w))
        return button->text().remove(QLatin1Char('&'));
    return {};
}

// The caption a person reads for a control: the label whose buddy it is, else the nearest label or button
// that ends left of it on its row.
QString rowCaption(const QWidget* control) {
    const QWidget* parent = control->parentWidget();
    if (!parent)
        return {};
    for (const QLabel* label : parent->findChildren<QLabel*>(Qt::FindDirectChildrenOnly)) {
        if (label->buddy() == control)
            return label->text();
    }
    const QRect at = control->geometry();
    const QWidget* nearest = nullptr;
    int nearestGap = 0;
    for (const QObject* child : parent->children()) {
        const auto* w = qobject_cast<const QWidget*>(child);
        if (!w || w == control || w->isHidden() || captionText(w).trimmed().isEmpty())
            continue;
        const QRect g = w->geometry();
        const int overlap = std::min(at.bottom(), g.bottom()) - std::max(at.top(), g.top());
        if (overlap < std::min(at.height(), g.height()) / 2 || g.left() >= at.left())
            continue;
        const int gap = at.left() - g.right();
        if (!nearest || gap < nearestGap) {
            nearest = w;
            nearestGap = gap;
        }
    }
    if (nearest)
        return captionText(nearest).trimmed();
    // Alone on its row: the frame around it names it.
    const auto* frame = qobject_cast<const QGroupBox*>(parent);
    return frame ? frame->title() : QString();
}

// A list changes by a click or a key only: a wheel turned over a closed list would send its entries to the
// instrument one after another as the pointer passes.
class WheelGuard : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override { return event->type() == QEvent::Wheel; }
};

void guardLists(QWidget& window) {
    static WheelGuard guard;
    for (QComboBox* list : window.findChildren<QComboBox*>())
        list->installEventFilter(&guard);
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

void Form::nameControls() {
    for (QWidget* control : controls()) {
        if (!unnamed(control) || qobject_cast<QLabel*>(control) || isFrame(control))
            continue;
        if (auto* property = qobject_cast<userProperty*>(control)) {
            if (unnamed(property) || property->Caption().trimmed().isEmpty())
                property->setCaptionName(rowCaption(control));
        } else if (auto* field = qobject_cast<userText*>(control)) {
            field->setCaptionName(rowCaption(control));
        } else if (!qobject_cast<QAbstractButton*>(control) || captionText(control).isEmpty()) {
            control->setAccessibleName(rowCaption(control));
        }
    }
}

void Form::showEvent(QShowEvent* event) {
    nameControls();
    guardLists(*this);
    QDialog::showEvent(event);
}

void Form::DisableAllControls() {
    // Busy first: disabling the control that has the focus, or the frame around it, takes the focus away at
    // once, and a text box commits then.
    busy_ = true;
    if (!waitCursor_)
        waitCursor_.emplace();
    if (!focusBeforeBusy_)
        focusBeforeBusy_ = focusWidget();
    const QList<QWidget*> all = controls();
    // Each control's own setting, as the bracket found it: a second disabling inside the bracket finds every
    // control disabled and keeps what the first one found.
    if (enabledBeforeBusy_.empty()) {
        for (QWidget* control : all)
            enabledBeforeBusy_.emplace_back(control, control->isEnabledTo(control->parentWidget()));
    }
    for (QWidget* control : all)
        control->setEnabled(false);
    QCoreApplication::processEvents();
}

// Every control goes back to what the bracket found, not to enabled: a button that a view-only page disabled
// stays disabled after an Export, a page opened from it or a field left, so that a view-only page stays one
// until it closes. The focus goes back where it was (or where the user was moving it when a field's commit
// made the window busy), so that the user goes on typing or tabbing as if the window had not been busy.
void Form::EnableAllControls() {
    for (const auto& [control, enabled] : std::exchange(enabledBeforeBusy_, {})) {
        if (control)
            control->setEnabled(enabled);
    }
    const QPointer<QWidget> focus = std::exchange(focusBeforeBusy_, nullptr);
    endBusy();
    if (focus && !unloaded_ && isVisible() && focus->isEnabled() && focus->isVisible() &&
        focus->window() == this)
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
    DisableAllControls();
    // The window repaints before the steps, and a timer may close it then (the panel's interlock poll): a
    // closed window starts nothing more.
    const bool ok = !unloaded_ && trapErrors(steps);
    EnableAllControls();
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
    // Modal to the windows it was opened from, not to the whole application: a window outside that chain (the
    // simulated instrument's front panel) stays usable.
    if (target.parentWidget())
        target.setWindowModality(Qt::WindowModal);
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

// One of the window's own buttons by name (not one of a window it opened).
QAbstractButton* Form::button(const char* name) const {
    for (QWidget* control : controls()) {
        if (control->objectName() == QLatin1String(name))
            return qobject_cast<QAbstractButton*>(control);
    }
    return nullptr;
}

// The close box of a window with "Cancel" undoes what Cancel undoes instead of keeping the edits: it presses
// Cancel, which closes the window once the restore went through and leaves it open when the instrument
// refused it. While such a window is busy (Cancel or another command under way) a close waits: closing then
// would skip the restore and keep the edits. The close box of any other window unloads it, as Return does.
void Form::closeEvent(QCloseEvent* event) {
    QAbstractButton* cancel = button("cmdCancel");
    if (cancel && isBusy() && isVisible()) {
        event->ignore();
        return;
    }
    if (!cancel || !cancel->isEnabled() || !isVisible()) {
        QDialog::closeEvent(event);
        return;
    }
    cancel->click();
    event->setAccepted(!isVisible());
}

// Escape presses the window's "Cancel", or its "Return" where it has none; a window with neither (the main
// menu) stays open.
void Form::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        QAbstractButton* closer = button("cmdCancel");
        if (!closer)
            closer = button("cmdReturn");
        if (closer && closer->isEnabled())
            closer->click();
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

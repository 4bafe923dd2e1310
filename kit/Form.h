#pragma once

// The base of every window of the program. A window is built in code with its geometry in twips, has the busy
// bracket that every handler talking to the instrument runs in, and opens other windows modally.

#include "kit/WaitCursor.h"

#include <QDialog>
#include <QList>
#include <QPointer>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class QAbstractButton;
class QLabel;
class QPushButton;

namespace vss {

class Form;

// The application's title, the default title of every message box and the start of every caption.
QString appTitle();

// Makes a window, parented to its opener. An empty factory is a window that is not part of this build: the
// button that would open it does nothing.
using FormFactory = std::function<std::unique_ptr<Form>(QWidget* parent)>;

class Form : public QDialog {
    Q_OBJECT

public:
    explicit Form(QWidget* parent = nullptr);
    ~Form() override;

    // The window's controls in the order they were created; frames are walked into, other windows are not.
    QList<QWidget*> controls() const;

    // Gives every control that has no name for screen readers and UI automation the caption that a person
    // sees for it: the label whose buddy it is, else the label or button left of it on its row. Runs each
    // time the window is shown; a window that builds controls later calls it again.
    void nameControls();

    // The busy bracket. DisableAllControls makes the window busy and shows the wait cursor, disables every
    // control in order and lets the window repaint once before the blocking work that follows;
    // EnableAllControls puts every control back as the first DisableAllControls of the bracket found it and
    // ends the busy state, so that what a page locked (view-only) stays locked. A window may extend
    // EnableAllControls (the operation panel refreshes its status after it); it calls this base first.
    void DisableAllControls();
    virtual void EnableAllControls();
    // Busy from the first step of DisableAllControls (what a control commits as it loses the focus to the
    // disabling already sees it) until EnableAllControls or the window's unload.
    bool isBusy() const { return busy_; }

    // Runs a handler's steps inside the bracket. The first step that fails stops the rest; its description is
    // shown in a message box. The controls are put back in every case. Returns whether every step ran,
    // so that the caller can skip its follow-up after a failure. A window that closes while it repaints at
    // the start of the bracket runs no step.
    bool runBusy(const std::function<void()>& steps);

    // Opens another window: disable, create the target, show it modally, enable. A failure while creating or
    // showing it is reported like any other. Returns false when the factory is empty (the window is not
    // built) or the opening failed.
    bool openModal(const FormFactory& make);

    // Shows target modally and returns when it is unloaded, leaving this window's controls alone. The wait
    // cursor is lifted while the target is up.
    static int execModal(Form& target);

protected:
    // Runs steps and reports the first failure in a message box, without the bracket. Returns whether every
    // step ran.
    static bool trapErrors(const std::function<void()>& steps);

    // The window's unload handler: runs once when the window closes, however it is closed.
    virtual void onUnload() {}
    // Whether the window has closed (its unload handler has run or is running).
    bool isUnloaded() const { return unloaded_; }

    // Closes every modal window shown above this one (the windows it opened, their message boxes and file
    // dialogs), the top-most first, as their close boxes would.
    void closeWindowsAbove();

    void done(int result) override;
    // Escape and the close box: on a window with "Cancel" they do what Cancel does, on the others what
    // "Return" does.
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

    // Building in code; every position and size is in twips.
    void setClientSizeTwips(int width, int height);
    void place(QWidget* control, const char* name, int left, int top, int width, int height);
    QPushButton* addButton(const char* name, const QString& caption, int left, int top, int width,
                           int height);
    QLabel* addLabel(const char* name, const QString& caption, int left, int top, int width, int height);

private:
    void endBusy();
    QAbstractButton* button(const char* name) const;

    bool busy_ = false;
    std::vector<std::pair<QPointer<QWidget>, bool>> enabledBeforeBusy_; // each control's own setting
    std::optional<WaitCursor> waitCursor_;
    QPointer<QWidget> focusBeforeBusy_;
    bool unloaded_ = false;
};

} // namespace vss

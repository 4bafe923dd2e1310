#include "kit/CommandForm.h"

#include "controls/userProperty.h"
#include "controls/userText.h"

#include <QPointer>
#include <exception>

namespace vss {

bool CommandForm::command(const std::function<void()>& steps, const std::function<void()>& followUp) {
    if (!runBusy(steps))
        return false;
    return !followUp || trapErrors(followUp);
}

// No control goes on showing a value the instrument refused: after a refusal the control is read back, also
// where a written value is otherwise not.
bool CommandForm::writeValue(const std::function<void()>& write, const std::function<void()>& followUp,
                             const std::function<void()>& restore) {
    return writeValue(sender(), write, followUp, restore);
}

bool CommandForm::writeValue(QObject* field, const std::function<void()>& write,
                             const std::function<void()>& followUp, const std::function<void()>& restore) {
    if (isBusy())
        return false;
    QPointer<userText> text = qobject_cast<userText*>(field);
    QPointer<userProperty> property = qobject_cast<userProperty*>(field);
    if (runBusy(write)) {
        if (text)
            text->keepValue();
        if (property)
            property->keepValue();
        if (followUp)
            trapErrors(followUp);
        return true;
    }
    if (text)
        text->revert();
    if (property)
        property->revert();
    if (restore && !isUnloaded()) {
        try {
            restore();
        } catch (const std::exception&) {
            // the refusal has been reported; the read-back failing too says nothing new
        }
    }
    return false;
}

} // namespace vss

#include "kit/Messages.h"

#include "driver/ShownText.h"
#include "kit/WaitCursor.h"
#include "kit/modGlobal.h"

#include <QApplication>
#include <QMessageBox>
#include <QString>
#include <utility>

namespace vss {
namespace {

MessageHandler& currentHandler() {
    static MessageHandler handler;
    return handler;
}

void showMessageBox(const std::string& text, const std::string& title) {
    QWidget* parent = QApplication::activeModalWidget();
    const bool aboveModal = parent != nullptr;
    if (!parent)
        parent = QApplication::activeWindow();
    QMessageBox box(QMessageBox::NoIcon, QString::fromStdString(title), QString::fromStdString(text),
                    QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText); // a text from a file or the instrument is shown as it stands
    if (aboveModal) // blocks the chain of modal windows it belongs to, like the window it stands on
        box.setWindowModality(Qt::WindowModal);
    box.exec();
}

class SeamSink : public MessageSink {
public:
    void show(std::string_view text, std::string_view title) override { showMessage(text, title); }
};

} // namespace

void showMessage(std::string_view text, std::string_view title) {
    // Texts from a file, the catalogue, a scenario or the instrument go into the box under the one rule for
    // outside texts: a line end or a control character in them cannot forge a line of the message.
    const std::string resolvedTitle = shownText(title.empty() ? kAppTitle : title);
    const std::string body = shownText(text);
    const WaitCursorLift lift;
    if (const MessageHandler& handler = currentHandler())
        handler(body, resolvedTitle);
    else
        showMessageBox(body, resolvedTitle);
}

MessageHandler setMessageHandler(MessageHandler handler) {
    return std::exchange(currentHandler(), std::move(handler));
}

MessageSink& messageSink() {
    static SeamSink sink;
    return sink;
}

} // namespace vss

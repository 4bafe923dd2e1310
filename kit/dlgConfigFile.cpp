#include "kit/dlgConfigFile.h"

#include "kit/WaitCursor.h"

#include <QApplication>
#include <QFileDialog>
#include <QStringList>
#include <utility>

namespace vss {
namespace {

dlgConfigFile::Chooser& currentChooser() {
    static dlgConfigFile::Chooser chooser;
    return chooser;
}

std::optional<std::string> systemChooser(const FileDialogRequest& request) {
    QWidget* parent = QApplication::activeModalWidget();
    QFileDialog dialog(parent, QString::fromStdString(request.title));
    if (parent) // blocks the chain of modal windows it belongs to, like the window it stands on
        dialog.setWindowModality(Qt::WindowModal);
    dialog.setNameFilters(qtFileFilter(request.filter).split(QStringLiteral(";;")));
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    if (!request.fileName.empty())
        dialog.selectFile(QString::fromStdString(request.fileName));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().constFirst().toStdString();
}

} // namespace

dlgConfigFile& dlgConfigFile::instance() {
    static dlgConfigFile dialog;
    return dialog;
}

std::optional<std::string> dlgConfigFile::showSave(std::string_view title) {
    return show(title, true);
}

std::optional<std::string> dlgConfigFile::showOpen(std::string_view title) {
    return show(title, false);
}

// A cancelled dialog gives no file, not the name it held: cancelling never writes to or reads the file of the
// last transfer again.
std::optional<std::string> dlgConfigFile::show(std::string_view title, bool save) {
    const FileDialogRequest request{std::string(title), filter_, save, fileName_};
    const WaitCursorLift lift;
    const Chooser& chooser = currentChooser();
    std::optional<std::string> chosen = chooser ? chooser(request) : systemChooser(request);
    if (chosen)
        fileName_ = *chosen;
    return chosen;
}

void dlgConfigFile::reset() {
    filter_ = std::string(kSettingFileFilter);
    fileName_.clear();
}

dlgConfigFile::Chooser dlgConfigFile::setChooser(Chooser chooser) {
    return std::exchange(currentChooser(), std::move(chooser));
}

QString qtFileFilter(std::string_view filter) {
    const QStringList parts =
        QString::fromUtf8(filter.data(), static_cast<qsizetype>(filter.size())).split(QLatin1Char('|'));
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString& description = parts[i];
        const QString& pattern = parts[i + 1];
        const QString shown = QStringLiteral("(%1)").arg(pattern);
        entries << (description.endsWith(shown) ? description : description + QLatin1Char(' ') + shown);
    }
    return entries.join(QStringLiteral(";;"));
}

} // namespace vss

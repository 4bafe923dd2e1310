#pragma once

// The one file dialog of the program. Its single instance lives as long as the program, so it remembers the
// last file name chosen and opens with it. A cancelled dialog gives no file: the caller does nothing, rather
// than append to or import the last file again. Tests and scripted runs answer it through a chooser instead
// of the system's dialog.

#include <QString>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vss {

// Setting files: "Description|pattern" pairs, the first one selected.
inline constexpr std::string_view kSettingFileFilter = "Text Files(*.csv)|*.csv|All Files(*.*)|*.*";

// What the dialog is asked.
struct FileDialogRequest {
    std::string title;
    std::string filter;
    bool save = false;
    std::string fileName; // the name the dialog holds when it opens
};

class dlgConfigFile {
public:
    static dlgConfigFile& instance();

    // Shows the save dialog (no overwrite prompt) or the open dialog (no check that the file exists) with the
    // given title and the current filter, and returns the file chosen, or nothing when it was cancelled.
    std::optional<std::string> showSave(std::string_view title);
    std::optional<std::string> showOpen(std::string_view title);

    void setFilter(std::string filter) { filter_ = std::move(filter); }
    const std::string& fileName() const { return fileName_; }

    // Forgets the last file name and restores the setting-file filter.
    void reset();

    // Answers a request with a file name, or nullopt for a cancelled dialog. An empty chooser restores the
    // system's dialog. Returns the chooser it replaces.
    using Chooser = std::function<std::optional<std::string>(const FileDialogRequest&)>;
    static Chooser setChooser(Chooser chooser);

private:
    dlgConfigFile() = default;
    std::optional<std::string> show(std::string_view title, bool save);

    std::string filter_{kSettingFileFilter};
    std::string fileName_;
};

// Qt's form of a "Description|pattern|..." filter: "Description (pattern);;...".
QString qtFileFilter(std::string_view filter);

} // namespace vss

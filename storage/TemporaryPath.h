#pragma once

// A file or folder that the program makes for a while: a report written beside its file until it takes the
// file's place, the copy of a file that a restore reads. It is removed when its owner ends, and also when
// Ctrl-C, a closed terminal or a request to terminate ends the program first (the program then ends as it
// would have), so that no temporary file outlives the program.

#include <filesystem>

namespace vss {

class TemporaryPath {
public:
    explicit TemporaryPath(std::filesystem::path path);
    // Removes the path (a folder with what it holds) unless it was kept.
    ~TemporaryPath();
    TemporaryPath(const TemporaryPath&) = delete;
    TemporaryPath& operator=(const TemporaryPath&) = delete;

    const std::filesystem::path& path() const { return path_; }
    // The path has become a file of the user's (the report took its file's place): it stays.
    void keep();

private:
    std::filesystem::path path_;
    int slot_ = -1; // where the interrupt finds it; -1 when it is not watched
};

} // namespace vss

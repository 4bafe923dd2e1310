#pragma once

// The file that holds the simulated instrument's non-volatile memory between runs. Only Save operations write
// it, and always whole and atomically: a temporary file beside it, then a rename. A damaged file is reported
// with its path and line and is never written over.

#include "driver/sim/Settings.h"

#include <string>

namespace vss::sim {

class MemoryFile {
public:
    explicit MemoryFile(std::string path); // empty: no file, the memory lasts as long as the instrument
    bool enabled() const { return !path_.empty(); }
    const std::string& path() const { return path_; }

    // The settings the file holds; the factory settings when there is no file. Throws DriverError when the file
    // is damaged or cannot be read.
    Settings read() const;
    // Replaces the file's content. Throws DriverError when the file on disk is damaged (it is left as it is) or
    // cannot be written.
    void write(const Settings& settings) const;

private:
    std::string path_;
};

} // namespace vss::sim

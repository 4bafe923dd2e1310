#pragma once

// The files that hold the simulated instrument's memory between programs. The memory file is the non-volatile
// copy: only Save operations write it, one group at a time, under a lock on the file and after reading it
// again, so that two programs saving different groups keep each other's saves. It is always written whole and
// atomically (a temporary file beside it, then a rename) and ends with an end marker; a file without it, or
// damaged in any other way, is reported with its path and line and is never written over.
//
// Beside it ("<memory file>.working") the working values: what the instrument holds while it is powered,
// every group and the measurement settings, written when a program ends its session so that the next program
// finds them. A power cycle deletes that file.

#include "simulator/Settings.h"

#include <optional>
#include <string>

namespace vss::sim {

class MemoryFile {
public:
    explicit MemoryFile(std::string path); // empty: no file, the memory lasts as long as the instrument
    bool enabled() const { return !path_.empty(); }
    const std::string& path() const { return path_; }
    std::string workingPath() const { return path_ + ".working"; }

    // The settings the file holds; the factory settings when there is no file. Throws DriverError when the
    // file is damaged, cannot be read or is not a regular file.
    Settings read() const;
    // Saves one group of `from`: under the lock, reads the file again, replaces that group and writes the
    // file. Returns what the file holds now (without a file: `held`, the copy the instrument holds, with the
    // group replaced). Throws DriverError when the file on disk is damaged (it is left as it is) or cannot be
    // written.
    Settings saveGroup(Group group, const Settings& from, Settings held) const;

    // The working values the last program left; nothing when there are none or they cannot be read (the
    // instrument then starts from its non-volatile memory, as after a power cycle).
    std::optional<WorkingValues> readWorking() const;
    // Throws DriverError when the file cannot be written.
    void writeWorking(const WorkingValues& values) const;
    void forgetWorking() const;

private:
    std::string path_;
};

} // namespace vss::sim

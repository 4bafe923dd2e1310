#pragma once

// The files that hold the simulated instrument's memory between programs. The memory file is the non-volatile
// copy: only Save operations write it, one group at a time, after reading it again. Beside it
// ("<memory file>.working") the working values: what the instrument holds while it is powered, every group
// and the measurement settings, written after every call that changes them, so that a program that is
// interrupted or ends without closing its session loses nothing it was told was done. A power cycle deletes
// that file.
//
// One program at a time works on the instrument: a session holds "<memory file>.lock", which names the
// program, from Open to Close, and a second program's Open is refused with that name. Both files are written
// whole and atomically (a temporary file beside them, then a rename) and end with an end marker; a file
// without it, or damaged in any other way, is reported with its path and line and is never written over. A
// memory file reached through a symbolic link is written through the link, and every path to one file shares
// its lock.

#include "simulator/Settings.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vss::sim {

// The settings of a memory file's text, named `name` in the messages. Throws DriverError when the text is
// empty or damaged (with its line).
Settings readMemoryText(std::string_view text, const std::string& name);

class MemoryFile {
public:
    explicit MemoryFile(std::string path); // empty: no file, the memory lasts as long as the instrument
    bool enabled() const { return !path_.empty(); }
    const std::string& path() const { return path_; }
    std::string workingPath() const; // beside the file the path leads to

    // The instrument held by this program until the object is destroyed.
    class Hold {
    public:
        virtual ~Hold() = default;
    };
    // Takes the instrument for this program; nullptr without a file. Throws DriverError naming the program
    // that holds it, or saying why it cannot be taken.
    std::unique_ptr<Hold> hold() const;

    // The settings the file holds; the factory settings when there is no file. Throws DriverError when the
    // file is damaged, cannot be read or is not a regular file.
    Settings read() const;
    // Saves one group of `from` while the instrument is held: reads the file again, replaces that group and
    // writes the file. Returns what the file holds now (without a file: `held`, the copy the instrument
    // holds, with the group replaced). Throws DriverError when the file on disk is damaged (it is left as it
    // is), is read-only or cannot be written.
    Settings saveGroup(Group group, const Settings& from, Settings held) const;

    // The working values the last program left; nothing when there are none. Throws DriverError when the file
    // is damaged or cannot be read.
    std::optional<WorkingValues> readWorking() const;
    // Throws DriverError naming the file and the reason when it cannot be written.
    void writeWorking(const WorkingValues& values) const;
    // Deletes the working values (a power cycle). Throws DriverError when they cannot be deleted.
    void forgetWorking() const;
    // Removes the temporary files of a program that ended while writing.
    void removeLeftovers() const;

private:
    std::string path_;
    std::string real_; // the file the path leads to, through symbolic links
};

} // namespace vss::sim

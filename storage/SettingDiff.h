#pragma once

// Comparing a setting file with the instrument without changing it: the file is read as an import would read
// it, and each value is compared with what the instrument holds now. Values compare by their text in the file,
// so a double equals the instrument's when it has the same 15 significant digits.

#include "driver/Handles.h"
#include "storage/MessageSink.h"

#include <string>
#include <vector>

namespace vss {

struct SettingDifference {
    std::string item;       // "%LoadPosition Unload Radius", "%SpindleProperty Max Speed"
    std::string instrument; // the instrument's value as the file would write it
    std::string file;       // the file's value
};

struct GroupDifferences {
    std::vector<SettingDifference> differences;
    int sections = 0; // of the group found in the file
};

// The values of the file that the group code imports and that differ from the instrument's, in file order; an
// item set twice by the file counts with its last value.
GroupDifferences DiffGroup(int groupCode, const std::string& fileName, const DriverHandles& handles,
                           MessageSink& sink);

} // namespace vss

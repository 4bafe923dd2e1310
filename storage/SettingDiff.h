#pragma once

// Comparing a setting file with the instrument without changing it: the file is read as an import would read
// it, and each value is compared with what the instrument holds now. Values compare by their text in the
// file, so a double equals the instrument's when it has the same 15 significant digits. Texts of the file and
// of the instrument come escaped (see printable in driver/ShownText.h), so that printing a difference prints one
// line. A driver failure while the instrument is read (its property list, a property's value) throws the
// DriverError: no value is taken for equal or allowed because it could not be read.

#include "driver/Handles.h"
#include "storage/MessageSink.h"

#include <span>
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
GroupDifferences diffGroup(int groupCode, const std::string& fileName, const DriverHandles& handles,
                           MessageSink& sink);

// The values of the file that the instrument's own lists and ranges refuse, one text each naming the section
// and the value, without writing anything. The groups are read in the order given, as a restore writes them: a
// speed range that the file sets bounds the speeds read after it. Checked where the driver offers a list or a
// range: the spindle speeds against the speed range, the load method and the spinstand type against their
// lists, a property against its choices and its type.
std::vector<std::string> checkGroups(std::span<const int> groupCodes, const std::string& fileName,
                                     const DriverHandles& handles, MessageSink& sink);

} // namespace vss

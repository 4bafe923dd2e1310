#pragma once

// The sections of a setting file: each has a name (the bare "%Name" line the reader looks for), a writer that
// takes its values from the instrument, the group codes whose import applies it, and a reader that reads its
// fields in the order the writer wrote them and hands the values to a SettingTarget.

#include "driver/Handles.h"
#include "storage/SettingTarget.h"
#include "storage/fileio.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vss {

struct SectionInput {
    fileio& io;
    const DriverHandles& handles;
    SettingTarget& target;
    MessageSink& sink;
    std::string_view section; // the name of the section being read
};

// A section that cannot be read on: a field that does not convert, a row or the file that ends early. The
// message says where and why; the file reader reports it and drops the section's remaining fields.
struct SectionStops {
    std::string message;
};

struct SectionDef {
    std::string_view name;
    std::uint32_t importGroups; // bit n set: group code n imports it
    void (*write)(fileio&, const DriverHandles&);
    void (*read)(SectionInput&); // nullptr: recognised, nothing read

    bool importedBy(int groupCode) const {
        return groupCode > 0 && groupCode < 32 && (importGroups & (1u << groupCode)) != 0;
    }
};

// The 21 sections in the order the reader compares them.
std::span<const SectionDef> settingSections();

// The section of that exact name, or nullptr. Also knows the customer group's informational stage
// configuration block, which is written but never read.
const SectionDef* findSection(std::string_view name);
inline constexpr std::string_view kStageConfigurationInfo = "# %StageConfiguration";

// Three comment lines round the name, then the name alone on a line.
void WriteSectionHeader(fileio& io, std::string_view name);

// The section's header and rows.
void writeSection(fileio& io, const DriverHandles& handles, const SectionDef& section);

} // namespace vss

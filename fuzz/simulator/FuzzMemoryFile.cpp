// The readers of the simulated instrument's memory file on arbitrary bytes: as the memory file
// (readMemoryText, what the file's reading uses) and as the working values file beside it (the same format
// with the measurement settings). Whatever either accepts must write back to a text that reads as the same
// values: nothing a save writes may be refused or changed by the next read. Values that compare unequal to
// themselves (a NaN) fail that test too, as they must: no reader may let one through.

#include "driver/DriverError.h"
#include "simulator/MemoryFile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace vss::sim;

void memoryFile(std::string_view text) {
    Settings settings;
    try {
        settings = readMemoryText(text, "fuzz.txt");
    } catch (const vss::DriverError&) {
        return;
    }
    // Written by this program, the text must read back: a refusal here escapes and ends the run.
    if (readMemoryText(writeSettings(settings), "fuzz.txt") != settings)
        std::abort();
}

void workingValues(std::string_view text) {
    WorkingValues values;
    try {
        values = readWorkingValues(text);
    } catch (const SettingsError&) {
        return;
    }
    if (readWorkingValues(writeWorkingValues(values)) != values)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    memoryFile(text);
    workingValues(text);
    return 0;
}

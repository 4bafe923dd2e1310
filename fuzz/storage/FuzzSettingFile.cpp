// ReadSettingFile on arbitrary bytes against a simulated instrument without a memory file. The first byte
// chooses the group code.

#include "fuzz/storage/FuzzInput.h"
#include "storage/modConfigFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vss::fuzz::SimTarget target;
    const int groupCode = size > 0 ? 1 + data[0] % 10 : 1;
    vss::fuzz::CountingSink sink;
    try {
        vss::ImportGroup(groupCode, vss::fuzz::InputFile(data, size).path(), target.handles, sink);
    } catch (const vss::DriverError&) {
    } catch (const vss::NumberOutOfRange&) {
    }
    return 0;
}

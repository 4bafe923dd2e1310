// ReadSettingFile on arbitrary bytes against a simulated instrument without a memory file. The first byte
// chooses the group code.

#include "driver/sim/SimInstrument.h"
#include "fuzz/storage/FuzzInput.h"
#include "storage/modConfigFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vss::sim::SimInstrument instrument(vss::sim::SimOptions{":memory:"});
    auto object = instrument.createObject();
    vss::DriverHandles h;
    vss::acquireHandles(*object, h);
    h.driver->Open("QTB::R2208C");
    h.service->BeginService();

    const int groupCode = size > 0 ? 1 + data[0] % 10 : 1;
    vss::fuzz::CountingSink sink;
    try {
        vss::ImportGroup(groupCode, vss::fuzz::writeInput(data, size), h, sink);
    } catch (const vss::DriverError&) {
    } catch (const vss::NumberOutOfRange&) {
    }
    h.driver->Close();
    return 0;
}

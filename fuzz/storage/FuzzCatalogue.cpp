// The spinstand catalogue reader on arbitrary bytes, then every model it accepted applied to a simulated
// instrument without a memory file. A failing catalogue must leave the table empty.

#include "fuzz/storage/FuzzInput.h"
#include "storage/modSsDefine.h"

#include <cstdlib>
#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vss::fuzz::CountingSink sink;
    const bool read = vss::ReadSpinstandDefinitions(vss::fuzz::InputFile(data, size).path(), sink);
    const auto& models = vss::spinstandDefinitions();
    if (!read && !models.empty())
        std::abort();
    if (models.empty())
        return 0;

    vss::fuzz::SimTarget target;
    constexpr std::size_t kAppliedModels = 4; // each model costs the same calls: a few tell all
    for (std::size_t i = 0; i < models.size() && i < kAppliedModels; ++i) {
        (void)vss::GetSpinstandName(static_cast<std::int16_t>(i));
        try {
            vss::ApplySpinstandDefinition(static_cast<std::int16_t>(i), *target.handles.service, sink);
        } catch (const std::runtime_error&) { // a model refused before its first write, or a driver failure
        }
    }
    return 0;
}

#pragma once

// The fuzz input as a file: the storage reads files only, so each input is written to a scratch file of this
// process, removed once the input has been read.

#include "driver/Handles.h"
#include "simulator/SimInstrument.h"
#include "storage/MessageSink.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace vss::fuzz {

// The input, after `prefix` when one is given, in a scratch file of this process until the object goes.
class InputFile {
public:
    InputFile(const std::uint8_t* data, std::size_t size, std::string_view prefix = {}) {
        if (std::FILE* f = std::fopen(path_.c_str(), "wb")) {
            std::fwrite(prefix.data(), 1, prefix.size(), f);
            std::fwrite(data, 1, size, f);
            std::fclose(f);
        }
    }
    ~InputFile() { std::remove(path_.c_str()); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_ =
        (std::filesystem::temp_directory_path() / ("vss-fuzz-" + std::to_string(::getpid()) + ".csv"))
            .string();
};

class CountingSink : public MessageSink {
public:
    void show(std::string_view, std::string_view) override { ++count; }
    long count = 0;
};

// A simulated instrument without a memory file, opened in service mode, for what the input is applied to.
class SimTarget {
public:
    SimTarget() {
        acquireHandles(*object_, handles);
        handles.driver->Open("QTB::R2208C");
        handles.service->BeginService();
    }
    ~SimTarget() { handles.driver->Close(); }
    SimTarget(const SimTarget&) = delete;
    SimTarget& operator=(const SimTarget&) = delete;

private:
    sim::SimInstrument instrument_{sim::SimOptions{":memory:"}};
    std::shared_ptr<DriverObject> object_ = instrument_.createObject();

public:
    DriverHandles handles;
};

} // namespace vss::fuzz

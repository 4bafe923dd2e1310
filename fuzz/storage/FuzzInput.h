#pragma once

// The fuzz input as a file: the storage reads files only, so each input is written to one scratch file of this
// process.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>

#include "storage/MessageSink.h"

namespace vss::fuzz {

// The input, after `prefix` when one is given.
inline std::string writeInput(const std::uint8_t* data, std::size_t size, std::string_view prefix = {}) {
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("vss-fuzz-" + std::to_string(::getpid()) + ".csv")).string();
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (f != nullptr) {
        std::fwrite(prefix.data(), 1, prefix.size(), f);
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    return path;
}

class CountingSink : public MessageSink {
public:
    void show(std::string_view, std::string_view) override { ++count; }
    long count = 0;
};

} // namespace vss::fuzz

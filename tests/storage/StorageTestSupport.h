#pragma once

// Helpers shared by the storage tests: a sink that records messages, scratch files.

#include "storage/Messages.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vss::test {

struct Message {
    std::string text;
    std::string title;
    FieldPosition where;
};

class RecordingSink : public PositionedMessageSink {
public:
    void showAt(std::string_view text, std::string_view title, const FieldPosition& where) override {
        messages.push_back({std::string(text), std::string(title), where});
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (const auto& m : messages)
            out.push_back(m.text);
        return out;
    }
    std::vector<Message> messages;
};

// A folder of scratch files, removed with the fixture.
class ScratchDir {
public:
    ScratchDir() {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir_ = std::filesystem::temp_directory_path() /
               ("vss-storage-" + std::string(info->test_suite_name()) + "-" + info->name());
        std::filesystem::remove_all(dir_);
        std::filesystem::create_directories(dir_);
    }
    ~ScratchDir() { std::filesystem::remove_all(dir_); }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

private:
    std::filesystem::path dir_;
};

inline std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace vss::test

#include "driver/sim/MemoryFile.h"

#include "driver/DriverError.h"
#include "driver/FileName.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace vss::sim {

namespace fs = std::filesystem;

MemoryFile::MemoryFile(std::string path) : path_(std::move(path)) {}

Settings MemoryFile::read() const {
    if (!enabled())
        return Settings::factory();
    std::error_code ec;
    const fs::path path = pathFromUtf8(path_);
    if (!fs::exists(path, ec))
        return Settings::factory();
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    if (!in && !in.eof())
        throw DriverError("The simulator's memory file " + path_ + " cannot be read.");
    try {
        return readSettings(text.str());
    } catch (const SettingsError& e) {
        throw DriverError("The simulator's memory file " + path_ + " is damaged at line " + std::to_string(e.line) +
                          ": " + e.message + ". Correct or delete the file; the simulator does not save over it.");
    }
}

void MemoryFile::write(const Settings& settings) const {
    if (!enabled())
        return;
    read(); // refuses, by throwing, to replace a damaged file
    const fs::path target = pathFromUtf8(path_);
    std::error_code ec;
    if (target.has_parent_path())
        fs::create_directories(target.parent_path(), ec);
    fs::path temporary = target;
    temporary += ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << writeSettings(settings);
        out.flush();
        if (!out)
            throw DriverError("The simulator cannot write its memory file " + utf8FromPath(temporary) + ".");
    }
    fs::rename(temporary, target, ec);
    if (ec) {
        const std::string reason = ec.message();
        fs::remove(temporary, ec);
        throw DriverError("The simulator cannot replace its memory file " + path_ + ": " + reason + ".");
    }
}

} // namespace vss::sim

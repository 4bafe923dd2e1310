#include "simulator/MemoryFile.h"

#include "driver/DriverError.h"
#include "driver/FileName.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace vss::sim {

namespace fs = std::filesystem;

namespace {

// An exclusive lock on "<file>.lock", held while the object lives; other programs wait for it. The operating
// system releases it when a program ends without releasing it.
class FileLock {
public:
    explicit FileLock(const fs::path& file) {
        fs::path lock = file;
        lock += ".lock";
        std::error_code ec;
        if (file.has_parent_path())
            fs::create_directories(file.parent_path(), ec);
#ifdef _WIN32
        handle_ = CreateFileW(lock.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        OVERLAPPED at{};
        if (handle_ == INVALID_HANDLE_VALUE || !LockFileEx(handle_, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &at))
            throw DriverError("The simulator cannot lock its memory file " + utf8FromPath(file) + ".");
#else
        fd_ = ::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        if (fd_ < 0 || ::flock(fd_, LOCK_EX) != 0) {
            if (fd_ >= 0)
                ::close(fd_);
            throw DriverError("The simulator cannot lock its memory file " + utf8FromPath(file) + ".");
        }
#endif
    }
    ~FileLock() {
#ifdef _WIN32
        CloseHandle(handle_);
#else
        ::close(fd_);
#endif
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
#ifdef _WIN32
    HANDLE handle_ = INVALID_HANDLE_VALUE;
#else
    int fd_ = -1;
#endif
};

// The file's text; nullopt when it does not exist.
std::optional<std::string> readText(const std::string& name, std::string_view what) {
    std::error_code ec;
    const fs::path path = pathFromUtf8(name);
    const fs::file_status status = fs::status(path, ec);
    if (!fs::exists(status))
        return std::nullopt;
    if (!fs::is_regular_file(status))
        throw DriverError(
            "The simulator's " + std::string(what) + " " + name +
            " is not a regular file. Give the path of a file; the simulator creates it at the first "
            "save.");
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    if (!in.is_open() || in.bad())
        throw DriverError("The simulator's " + std::string(what) + " " + name + " cannot be read.");
    return text.str();
}

// Replaces the file's content atomically.
void replace(const std::string& name, const std::string& text, std::string_view what) {
    const fs::path target = pathFromUtf8(name);
    std::error_code ec;
    if (target.has_parent_path())
        fs::create_directories(target.parent_path(), ec);
    fs::path temporary = target;
    temporary += ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << text;
        out.flush();
        if (!out)
            throw DriverError("The simulator cannot write its " + std::string(what) + " " +
                              utf8FromPath(temporary) + ".");
    }
    fs::rename(temporary, target, ec);
    if (ec) {
        const std::string reason = ec.message();
        fs::remove(temporary, ec);
        throw DriverError("The simulator cannot replace its " + std::string(what) + " " + name + ": " +
                          reason + ".");
    }
}

} // namespace

MemoryFile::MemoryFile(std::string path) : path_(std::move(path)) {}

Settings MemoryFile::read() const {
    if (!enabled())
        return Settings::factory();
    const std::optional<std::string> text = readText(path_, "memory file");
    if (!text)
        return Settings::factory();
    try {
        return readSettings(*text);
    } catch (const SettingsError& e) {
        throw DriverError("The simulator's memory file " + path_ + " is damaged at line " + std::to_string(e.line) +
                          ": " + e.message + ". Correct or delete the file; the simulator does not save over it.");
    }
}

Settings MemoryFile::saveGroup(Group group, const Settings& from, Settings held) const {
    if (!enabled()) {
        copyGroup(group, from, held);
        return held;
    }
    const FileLock lock(pathFromUtf8(path_));
    Settings next =
        read(); // again: another program may have saved since; refuses, by throwing, a damaged file
    copyGroup(group, from, next);
    replace(path_, writeSettings(next), "memory file");
    return next;
}

std::optional<WorkingValues> MemoryFile::readWorking() const {
    if (!enabled())
        return std::nullopt;
    try {
        const std::optional<std::string> text = readText(workingPath(), "working values file");
        if (text)
            return readWorkingValues(*text);
    } catch (const DriverError&) {
    } catch (const SettingsError&) {
    }
    return std::nullopt;
}

void MemoryFile::writeWorking(const WorkingValues& values) const {
    if (!enabled())
        return;
    const FileLock lock(pathFromUtf8(path_));
    replace(workingPath(), writeWorkingValues(values), "working values file");
}

void MemoryFile::forgetWorking() const {
    if (!enabled())
        return;
    std::error_code ec;
    fs::remove(pathFromUtf8(workingPath()), ec);
}

} // namespace vss::sim

#include "simulator/MemoryFile.h"

#include "driver/DriverError.h"
#include "driver/FileName.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
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
#include <pthread.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace vss::sim {

namespace fs = std::filesystem;

namespace {

// The simulator writes a few kilobytes into each of its files; anything far larger is not one of them.
constexpr std::uintmax_t kLargestFile = 1024 * 1024;

constexpr std::string_view kMemoryAdvice = "Correct or delete the file; the simulator does not save over it.";
constexpr std::string_view kWorkingAdvice =
    "Delete it, or start with --power-cycle: the working values then come from non-volatile memory.";

std::string reasonOf(int error) {
    return error != 0 ? std::generic_category().message(error) : std::string("the file system refused it");
}

// The file a path leads to: symbolic links followed (the last part even when its target does not exist yet).
fs::path realPath(fs::path path) {
    std::error_code ec;
    if (const fs::path absolute = fs::absolute(path, ec); !ec)
        path = absolute;
    for (int links = 0; links < 40 && fs::is_symlink(path, ec); ++links) {
        const fs::path target = fs::read_symlink(path, ec);
        if (ec)
            break;
        path = target.is_absolute() ? target : path.parent_path() / target;
    }
    const fs::path real = fs::weakly_canonical(path, ec);
    return ec ? path : real;
}

fs::path beside(const fs::path& file, std::string_view suffix) {
    fs::path next = file;
    next += pathFromUtf8(suffix);
    return next;
}

// The file's text; nullopt when it does not exist.
std::optional<std::string> readText(const fs::path& path, const std::string& name, std::string_view what,
                                    std::string_view advice) {
    std::error_code ec;
    const fs::file_status status = fs::status(path, ec);
    if (!fs::exists(status))
        return std::nullopt;
    const std::string theFile = "The simulator's " + std::string(what) + " " + name;
    if (!fs::is_regular_file(status))
        throw DriverError(
            theFile +
            " is not a regular file. Give the path of a file; the simulator creates it at the first "
            "save.");
    const std::uintmax_t size = fs::file_size(path, ec);
    if (!ec && size > kLargestFile)
        throw DriverError(theFile + " is " + std::to_string(size) +
                          " bytes long, far more than the simulator " +
                          "ever writes: it is not one of its files. " + std::string(advice));
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    if (!in.is_open() || in.bad())
        throw DriverError(theFile + " cannot be read.");
    return text.str();
}

bool readOnly(const fs::path& file, const fs::file_status& status) {
    constexpr fs::perms anyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if ((status.permissions() & anyWrite) == fs::perms::none)
        return true;
#ifdef _WIN32
    static_cast<void>(file); // the read-only attribute shows in the permissions
    return false;
#else
    return ::access(file.c_str(), W_OK) != 0;
#endif
}

// Writes the whole text into a new file; the reason when it cannot.
std::string writeWhole(const fs::path& file, const std::string& text) {
    errno = 0;
    std::FILE* out = fopenUtf8(utf8FromPath(file), "wb");
    if (out == nullptr)
        return reasonOf(errno);
    bool written = std::fwrite(text.data(), 1, text.size(), out) == text.size() && std::fflush(out) == 0;
#ifndef _WIN32
    // On the disk before the rename puts it in the file's place, so that a power loss leaves the old file or the
    // new one, never an empty one.
    written = written && ::fsync(::fileno(out)) == 0;
#endif
    const int error = errno;
    written = std::fclose(out) == 0 && written;
    return written ? std::string() : reasonOf(error != 0 ? error : errno);
}

// Ctrl-C, or a terminal closed, while a file is written takes effect once the file is in place, so that no
// temporary file outlives the program. Signals are held on the writing thread only: one that another thread
// of the program takes may still end it mid-write, and the next session's Open removes what it left.
class SignalsHeld {
public:
#ifdef _WIN32
    SignalsHeld() {} // Windows: Ctrl-C is not held back; a temporary file left by it is removed at the next Open
#else
    SignalsHeld() {
        sigset_t held;
        sigemptyset(&held);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
            sigaddset(&held, signal);
        pthread_sigmask(SIG_BLOCK, &held, &before_);
    }
    ~SignalsHeld() {
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t before_{};
#endif
};

// Replaces the file's content atomically, keeping its permissions. A read-only file is refused: the rename
// would replace it with a writable one.
void replace(const fs::path& target, const std::string& name, std::string_view what,
             const std::string& text) {
    std::error_code ec;
    const fs::file_status status = fs::status(target, ec);
    if (fs::exists(status) && readOnly(target, status))
        throw DriverError(
            "The simulator's " + std::string(what) + " " + name +
            " is read-only: nothing was written to it. Make it writable, or give another file.");
    if (target.has_parent_path())
        fs::create_directories(target.parent_path(),
                               ec); // a folder that cannot be made fails the write below
    const fs::path temporary = beside(target, ".tmp");
    const SignalsHeld held;
    std::string reason = writeWhole(temporary, text);
    if (reason.empty()) {
        if (fs::exists(status))
            fs::permissions(temporary, status.permissions(), ec);
        fs::rename(temporary, target, ec);
        if (ec)
            reason = ec.message();
    }
    if (!reason.empty()) {
        fs::remove(temporary, ec);
        throw DriverError("The simulator cannot write its " + std::string(what) + " " + name + ": " + reason +
                          ".");
    }
}

// Printable ASCII only, at most 100 characters: the lock file's text reaches messages.
std::string plain(std::string text) {
    text.resize(std::min<std::size_t>(text.size(), 100));
    for (char& c : text)
        if (c < ' ' || c > '~')
            c = '?';
    return text;
}

// "vsstool-config (process 4242)": how a program that holds the instrument is named to the others.
std::string thisProgram() {
    std::string name;
#ifdef _WIN32
    std::wstring module(32768, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, module.data(), static_cast<DWORD>(module.size()));
    if (length > 0 && length < module.size())
        name = utf8FromPath(fs::path(module.substr(0, length)).stem());
    const unsigned long id = GetCurrentProcessId();
#else
    std::error_code ec;
    const fs::path self = fs::read_symlink("/proc/self/exe", ec);
    if (!ec)
        name = self.filename().string();
    const long id = ::getpid();
#endif
    return plain(name.empty() ? "a program" : name) + " (process " + std::to_string(id) + ")";
}

// An exclusive lock on "<file>.lock" that names its holder inside. It is never waited for: a second program
// is refused at once. The operating system releases it when a program ends without releasing it.
class LockHold final : public MemoryFile::Hold {
public:
    LockHold(const fs::path& file, const std::string& name) {
        const fs::path lock = beside(file, ".lock");
        std::error_code ec;
        if (file.has_parent_path())
            fs::create_directories(file.parent_path(), ec);
        const std::string me = thisProgram();
        std::string holder;
#ifdef _WIN32
        handle_ = CreateFileW(lock.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle_ == INVALID_HANDLE_VALUE)
            refuse(name, lock, std::system_category().message(static_cast<int>(GetLastError())));
        OVERLAPPED at{};
        at.OffsetHigh = 1; // a byte far past the holder's name, which the others read
        if (!LockFileEx(handle_, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &at)) {
            const DWORD error = GetLastError();
            char text[128] = {};
            DWORD read = 0;
            if (ReadFile(handle_, text, sizeof text, &read, nullptr))
                holder.assign(text, read);
            CloseHandle(handle_);
            if (error == ERROR_LOCK_VIOLATION)
                inUse(name, holder);
            refuse(name, lock, std::system_category().message(static_cast<int>(error)));
        }
        DWORD written = 0;
        SetFilePointer(handle_, 0, nullptr, FILE_BEGIN);
        SetEndOfFile(handle_);
        WriteFile(handle_, me.data(), static_cast<DWORD>(me.size()), &written, nullptr);
#else
        fd_ = ::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
        if (fd_ < 0)
            refuse(name, lock, reasonOf(errno));
        if (::flock(fd_, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            char text[128] = {};
            const ssize_t read = ::pread(fd_, text, sizeof text, 0);
            if (read > 0)
                holder.assign(text, static_cast<std::size_t>(read));
            ::close(fd_);
            if (error == EWOULDBLOCK)
                inUse(name, holder);
            refuse(name, lock, reasonOf(error));
        }
        // The name is only for the message of a program refused; a lock file that takes no text still locks.
        if (::ftruncate(fd_, 0) == 0) {
            [[maybe_unused]] const ssize_t written = ::pwrite(fd_, me.data(), me.size(), 0);
        }
#endif
    }
    ~LockHold() override {
#ifdef _WIN32
        CloseHandle(handle_);
#else
        ::close(fd_);
#endif
    }
    LockHold(const LockHold&) = delete;
    LockHold& operator=(const LockHold&) = delete;

private:
    [[noreturn]] static void inUse(const std::string& name, const std::string& holder) {
        throw DriverError("The simulated instrument of the memory file " + name + " is in use by " +
                          (holder.empty() ? std::string("another program") : plain(holder)) +
                          ": one program at a time works on it. Close the session there, then try again.");
    }
    [[noreturn]] static void refuse(const std::string& name, const fs::path& lock,
                                    const std::string& reason) {
        throw DriverError("The simulator cannot lock its memory file " + name + " through " +
                          utf8FromPath(lock) + ": " + reason + ".");
    }

#ifdef _WIN32
    HANDLE handle_ = INVALID_HANDLE_VALUE;
#else
    int fd_ = -1;
#endif
};

} // namespace

Settings readMemoryText(std::string_view text, const std::string& name) {
    if (text.empty())
        throw DriverError("The simulator's memory file " + name +
                          " is empty: a memory file holds the groups and ends with an [End] line. " +
                          std::string(kMemoryAdvice));
    try {
        return readSettings(text);
    } catch (const SettingsError& e) {
        throw DriverError("The simulator's memory file " + name + " is damaged at line " +
                          std::to_string(e.line) + ": " + e.message + ". " + std::string(kMemoryAdvice));
    }
}

MemoryFile::MemoryFile(std::string path)
    : path_(std::move(path)),
      real_(path_.empty() ? std::string() : utf8FromPath(realPath(pathFromUtf8(path_)))) {}

std::string MemoryFile::workingPath() const {
    return real_ + ".working";
}

std::unique_ptr<MemoryFile::Hold> MemoryFile::hold() const {
    if (!enabled())
        return nullptr;
    return std::make_unique<LockHold>(pathFromUtf8(real_), path_);
}

Settings MemoryFile::read() const {
    if (!enabled())
        return Settings::factory();
    const std::optional<std::string> text =
        readText(pathFromUtf8(real_), path_, "memory file", kMemoryAdvice);
    if (!text)
        return Settings::factory();
    return readMemoryText(*text, path_);
}

Settings MemoryFile::saveGroup(Group group, const Settings& from, Settings held) const {
    if (!enabled()) {
        copyGroup(group, from, held);
        return held;
    }
    Settings next = read(); // again, as it stands; refuses, by throwing, a damaged file
    copyGroup(group, from, next);
    replace(pathFromUtf8(real_), path_, "memory file", writeSettings(next));
    return next;
}

std::optional<WorkingValues> MemoryFile::readWorking() const {
    if (!enabled())
        return std::nullopt;
    const std::string name = workingPath();
    const std::optional<std::string> text =
        readText(pathFromUtf8(name), name, "working values file", kWorkingAdvice);
    if (!text)
        return std::nullopt;
    if (text->empty() || *text == "\xEF\xBB\xBF")
        throw DriverError("The simulator's working values file " + name + " is empty. " +
                          std::string(kWorkingAdvice));
    try {
        return readWorkingValues(*text);
    } catch (const SettingsError& e) {
        throw DriverError("The simulator's working values file " + name + " is damaged at line " +
                          std::to_string(e.line) + ": " + e.message + ". " + std::string(kWorkingAdvice));
    }
}

void MemoryFile::writeWorking(const WorkingValues& values) const {
    if (!enabled())
        return;
    replace(pathFromUtf8(workingPath()), workingPath(), "working values file", writeWorkingValues(values));
}

void MemoryFile::forgetWorking() const {
    if (!enabled())
        return;
    std::error_code ec;
    fs::remove(pathFromUtf8(workingPath()), ec);
    if (ec)
        throw DriverError("The simulator cannot delete its working values file " + workingPath() + ": " +
                          ec.message() + ".");
}

void MemoryFile::removeLeftovers() const {
    if (!enabled())
        return;
    std::error_code ec;
    fs::remove(pathFromUtf8(real_ + ".tmp"), ec);
    fs::remove(pathFromUtf8(workingPath() + ".tmp"), ec);
}

} // namespace vss::sim

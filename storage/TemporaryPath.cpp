#include "storage/TemporaryPath.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <iterator>

#ifdef _WIN32
#include <direct.h>
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vss {

namespace {

using Char = std::filesystem::path::value_type;

// The paths an interrupt removes. A signal handler may only touch plain memory, so they are kept as fixed
// arrays of characters; a path too long for its slot is removed by its owner only.
constexpr int kSlots = 8;
constexpr std::size_t kLength = 4096;
Char watched[kSlots][kLength];
volatile std::sig_atomic_t inUse[kSlots];
int watching = 0; // live TemporaryPath objects that have a slot

#ifdef SIGHUP
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
#else
constexpr int kSignals[] = {SIGINT, SIGTERM};
#endif
using Handler = void (*)(int);
Handler previous[std::size(kSignals)];

// Removes a file, or a folder once it is empty, with calls that a signal handler may make.
void removeNow(const Char* path) {
#ifdef _WIN32
    if (_wremove(path) != 0)
        _wrmdir(path);
#else
    if (::unlink(path) != 0)
        ::rmdir(path);
#endif
}

// Removes every watched path (twice over, so that a folder goes once the files in it have gone), then lets
// the signal end the program as it would have without this handler.
void onSignal(int signal) {
    for (int pass = 0; pass < 2; ++pass)
        for (int i = kSlots - 1; i >= 0; --i)
            if (inUse[i] != 0)
                removeNow(watched[i]);
    for (std::size_t i = 0; i < std::size(kSignals); ++i)
        if (kSignals[i] == signal)
            std::signal(signal, previous[i]);
    std::raise(signal);
}

// A signal that the program ignores (a terminal's end under nohup) stays ignored.
void installHandlers() {
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
        previous[i] = std::signal(kSignals[i], onSignal);
        if (previous[i] == SIG_IGN || previous[i] == SIG_ERR) {
            std::signal(kSignals[i], previous[i] == SIG_ERR ? SIG_DFL : SIG_IGN);
            previous[i] = SIG_IGN;
        }
    }
}

void restoreHandlers() {
    for (std::size_t i = 0; i < std::size(kSignals); ++i)
        if (previous[i] != SIG_IGN)
            std::signal(kSignals[i], previous[i]);
}

} // namespace

TemporaryPath::TemporaryPath(std::filesystem::path path) : path_(std::move(path)) {
    const auto& name = path_.native();
    if (name.size() >= kLength)
        return;
    for (int i = 0; i < kSlots && slot_ < 0; ++i)
        if (inUse[i] == 0)
            slot_ = i;
    if (slot_ < 0)
        return;
    std::memcpy(watched[slot_], name.c_str(), (name.size() + 1) * sizeof(Char));
    inUse[slot_] = 1;
    if (watching++ == 0)
        installHandlers();
}

TemporaryPath::~TemporaryPath() {
    if (!path_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    keep();
}

void TemporaryPath::keep() {
    path_.clear();
    if (slot_ < 0)
        return;
    inUse[slot_] = 0;
    slot_ = -1;
    if (--watching == 0)
        restoreHandlers();
}

} // namespace vss

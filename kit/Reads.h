#pragma once

// Reads whose failure the window does not report: the fallback stands in for the value.

#include "driver/DriverError.h"

namespace vss {

template <class Read, class T> T readOr(Read read, T fallback) {
    try {
        return read();
    } catch (const DriverError&) {
        return fallback;
    }
}

} // namespace vss

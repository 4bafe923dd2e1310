#pragma once

#include "driver/Interfaces.h"
#include "com/ComValues.h"
#include "com/server/SimControl.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vss::com::test {

inline constexpr const char* kProgId = "Vlkd2208.CoDriver";

// Every test runs in a single-threaded apartment, as the tool's user-interface thread does.
class ComTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))); }
    void TearDown() override { CoUninitialize(); }
};

// The registered server's instrument, restarted fresh (no non-volatile file) and reached through the server's
// control interface; driver objects created by ProgID afterwards run on it. Its lists start at listLower.
class ServerInstrument {
public:
    explicit ServerInstrument(long listLower = 0);
    ~ServerInstrument();
    ServerInstrument(const ServerInstrument&) = delete;
    ServerInstrument& operator=(const ServerInstrument&) = delete;

    std::vector<std::string> trace();
    void clearTrace();
    void failOperation(const std::string& operation, const std::string& description, long times);
    AllocationCounts counts();
    IUnknown* object() const { return object_; } // a driver object on this instrument

private:
    IUnknown* object_ = nullptr;
    ISimControl* control_ = nullptr;
};

// Queries the twelve interfaces in the session's order and calls every operation of every interface once or
// more, with arguments a session would use; a failing call is part of the run, not the end of it.
void exerciseEveryOperation(DriverObject& object);

} // namespace vss::com::test

#pragma once

// The trace of driver calls: one line per call, in one format that tests, the user's trace file and later checks
// read:
//   Interface.Operation(arguments) -> results
//   Interface.Operation(arguments) !! description        (the call failed)
// Texts in double quotes (with \" and \\ escaped), Booleans true/false, doubles in the shortest form that reads
// back to the same double (0.0125, 9.91e+37), arrays in square brackets, a PositionRecord as {radius, skew}, out
// values in order after the arrow; an operation without results has no arrow. Variants are written by their
// content with the type in front: (Integer)3, (Long)3, (Double)2.5, (Boolean)true, (String)"x", Empty, Null.
// The driver object's own events use the interface name "CoDriver":
//   CoDriver.QueryInterface(IDriverStage) -> {463FDC52-FCE8-4245-AC5F-6A6B967527C0}
//   IDriverStage.Release()                       (a handle to the interface was dropped)

#include "driver/Interfaces.h"

#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace vss {

class TraceSink {
public:
    virtual ~TraceSink() = default;
    virtual void write(std::string_view line) = 0;
};

// Keeps the lines in memory (the simulator's trace, tests).
class TraceBuffer : public TraceSink {
public:
    void write(std::string_view line) override;
    std::vector<std::string> lines() const;
    void clear();

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

// Appends the lines to a file, flushed line by line so that a crash keeps what came before.
class TraceFile : public TraceSink {
public:
    explicit TraceFile(const std::string& path); // throws std::runtime_error when the file cannot be opened
    void write(std::string_view line) override;

private:
    std::ofstream out_;
};

// Wraps a driver object so that every call through any of its interfaces is written to the sink, then passed on.
std::shared_ptr<DriverObject> WithTrace(std::shared_ptr<DriverObject> inner, std::shared_ptr<TraceSink> sink);

// Formatting of trace values, shared by the tracer and by tools that print driver values.
namespace traceformat {
std::string number(double v);
std::string text(std::string_view s);
std::string value(const Variant& v);
} // namespace traceformat

} // namespace vss

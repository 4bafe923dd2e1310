#pragma once

// The trace of driver calls: one line per call, in one format that tests, the user's trace file and later checks
// read:
//   Interface.Operation(arguments) -> results
//   Interface.Operation(arguments) !! description        (the call failed; line breaks become blanks)
// Texts in double quotes (with \" and \\ escaped, line breaks and tabs as \n, \r, \t), Booleans true/false,
// doubles in the shortest form that reads back to the same double (0.0125, 9.91e+37), arrays in square brackets,
// a PositionRecord as {radius, skew}, out values in order after the arrow; an operation without results has no
// arrow. A result that the driver returns through several out values is written as those values, in order:
//   IDriver.GetPosition() -> 1234, 0.0125, -3.21
//   IDriverService.GetMeasurementPosition(0) -> 0.012, -15.2
//   IDriverLoadPosition.GetLoadPosition(1) -> {0.03, -3.03}, 7200
// MoveTo's radius, passed by reference, is the argument and, after the arrow, the radius reached:
//   IDriverStage.MoveTo(0.02) -> 0.02
// Variants are written by their content with the type in front: (Integer)3, (Long)3, (Double)2.5,
// (Boolean)true, (String)"x", Empty, Null.
// The driver object's own events use the interface name "CoDriver":
//   CoDriver.Create("Vlkd2208.CoDriver") -> simulator          (written by createDriverObject)
//   CoDriver.QueryInterface(IDriverStage) -> {463FDC52-FCE8-4245-AC5F-6A6B967527C0}
//   CoDriver.QueryInterface({00000000-0000-0000-0000-000000000001}) !! description   (unknown identifier)
//   IDriverStage.Release()                       (the last handle to a queried interface was dropped)
// Every query returns a handle of its own, so each query has its Release line.

#include "driver/Interfaces.h"

#include <deque>
#include <fstream>
#include <functional>
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

// Keeps the newest lines in memory (the simulator's trace, tests). The instrument is polled every 200 ms for as
// long as a window is up, so the buffer holds at most `capacity` lines and drops the oldest beyond that.
class TraceBuffer : public TraceSink {
public:
    static constexpr std::size_t kDefaultCapacity = 100000;

    explicit TraceBuffer(std::size_t capacity = kDefaultCapacity) : capacity_(capacity == 0 ? 1 : capacity) {}
    void write(std::string_view line) override;
    std::vector<std::string> lines() const;
    void clear();

private:
    mutable std::mutex mutex_;
    std::size_t capacity_;
    std::deque<std::string> lines_;
};

// Appends the lines to a file, flushed line by line so that a crash keeps what came before. A line that cannot
// be written (a full disk) is counted and the next one tried again; the program reports the loss at its end.
class TraceFile : public TraceSink {
public:
    explicit TraceFile(const std::string& path); // throws std::runtime_error when the file cannot be opened
    void write(std::string_view line) override;
    // "N lines of the trace could not be written to FILE: reason"; empty when every line was written.
    std::string loss() const;

private:
    std::string path_;
    std::ofstream out_;
    mutable std::mutex mutex_;
    std::size_t lost_ = 0;
    std::string reason_; // of the first line lost
};

// Wraps a driver object so that every call through any of its interfaces is written to the sink, then passed on.
std::shared_ptr<DriverObject> WithTrace(std::shared_ptr<DriverObject> inner, std::shared_ptr<TraceSink> sink);

// The same, with a gate that sees every call first as "Interface.Operation" (the object's own query as
// "CoDriver.QueryInterface"); a DriverError it throws fails the call and is traced like any other failure. The
// simulated instrument uses it for its session check and for fault injection.
// `after` sees every call that returned, once it has run and before its line is written; a DriverError it
// throws fails the call too (the simulated instrument keeps its working values on disk there).
using CallGate = std::function<void(std::string_view operation)>;
std::shared_ptr<DriverObject> WithTrace(std::shared_ptr<DriverObject> inner, std::shared_ptr<TraceSink> sink,
                                        CallGate gate, CallGate after = nullptr);

// Formatting of trace values, shared by the tracer and by tools that print driver values.
namespace traceformat {
std::string number(double v);
std::string text(std::string_view s);
std::string value(const Variant& v);
} // namespace traceformat

} // namespace vss

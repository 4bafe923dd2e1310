#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace vss {

// A failing driver operation. The description is the driver's own text; windows show it alone.
// `code` is the driver's result code where one exists (a COM HRESULT), 0 otherwise.
class DriverError : public std::runtime_error {
public:
    explicit DriverError(const std::string& description, std::int32_t code = 0)
        : std::runtime_error(description), code_(code) {}

    std::string description() const { return what(); }
    std::int32_t code() const { return code_; }

private:
    std::int32_t code_;
};

} // namespace vss

#pragma once

// The name the instrument's driver is registered under, and the instrument resource a session opens by default.

#include <string_view>

namespace vss {

inline constexpr std::string_view kDriverProgId = "Vlkd2208.CoDriver";
inline constexpr std::string_view kDefaultResource = "QTB::R2208C";

} // namespace vss

#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vss {

// An interface identifier in the registry form {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}, laid out as a COM GUID.
struct Guid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};

    friend constexpr bool operator==(const Guid&, const Guid&) = default;

    // Parses the registry form; a malformed text throws std::invalid_argument (at compile time when constexpr).
    static constexpr Guid parse(std::string_view text) {
        if (text.size() != 38 || text.front() != '{' || text.back() != '}' || text[9] != '-' || text[14] != '-' ||
            text[19] != '-' || text[24] != '-')
            throw std::invalid_argument("malformed interface identifier");
        Guid g;
        g.data1 = static_cast<std::uint32_t>(hex(text, 1, 8));
        g.data2 = static_cast<std::uint16_t>(hex(text, 10, 4));
        g.data3 = static_cast<std::uint16_t>(hex(text, 15, 4));
        g.data4[0] = static_cast<std::uint8_t>(hex(text, 20, 2));
        g.data4[1] = static_cast<std::uint8_t>(hex(text, 22, 2));
        for (int i = 0; i < 6; ++i)
            g.data4[static_cast<std::size_t>(2 + i)] = static_cast<std::uint8_t>(hex(text, 25 + 2 * i, 2));
        return g;
    }

    std::string toString() const;

private:
    static constexpr std::uint64_t hex(std::string_view text, int at, int digits) {
        std::uint64_t v = 0;
        for (int i = 0; i < digits; ++i) {
            const char c = text[static_cast<std::size_t>(at + i)];
            int d = 0;
            if (c >= '0' && c <= '9')
                d = c - '0';
            else if (c >= 'A' && c <= 'F')
                d = c - 'A' + 10;
            else if (c >= 'a' && c <= 'f')
                d = c - 'a' + 10;
            else
                throw std::invalid_argument("malformed interface identifier");
            v = v * 16 + static_cast<std::uint64_t>(d);
        }
        return v;
    }
};

} // namespace vss

#include "driver/Guid.h"

#include <cstdio>

namespace vss {

std::string Guid::toString() const {
    char buf[39];
    std::snprintf(buf, sizeof buf, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", data1, data2, data3, data4[0],
                  data4[1], data4[2], data4[3], data4[4], data4[5], data4[6], data4[7]);
    return buf;
}

} // namespace vss

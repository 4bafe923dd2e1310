#include "driver/FileName.h"

#include <exception>

namespace vss {

std::filesystem::path pathFromUtf8(std::string_view name) {
    try {
        return std::filesystem::path(std::u8string(name.begin(), name.end()));
    } catch (const std::exception&) {
        // Not UTF-8 after all: taken as text in the system's code page, as the system itself would take it.
        return std::filesystem::path(std::string(name));
    }
}

std::string utf8FromPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

std::FILE* fopenUtf8(std::string_view name, const char* mode) {
    const std::filesystem::path path = pathFromUtf8(name);
#ifdef _WIN32
    std::wstring wideMode;
    for (const char* c = mode; *c != '\0'; ++c)
        wideMode += static_cast<wchar_t>(*c);
    return _wfopen(path.c_str(), wideMode.c_str());
#else
    return std::fopen(path.c_str(), mode);
#endif
}

} // namespace vss

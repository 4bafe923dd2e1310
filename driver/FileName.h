#pragma once

// File names travel through the program as UTF-8 text: from the file dialog, the command line and the
// simulator's options alike. This is where such a name becomes something the file system opens: a path that
// holds UTF-16 on Windows and the same bytes elsewhere.

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace vss {

std::filesystem::path pathFromUtf8(std::string_view name);

// The name of a path as UTF-8 text (for messages and for passing on).
std::string utf8FromPath(const std::filesystem::path& path);

// std::fopen for a UTF-8 name. Returns null with errno set when the file cannot be opened.
std::FILE* fopenUtf8(std::string_view name, const char* mode);

} // namespace vss

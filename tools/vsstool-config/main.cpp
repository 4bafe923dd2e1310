// vsstool-config: backs up the settings of one instrument into setting files and restores them onto another,
// from the command line. See usageText() for the actions.

#include "driver/FileName.h"
#include "storage/modSsDefine.h"
#include "tools/vsstool-config/CommandLine.h"
#include "tools/vsstool-config/ConfigTool.h"

#ifdef VSS_HAVE_COM
#include "com/ComClient.h"
#include "simulator/Factory.h"
#endif

#include <clocale>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#include <shellapi.h>
#endif

namespace {

// The arguments as UTF-8 text, the program's encoding for file names. Windows hands main its arguments in the
// system code page, which cannot hold every name: they are taken from the wide command line instead.
std::vector<std::string> arguments(int argc, char** argv) {
#ifdef _WIN32
    int count = 0;
    if (wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        std::vector<std::string> args;
        for (int i = 1; i < count; ++i)
            args.push_back(vss::utf8FromPath(std::filesystem::path(wide[i])));
        LocalFree(wide);
        SetConsoleOutputCP(CP_UTF8);
        return args;
    }
#endif
    return {argv + 1, argv + argc};
}

// The folder the program was started from, where the shipped spinstand catalogue lies.
std::filesystem::path programFolder(const char* argv0) {
    std::error_code ec;
#ifdef _WIN32
    std::wstring path(32768, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length > 0 && length < path.size()) {
        path.resize(length);
        return std::filesystem::path(path).parent_path();
    }
#else
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (!ec)
        return self.parent_path();
#endif
    return std::filesystem::absolute(std::filesystem::path(argv0 != nullptr ? argv0 : ""), ec).parent_path();
}

} // namespace

int main(int argc, char** argv) {
    using namespace vss::config;
    std::setlocale(LC_TIME, ""); // the report header's date and time in the system's forms
#ifdef VSS_HAVE_COM
    vss::setPlatformResolver(vss::com::ComDriverObject::create); // the registered driver, as in vsstool
    constexpr bool driverInstalled = true;
#else
    constexpr bool driverInstalled = false;
#endif
    ParseResult parsed = parseCommandLine(arguments(argc, argv));
    if (!parsed.line) {
        std::cerr << "vsstool-config: " << parsed.error << "\n\n" << usageText();
        return 2;
    }
    if (parsed.line->help) {
        std::cout << usageText();
        return 0;
    }
    if (parsed.line->catalogue.empty())
        parsed.line->catalogue =
            vss::utf8FromPath(programFolder(argv[0]) / vss::pathFromUtf8(vss::kCatalogueFileName));
    return runTool(*parsed.line, std::cin, std::cout, std::cerr, driverInstalled);
}

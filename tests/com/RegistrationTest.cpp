// The simulator's server registering itself beside the instrument's own driver, which uses the same ProgID: the
// server must neither take the ProgID over nor remove it. The server DLL is loaded and its registration entry
// points are called directly, as regsvr32 does.
//   com_registration_tests [gtest options] PATH-OF-VssSimDriver.dll

#include "com/ComValues.h"
#include "com/server/SimControl.h"

#include <gtest/gtest.h>

#include <olectl.h>
#include <shellapi.h>

#include <cstdio>
#include <cwctype>
#include <optional>
#include <string>

namespace vss::com::test {

namespace {

std::wstring serverPath;

const std::wstring kProgId = L"Vlkd2208.CoDriver";
const std::wstring kProgIdClsid = kProgId + L"\\CLSID";
const std::wstring kOtherClsid = L"{6B0A54D1-2F7C-4C55-9E0B-1D3C44A0B7E2}"; // the instrument's driver, here

std::wstring simulatorClsid() {
    return toWide(kSimulatorClsid.toString());
}

std::wstring simulatorKey() {
    return L"CLSID\\" + simulatorClsid();
}

std::string narrow(const std::wstring& text) {
    return toUtf8(text.c_str(), text.size());
}

// ---- HKEY_CLASSES_ROOT, as plain reads and writes ----

bool keyExists(const std::wstring& key) {
    HKEY h = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &h) != ERROR_SUCCESS)
        return false;
    RegCloseKey(h);
    return true;
}

// The key's value `name` (its default value when null); nothing when the key or the value is missing.
std::optional<std::wstring> readText(const std::wstring& key, const wchar_t* name = nullptr) {
    wchar_t text[512] = {};
    DWORD size = sizeof(text);
    if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS)
        return std::nullopt;
    return std::wstring(text);
}

void writeText(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    HKEY h = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &h, nullptr),
              ERROR_SUCCESS);
    const LONG rc = RegSetValueExW(h, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                                   static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(h);
    ASSERT_EQ(rc, ERROR_SUCCESS);
}

void deleteTree(const std::wstring& key) {
    const LONG rc = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
    EXPECT_TRUE(rc == ERROR_SUCCESS || rc == ERROR_FILE_NOT_FOUND) << "deleting HKCR\\" << narrow(key);
}

// The instrument's driver as its installation leaves the ProgID: a description and the class it names.
void registerOtherDriver() {
    writeText(kProgId, nullptr, L"Spinstand driver");
    writeText(kProgIdClsid, nullptr, kOtherClsid);
}

void expectOtherDriverUntouched() {
    EXPECT_EQ(readText(kProgId), std::optional<std::wstring>(L"Spinstand driver"));
    EXPECT_EQ(readText(kProgIdClsid), std::optional<std::wstring>(kOtherClsid));
}

// Each test starts with the simulator unregistered and the ProgID absent. Whatever a test leaves behind, passed or
// failed, is cleared afterwards and the simulator registered again if it was registered before, so that the other
// COM tests find the registry as they expect it. On a machine where the ProgID already belongs to another driver
// the tests do not run: they would have to remove it.
class Registration : public ::testing::Test {
protected:
    void SetUp() override {
        module_ = LoadLibraryW(serverPath.c_str());
        ASSERT_NE(module_, nullptr) << "cannot load " << narrow(serverPath) << ", error "
                                    << GetLastError();
        registerServer_ = entry("DllRegisterServer");
        unregisterServer_ = entry("DllUnregisterServer");
        ASSERT_NE(registerServer_, nullptr);
        ASSERT_NE(unregisterServer_, nullptr);

        const std::optional<std::wstring> named = readText(kProgIdClsid);
        if (keyExists(kProgId) && named != simulatorClsid())
            GTEST_SKIP() << "HKCR\\" << narrow(kProgId) << " belongs to another driver; left alone";
        simulatorWasRegistered_ = named == simulatorClsid();
        cleared_ = true;
        clear();
    }

    void TearDown() override {
        if (cleared_) {
            clear();
            if (simulatorWasRegistered_) {
                EXPECT_EQ(registerServer(), S_OK) << "the simulator could not be registered again";
            }
        }
        if (module_ != nullptr)
            FreeLibrary(module_);
    }

    HRESULT registerServer() const { return registerServer_(); }
    HRESULT unregisterServer() const { return unregisterServer_(); }

private:
    using EntryPoint = HRESULT(STDAPICALLTYPE*)();

    EntryPoint entry(const char* name) const {
        // A DLL's exports come as FARPROC; the registration entry points take nothing and return an HRESULT.
        return reinterpret_cast<EntryPoint>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }

    static void clear() {
        deleteTree(kProgId);
        deleteTree(simulatorKey());
    }

    HMODULE module_ = nullptr;
    EntryPoint registerServer_ = nullptr;
    EntryPoint unregisterServer_ = nullptr;
    bool simulatorWasRegistered_ = false;
    bool cleared_ = false;
};

TEST_F(Registration, AnotherDriversProgIdIsNeitherTakenOverNorRemoved) {
    registerOtherDriver();

    EXPECT_EQ(registerServer(), SELFREG_E_CLASS);
    expectOtherDriverUntouched();
    EXPECT_FALSE(keyExists(simulatorKey())) << "a refused registration wrote the simulator's class";

    EXPECT_EQ(unregisterServer(), S_OK);
    expectOtherDriverUntouched();
}

TEST_F(Registration, AProgIdKeyNamingNoClassIsSomeoneElses) {
    // A driver registered through a version-dependent ProgID: the key has a CurVer and no CLSID of its own.
    writeText(kProgId + L"\\CurVer", nullptr, kProgId + L".1");

    EXPECT_EQ(registerServer(), SELFREG_E_CLASS);
    EXPECT_EQ(readText(kProgId + L"\\CurVer"), std::optional<std::wstring>(kProgId + L".1"));
    EXPECT_FALSE(keyExists(kProgIdClsid));
    EXPECT_FALSE(keyExists(simulatorKey()));

    EXPECT_EQ(unregisterServer(), S_OK);
    EXPECT_TRUE(keyExists(kProgId + L"\\CurVer"));
}

TEST_F(Registration, TheDriverInstalledOverTheSimulatorKeepsItsProgIdWhenTheSimulatorIsRemoved) {
    ASSERT_EQ(registerServer(), S_OK);
    ASSERT_TRUE(keyExists(simulatorKey()));
    registerOtherDriver();

    EXPECT_EQ(unregisterServer(), S_OK);
    EXPECT_FALSE(keyExists(simulatorKey())) << "the simulator's class outlived its unregistration";
    expectOtherDriverUntouched();
}

TEST_F(Registration, TheSimulatorRegistersAgainOverItselfAndUnregistersCompletely) {
    EXPECT_EQ(registerServer(), S_OK);
    EXPECT_EQ(readText(kProgIdClsid), std::optional<std::wstring>(simulatorClsid()));
    const std::optional<std::wstring> server = readText(simulatorKey() + L"\\InprocServer32");
    ASSERT_TRUE(server.has_value());

    EXPECT_EQ(registerServer(), S_OK);
    EXPECT_EQ(readText(kProgIdClsid), std::optional<std::wstring>(simulatorClsid()));
    EXPECT_EQ(readText(simulatorKey() + L"\\InprocServer32"), server);

    // The ProgID names the simulator's class whatever the letters' case.
    std::wstring lower = simulatorClsid();
    for (wchar_t& c : lower)
        c = static_cast<wchar_t>(std::towlower(c));
    writeText(kProgIdClsid, nullptr, lower);
    EXPECT_EQ(registerServer(), S_OK);

    EXPECT_EQ(unregisterServer(), S_OK);
    EXPECT_FALSE(keyExists(kProgId));
    EXPECT_FALSE(keyExists(simulatorKey()));
}

} // namespace

} // namespace vss::com::test

int main() {
    // The server's path comes from the wide command line, so that a build folder may have any name.
    int argc = 0;
    wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    ::testing::InitGoogleTest(&argc, argv);
    if (argc != 2) {
        std::fputs("usage: com_registration_tests [gtest options] PATH-OF-VssSimDriver.dll\n", stderr);
        return 2;
    }
    vss::com::test::serverPath = argv[1];
    const int result = RUN_ALL_TESTS();
    LocalFree(argv);
    return result;
}

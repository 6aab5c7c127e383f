#include "platform/WindowsApi.h"
#include "tests/unit/support/StoresUnderTest.h"

namespace vardel::test {

namespace {

// The registry itself; a test keeps to a key with a name of its own.
class RegistryUnderTest : public SystemStoreUnderTest {
  public:
    SettingsStore& Store() override { return SystemSettingsStore(); }
    // The whole entry: the running program's path in quotes.
    bool HasAutostart(const std::string& name) override {
        char entry[2 * MAX_PATH] = "";
        DWORD size = sizeof entry;
        if (RegGetValueA(HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\Run", name.c_str(),
                         RRF_RT_REG_SZ, nullptr, entry, &size) != ERROR_SUCCESS)
            return false;
        char program[MAX_PATH] = "";
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        return entry == "\"" + std::string(program) + "\"";
    }
};

}  // namespace

std::unique_ptr<SystemStoreUnderTest> MakeSystemStoreUnderTest() {
    return std::make_unique<RegistryUnderTest>();
}

}  // namespace vardel::test

#include <filesystem>

#include "platform/FileSettingsStore.h"
#include "tests/unit/support/StoresUnderTest.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel::test {

namespace {

class FileStoreUnderTest : public SystemStoreUnderTest {
  public:
    SettingsStore& Store() override { return store_; }
    bool HasAutostart(const std::string& name) override {
        return std::filesystem::exists(folder_.Path("autostart/" + name + ".desktop"));
    }

  private:
    TestFolder folder_;
    FileSettingsStore store_{
        {folder_.Path("settings.reg"), folder_.Path("autostart"), "/usr/bin/vardelwatch"}};
};

}  // namespace

std::unique_ptr<SystemStoreUnderTest> MakeSystemStoreUnderTest() {
    return std::make_unique<FileStoreUnderTest>();
}

}  // namespace vardel::test

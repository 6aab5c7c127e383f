#include "platform/CaptureLibrary.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/WindowsApi.h"

namespace vardel::test {

namespace {

namespace fs = std::filesystem;

fs::path ProgramFolder() {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(std::wstring(path, length)).parent_path();
}

fs::path SystemFolder() {
    wchar_t path[MAX_PATH];
    const UINT length = GetSystemDirectoryW(path, MAX_PATH);
    return fs::path(std::wstring(path, length));
}

// A copy of some DLL of the system in a folder, under a name that no other module has; removed with its
// scope.
class PlantedModule {
  public:
    explicit PlantedModule(const fs::path& folder)
        : name_("vardel-test-" + std::to_string(GetCurrentProcessId()) + ".dll"), path_(folder / name_) {
        std::error_code error;
        hadFolder_ = fs::exists(folder);
        fs::create_directories(folder, error);
        fs::copy_file(SystemFolder() / L"version.dll", path_, fs::copy_options::overwrite_existing, error);
        EXPECT_FALSE(error) << error.message();
    }
    ~PlantedModule() {
        std::error_code ignored;
        fs::remove(path_, ignored);
        if (!hadFolder_) fs::remove(path_.parent_path(), ignored);
    }
    PlantedModule(const PlantedModule&) = delete;
    PlantedModule& operator=(const PlantedModule&) = delete;

    // True when the module is found by its bare name.
    bool Loads() const {
        const ModuleHandle module = SystemCaptureModules().Load(name_.c_str());
        SystemCaptureModules().Free(module);
        return module != nullptr;
    }

  private:
    const std::string name_;
    const fs::path path_;
    bool hadFolder_ = false;
};

// Makes a folder the current one, and back.
class CurrentFolder {
  public:
    explicit CurrentFolder(const fs::path& folder) : before_(fs::current_path()) {
        fs::create_directories(folder);
        fs::current_path(folder);
    }
    ~CurrentFolder() { fs::current_path(before_); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

  private:
    const fs::path before_;
};

}  // namespace

TEST(WindowsCaptureLibrary, IsNotTakenFromTheCurrentFolder) {
    const fs::path folder =
        fs::temp_directory_path() / ("vardel-test-" + std::to_string(GetCurrentProcessId()));
    {
        const PlantedModule planted(folder);
        const CurrentFolder current(folder);
        EXPECT_FALSE(planted.Loads());
    }
    EXPECT_FALSE(fs::exists(folder));
}

TEST(WindowsCaptureLibrary, IsFoundInTheProgramsFolder) {
    EXPECT_TRUE(PlantedModule(ProgramFolder()).Loads());
}

TEST(WindowsCaptureLibrary, IsFoundInTheSystemFolder) {
    EXPECT_TRUE(PlantedModule(SystemFolder()).Loads());
}

TEST(WindowsCaptureLibrary, IsFoundInTheDriversSubfolder) {
    EXPECT_TRUE(PlantedModule(SystemFolder() / L"Npcap").Loads());
}

TEST(WindowsCaptureLibrary, GivesNothingForAModuleThatIsNotThere) {
    EXPECT_EQ(SystemCaptureModules().Load("vardel-no-such.dll"), nullptr);
    SystemCaptureModules().Free(nullptr);
}

TEST(WindowsCaptureLibrary, GivesNothingForAnEntryPointThatIsNotThere) {
    CaptureModules& modules = SystemCaptureModules();
    const ModuleHandle module = modules.Load("version.dll");
    ASSERT_NE(module, nullptr);
    EXPECT_NE(modules.Find(module, "GetFileVersionInfoA"), nullptr);
    EXPECT_EQ(modules.Find(module, "NoSuchEntryPoint"), nullptr);
    modules.Free(module);
}

}  // namespace vardel::test

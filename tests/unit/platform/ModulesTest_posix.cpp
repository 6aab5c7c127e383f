#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/Modules.h"
#include "tests/unit/support/TestFolder.h"

namespace vardel {
namespace {

namespace fs = std::filesystem;
using test::TestFolder;

TEST(ModulesPosix, ListsByName) {
    TestFolder folder;
    for (const char* name : {"b.so", "c.so", "a.so", "B.so"}) folder.Write(name, "x");
    EXPECT_EQ(SystemModules().List(folder.Path(), ".so"),
              (std::vector<FolderEntry>{{"B.so", false}, {"a.so", false}, {"b.so", false}, {"c.so", false}}));
}

TEST(ModulesPosix, APipeIsNeitherListedNorOpened) {
    TestFolder folder;
    ASSERT_EQ(mkfifo(folder.Path("pipe.so").c_str(), 0600), 0);
    EXPECT_TRUE(SystemModules().List(folder.Path(), ".so").empty());
    EXPECT_EQ(SystemModules().Load(folder.Path("pipe.so").c_str()), nullptr);  // would wait for a writer
}

TEST(ModulesPosix, ALinkToAFolderIsNoPlainFolder) {
    TestFolder folder;
    fs::create_directory_symlink(folder.Path(), folder.Path("round.so"));
    EXPECT_TRUE(SystemModules().List(folder.Path(), ".so").empty());
}

TEST(ModulesPosix, ALinkToAFileIsAFile) {
    TestFolder folder;
    fs::create_symlink(folder.Write("target", "x"), folder.Path("link.so"));
    EXPECT_EQ(SystemModules().List(folder.Path(), ".so"), (std::vector<FolderEntry>{{"link.so", false}}));
}

}  // namespace
}  // namespace vardel

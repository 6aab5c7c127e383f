// The page on how to write a plugin, taken at its word: its source, its command, the header alone.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/Folders.h"
#include "plugins/PluginCalls.h"
#include "plugins/PluginNotifyQueue.h"
#include "tests/unit/support/TestFolder.h"
#include "tests/unit/support/TestModules.h"

namespace vardel {
namespace {

std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class PluginSdk : public testing::Test {
  protected:
    // What stands between "```kind" and "```" and contains `text`; empty when there is no such block.
    std::string Block(const std::string& kind, const std::string& text) const {
        const std::string begin = "```" + kind + "\n", end = "\n```\n";
        for (std::size_t at = page.find(begin); at != std::string::npos; at = page.find(begin, at + 1)) {
            const std::size_t from = at + begin.size();
            const std::string block = page.substr(from, page.find(end, from) + 1 - from);
            if (block.find(text) != std::string::npos) return block;
        }
        return {};
    }
    // Whether the shell ran it to success, in the folder.
    bool Does(const std::string& command) const {
        return std::system(("cd '" + folder.Path() + "' && " + command).c_str()) == 0;
    }

    const std::string page = Content(test::SourceFile("plugins/sdk/README.md"));
    test::TestFolder folder;
};

TEST_F(PluginSdk, ThePluginOfThePageIsBuiltByItsCommandAndIsTold) {
    folder.Write("first.cpp", Block("cpp", "GetPluginInfo"));
    folder.Write("plugin_interface.h", Content(test::SourceFile("plugins/plugin_interface.h")));
    const std::string command = Block("sh", "first.so");
    ASSERT_FALSE(command.empty());
    ASSERT_TRUE(Does(command)) << command;
    ASSERT_TRUE(std::filesystem::exists(folder.Path("first.so")));
    PluginTable table(SystemModules(), SystemFolders());
    ASSERT_TRUE(table.LoadPluginFolder(folder.Path().c_str()));
    LoadedPlugin* plugin = table.FirstPlugin(PLUGIN_TYPE_NOTIFY);
    ASSERT_NE(plugin, nullptr);
    EXPECT_STREQ(plugin->info.name, "First plugin");
    const PluginItem item = MakePluginItem(PLUGIN_NOTIFY_NEW_HOSTS, 1);
    FillPluginText(PluginRecords<PluginNotifyHost>(*item)[0].ip, "10.0.0.5");
    FillPluginText(PluginRecords<PluginNotifyHost>(*item)[0].mac, "02:00:00:00:00:05");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(NotifyPlugin(*plugin, *item));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "new host 10.0.0.5, card 02:00:00:00:00:05\n");
}

TEST_F(PluginSdk, ThePagesCommandTellsTheIdentity) {
    std::string command = Block("sh", "md5sum");
    ASSERT_FALSE(command.empty());
    command.erase(command.find_last_not_of('\n') + 1);
    ASSERT_TRUE(Does(command + " > identity"));
    const TcString id = PluginId("First plugin", "Tells of every new host");
    EXPECT_EQ(folder.Read("identity").substr(0, 32), id.GetContent());
}

TEST_F(PluginSdk, TheHeaderStandsAloneInCToo) {
    folder.Write("plugin_interface.h", Content(test::SourceFile("plugins/plugin_interface.h")));
    folder.Write("plain.c",
                 "#include \"plugin_interface.h\"\n"
                 "static PluginInfo block = {.size = sizeof(PluginInfo), .name = \"C\", .description = \"\", "
                 ".type = 1};\n"
                 "PLUGIN_EXPORT PluginInfo* GetPluginInfo(void) { return &block; }\n");
    ASSERT_TRUE(Does("g++ -x c -std=c11 -Wall -Wextra -Werror -pedantic -shared -fPIC -o plain.so plain.c"));
    PluginTable table(SystemModules(), SystemFolders());
    ASSERT_TRUE(table.LoadPluginFolder(folder.Path().c_str()));
    ASSERT_NE(table.FirstPlugin(1), nullptr);
    EXPECT_STREQ(table.FirstPlugin(1)->info.name, "C");
}

TEST_F(PluginSdk, TheHeaderIncludesNothingOfTheProject) {
    const std::string header = Content(test::SourceFile("plugins/plugin_interface.h"));
    ASSERT_FALSE(header.empty());
    EXPECT_EQ(header.find("#include \""), std::string::npos);
}

}  // namespace
}  // namespace vardel

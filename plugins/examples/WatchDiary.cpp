// An "Alert" plugin: a diary of when the watch began and ended, which also tells of a watch that did not end
// in order (a crash, a power cut).
//
// The diary is watch_diary.log beside the module, or the `file` of watch_diary.ini. The button
// "Configuration" switches the keeping of it on and off; it is off at first.
#include <ctime>
#include <fstream>
#include <string>

#include "plugins/examples/support/PluginFiles.h"
#include "plugins/examples/support/TellUser.h"
#include "plugins/plugin_interface.h"

namespace {

using namespace vardel::examples;

constexpr const char* kName = "Watch diary";
constexpr const char* kBegan = "the watch began";
constexpr const char* kEnded = "the watch ended";
constexpr const char* kTornOff = "the watch before did not end in order";

IniFile Settings(const PluginInfo& info) {
    return IniFile(BesideModule(info, ".ini"));
}

bool IsKept(const PluginInfo& info) {
    return Settings(info).Text("keep", "no") == "yes";
}

std::string DiaryPath(const PluginInfo& info) {
    return Settings(info).Text("file", BesideModule(info, ".log"));
}

std::string Now() {
    const std::time_t now = std::time(nullptr);
    char text[32] = "";
    if (const std::tm* local = std::localtime(&now))
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", local);
    return text;
}

void Note(const PluginInfo& info, const char* what) {
    std::ofstream(DiaryPath(info), std::ios::app) << Now() << ' ' << what << '\n';
}

bool LastWatchWasTornOff(const PluginInfo& info) {
    std::ifstream diary(DiaryPath(info));
    std::string last;
    for (std::string line; std::getline(diary, line);) last = line;
    return last.ends_with(kBegan);
}

uint32_t PLUGIN_CALL Init(PluginInfo* info) {
    if (!IsKept(*info)) return 0;
    if (LastWatchWasTornOff(*info)) Note(*info, kTornOff);
    Note(*info, kBegan);
    return 1;
}

uint32_t PLUGIN_CALL Exit(PluginInfo* info) {
    if (!IsKept(*info)) return 0;
    Note(*info, kEnded);
    return 1;
}

uint32_t PLUGIN_CALL Configure(PluginInfo* info) {
    IniFile settings = Settings(*info);
    const bool keep = !IsKept(*info);
    if (!keep) Note(*info, kEnded);
    settings.Set("keep", keep ? "yes" : "no");
    if (!settings.Save()) {
        TellUser(info->window, kName, "The settings could not be written beside the plugin.");
        return 0;
    }
    if (keep) Note(*info, kBegan);
    TellUser(info->window, kName,
             keep ? "The diary is kept from now on: " + DiaryPath(*info)
                  : std::string("The diary is no longer kept."));
    return 1;
}

uint32_t PLUGIN_CALL About(PluginInfo* info) {
    TellUser(info->window, kName, "Notes when the watch began and ended, and when it did not end in order.");
    return 1;
}

PluginInfo MakeBlock() {
    PluginInfo block{};
    block.size = sizeof block;
    block.name = kName;
    block.description = "Keeps a diary of when the watch began and ended";
    block.type = PLUGIN_TYPE_ALERT;
    block.Init = Init;
    block.Exit = Exit;
    block.Configure = Configure;
    block.About = About;
    return block;
}

}  // namespace

PLUGIN_EXPORT PluginInfo* GetPluginInfo(void) {
    static PluginInfo block = MakeBlock();
    return &block;
}

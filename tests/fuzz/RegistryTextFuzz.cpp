// Registry text from any bytes: it must come through, what was understood must survive writing and reading,
// and settings read from it must survive their own writing.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/RegistryText.h"
#include "platform/TreeSettingsStore.h"
#include "settings/VardelSettings.h"

using namespace vardel;

namespace {

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void SettingsSurviveTheirWriting(RegistryTree tree) {
    TreeSettingsStore store(std::move(tree));
    const ScopedSettingsStore installed(store);
    VardelSettings first, second;
    first.ReadSettings();
    Require(first.WriteSettings(), "settings in memory can't be written");
    second.ReadSettings();
    Require(first.WatchInterval == second.WatchInterval, "a number changed");
    Require(first.OtherAppParams == second.OtherAppParams, "a text changed");
    Require(first.trustedHosts.Count() == second.trustedHosts.Count(), "trusted hosts were lost");
    Require(first.watchedHosts.Count() == second.watchedHosts.Count(), "watched hosts were lost");
    Require(first.applications.Read().size() == second.applications.Read().size(), "applications were lost");
    Require(first.accounts.Read().size() == second.accounts.Read().size(), "accounts were lost");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
    RegistryText text = ParseRegistryText({reinterpret_cast<const char*>(data), size});
    const std::string written = FormatRegistryText(text.tree);
    const RegistryText again = ParseRegistryText(written);
    Require(again.damagedLine == 0, "what was written can't be read");
    Require(FormatRegistryText(again.tree) == written, "what was written reads as something else");
    SettingsSurviveTheirWriting(std::move(text.tree));
    return 0;
}

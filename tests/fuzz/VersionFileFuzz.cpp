// Both version files of the update server, and the file that names it, under any bytes. What the checks answer and
// what they leave behind must agree.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "capture/VardelData.h"
#include "settings/SiteAddresses.h"
#include "tests/unit/support/TestServices.h"
#include "updates/UpdateCheck.h"

using namespace vardel;

namespace {

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void TryVersions(const std::string& text) {
    test::TestServices system;
    const std::string server = SiteAddresses{}.updateServer;
    for (const char* path : {kProgramVersionPath, kMacListVersionPath}) system.http.documents[server + path] = text;
    VardelData data(system.services);
    data.settings.MACListVersion = 3;
    data.newestProgramVersion = "9.9.9.9";
    const bool program = data.CheckProgramUpdate();
    const std::string offered = data.newestProgramVersion.GetContent();
    Require(program == !offered.empty(), "the offered version and the answer differ");
    Require(!program || text.substr(0, kVersionFileBytes).starts_with(offered), "the offer is not the file's text");
    const bool list = data.CheckMacListUpdate();
    Require(list == (data.newestMacListVersion > 3), "the offered list and the answer differ");
    Require(list || data.newestMacListVersion == 1, "a list that isn't newer was noted");
}

void TryAddresses(const std::string& text) {
    const SiteAddresses addresses = ParseSiteAddresses(text);
    for (const std::string& address : {addresses.updateServer, addresses.makerSite, addresses.helpSite}) {
        Require(IsWebAddress(address.c_str()), "an address of another scheme");
        for (const char c : address) Require(c > ' ' && c < '\x7f' && c != '"', "a character that is no part of an address");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* input, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(input), size);
    TryVersions(text);
    TryAddresses("[Addresses]\n" + text);
    return 0;
}

#include "updates/UpdateCheck.h"

#include <string>

#include "capture/VardelData.h"
#include "settings/SiteAddresses.h"
#include "updates/VersionFile.h"

namespace vardel {

namespace {

// The file as a text, which ends at its first zero byte. Empty on any failure.
TcString FetchVersionFile(Services& services, const char* agent, const char* path) {
    const std::string url = ReadSiteAddresses(services.folders).updateServer + path;
    std::string block;
    if (!services.http.Fetch({agent, url.c_str(), kVersionFileBytes, kUpdateCheckTimeoutMs}, block)) return {};
    return block.c_str();
}

}  // namespace

bool VardelData::CheckProgramUpdate() {
    const TcString text = FetchVersionFile(services, "Vardelwatch - UpdateCheck", kProgramVersionPath);
    const std::optional<ProgramVersion> offered = ParseProgramVersion(text);
    if (!offered || *offered <= kProgramVersion) {
        newestProgramVersion.Clear();
        return false;
    }
    newestProgramVersion = text;
    return true;
}

bool VardelData::CheckMacListUpdate() {
    const TcString text = FetchVersionFile(services, "Vardelwatch - UpdateMACCheck", kMacListVersionPath);
    const i32 offered = text.GetContentAsInt();
    if (text.IsEmpty() || offered <= settings.MACListVersion) return false;
    newestMacListVersion = offered;
    return true;
}

}  // namespace vardel

#include "tools/vardel_replay/ReplayState.h"

#include <arpa/inet.h>

#include <cstdio>
#include <fstream>
#include <iterator>

#include "capture/AdapterDiscovery.h"
#include "capture/EventMap.h"
#include "capture/ReadVendorThread.h"
#include "capture/VendorFile.h"
#include "platform/RegistryText.h"
#include "platform/TreeSettingsStore.h"

namespace vardel::replay {

namespace {

constexpr char kEventGuardName[] = "WriteEventMapHandle";

bool ReadFile(const std::string& name, std::string& bytes, std::string& message) {
    std::ifstream file(name, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    if (file.is_open() && !file.bad()) return true;
    message = name + ": can't be read";
    return false;
}

}  // namespace

ReplayState::ReplayState(bool resolve, bool fetch)
    : services_(SystemServices()
                    .With(resolve ? SystemServices().resolver : noResolver_)
                    .With(fetch ? SystemServices().http : noHttp_)),
      eventGuard_(services_.events.Create(kEventGuardName, true, true)),
      data_(services_) {
    // The handlers wait at guard and fences as in a running program, so that their time is told with that.
    TheEventMap().SetGuard(&services_.events, eventGuard_);
    data_.fences.CreateAll();
}

ReplayState::~ReplayState() {
    TheEventMap().SetGuard(nullptr, nullptr);
    services_.events.Close(eventGuard_);
}

bool ReplayState::Prepare(const Options& options, std::string& message) {
    if (!ReadSettings(options.settingsFile, message)) return false;
    AddLocalHosts(options.localAddresses);
    return options.vendorFile.empty() || ReadVendors(options.vendorFile, message);
}

// Without a file the store is empty, as that of a user who never saved any settings.
bool ReplayState::ReadSettings(const std::string& file, std::string& message) {
    RegistryText text;
    if (!file.empty()) {
        std::string bytes;
        if (!ReadFile(file, bytes, message)) return false;
        text = ParseRegistryText(bytes);
        if (text.damagedLine != 0) {
            message = file + ": line " + std::to_string(text.damagedLine) + " is no registry text";
            if (text.tree.IsEmpty()) return false;
            std::fprintf(stderr, "vardel-replay: %s\n", message.c_str());
        }
    }
    TreeSettingsStore store(std::move(text.tree));
    ScopedSettingsStore inForce(store);
    data_.settings.ReadSettings();
    data_.ParseNotificationWords(data_.settings.SyslogNotificationWords);
    return true;
}

void ReplayState::AddLocalHosts(const std::vector<LocalAddress>& addresses) {
    for (const LocalAddress& local : addresses) {
        std::string name;
        services_.resolver.NameOfAddress(inet_addr(local.ip.c_str()), 0, NameLookup::ShortName, name);
        AddLocalHost(data_, local.ip.c_str(), local.mac.c_str(), name.c_str());
        // The first address names this machine.
        if (data_.localHostName.IsEmpty()) data_.localHostName = name.c_str();
    }
}

bool ReplayState::ReadVendors(const std::string& file, std::string& message) {
    std::string bytes;
    if (!ReadFile(file, bytes, message)) return false;
    ParseVendorFile(ReadVendorFile({file}), data_.vendors, [] { return true; });
    ThreadParams params;
    params.data = &data_;
    VendorRun run(&params);
    BackfillVendors(run);
    return true;
}

}  // namespace vardel::replay

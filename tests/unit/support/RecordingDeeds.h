// Deeds that are written down, among the surface's calls, in the order in which they were asked for.
#pragma once

#include <functional>
#include <string>

#include "frame/TickDeeds.h"
#include "tests/unit/support/AlertRecorder.h"

namespace vardel::test {

// Lines read "plugins 0: 10.0.0.5 10.0.0.6" (the entries before the mark), "start FILE PARAMETERS for IP",
// "watch on the popup", "watch without popup" and "report".
class RecordingDeeds : public TickDeeds {
  public:
    RecordingDeeds(VardelData& data, Calls& calls) : data_(data), calls_(calls) {}

    void QueuePluginNotify(u32 kind, i64 mark) override {
        ++queued;
        if (onQueue) onQueue(kind);
        if (!quiet) calls_.push_back("plugins " + std::to_string(kind) + ":" + Entries(kind, mark));
    }
    void StartApplication(const TcString& file, const TcString& parameters, const HostRecord& host) override {
        calls_.push_back(std::string("start ") + file.GetContent() + " " + parameters.GetContent() + " for " +
                         host.ip.GetContent());
    }
    void CheckWatchedHosts(NotifyPopup* popup, ModuleHandle) override {
        calls_.push_back(popup ? "watch on the popup" : "watch without popup");
    }
    void WriteReport() override { calls_.push_back("report"); }

    std::function<void(u32 kind)> onQueue;  // what happens meanwhile on another thread
    bool quiet = false;                     // only counts the items
    int queued = 0;

  private:
    std::string Entries(u32 kind, i64 mark) const {
        std::string all;
        const auto host = [&](const HostRecord* entry) { return all += std::string(" ") + entry->ip.GetContent(), true; };
        const auto access = [&](const RemoteAccess* entry) {
            return all += std::string(" ") + entry->computer.GetContent(), true;
        };
        const auto share = [&](const NetShare* entry) { return all += std::string(" ") + entry->name.GetContent(), true; };
        if (kind == kNotifyNewHosts) data_.newEntries.ForEach(mark, host);
        if (kind == kNotifyMacSpoofs) data_.macSpoofs.ForEach(mark, host);
        if (kind == kNotifyShareAccesses) data_.shareAccesses.ForEach(mark, access);
        if (kind == kNotifyNewShares) data_.newShares.ForEach(mark, share);
        return all;
    }

    VardelData& data_;
    Calls& calls_;
};

}  // namespace vardel::test

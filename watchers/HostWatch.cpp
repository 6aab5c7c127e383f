#include "watchers/HostWatch.h"

#include <string>
#include <vector>

#include "capture/EventMap.h"
#include "foundation/TcTrace.h"
#include "resources/ResourceIds.h"
#include "watchers/PingHost.h"

namespace vardel {

namespace {

constexpr int kTemplateSize = 300;
constexpr std::size_t kLongestText = 255;
constexpr i32 kDisplayTimeMs = 7500;
constexpr Color kTextColor{255, 255, 255};

// How a change is told.
struct ChangeRow {
    u32 textId;
    EventKind event;
    Color left, right, border;
};
constexpr ChangeRow kToOnline{
    IDS_HOST_ALIVE, EventKind::WatchedHostOnline, {0, 100, 0}, {0, 150, 0}, {45, 98, 19}};
constexpr ChangeRow kToOffline{
    IDS_HOST_NOT_REACHABLE, EventKind::WatchedHostOffline, {180, 0, 0}, {128, 0, 0}, {100, 0, 0}};

struct Watched {
    TcString address;
    TcString name;
    u8 online;
};

// In the order of the table. A copy: a walk of the table would last as long as all the probes.
std::vector<Watched> CopyTable(const WatchedHostTable& table) {
    std::vector<Watched> hosts;
    table.ForEach([&](const TcString&, const GuardedRecord<WatchedHost>* record) {
        if (!record) return;
        const WatchedHost host = record->Read();
        hosts.push_back({FieldText(host.ipAddress), FieldText(host.hostName), host.online});
    });
    return hosts;
}

void StoreState(const WatchedHostTable& table, const TcString& address, bool online) {
    ReadPin pin;
    const auto* entry = table.Find(address);
    if (entry && entry->Value())
        entry->Value()->Update([online](WatchedHost& host) { host.online = online ? 1 : 0; });
}

class Tick {
  public:
    Tick(VardelData& data, NotifyPopup* popup, ModuleHandle language)
        : data_(data), popup_(popup), language_(language) {}

    void TakeChange(const Watched& host, bool online) {
        if (!data_.settings.WatchVisualization) {
            StoreState(data_.settings.watchedHosts, host.address, online);
            Save();
        } else if (MayTell()) {
            Tell(host, online ? kToOnline : kToOffline);
            StoreState(data_.settings.watchedHosts, host.address, online);
            Save();
        }
        // Wanted: the mark runs ahead of the record while a popup holds the change back.
        if (HostRecord* known = data_.arpMap.FindValue(host.address)) known->offline = online ? 0 : 1;
    }

  private:
    // Wanted: the display time reaches a popup that is showing, too.
    bool MayTell() {
        if (!popup_) return false;
        popup_->SetDisplayTime(data_.settings.WatchConfirm ? kUntilClicked : kDisplayTimeMs);
        return !popup_->IsShowing();
    }
    void Tell(const Watched& host, const ChangeRow& change) {
        popup_->SetColors(change.left, change.right, kTextColor, change.border);
        const std::string text = TextOf(host, change.textId);
        PostEvent(change.event, host.name, host.address);
        popup_->Show(text.c_str());
    }
    // The name is data: it is put in place of the template's "%s", and nothing in it is expanded.
    std::string TextOf(const Watched& host, u32 textId) const {
        char buffer[kTemplateSize] = "";
        data_.services.strings.Load(language_, textId, buffer, sizeof buffer);
        std::string text = buffer;
        const std::size_t place = text.find("%s");
        const TcString& shown = host.name.IsEmpty() ? host.address : host.name;
        if (place != std::string::npos) text.replace(place, 2, shown.GetContent());
        return text.substr(0, kLongestText);
    }
    void Save() { data_.settings.WriteWatchedHosts(); }

    VardelData& data_;
    NotifyPopup* const popup_;
    const ModuleHandle language_;
};

}  // namespace

void CheckWatchedHosts(VardelData& data, NotifyPopup* popup, ModuleHandle language, const HostProbe& probe) {
    Tick tick(data, popup, language);
    bool online = false;
    for (const Watched& host : CopyTable(data.settings.watchedHosts)) {
        try {
            online = probe(host.address);
        } catch (...) {
            // Wanted: the host counts as what the one before it was.
            VARDEL_TRACE("VardelGui", "OnTimer", "Exception on ping check");
        }
        if ((online ? 1 : 0) != host.online) tick.TakeChange(host, online);
    }
}

void CheckWatchedHosts(VardelData& data, NotifyPopup* popup) {
    CheckWatchedHosts(data, popup, data.resourceInstance,
                      [&data](const char* address) { return PingHost(address, data.services) == PingResult::Answered; });
}

}  // namespace vardel

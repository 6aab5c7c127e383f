#include "views/HostActions.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "platform/Http.h"

namespace vardel {

namespace {

template <std::size_t size>
void FillField(char (&field)[size], const TcString& text) {
    const TcString own(text);  // another thread may be replacing it
    own.GetLeft(field, size, size - 1);
}

std::unique_ptr<GuardedRecord<ListedHost>> ListedRecord(const HostRecord& host) {
    ListedHost record{};
    FillField(record.ipAddress, host.ip);
    FillField(record.hostName, host.hostName);
    FillField(record.macAddress, host.mac);
    FillField(record.lastPacket, host.lastSeenText);
    return std::make_unique<GuardedRecord<ListedHost>>(record);
}

// The tables of the settings, and which of them changed.
class TrustTables {
  public:
    explicit TrustTables(VardelSettings& settings) : settings_(settings) {}

    void Move(HostRecord& host, TrustState state) {
        if (Side* from = SideOf(host.trustState)) {
            from->table.Erase(host.ip);
            from->changed = true;
        }
        if (Side* to = SideOf(state)) {
            to->table.Insert(host.ip, ListedRecord(host));
            to->changed = true;
        }
        host.trustState = state;
    }
    void Store() {
        if (trusted_.changed) settings_.WriteTrustedHosts();
        if (distrusted_.changed) settings_.WriteDistrustedHosts();
    }

  private:
    struct Side {
        ListedHostTable& table;
        bool changed = false;
    };
    // Null for the state that has no table.
    Side* SideOf(TrustState state) {
        if (state == TrustState::Trusted) return &trusted_;
        return state == TrustState::Distrusted ? &distrusted_ : nullptr;
    }

    VardelSettings& settings_;
    Side trusted_{settings_.trustedHosts};
    Side distrusted_{settings_.distrustedHosts};
};

}  // namespace

int SetTrust(VardelData& data, std::span<HostRecord* const> hosts, TrustState state) {
    TrustTables tables(data.settings);
    int changed = 0;
    for (HostRecord* host : hosts) {
        if (host->trustState == state) continue;
        tables.Move(*host, state);
        ++changed;
    }
    tables.Store();
    return changed;
}

std::vector<int> DeleteHosts(VardelData& data, HostRows& rows, std::span<HostRecord* const> hosts) {
    const std::vector<int> removed = rows.Remove(hosts);
    for (const HostRecord* host : hosts) data.DeleteHost(host->ip);
    return removed;
}

bool SwitchFilter(VardelSettings& settings, i32 bit) {
    const i32 before = settings.ViewFilterOptions, after = TurnFilter(before, bit);
    if (after == before) return false;
    settings.ViewFilterOptions = after;
    settings.WriteViewFilterOptions();
    return true;
}

bool IsDevicePage(const TcString& address) {
    const TcString own(address);
    const std::string_view text(own.GetContent());
    const std::size_t host = text.find("://");
    if (!IsWebAddress(own.GetContent()) || host + 3 >= text.size()) return false;
    return std::none_of(text.begin(), text.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte <= ' ' || byte == 0x7f || byte == '"';
    });
}

bool OpenDevicePage(Shell& shell, std::span<HostRecord* const> selected) {
    if (selected.size() != 1) return false;
    const TcString address(selected.front()->presentationUrl);
    return IsDevicePage(address) && shell.Execute(ShellVerb::Open, address.GetContent(), {});
}

bool IsUsableRectangle(const ViewRectangle& rectangle) {
    return rectangle.right > rectangle.left && rectangle.bottom > rectangle.top;
}

}  // namespace vardel

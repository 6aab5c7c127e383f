#include "watchers/ShareAccesses.h"

#include <cstdio>
#include <cstring>

#include "capture/EventMap.h"

namespace vardel {

namespace {

// Null when there is none, and for a key without a record.
bool UpdateKnown(VardelData& data, i32 key, i32 activeTime) {
    ReadPin pin;
    const auto* known = data.remoteAccesses.Find(key);
    if (!known) return false;
    if (RemoteAccess* access = known->Value()) {
        access->previousActiveTime = access->activeTime;
        access->activeTime = activeTime;
    }
    return true;
}

std::unique_ptr<RemoteAccess> MakeAccess(const ServerConnection& connection) {
    auto access = std::make_unique<RemoteAccess>();
    access->computer = connection.computer.c_str();
    access->user = connection.user.c_str();
    access->share = connection.share.c_str();
    return access;
}

bool IsInHostTable(VardelData& data, const TcString& address) {
    ReadPin pin;
    return data.arpMap.Find(address) != nullptr;
}

TcString DottedText(u32 address) {
    u8 octets[sizeof address];
    std::memcpy(octets, &address, sizeof octets);
    char text[16];
    std::snprintf(text, sizeof text, "%d.%d.%d.%d", octets[0], octets[1], octets[2], octets[3]);
    return text;
}

}  // namespace

// Wanted: the three texts are joined without a separator.
i32 RemoteAccessKey(const ServerConnection& connection) {
    return TcString((connection.computer + connection.share + connection.user).c_str()).GetHashNum();
}

bool CountsAsAddress(const TcString& computer) { return computer.Count(".") == 3; }

void TakeConnection(VardelData& data, const ServerConnection& connection) {
    if (connection.computer.empty() || connection.share.empty()) return;
    const i32 key = RemoteAccessKey(connection);
    // Wanted: the time of an access counts from its second sight on.
    if (UpdateKnown(data, key, connection.activeTime)) return;
    std::unique_ptr<RemoteAccess> access = MakeAccess(connection);
    PostEvent(EventKind::ShareAccessed, connection.computer.c_str(), connection.share.c_str(),
              connection.user.c_str());
    RemoteAccess* shared = access.get();
    if (data.remoteAccesses.Insert(key, shared)) access.release();
    data.fences.WaitToFeed(Fence::Shares);
    data.shareAccesses.Append(shared);
    MakeKnown(data, connection.computer.c_str());
}

void MakeKnown(VardelData& data, const TcString& computer) {
    TcString address(computer);
    if (!CountsAsAddress(address)) {
        u32 resolved = 0;
        if (!data.services.resolver.HostByName(address.GetContent(), resolved)) return;
        address = DottedText(resolved);
    }
    if (!IsInHostTable(data, address)) data.services.arpRequests.Ask(address.GetContent());
}

}  // namespace vardel

// What the literal twins know of a network: plain records of one thread, in the simplest types there are.
//
// A literal twin does what a handler does, one stated step after the other, with no thought of speed. It
// shares no code with the handler; both are fed the same and must come out the same.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/Types.h"

namespace vardel::test {

using FrameBytes = std::vector<u8>;

struct LiteralHost {
    std::string ip, mac, vendor, lastSeenText, hostName;
    i64 lastSeen = 0;
    int greyedOut = 0;
    int vendorUnknown = 1;
    u32 trustState = 0;
    int rowDirty = 0;
    std::string os;
    int shareScanBusy = 0;
    int isLocal = 0;
    int nameUnresolved = 0;
    int osFromBrowse = 0;
    u32 osClass = 0;
    std::string friendlyName, presentationUrl;
    int upnpDone = 0;
    int deviceProbed = 0;
};

struct LiteralEvent {
    int kind = 0;
    std::string host, info, text;
    i32 syslogInfo = -1;
    bool operator==(const LiteralEvent&) const = default;
};

struct LiteralMessage {
    std::string source, text;
    i32 severity = -1;
    i32 facility = -1;
    u32 serial = 0;
    int expired = 0;
    bool operator==(const LiteralMessage&) const = default;
};

struct LiteralSource {
    std::vector<LiteralMessage> messages;
    u32 count = 0;
};

struct LiteralListedHost {
    std::string hostName, macAddress, lastPacket;
    bool operator==(const LiteralListedHost&) const = default;
};

struct LiteralSettings {
    int useWmi = 0;
    int shareSearch = 0;
    int syslog = 0;
    u32 syslogMaxEntries = 0;
    int syslogNotification = 0;
    u32 syslogNotificationLevel = 0;
    u32 syslogNotificationType = 0;
    i32 syslogNotificationFacility = 0;
    std::map<std::string, LiteralListedHost> trustedHosts, distrustedHosts;
};

// What the resolver says of every address. Empty: the look-up fails.
struct LiteralResolver {
    std::vector<std::string> canonicalNames;
    std::string requiredName, hostByAddress, shortName;
};

struct LiteralState {
    LiteralSettings settings;
    std::map<std::string, LiteralHost*> arpMap;  // a value may be null
    std::map<std::string, std::string> vendors;
    std::vector<LiteralHost*> newEntries, macSpoofs;
    std::deque<LiteralHost*> wmiWork, netResWork;  // entered at the front
    std::vector<LiteralEvent> events;
    std::map<std::string, LiteralSource*> syslogs;  // a value may be null
    std::vector<LiteralMessage> syslogNotifications;
    std::set<std::string> notificationWords;
    std::string localHostName;
    LiteralResolver resolver;
    std::map<std::string, std::string> documents;  // by address; what isn't there fails to open
    std::vector<std::string> fetches;
    std::map<u32, std::string> texts;  // by string id

    LiteralHost* NewHost() {
        hosts_.push_back(std::make_unique<LiteralHost>());
        return hosts_.back().get();
    }
    LiteralSource* NewSource() {
        sources_.push_back(std::make_unique<LiteralSource>());
        return sources_.back().get();
    }

  private:
    std::deque<std::unique_ptr<LiteralHost>> hosts_;
    std::deque<std::unique_ptr<LiteralSource>> sources_;
};

// A byte of a frame, by its offset; behind the captured end it is 0.
inline int ByteAt(const FrameBytes& bytes, std::size_t offset) {
    return offset < bytes.size() ? bytes[offset] : 0;
}
inline int BigWordAt(const FrameBytes& bytes, std::size_t offset) {
    return ByteAt(bytes, offset) * 256 + ByteAt(bytes, offset + 1);
}
// The NUL-terminated text at an offset, at most `limit` characters.
inline std::string TextAt(const FrameBytes& bytes, std::size_t offset, std::size_t limit) {
    std::string text;
    while (text.size() < limit && ByteAt(bytes, offset) != 0)
        text += static_cast<char>(ByteAt(bytes, offset++));
    return text;
}

}  // namespace vardel::test

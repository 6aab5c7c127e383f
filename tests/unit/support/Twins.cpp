#include "tests/unit/support/Twins.h"

#include <algorithm>

namespace vardel::test {

namespace {

template <class A, class B>
std::string Unequal(const char* what, const A& real, const B& twin) {
    if (real == twin) return "";
    if constexpr (std::is_convertible_v<A, std::string>)
        return std::string(what) + " is \"" + std::string(real) + "\", should be \"" + std::string(twin) +
               "\"; ";
    else
        return std::string(what) + " is " + std::to_string(real) + ", should be " + std::to_string(twin) +
               "; ";
}

// No copy of a text where it is the same, as it nearly always is.
std::string UnequalText(const char* what, const TcString& real, const std::string& twin) {
    if (real == twin.c_str()) return "";
    return Unequal(what, std::string(real.GetContent()), twin);
}

template <class List>
std::string DifferenceOfLists(const char* what, const List& real, const auto& twin) {
    std::vector<std::string> addresses, expected;
    real.ForEach([&](const auto& entry) {
        if constexpr (std::is_same_v<std::decay_t<decltype(entry)>, WmiWorkItem*>)
            addresses.push_back(entry->host->ip.GetContent());
        else
            addresses.push_back(entry->ip.GetContent());
        return true;
    });
    for (const LiteralHost* host : twin) expected.push_back(host->ip);
    return addresses == expected ? "" : std::string(what) + " differs; ";
}

std::string DifferenceOfHosts(WatchedLan& lan, const LiteralState& twin) {
    std::string difference = Unequal("hosts", lan.data.arpMap.Count(), static_cast<u32>(twin.arpMap.size()));
    for (const auto& [address, expected] : twin.arpMap) {
        const HostRecord* host = lan.FindHost(address);
        if (!host || !expected) {
            if (host || expected) difference += address + " is missing; ";
            continue;
        }
        difference += Difference(*host, *expected);
    }
    return difference;
}

std::string DifferenceOfEvents(WatchedLan& lan, const LiteralState& twin) {
    const std::vector<SeenEvent> seen = lan.SeenEvents();
    const auto same = [](const SeenEvent& event, const LiteralEvent& expected) {
        return event.kind == expected.kind && event.host == expected.host && event.info == expected.info &&
               event.text == expected.text && event.syslogInfo == expected.syslogInfo;
    };
    return std::equal(seen.begin(), seen.end(), twin.events.begin(), twin.events.end(), same)
               ? ""
               : "events differ; ";
}

std::string DifferenceOfSyslog(WatchedLan& lan, const LiteralState& twin) {
    std::string difference =
        Unequal("sources", lan.data.syslogs.Count(), static_cast<u32>(twin.syslogs.size()));
    const auto same = [](const SyslogRecord& message, const LiteralMessage& expected) {
        return Difference(message, expected).empty();
    };
    for (const auto& [source, expected] : twin.syslogs) {
        const SyslogSourceList* list = lan.data.syslogs.FindValue(source.c_str());
        if (!list || !expected) {
            if (list || expected) difference += source + " is missing; ";
            continue;
        }
        difference += Unequal("count", list->MessageCount(), expected->count);
        const auto messages = lan.MessagesOf(source);
        if (!std::equal(messages.begin(), messages.end(), expected->messages.begin(),
                        expected->messages.end(), same))
            difference += "messages of " + source + " differ; ";
    }
    const auto queued = lan.Notifications();
    if (!std::equal(queued.begin(), queued.end(), twin.syslogNotifications.begin(),
                    twin.syslogNotifications.end(), same))
        difference += "notifications differ; ";
    return difference;
}

std::string DifferenceOfListed(const ListedHostTable& real,
                               const std::map<std::string, LiteralListedHost>& twin) {
    std::string difference = Unequal("listed hosts", real.Count(), static_cast<u32>(twin.size()));
    for (const auto& [address, expected] : twin) {
        const GuardedRecord<ListedHost>* entry = real.FindValue(address.c_str());
        if (!entry) return difference + "listed host " + address + " is missing; ";
        const ListedHost listed = entry->Read();
        difference += Unequal("listed name", std::string(listed.hostName), expected.hostName);
        difference += Unequal("listed MAC", std::string(listed.macAddress), expected.macAddress);
        difference += Unequal("listed time", std::string(listed.lastPacket), expected.lastPacket);
    }
    return difference;
}

}  // namespace

void Mutate(Frame& frame, std::size_t from, Chance& chance) {
    if (frame.size() <= from) return;
    for (u32 changes = chance.Below(4); changes > 0; --changes) {
        u8& byte = frame[from + chance.Below(frame.size() - from)];
        switch (chance.Below(4)) {
            case 0:
                byte = chance.Byte();
                break;
            case 1:
                byte = 0;
                break;
            case 2:
                byte = static_cast<u8>(byte + chance.Below(3) - 1);
                break;
            default:
                byte ^= static_cast<u8>(1u << chance.Below(8));
        }
    }
    if (chance.OneIn(16)) frame.resize(from + chance.Below(frame.size() - from));
}

std::map<u32, std::string> TwinTexts() {
    return ScriptedStrings().texts;
}

std::string Difference(const HostRecord& host, const LiteralHost& twin) {
    std::string difference = UnequalText("ip", host.ip, twin.ip) + UnequalText("mac", host.mac, twin.mac) +
                             UnequalText("vendor", host.vendor, twin.vendor) +
                             UnequalText("lastSeenText", host.lastSeenText, twin.lastSeenText) +
                             UnequalText("hostName", host.hostName, twin.hostName) +
                             UnequalText("os", host.os, twin.os) +
                             UnequalText("friendlyName", host.friendlyName, twin.friendlyName) +
                             UnequalText("presentationUrl", host.presentationUrl, twin.presentationUrl);
    const struct {
        const char* name;
        i64 real, expected;
    } numbers[] = {{"lastSeen", host.lastSeen, twin.lastSeen},
                   {"greyedOut", host.greyedOut, twin.greyedOut},
                   {"vendorUnknown", host.vendorUnknown, twin.vendorUnknown},
                   {"trustState", static_cast<i64>(host.trustState.Get()), twin.trustState},
                   {"rowDirty", host.rowDirty, twin.rowDirty},
                   {"nameUnresolved", host.nameUnresolved, twin.nameUnresolved},
                   {"osFromBrowse", host.osFromBrowse, twin.osFromBrowse},
                   {"osClass", static_cast<i64>(host.osClass.Get()), twin.osClass},
                   {"isLocal", host.isLocal, twin.isLocal},
                   {"upnpDone", host.upnpDone, twin.upnpDone},
                   {"deviceProbed", host.deviceProbed, twin.deviceProbed},
                   {"shareScanBusy", host.shareScanBusy, twin.shareScanBusy}};
    for (const auto& number : numbers) difference += Unequal(number.name, number.real, number.expected);
    return difference.empty() ? "" : twin.ip + ": " + difference;
}

std::string Difference(const SyslogRecord& message, const LiteralMessage& twin) {
    return UnequalText("source", message.source, twin.source) + UnequalText("text", message.text, twin.text) +
           Unequal("severity", message.severity, twin.severity) +
           Unequal("facility", message.facility, twin.facility) +
           Unequal("serial", message.serial, twin.serial) +
           Unequal("expired", static_cast<int>(message.expired), twin.expired);
}

std::string Difference(WatchedLan& lan, const LiteralState& twin) {
    return DifferenceOfHosts(lan, twin) +
           DifferenceOfLists("newEntries", lan.data.newEntries, twin.newEntries) +
           DifferenceOfLists("macSpoofs", lan.data.macSpoofs, twin.macSpoofs) +
           DifferenceOfLists("wmiWork", lan.data.wmiWork, twin.wmiWork) +
           DifferenceOfLists("netResWork", lan.data.netResWork, twin.netResWork) +
           DifferenceOfEvents(lan, twin) + DifferenceOfSyslog(lan, twin) +
           DifferenceOfListed(lan.data.settings.trustedHosts, twin.settings.trustedHosts) +
           DifferenceOfListed(lan.data.settings.distrustedHosts, twin.settings.distrustedHosts);
}

}  // namespace vardel::test

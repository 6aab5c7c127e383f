#include "tools/vardel_replay/ReplayReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "capture/EventMap.h"
#include "tools/vardel_replay/JsonWriter.h"

namespace vardel::replay {

namespace {

// In the order of the record; numbers and texts are told apart by which of the two members is set.
struct HostField {
    const char* name;
    TcString HostRecord::*text;
    i64 (*number)(const HostRecord& host);
};

template <auto field>
i64 NumberOf(const HostRecord& host) {
    return static_cast<i64>((host.*field).Get());
}

constexpr HostField Text(const char* name, TcString HostRecord::*field) {
    return {name, field, nullptr};
}
template <auto field>
constexpr HostField Number(const char* name) {
    return {name, nullptr, NumberOf<field>};
}

constexpr std::array kHostFields = {
    Text("ip", &HostRecord::ip),
    Text("mac", &HostRecord::mac),
    Text("vendor", &HostRecord::vendor),
    Text("lastSeenText", &HostRecord::lastSeenText),
    Text("hostName", &HostRecord::hostName),
    Number<&HostRecord::lastSeen>("lastSeen"),
    Number<&HostRecord::greyedOut>("greyedOut"),
    Number<&HostRecord::vendorUnknown>("vendorUnknown"),
    Number<&HostRecord::trustState>("trustState"),
    Number<&HostRecord::rowDirty>("rowDirty"),
    Number<&HostRecord::wmiOsKnown>("wmiOsKnown"),
    Number<&HostRecord::wmiStatus>("wmiStatus"),
    Text("os", &HostRecord::os),
    Number<&HostRecord::shareScanBusy>("shareScanBusy"),
    Number<&HostRecord::shareScanRefused>("shareScanRefused"),
    Number<&HostRecord::isLocal>("isLocal"),
    Number<&HostRecord::nameUnresolved>("nameUnresolved"),
    Number<&HostRecord::osFromBrowse>("osFromBrowse"),
    Number<&HostRecord::offline>("offline"),
    Number<&HostRecord::osClass>("osClass"),
    Text("displayName", &HostRecord::displayName),
    Text("friendlyName", &HostRecord::friendlyName),
    Text("presentationUrl", &HostRecord::presentationUrl),
    Number<&HostRecord::upnpDone>("upnpDone"),
    Number<&HostRecord::deviceProbed>("deviceProbed"),
};

std::string_view View(const TcString& text) {
    return {text.GetContent(), static_cast<std::size_t>(text.GetLength())};
}

// The address as a number, so that 10.0.0.9 comes before 10.0.0.10.
u32 AddressNumber(const TcString& ip) {
    unsigned a = 0, b = 0, c = 0, d = 0;
    std::sscanf(ip.GetContent(), "%u.%u.%u.%u", &a, &b, &c, &d);
    return a << 24 | b << 16 | c << 8 | d;
}

// The entries of a map keyed by address text, by address.
template <class Value, class Map>
std::vector<std::pair<const TcString*, const Value*>> SortedByAddress(const Map& map) {
    std::vector<std::pair<const TcString*, const Value*>> entries;
    map.ForEach([&](const TcString& ip, const Value* value) {
        if (value) entries.emplace_back(&ip, value);
    });
    std::sort(entries.begin(), entries.end(),
              [](const auto& a, const auto& b) { return AddressNumber(*a.first) < AddressNumber(*b.first); });
    return entries;
}

class Report {
  public:
    explicit Report(const VardelData& data) : data_(data) {}

    std::string Form(const FrameCounts& counts, double handlerSeconds, bool quiet) {
        json_.BeginObject();
        Frames(counts);
        if (!quiet) {
            Hosts();
            Lists();
            EventsOfRun();
            Syslogs();
            SyslogNotifications();
        }
        Section("handlerSeconds");
        json_.Seconds(handlerSeconds);
        json_.EndObject();
        return json_.Document() + "\n";
    }

  private:
    void Section(const char* name) {
        json_.BreakLine();
        json_.Name(name);
    }
    void Member(const char* name, const TcString& text) {
        json_.Name(name);
        json_.Text(View(text));
    }
    void Member(const char* name, i64 number) {
        json_.Name(name);
        json_.Number(number);
    }

    void Frames(const FrameCounts& counts) {
        Section("frames");
        json_.BeginObject();
        Member("read", static_cast<i64>(counts.read));
        Member("arp", static_cast<i64>(counts.arp));
        Member("ip", static_cast<i64>(counts.ip));
        json_.EndObject();
    }

    void Hosts() {
        Section("hosts");
        json_.BeginArray();
        for (const auto& [ip, host] : SortedByAddress<HostRecord>(data_.arpMap)) {
            json_.BreakLine();
            json_.BeginObject();
            for (const HostField& field : kHostFields) {
                if (field.text)
                    Member(field.name, host->*(field.text));
                else
                    Member(field.name, field.number(*host));
            }
            json_.EndObject();
        }
        json_.EndArray();
    }

    void Addresses(const char* name, const std::vector<const HostRecord*>& hosts) {
        Section(name);
        json_.BeginArray();
        for (const HostRecord* host : hosts) json_.Text(View(host->ip));
        json_.EndArray();
    }

    template <class List, class ToHost>
    static std::vector<const HostRecord*> Walk(const List& list, ToHost&& toHost) {
        std::vector<const HostRecord*> hosts;
        list.ForEach([&](const auto& entry) {
            hosts.push_back(toHost(entry));
            return true;
        });
        return hosts;
    }

    void Lists() {
        const auto itself = [](const HostRecord* host) { return host; };
        Addresses("newEntries", Walk(data_.newEntries, itself));
        Addresses("macSpoofs", Walk(data_.macSpoofs, itself));
        // Producers put into these two at the front, so the oldest stands at the back.
        auto hosts = Walk(data_.wmiWork, [](const WmiWorkItem* item) { return item->host; });
        std::reverse(hosts.begin(), hosts.end());
        Addresses("wmiWork", hosts);
        hosts = Walk(data_.netResWork, itself);
        std::reverse(hosts.begin(), hosts.end());
        Addresses("netResWork", hosts);
    }

    void EventsOfRun() {
        Section("events");
        json_.BeginArray();
        TheEventMap().ForEach([&](i32, const EventRecord* event) {
            json_.BreakLine();
            json_.BeginObject();
            Member("kind", event->kind);
            Member("host", event->host);
            Member("info", event->info);
            Member("text", event->text);
            Member("syslogInfo", event->syslogInfo);
            json_.EndObject();
        });
        json_.EndArray();
    }

    void Syslogs() {
        Section("syslogs");
        json_.BeginObject();
        for (const auto& [source, list] : SortedByAddress<SyslogSourceList>(data_.syslogs)) {
            json_.BreakLine();
            json_.Name(View(*source));
            json_.BeginObject();
            Member("count", list->MessageCount());
            json_.Name("records");
            json_.BeginArray();
            list->ForEach([&](const SyslogRecord& record) {
                json_.BreakLine();
                json_.BeginObject();
                Member("serial", record.serial);
                Member("severity", record.severity);
                Member("facility", record.facility);
                Member("text", record.text);
                Member("expired", record.expired.Get());
                json_.EndObject();
            });
            json_.EndArray();
            json_.EndObject();
        }
        json_.EndObject();
    }

    void SyslogNotifications() {
        Section("syslogNotifications");
        json_.BeginArray();
        data_.syslogNotifications.ForEach([&](const SyslogRecord* record) {
            json_.BreakLine();
            json_.BeginObject();
            Member("source", record->source);
            Member("severity", record->severity);
            Member("facility", record->facility);
            Member("text", record->text);
            json_.EndObject();
            return true;
        });
        json_.EndArray();
    }

    const VardelData& data_;
    JsonWriter json_;
};

}  // namespace

std::string FormReport(const VardelData& data, const FrameCounts& counts, double handlerSeconds, bool quiet) {
    return Report(data).Form(counts, handlerSeconds, quiet);
}

}  // namespace vardel::replay

#include "plugins/examples/SyslogMessage.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <utility>

namespace vardel::examples {

namespace {

enum Severity { kAlert = 1, kWarning = 4, kNotice = 5, kInformation = 6, kDebug = 7 };

using Parameters = std::vector<std::pair<const char*, std::string>>;

// The host's names come from the network: what is no printable ASCII character is shown as a question mark,
// so that none can end the line or the message, and what is sent is UTF-8.
std::string Printable(const char* text, std::size_t size) {
    std::string clean(text, strnlen(text, size));
    for (char& each : clean)
        if (each < 0x20 || each > 0x7e) each = '?';
    return clean;
}

template <std::size_t size>
std::string Field(const char (&text)[size]) {
    return Printable(text, size);
}

// PARAM-VALUE of RFC 5424, section 6.3.3.
std::string Escaped(const std::string& value) {
    std::string escaped;
    for (const char each : value) {
        if (each == '"' || each == '\\' || each == ']') escaped += '\\';
        escaped += each;
    }
    return escaped;
}

// HOSTNAME of section 6.2.4: no blanks, at most 255 characters, "-" for none.
std::string HeaderName(const std::string& name) {
    std::string text = Printable(name.data(), name.size()).substr(0, 255);
    for (char& each : text)
        if (each == ' ') each = '?';
    return text.empty() ? "-" : text;
}

std::string TimeStamp(std::time_t now) {
    using namespace std::chrono;
    const sys_seconds moment{seconds{now}};
    const sys_days day = floor<days>(moment);
    const year_month_day date{day};
    const hh_mm_ss time{moment - day};
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text;
}

class Writer {
  public:
    Writer(const SyslogSource& source, std::time_t now) : source_(source), timeStamp_(TimeStamp(now)) {}

    std::string Message(Severity severity, const char* id, const Parameters& parameters,
                        const std::string& text) const {
        std::string message = "<" + std::to_string(source_.facility * 8 + severity) + ">1 " + timeStamp_ +
                              ' ' + HeaderName(source_.hostName) + " vardelwatch - " + id +
                              " [vardelwatch@32473";
        for (const auto& [name, value] : parameters)
            message += std::string(" ") + name + "=\"" + Escaped(value) + '"';
        return message + "] " + text;
    }

  private:
    const SyslogSource& source_;
    const std::string timeStamp_;
};

const char* TrustName(uint32_t state) {
    constexpr const char* kNames[] = {"unknown", "trusted", "distrusted"};
    return state < 3 ? kNames[state] : "unknown";
}

std::string HostMessage(const Writer& writer, const PluginNotifyHost& host, bool isSpoof) {
    const std::string ip = Field(host.ip), name = Field(host.hostName);
    const Parameters parameters = {
        {"ip", ip}, {"mac", Field(host.mac)}, {"name", name}, {"trust", TrustName(host.trustState)}};
    const std::string who = name + " (" + ip + ")";
    return isSpoof ? writer.Message(kAlert, "SPOOF", parameters, "MAC spoofing: another card claims " + who)
                   : writer.Message(kNotice, "NEWHOST", parameters, "New host " + who);
}

std::string ShareMessage(const Writer& writer, const PluginNotifyShare& share) {
    const std::string ip = Field(share.ip), hostName = Field(share.hostName), name = Field(share.name);
    return writer.Message(
        kInformation, "NEWSHARE",
        {{"ip", ip}, {"name", hostName}, {"share", name}, {"type", std::to_string(share.type)}},
        "New remote share " + name + " on " + hostName + " (" + ip + ")");
}

std::string AccessMessage(const Writer& writer, const PluginNotifyAccess& access) {
    const std::string computer = Field(access.computer), user = Field(access.user),
                      share = Field(access.share);
    return writer.Message(kWarning, "ACCESS", {{"computer", computer}, {"user", user}, {"share", share}},
                          computer + " connected on " + share + " with user '" + user + "'");
}

template <class Record, class Form>
std::vector<std::string> OfEach(const PluginNotifyItem& item, Form form) {
    std::vector<std::string> messages;
    const auto* records = static_cast<const Record*>(item.records);
    for (uint32_t at = 0; records && at < item.count; ++at) messages.push_back(form(records[at]));
    return messages;
}

}  // namespace

std::vector<std::string> SyslogMessages(const PluginNotifyItem& item, const SyslogSource& source,
                                        std::time_t now) {
    const Writer writer(source, now);
    const auto host = [&](const PluginNotifyHost& record) {
        return HostMessage(writer, record, item.kind == PLUGIN_NOTIFY_SPOOFS);
    };
    switch (item.kind) {
        case PLUGIN_NOTIFY_NEW_HOSTS:
        case PLUGIN_NOTIFY_SPOOFS:
            return OfEach<PluginNotifyHost>(item, host);
        case PLUGIN_NOTIFY_NEW_SHARES:
            return OfEach<PluginNotifyShare>(
                item, [&](const auto& record) { return ShareMessage(writer, record); });
        case PLUGIN_NOTIFY_ACCESSES:
            return OfEach<PluginNotifyAccess>(
                item, [&](const auto& record) { return AccessMessage(writer, record); });
        case PLUGIN_NOTIFY_HOST_COUNT: {
            const std::string count = std::to_string(item.count);
            return {writer.Message(kDebug, "HOSTCOUNT", {{"count", count}}, count + " host(s) known")};
        }
        default:
            return {};
    }
}

}  // namespace vardel::examples

#include "platform/SambaStatus_posix.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <nlohmann/json.hpp>

namespace vardel {

namespace {

using Json = nlohmann::json;

// The member if it is there and a text; else an empty one.
std::string TextOf(const Json& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

std::string CutText(std::string text) {
    text.resize(std::min(text.size(), kWmiTextLimit));
    return text;
}

// An IPv4 client of a server that listens on IPv6 is told as a mapped address.
std::string WithoutMapping(std::string address) {
    constexpr std::string_view kMapped = "::ffff:";
    if (address.starts_with(kMapped) && address.find('.') != std::string::npos) address.erase(0, kMapped.size());
    return address;
}

std::string UserOfSession(const Json& document, const std::string& sessionId) {
    const auto sessions = document.find("sessions");
    if (sessions == document.end() || !sessions->is_object()) return {};
    const auto session = sessions->find(sessionId);
    return session != sessions->end() && session->is_object() ? TextOf(*session, "username") : std::string();
}

i32 SecondsSince(const std::string& moment, i64 now) {
    const i64 start = SecondsOfSambaTime(moment);
    if (start < 0) return -1;
    // A clock that was set back gives no negative time, which would mean "not told".
    return static_cast<i32>(std::clamp<i64>(now - start, 0, std::numeric_limits<i32>::max()));
}

// Reads a text from its front.
class TimeReader {
  public:
    explicit TimeReader(std::string_view text) : rest_(text) {}

    bool Number(std::size_t digits, int& value) {
        value = 0;
        if (rest_.size() < digits) return false;
        for (const char c : rest_.substr(0, digits)) {
            if (c < '0' || c > '9') return false;
            value = value * 10 + (c - '0');
        }
        rest_.remove_prefix(digits);
        return true;
    }
    // One character of `choice`; 0 when the next is none of it.
    char OneOf(std::string_view choice) {
        if (rest_.empty() || choice.find(rest_.front()) == std::string_view::npos) return 0;
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }
    void SkipFraction() {
        if (!OneOf(".")) return;
        while (OneOf("0123456789")) {
        }
    }
    bool AtEnd() const { return rest_.empty(); }

  private:
    std::string_view rest_;
};

// Seconds east of Greenwich; false when it is no zone.
bool ReadZone(TimeReader& reader, int& seconds) {
    seconds = 0;
    const char sign = reader.OneOf("Z+-");
    if (sign == 'Z') return true;
    int hours = 0, minutes = 0;
    if (!sign || !reader.Number(2, hours)) return false;
    reader.OneOf(":");
    if (!reader.Number(2, minutes) || hours > 23 || minutes > 59) return false;
    seconds = (hours * 3600 + minutes * 60) * (sign == '-' ? -1 : 1);
    return true;
}

}  // namespace

i64 SecondsOfSambaTime(std::string_view text) {
    TimeReader reader(text);
    int year, month, day, hour, minute, second, zone;
    if (!reader.Number(4, year) || !reader.OneOf("-") || !reader.Number(2, month) || !reader.OneOf("-") ||
        !reader.Number(2, day) || !reader.OneOf("T ") || !reader.Number(2, hour) || !reader.OneOf(":") ||
        !reader.Number(2, minute) || !reader.OneOf(":") || !reader.Number(2, second))
        return -1;
    reader.SkipFraction();
    if (!ReadZone(reader, zone) || !reader.AtEnd()) return -1;
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok() || hour > 23 || minute > 59 || second > 60) return -1;
    const i64 days = std::chrono::sys_days(date).time_since_epoch().count();
    return std::max<i64>(days * 86400 + hour * 3600 + minute * 60 + second - zone, -1);
}

std::vector<ServerConnection> ConnectionsOfSambaStatus(std::string_view json, i64 now) {
    std::vector<ServerConnection> rows;
    const Json document = Json::parse(json, nullptr, false);
    if (!document.is_object()) return rows;
    const auto connections = document.find("tcons");
    if (connections == document.end() || !connections->is_object()) return rows;
    for (const Json& connection : *connections) {
        if (!connection.is_object()) continue;
        const std::string share = TextOf(connection, "service");
        const std::string computer = WithoutMapping(TextOf(connection, "machine"));
        if (share.empty() || computer.empty()) continue;
        rows.push_back({.computer = CutText(computer),
                        .share = CutText(share),
                        .user = CutText(UserOfSession(document, TextOf(connection, "session_id"))),
                        .activeTime = SecondsSince(TextOf(connection, "connected_at"), now)});
    }
    return rows;
}

}  // namespace vardel

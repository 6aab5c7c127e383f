#include "tests/unit/support/LiteralReport.h"

#include <utility>

#include "foundation/TcString.h"

namespace vardel::test {

namespace {

using Values = std::vector<std::pair<std::string, std::string>>;  // tag and value, in order

// Stands for a value that is kept aside; no tag, marker or tried text holds these bytes.
class Aside {
  public:
    explicit Aside(bool used) : used_(used) {}
    std::string Put(const std::string& value) {
        if (!used_) return value;
        kept_.push_back(value);
        return "\x01" + std::to_string(kept_.size() - 1) + "\x02";
    }
    std::string TakeBack(const std::string& text) const {
        std::string result;
        for (std::size_t at = 0; at < text.size(); ++at) {
            if (text[at] != '\x01') {
                result += text[at];
                continue;
            }
            const std::size_t end = text.find('\x02', at);
            result += kept_.at(std::stoul(text.substr(at + 1, end - at - 1)));
            at = end;
        }
        return result;
    }

  private:
    bool used_;
    std::vector<std::string> kept_;
};

void Expand(TcString& document, const std::string& name, const std::vector<Values>& records, Aside& aside) {
    const std::string beginMarker = "<VDL_" + name + " - begin>", endMarker = "<VDL_" + name + " - end>";
    const int begin = document.Find(beginMarker.c_str());
    const int end = document.Find(endMarker.c_str());
    if (begin < 0 || end < 0 || end <= begin) return;
    std::vector<char> taken(static_cast<std::size_t>(end - begin) + 1);
    document.GetMiddle(taken.data(), end - begin + 1, begin, end - begin);
    TcString working(taken.data());
    document.Remove(begin, end - begin + static_cast<int>(endMarker.size()));
    working.Remove(0, static_cast<int>(beginMarker.size()));
    const TcString body(working);
    int position = begin;
    for (const Values& values : records) {
        for (const auto& [tag, value] : values)
            working.ReplaceAll(tag.c_str(), aside.Put(value.empty() ? " " : value).c_str());
        document.Insert(position, working);
        position += working.GetLength();
        working = body;
    }
}

}  // namespace

std::string LiteralReport::Form(const std::string& text, bool isAside) const {
    Aside aside(isAside);
    TcString document(text.c_str());
    u32 byTrust[3] = {};
    for (const LiteralReportHost& host : hosts)
        if (host.trust < 3) ++byTrust[host.trust];
    const std::pair<const char*, std::size_t> counts[] = {{"%VDL_HOSTCOUNT%", hosts.size()},
                                                          {"%VDL_HOSTCOUNT_TRUST%", byTrust[1]},
                                                          {"%VDL_HOSTCOUNT_DISTRUST%", byTrust[2]},
                                                          {"%VDL_HOSTCOUNT_UNKNOWN%", byTrust[0]},
                                                          {"%VDL_HOSTCOUNT_WATCHED%", watched.size()}};
    for (const auto& [tag, count] : counts) document.ReplaceAll(tag, std::to_string(count).c_str());

    constexpr u32 kAny = 999;
    const std::pair<const char*, u32> kinds[] = {
        {"HOSTS", kAny}, {"HOSTS_TRUSTED", 1}, {"HOSTS_DISTRUSTED", 2}, {"HOSTS_UNKNOWN", 0}};
    for (const auto& [name, trust] : kinds) {
        std::vector<Values> records;
        for (const LiteralReportHost& host : hosts)
            if (trust == kAny || host.trust == trust)
                records.push_back({{"%VDL_HOST_NAME%", host.name},
                                   {"%VDL_HOST_IP%", host.ip},
                                   {"%VDL_HOST_MAC%", host.mac},
                                   {"%VDL_HOST_OS%", host.os},
                                   {"%VDL_HOST_VENDOR%", host.vendorUnknown ? "" : host.vendor}});
        Expand(document, name, records, aside);
    }
    std::vector<Values> records;
    for (const LiteralWatched& host : watched)
        records.push_back({{"%VDL_HOST_NAME%", host.name},
                           {"%VDL_HOST_IP%", host.ip},
                           {"%VDL_HOST_STATE%", host.online ? "Online" : "Offline"}});
    Expand(document, "HOSTS_WATCHED", records, aside);
    records.clear();
    for (const LiteralAccess& access : accesses)
        records.push_back({{"%VDL_SHARE_HOST%", access.computer},
                           {"%VDL_SHARE_NAME%", access.share},
                           {"%VDL_SHARE_USER%", access.user}});
    Expand(document, "SHARE_ACCESS", records, aside);
    return aside.TakeBack(document.GetContent());
}

}  // namespace vardel::test

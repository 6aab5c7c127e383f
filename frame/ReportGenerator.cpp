#include "frame/ReportGenerator.h"

#include <new>
#include <stdexcept>
#include <vector>

#include "frame/ReportDocument.h"
#include "platform/TextFile.h"
#include "views/HostCells.h"

namespace vardel {

namespace {

constexpr std::size_t kEndingLength = 5;  // ".vdlt"

// A thread that reads another one's text copies it first.
std::string OwnCopy(const TcString& text) {
    const TcString copy(text);
    return copy.GetContent();
}

std::string_view FieldText(const auto& field) {
    const std::string_view bytes(field, sizeof field);
    return bytes.substr(0, bytes.find('\0'));
}

// A host with the state that it had when the hosts were counted: counts and rows belong together.
struct CountedHost {
    const HostRecord* host;
    TrustState trust;
};

std::vector<CountedHost> CollectCountedHosts(const VardelData& data) {
    std::vector<CountedHost> hosts;
    hosts.reserve(data.arpMap.Count());
    data.arpMap.ForEach([&](const TcString&, const HostRecord* host) {
        if (host) hosts.push_back({host, host->trustState});
    });
    return hosts;
}

ReportCounts Count(const std::vector<CountedHost>& hosts, const VardelData& data) {
    ReportCounts counts{.hosts = static_cast<u32>(hosts.size()), .watched = data.settings.watchedHosts.Count()};
    for (const CountedHost& host : hosts) {
        switch (host.trust) {
            case TrustState::Trusted: ++counts.trusted; break;
            case TrustState::Distrusted: ++counts.distrusted; break;
            case TrustState::Unknown: ++counts.unknown; break;
        }
    }
    return counts;
}

void AddHost(const HostRecord& host, const ReportDocument::AddRow& add) {
    const TcString name(host.hostName), ip(host.ip), mac(host.mac), os(host.os), vendor(KnownVendor(host));
    std::string_view values[kHostTags];
    values[kHostName] = name.GetContent();
    values[kHostIp] = ip.GetContent();
    values[kHostMac] = mac.GetContent();
    values[kHostOs] = os.GetContent();
    values[kHostVendor] = vendor.GetContent();
    add(values);
}

void ExpandHosts(ReportDocument& document, const std::vector<CountedHost>& hosts) {
    document.Expand(ReportBlock::Hosts, [&](const auto& add) {
        for (const CountedHost& counted : hosts) AddHost(*counted.host, add);
    });
    constexpr struct {
        ReportBlock block;
        TrustState trust;
    } kByTrust[] = {{ReportBlock::TrustedHosts, TrustState::Trusted},
                    {ReportBlock::DistrustedHosts, TrustState::Distrusted},
                    {ReportBlock::UnknownHosts, TrustState::Unknown}};
    for (const auto& kind : kByTrust) {
        document.Expand(kind.block, [&](const auto& add) {
            for (const CountedHost& counted : hosts)
                if (counted.trust == kind.trust) AddHost(*counted.host, add);
        });
    }
}

void ExpandWatchedHosts(ReportDocument& document, const WatchedHostTable& watchedHosts) {
    document.Expand(ReportBlock::WatchedHosts, [&](const auto& add) {
        watchedHosts.ForEach([&](const TcString&, const GuardedRecord<WatchedHost>* entry) {
            if (!entry) return;
            const WatchedHost watched = entry->Read();
            std::string_view values[kWatchedTags];
            values[kWatchedName] = FieldText(watched.hostName);
            values[kWatchedIp] = FieldText(watched.ipAddress);
            // Wanted: in English whatever the language, since templates and their readers rely on it.
            values[kWatchedState] = watched.online ? "Online" : "Offline";
            add(values);
        });
    });
}

void ExpandShareAccesses(ReportDocument& document, VardelData& data) {
    document.Expand(ReportBlock::ShareAccesses, [&](const auto& add) {
        const FenceTaken taken(data.fences, Fence::Shares);
        data.remoteAccesses.ForEach([&](i32, const RemoteAccess* access) {
            if (!access) return;
            const TcString computer(access->computer), share(access->share), user(access->user);
            std::string_view values[kShareTags];
            values[kShareHost] = computer.GetContent();
            values[kShareName] = share.GetContent();
            values[kShareUser] = user.GetContent();
            add(values);
        });
    });
}

void Generate(VardelData& data) {
    const std::string templatePath = OwnCopy(data.settings.ReportTemplate);
    std::string templateText;
    if (!ReadTextFile(templatePath, templateText)) return;
    if (templateText.empty() || templateText.front() == '\0') return;
    const std::string path =
        ReportFilePath(templatePath, OwnCopy(data.settings.ReportPath), data.services.folders.Separator());
    const std::string report = FormReport(templateText, data);
    if (!path.empty()) WriteTextFile(path, report);
}

}  // namespace

std::string FormReport(std::string_view templateText, VardelData& data) {
    ReportDocument document(templateText);
    {
        const FenceTaken taken(data.fences, Fence::ArpMap);
        const std::vector<CountedHost> hosts = CollectCountedHosts(data);
        document.PutCounts(Count(hosts, data));
        ExpandHosts(document, hosts);
    }
    ExpandWatchedHosts(document, data.settings.watchedHosts);
    ExpandShareAccesses(document, data);
    return document.Text();
}

std::string ReportFilePath(const std::string& templatePath, const std::string& folder, char separator) {
    if (templatePath.size() <= kEndingLength) return {};
    std::string name = templatePath.substr(0, templatePath.size() - kEndingLength);
    const std::size_t last = name.rfind(separator);
    if (last != std::string::npos) name.erase(0, last);
    return folder + name;
}

void ReportGenerator(VardelData& data) {
    try {
        Generate(data);
    } catch (const std::bad_alloc&) {
        // A template or table that memory has no room for gives no report.
    } catch (const std::length_error&) {
    }
}

}  // namespace vardel

// A "User-defined columns" plugin with two columns: what kind of card address a host has (a locally
// administered one is what phones and laptops make up at random to go unrecognised), and when its IP address
// was first seen.
//
// The moments are kept in mac_columns.seen beside the module, from one run to the next. They are the moments
// at which the host view first showed the address.
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include "plugins/examples/support/PluginFiles.h"
#include "plugins/examples/support/TellUser.h"
#include "plugins/plugin_interface.h"

namespace {

using namespace vardel::examples;

constexpr const char* kName = "MAC columns";
constexpr int kAddressKind = 0;
constexpr int kFirstSeen = 1;
constexpr std::size_t kMostAddresses = 100'000;  // a flood of made-up addresses must not fill the memory

// IEEE Std 802-2014, section 8.2: bit 1 of the first octet says that the address was not given by the card's
// maker.
enum class AddressKind { None, Maker, Randomised };

AddressKind KindOf(const PluginHostText& host) {
    unsigned octet = 0;
    if (std::sscanf(host.mac, "%2x:", &octet) != 1) return AddressKind::None;
    return octet & 2 ? AddressKind::Randomised : AddressKind::Maker;
}

const char* KindText(AddressKind kind) {
    constexpr const char* kTexts[] = {"", "maker's own", "randomised"};
    return kTexts[static_cast<int>(kind)];
}

// IP address text to the moment at which it was first asked for.
class FirstSeen {
  public:
    explicit FirstSeen(const std::string& path) : path_(path) {
        std::ifstream file(path_);
        long long moment;
        for (std::string ip; moments_.size() < kMostAddresses && file >> ip >> moment;)
            moments_.emplace(ip, moment);
    }
    // 0 for an address that there is no more room for.
    long long Of(const char* ip) {
        const auto found = moments_.find(ip);
        if (found != moments_.end()) return found->second;
        if (!*ip || moments_.size() >= kMostAddresses) return 0;
        hasGrown_ = true;
        return moments_.emplace(ip, std::time(nullptr)).first->second;
    }
    void Save() const {
        if (!hasGrown_) return;
        std::ofstream file(path_, std::ios::trunc);
        for (const auto& [ip, moment] : moments_) file << ip << ' ' << moment << '\n';
    }

  private:
    const std::string path_;
    std::map<std::string, long long> moments_;
    bool hasGrown_ = false;
};

// From Init to Exit.
std::unique_ptr<FirstSeen>& Seen() {
    static std::unique_ptr<FirstSeen> seen;
    return seen;
}

std::string MomentText(long long moment) {
    const std::time_t seconds = static_cast<std::time_t>(moment);
    char text[32] = "";
    const std::tm* local = moment ? std::localtime(&seconds) : nullptr;
    if (local) std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", local);
    return text;
}

uint32_t Define(PluginColumnCall& call) {
    if (call.column != kAddressKind && call.column != kFirstSeen) return 0;
    const bool isFirst = call.column == kAddressKind;
    std::strcpy(call.text, isFirst ? "MAC address is" : "First seen");
    call.format = 0;
    call.width = isFirst ? 90 : 110;
    call.more = isFirst;
    return 1;
}

uint32_t FillCell(PluginColumnCall& call) {
    const std::string text =
        call.column == kAddressKind ? KindText(KindOf(*call.host)) : MomentText(Seen()->Of(call.host->ip));
    std::strncpy(call.text, text.c_str(), sizeof call.text - 1);
    return 1;
}

template <class T>
int Order(T first, T second) {
    return (second < first) - (first < second);
}

uint32_t Compare(PluginColumnCall& call) {
    const int column = call.order & 0xffff;
    const bool ascending = (call.order >> 16 & 0xffff) == 1;
    const int order = column == kAddressKind
                          ? Order(KindOf(*call.firstHost), KindOf(*call.secondHost))
                          : Order(Seen()->Of(call.firstHost->ip), Seen()->Of(call.secondHost->ip));
    call.order = ascending ? order : -order;
    return 1;
}

uint32_t TellOfHost(const PluginInfo& info, const PluginHostText& host) {
    const char* const kind = KindText(KindOf(host));
    TellUser(info.window, kName,
             std::string(host.ip) + ": the MAC address is " + (*kind ? kind : "not known") + ", first seen " +
                 MomentText(Seen()->Of(host.ip)));
    return 1;
}

uint32_t PLUGIN_CALL Init(PluginInfo* info) {
    Seen() = std::make_unique<FirstSeen>(BesideModule(*info, ".seen"));
    return 1;
}

uint32_t PLUGIN_CALL Exit(PluginInfo*) {
    if (Seen()) Seen()->Save();
    Seen().reset();
    return 1;
}

uint32_t PLUGIN_CALL Run(PluginInfo* info) {
    if (!Seen() || info->dataCount != 1 || !info->data) return 0;
    auto& call = *static_cast<PluginColumnCall*>(info->data);
    switch (call.command) {
        case PLUGIN_COLUMN_MENU:
            return TellOfHost(*info, *call.host);
        case PLUGIN_COLUMN_DEFINE:
            return Define(call);
        case PLUGIN_COLUMN_TEXT:
            return FillCell(call);
        case PLUGIN_COLUMN_COMPARE:
            return Compare(call);
        default:
            return 0;
    }
}

uint32_t PLUGIN_CALL About(PluginInfo* info) {
    TellUser(info->window, kName,
             "Shows which hosts use a made-up MAC address, and when each was first seen.");
    return 1;
}

PluginInfo MakeBlock() {
    PluginInfo block{};
    block.size = sizeof block;
    block.name = kName;
    block.description = "Two columns: the kind of the MAC address, and when the address was first seen";
    block.type = PLUGIN_TYPE_COLUMNS;
    block.Init = Init;
    block.Exit = Exit;
    block.Run = Run;
    block.About = About;
    return block;
}

}  // namespace

PLUGIN_EXPORT PluginInfo* GetPluginInfo(void) {
    static PluginInfo block = MakeBlock();
    return &block;
}

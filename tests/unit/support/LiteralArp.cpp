#include "tests/unit/support/LiteralArp.h"

#include <cstdio>
#include <ctime>

namespace vardel::test {

namespace {

// A text as a field of a listed host keeps it.
std::string InField(const std::string& text) {
    return text.substr(0, 259);
}

void VendorStep(LiteralHost& r, std::string macText, const LiteralState& state) {
    macText = macText.substr(0, 8);
    const auto found = state.vendors.find(macText);
    if (found != state.vendors.end() && !found->second.empty()) {
        r.vendor = found->second;
        r.vendorUnknown = 0;
    }
    if (r.vendorUnknown) r.vendor = state.texts.at(91);
}

std::string NameOf(const std::string& ip, const LiteralState& state) {
    for (const std::string& canonical : state.resolver.canonicalNames)
        if (canonical != ip) return canonical;
    const std::string buffer = state.resolver.requiredName;
    if (!buffer.empty() && buffer != state.localHostName) return buffer;
    if (ip != "255.255.255.255") {
        const std::string& result = state.resolver.hostByAddress;
        if (!result.empty() && buffer != state.localHostName) return result;
        const std::string& last = state.resolver.shortName;
        if (!last.empty() && last != state.localHostName) return last;
    }
    return "";
}

}  // namespace

void LiteralArp::PacketReceived(i64 seconds, const FrameBytes* frame, LiteralState* state) {
    packetCount = packetCount + 1;
    if (!frame || !state) return;
    const std::time_t time = static_cast<std::time_t>(seconds);
    char buffer[20];
    std::strftime(buffer, sizeof buffer, "%H:%M:%S", std::localtime(&time));
    timeText = buffer;
    macText.clear();
    for (std::size_t i = 0; i < 6; ++i) {
        std::snprintf(buffer, sizeof buffer, "%02x", static_cast<unsigned>(ByteAt(*frame, 22 + i)));
        macText += (i ? ":" : "") + std::string(buffer);
    }
    ipText.clear();
    for (std::size_t i = 0; i < 4; ++i) {
        std::snprintf(buffer, sizeof buffer, "%d", ByteAt(*frame, 28 + i));
        ipText += (i ? "." : "") + std::string(buffer);
    }
    if (ipText.empty() || ipText == "0.0.0.0") return;
    const auto found = state->arpMap.find(ipText);
    if (found == state->arpMap.end())
        New(seconds, *state);
    else if (found->second)
        Known(*found->second, seconds, *state);
}

void LiteralArp::Known(LiteralHost& h, i64 seconds, LiteralState& state) {
    if (!h.mac.empty() && h.mac != macText) {
        state.macSpoofs.push_back(&h);
    } else if (macText != h.mac || h.vendorUnknown) {
        h.mac = macText;
        if (!macText.empty()) VendorStep(h, macText, state);
    }
    h.lastSeen = seconds;
    h.lastSeenText = timeText;
    h.rowDirty = 1;
    h.greyedOut = 0;
    const auto trusted = state.settings.trustedHosts.find(ipText);
    if (trusted != state.settings.trustedHosts.end()) {
        trusted->second.hostName = InField(h.hostName);
        trusted->second.lastPacket = h.lastSeenText;
        h.trustState = 1;
    }
    const auto distrusted = state.settings.distrustedHosts.find(ipText);
    if (distrusted != state.settings.distrustedHosts.end()) {
        distrusted->second.hostName = InField(h.hostName);
        distrusted->second.lastPacket = h.lastSeenText;
        h.trustState = 2;
    }
    if (state.settings.shareSearch && h.rowDirty && !h.shareScanBusy) state.netResWork.push_front(&h);
}

void LiteralArp::New(i64 seconds, LiteralState& state) {
    LiteralHost* record = state.NewHost();
    record->mac = macText;
    record->ip = ipText;
    record->lastSeenText = timeText;
    record->lastSeen = seconds;
    record->hostName = NameOf(ipText, state);
    if (record->hostName.empty()) {
        record->hostName = state.texts.at(90);
        record->nameUnresolved = 1;
    }
    if (!macText.empty()) VendorStep(*record, macText, state);
    state.events.push_back({5, record->hostName, record->ip, "", -1});
    state.arpMap[ipText] = record;
    const auto fill = [&](std::map<std::string, LiteralListedHost>& table, u32 trustState) {
        const auto found = table.find(ipText);
        if (found == table.end()) return;
        if (found->second.hostName.empty()) found->second.hostName = InField(record->hostName);
        if (found->second.macAddress.empty()) found->second.macAddress = record->mac;
        found->second.lastPacket = record->lastSeenText;
        record->trustState = trustState;
    };
    fill(state.settings.trustedHosts, 1);
    fill(state.settings.distrustedHosts, 2);
    state.newEntries.push_back(record);
    if (state.settings.useWmi) state.wmiWork.push_front(record);
    if (state.settings.shareSearch) state.netResWork.push_front(record);
}

}  // namespace vardel::test

// A "View" plugin: wakes the clicked host, if its card listens for that while the machine sleeps.
//
// It sends the magic packet: six bytes 0xff, then the card's address sixteen times, as a UDP datagram to
// everyone. The `address` and `port` of wake_on_lan.ini take the place of 255.255.255.255 and 9.
#include <cstdio>
#include <string>

#include "plugins/examples/support/PluginFiles.h"
#include "plugins/examples/support/TellUser.h"
#include "plugins/examples/support/UdpSender.h"
#include "plugins/plugin_interface.h"

namespace {

using namespace vardel::examples;

constexpr const char* kName = "Wake on LAN";
constexpr int kOctets = 6;
constexpr int kRepeats = 16;

// The six bytes of "xx:xx:xx:xx:xx:xx"; empty for any other text, and for the address that no card has.
std::string AddressBytes(const char* mac) {
    unsigned octets[kOctets];
    int length = 0;
    if (std::sscanf(mac, "%2x:%2x:%2x:%2x:%2x:%2x%n", &octets[0], &octets[1], &octets[2], &octets[3],
                    &octets[4], &octets[5], &length) != kOctets ||
        mac[length] != 0)
        return {};
    std::string bytes;
    for (const unsigned octet : octets) bytes += static_cast<char>(octet);
    return bytes == std::string(kOctets, '\0') ? std::string() : bytes;
}

std::string MagicPacket(const std::string& address) {
    std::string packet(kOctets, '\xff');
    for (int repeat = 0; repeat < kRepeats; ++repeat) packet += address;
    return packet;
}

uint32_t PLUGIN_CALL Run(PluginInfo* info) {
    if (info->dataCount != 1 || !info->data) return 0;
    const auto* host = static_cast<const PluginHostText*>(info->data);
    const std::string address = AddressBytes(host->mac);
    if (address.empty()) {
        TellUser(info->window, kName, std::string("The card's address of ") + host->ip + " is not known.");
        return 0;
    }
    const IniFile settings(BesideModule(*info, ".ini"));
    UdpSender sender;
    const bool isSent = sender.Open(settings.Text("address", "255.255.255.255"),
                                    settings.Number("port", 1, 65535, 9), true) &&
                        sender.Send(MagicPacket(address));
    if (!isSent) TellUser(info->window, kName, "The packet could not be sent.");
    return isSent;
}

uint32_t PLUGIN_CALL About(PluginInfo* info) {
    TellUser(info->window, kName, "Sends the magic packet that wakes the clicked host.");
    return 1;
}

PluginInfo MakeBlock() {
    PluginInfo block{};
    block.size = sizeof block;
    block.name = kName;
    block.description = "Wakes the clicked host by its card's address";
    block.type = PLUGIN_TYPE_VIEW;
    block.Run = Run;
    block.About = About;
    return block;
}

}  // namespace

PLUGIN_EXPORT PluginInfo* GetPluginInfo(void) {
    static PluginInfo block = MakeBlock();
    return &block;
}

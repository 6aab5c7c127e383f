// The running system's capture library, resolved as the program does it. A missing entry point stays null.
#pragma once

#include "platform/CaptureLibrary.h"

namespace vardel::test {

inline CaptureEntryPoints SystemEntryPoints() {
    CaptureModules& modules = SystemCaptureModules();
    CaptureEntryPoints entries;
    const auto take = [&](ModuleHandle module, const char* name, auto*& target) {
        if (module)
            target = reinterpret_cast<std::remove_reference_t<decltype(target)>>(modules.Find(module, name));
    };
    const ModuleHandle capture = modules.Load("wpcap.dll");
    take(capture, "pcap_findalldevs_ex", entries.findalldevs_ex);
    take(capture, "pcap_freealldevs", entries.freealldevs);
    take(capture, "pcap_close", entries.close);
    take(capture, "pcap_next_ex", entries.next_ex);
    take(capture, "pcap_setfilter", entries.setfilter);
    take(capture, "pcap_compile", entries.compile);
    take(capture, "pcap_datalink", entries.datalink);
    take(capture, "pcap_open", entries.open);
    const ModuleHandle packet = modules.Load("packet.dll");
    take(packet, "PacketGetVersion", entries.PacketGetVersion);
    take(packet, "PacketCloseAdapter", entries.PacketCloseAdapter);
    take(packet, "PacketRequest", entries.PacketRequest);
    take(packet, "PacketOpenAdapter", entries.PacketOpenAdapter);
    return entries;
}

}  // namespace vardel::test

// A capture library that plays a test's script: devices for the discovery, connections and frames for the
// capture thread. Entry points carry no context, so one script stands at a time.
#pragma once

#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/CaptureLibrary.h"
#include "tests/unit/support/Frames.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

// A socket address: IPv4 with four bytes, or another family, whose bytes mean nothing as IPv4.
struct ScriptedAddress {
    std::vector<u8> address = {};  // empty: the entry has none
    std::vector<u8> netMask = {};  // empty: the entry has none
    u16 family = 2;
};

struct ScriptedDevice {
    std::string name = "";  // empty: the device has none
    std::string description = "";
    std::vector<ScriptedAddress> addresses = {};
    std::vector<u8> mac = {};  // empty: the adapter library can't tell it
    bool opens = true;         // in the adapter library
};

// What one read gives.
struct ScriptedRead {
    int result = 1;
    Frame frame = {};
    std::function<void()> before = {};  // runs while the read waits
};

class ScriptedCapture {
  public:
    ScriptedCapture() { current_ = this; }
    ~ScriptedCapture() { current_ = nullptr; }
    ScriptedCapture(const ScriptedCapture&) = delete;
    ScriptedCapture& operator=(const ScriptedCapture&) = delete;

    // For the discovery.
    std::vector<ScriptedDevice> devices;
    int findResult = 0;
    int listsFreed = 0;
    int adaptersOpen = 0;
    std::vector<std::string> adapterNames;  // asked for a MAC, in order
    std::string source;                     // what the list was asked of

    // For the capture thread. A call is told as its name and what was passed.
    std::function<bool(const std::string& name)> onOpen = [](const std::string&) { return true; };
    int linkType = 1;
    int compileResult = 0;
    int setFilterResult = 0;
    std::deque<ScriptedRead> reads;
    std::function<void()> onExhausted = [] {};  // a read behind the script's end; it times out
    std::vector<std::string> calls;
    int connectionsOpen = 0;

    int CallsOf(const std::string& name) const {
        int count = 0;
        for (const std::string& call : calls)
            if (call.substr(0, call.find(' ')) == name) ++count;
        return count;
    }

    CaptureEntryPoints EntryPoints() {
        CaptureEntryPoints entries;
        entries.findalldevs_ex = [](const char* from, void*, pcap_interface** list, char*) {
            return current_->FindDevices(from, list);
        };
        entries.freealldevs = [](pcap_interface*) { ++current_->listsFreed; };
        entries.open = [](const char* name, int snapLength, int flags, int timeoutMs, void*, char*) {
            return current_->Open(name, snapLength, flags, timeoutMs);
        };
        entries.close = [](pcap_handle*) {
            --current_->connectionsOpen;
            current_->calls.push_back("close");
        };
        entries.datalink = [](pcap_handle*) {
            current_->calls.push_back("datalink");
            return current_->linkType;
        };
        entries.compile = [](pcap_handle*, pcap_filter*, const char* text, int optimize, u32 netMask) {
            current_->calls.push_back(std::string("compile ") + text + " " + std::to_string(optimize) + " " +
                                      std::to_string(netMask));
            return current_->compileResult;
        };
        entries.setfilter = [](pcap_handle*, pcap_filter*) {
            current_->calls.push_back("setfilter");
            return current_->setFilterResult;
        };
        entries.next_ex = [](pcap_handle*, pcap_pkthdr** header, const u8** frame) {
            return current_->Read(header, frame);
        };
        entries.PacketGetVersion = []() {
            static char version[] = "scripted 1.0";
            return version;
        };
        entries.PacketOpenAdapter = [](const char* name) { return current_->OpenAdapter(name); };
        entries.PacketCloseAdapter = [](packet_adapter*) { --current_->adaptersOpen; };
        entries.PacketRequest = [](packet_adapter* adapter, u8 set, PacketRequestBlock* block) {
            return current_->Request(adapter, set, block);
        };
        return entries;
    }

  private:
    struct SocketAddress {
        u8 bytes[16] = {};
    };

    int FindDevices(const char* from, pcap_interface** list) {
        source = from;
        *list = nullptr;
        if (findResult != 0) return findResult;
        pcap_interface** link = list;
        for (ScriptedDevice& device : devices) {
            pcap_interface& listed = listed_.emplace_back();
            listed = {nullptr, device.name.empty() ? nullptr : device.name.data(),
                      device.description.empty() ? nullptr : device.description.data(), ListAddresses(device),
                      0};
            *link = &listed;
            link = &listed.next;
        }
        return 0;
    }
    pcap_address* ListAddresses(const ScriptedDevice& device) {
        pcap_address* first = nullptr;
        pcap_address** link = &first;
        for (const ScriptedAddress& address : device.addresses) {
            pcap_address& listed = listedAddresses_.emplace_back();
            listed = {nullptr, MakeSocketAddress(address.family, address.address),
                      MakeSocketAddress(address.family, address.netMask), nullptr, nullptr};
            *link = &listed;
            link = &listed.next;
        }
        return first;
    }
    sockaddr* MakeSocketAddress(u16 family, const std::vector<u8>& bytes) {
        if (bytes.empty()) return nullptr;
        SocketAddress& made = socketAddresses_.emplace_back();
        std::memcpy(made.bytes, &family, sizeof family);
        std::memcpy(made.bytes + 4, bytes.data(), bytes.size());
        return reinterpret_cast<sockaddr*>(made.bytes);
    }

    packet_adapter* OpenAdapter(const char* name) {
        adapterNames.push_back(name);
        for (ScriptedDevice& device : devices) {
            const std::size_t prefix = device.name.find("rpcap://") == std::string::npos ? 0 : 8;
            if (device.name.substr(prefix) != name || !device.opens) continue;
            ++adaptersOpen;
            return reinterpret_cast<packet_adapter*>(&device);
        }
        return nullptr;
    }
    u8 Request(packet_adapter* adapter, u8 set, PacketRequestBlock* block) {
        const auto& mac = reinterpret_cast<ScriptedDevice*>(adapter)->mac;
        if (mac.empty() || set != 0 || block->objectId != 0x01010102 || block->length != 6) return 0;
        std::memcpy(block->data, mac.data(), 6);
        return 1;
    }

    pcap_handle* Open(const char* name, int snapLength, int flags, int timeoutMs) {
        calls.push_back(std::string("open ") + name + " " + std::to_string(snapLength) + " " +
                        std::to_string(flags) + " " + std::to_string(timeoutMs));
        if (!onOpen(name)) return nullptr;
        ++connectionsOpen;
        return reinterpret_cast<pcap_handle*>(this);
    }
    int Read(pcap_pkthdr** header, const u8** frame) {
        calls.push_back("next");
        if (reads.empty()) {
            onExhausted();
            return 0;
        }
        const ScriptedRead read = reads.front();
        reads.pop_front();
        if (read.before) read.before();
        frame_ = read.frame;
        header_ = {{0, 0}, static_cast<u32>(frame_.size()), static_cast<u32>(frame_.size())};
        *header = &header_;
        *frame = frame_.empty() ? nullptr : frame_.data();
        return read.result;
    }

    inline static ScriptedCapture* current_ = nullptr;
    std::deque<pcap_interface> listed_;
    std::deque<pcap_address> listedAddresses_;
    std::deque<SocketAddress> socketAddresses_;
    pcap_pkthdr header_{};
    Frame frame_;
};

// Puts both capture modules, complete, into the test's system.
inline void InstallCapture(const CaptureEntryPoints& entries, ScriptedCaptureModules& modules) {
    modules.modules = {"wpcap.dll", "packet.dll"};
    const auto put = [&](const char* name, auto* function) {
        modules.entryPoints[name] = reinterpret_cast<void*>(function);
    };
    put("wpcap.dll!pcap_findalldevs_ex", entries.findalldevs_ex);
    put("wpcap.dll!pcap_freealldevs", entries.freealldevs);
    put("wpcap.dll!pcap_close", entries.close);
    put("wpcap.dll!pcap_next_ex", entries.next_ex);
    put("wpcap.dll!pcap_setfilter", entries.setfilter);
    put("wpcap.dll!pcap_compile", entries.compile);
    put("wpcap.dll!pcap_datalink", entries.datalink);
    put("wpcap.dll!pcap_open", entries.open);
    put("packet.dll!PacketGetVersion", entries.PacketGetVersion);
    put("packet.dll!PacketCloseAdapter", entries.PacketCloseAdapter);
    put("packet.dll!PacketRequest", entries.PacketRequest);
    put("packet.dll!PacketOpenAdapter", entries.PacketOpenAdapter);
}

}  // namespace vardel::test

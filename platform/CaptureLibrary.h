// The capture library as the program sees it: twelve entry points, resolved at run time by name.
//
// Layouts are those of libpcap's public interface (pcap(3PCAP)) and of the packet driver library; they are declared
// here because the Windows build links neither and needs no header of theirs. `long` is 32-bit on Windows and
// 64-bit on Linux, as in the system's own timeval, so one declaration serves both.
#pragma once

#include "platform/StringResources.h"
#include "platform/Types.h"

struct sockaddr;

namespace vardel {

struct pcap_time {
    long tv_sec;
    long tv_usec;
};

struct pcap_pkthdr {
    pcap_time ts;  // moment of capture, seconds since 1970 and microseconds
    u32 caplen;    // bytes that are there
    u32 len;       // bytes that were on the wire
};

struct pcap_address {
    pcap_address* next;
    sockaddr* addr;
    sockaddr* netmask;
    sockaddr* broadaddr;
    sockaddr* dstaddr;
};

struct pcap_interface {
    pcap_interface* next;
    char* name;
    char* description;
    pcap_address* addresses;
    u32 flags;
};

struct pcap_filter {  // bpf_program
    u32 length;
    void* instructions;
};

struct pcap_handle;     // pcap_t
struct packet_adapter;  // opaque

// Request block of the packet library, for one object identifier.
#pragma pack(push, 1)
struct PacketRequestBlock {
    u32 objectId;  // 0x01010102: current MAC address
    u32 length;    // 6
    u8 data[6];
    u8 spare[4];
};
#pragma pack(pop)
static_assert(sizeof(PacketRequestBlock) == 18);

constexpr int kPcapErrorBufferSize = 257;

struct CaptureEntryPoints {
    int(*findalldevs_ex)(const char* source, void* auth, pcap_interface** list, char* errors) = nullptr;
    void(*freealldevs)(pcap_interface* list) = nullptr;
    void(*close)(pcap_handle* handle) = nullptr;
    // 1 a frame; 0 time-out; negative an error or the end.
    int(*next_ex)(pcap_handle* handle, pcap_pkthdr** header, const u8** frame) = nullptr;
    int(*setfilter)(pcap_handle* handle, pcap_filter* program) = nullptr;
    int(*compile)(pcap_handle* handle, pcap_filter* program, const char* text, int optimize,
                               u32 netmask) = nullptr;
    int(*datalink)(pcap_handle* handle) = nullptr;
    pcap_handle*(*open)(const char* source, int snapLength, int flags, int readTimeoutMs, void* auth,
                                     char* errors) = nullptr;
    char*(*PacketGetVersion)() = nullptr;
    void(*PacketCloseAdapter)(packet_adapter* adapter) = nullptr;
    u8(*PacketRequest)(packet_adapter* adapter, u8 set, PacketRequestBlock* block) = nullptr;
    packet_adapter*(*PacketOpenAdapter)(const char* name) = nullptr;
};

// Loads modules and finds their entry points by name. On Windows the DLL search is narrowed first; on Linux
// "wpcap.dll" and "packet.dll" name the program's own answers over libpcap.
class CaptureModules {
  public:
    virtual ~CaptureModules() = default;
    // Null when the module isn't there.
    virtual ModuleHandle Load(const char* name) = 0;
    // Null when the module has no such entry point.
    virtual void* Find(ModuleHandle module, const char* entryPoint) = 0;
    virtual void Free(ModuleHandle module) = 0;
};

CaptureModules& SystemCaptureModules();

}  // namespace vardel

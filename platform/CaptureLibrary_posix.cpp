// The program's own answers to the twelve entry points, over libpcap.
#include "platform/CaptureLibrary.h"

#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>

#include "platform/CaptureDevice_posix.h"

namespace vardel {

// What is handed through as it stands must lie as libpcap's own records do.
static_assert(sizeof(pcap_pkthdr) == sizeof(::pcap_pkthdr));
static_assert(offsetof(pcap_pkthdr, ts) == offsetof(::pcap_pkthdr, ts));
static_assert(offsetof(pcap_pkthdr, caplen) == offsetof(::pcap_pkthdr, caplen));
static_assert(offsetof(pcap_pkthdr, len) == offsetof(::pcap_pkthdr, len));
static_assert(sizeof(pcap_time) == sizeof(timeval));
static_assert(offsetof(pcap_time, tv_usec) == offsetof(timeval, tv_usec));
static_assert(sizeof(pcap_filter) == sizeof(bpf_program));
static_assert(offsetof(pcap_filter, instructions) == offsetof(bpf_program, bf_insns));
static_assert(kPcapErrorBufferSize >= PCAP_ERRBUF_SIZE);

pcap_handle::~pcap_handle() {
    for (bpf_program& program : programs_) pcap_freecode(&program);
}

int pcap_handle::Compile(bpf_program& program, const char* text, int optimize, u32 netmask) {
    const int result = pcap_compile(Native(), &program, text, optimize, netmask);
    if (result >= 0) programs_.push_back(program);
    return result;
}

namespace {

constexpr char kLivePrefix[] = "rpcap://";
constexpr int kPromiscuous = 1;
constexpr u32 kCurrentAddress = 0x01010102;

// What follows `prefix` in `text`, or null where `text` doesn't start with it.
const char* After(const char* text, std::string_view prefix) {
    return std::string_view(text).substr(0, prefix.size()) == prefix ? text + prefix.size() : nullptr;
}

// The device list as the program sees it: libpcap's, without the link-layer addresses that Linux lists among
// an interface's addresses and Windows does not. It is its own first device; the others hang on that.
struct DeviceList : pcap_interface {
    DeviceList() : pcap_interface{} {}
    ~DeviceList() { pcap_freealldevs(native); }
    DeviceList(const DeviceList&) = delete;
    DeviceList& operator=(const DeviceList&) = delete;

    std::deque<pcap_interface> others;
    std::deque<pcap_address> addressRecords;
    pcap_if_t* native = nullptr;
};

pcap_address* MirrorAddresses(DeviceList& list, const pcap_addr* native) {
    pcap_address* first = nullptr;
    pcap_address** link = &first;
    for (; native; native = native->next) {
        if (native->addr && native->addr->sa_family != AF_INET && native->addr->sa_family != AF_INET6)
            continue;
        pcap_address& address = list.addressRecords.emplace_back();
        address = {nullptr, native->addr, native->netmask, native->broadaddr, native->dstaddr};
        *link = &address;
        link = &address.next;
    }
    return first;
}

void MirrorDevice(DeviceList& list, pcap_interface& device, const pcap_if_t& native) {
    device = {nullptr, native.name, native.description, MirrorAddresses(list, native.addresses),
              native.flags};
}

int FindAllDevices(const char*, void*, pcap_interface** result, char* errors) {
    *result = nullptr;
    auto list = std::make_unique<DeviceList>();
    if (const int outcome = pcap_findalldevs(&list->native, errors); outcome != 0) return outcome;
    if (!list->native) return 0;
    MirrorDevice(*list, *list, *list->native);
    pcap_interface* last = list.get();
    for (const pcap_if_t* native = list->native->next; native; native = native->next) {
        last->next = &list->others.emplace_back();
        last = last->next;
        MirrorDevice(*list, *last, *native);
    }
    *result = list.release();
    return 0;
}

void FreeAllDevices(pcap_interface* list) {
    delete static_cast<DeviceList*>(list);
}

pcap_handle* Open(const char* source, int snapLength, int flags, int readTimeoutMs, void*, char* errors) {
    const CaptureOptions options{snapLength, (flags & kPromiscuous) != 0,
                                 std::chrono::milliseconds(readTimeoutMs)};
    if (const char* path = After(source, kSavefilePrefix))
        return OpenSavefileDevice(path, options, errors).release();
    ForgetSavefile();
    const char* name = After(source, kLivePrefix);
    return OpenLiveDevice(name ? name : source, options, errors).release();
}

void Close(pcap_handle* handle) {
    delete handle;
}

int NextFrame(pcap_handle* handle, pcap_pkthdr** header, const u8** frame) {
    return handle->Next(header, frame);
}

int Compile(pcap_handle* handle, pcap_filter* program, const char* text, int optimize, u32 netmask) {
    return handle->Compile(*reinterpret_cast<bpf_program*>(program), text, optimize, netmask);
}

int SetFilter(pcap_handle* handle, pcap_filter* program) {
    return pcap_setfilter(handle->Native(), reinterpret_cast<bpf_program*>(program));
}

int DataLink(pcap_handle* handle) {
    return pcap_datalink(handle->Native());
}

char* LibraryVersion() {
    return const_cast<char*>(pcap_lib_version());
}

}  // namespace

// An interface that is there, by name.
struct packet_adapter {
    std::string name;
};

namespace {

packet_adapter* OpenAdapter(const char* name) {
    return if_nametoindex(name) ? new packet_adapter{name} : nullptr;
}

void CloseAdapter(packet_adapter* adapter) {
    delete adapter;
}

// Knows one request, the Ethernet address; an interface of another kind has none.
u8 Request(packet_adapter* adapter, u8 set, PacketRequestBlock* block) {
    if (set || block->objectId != kCurrentAddress || block->length != sizeof block->data) return 0;
    ifreq request{};
    if (adapter->name.size() >= sizeof request.ifr_name) return 0;
    adapter->name.copy(request.ifr_name, adapter->name.size());
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) return 0;
    const int outcome = ioctl(descriptor, SIOCGIFHWADDR, &request);
    close(descriptor);
    if (outcome != 0 || request.ifr_hwaddr.sa_family != ARPHRD_ETHER) return 0;
    std::memcpy(block->data, request.ifr_hwaddr.sa_data, sizeof block->data);
    return 1;
}

struct EntryPoint {
    const char* name;
    void* address;
};

template <class Function>
void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

struct Module {
    const char* name;
    std::deque<EntryPoint> entryPoints;
};

const Module* FindModule(std::string_view name) {
    static const Module modules[] = {
        {"wpcap.dll",
         {{"pcap_findalldevs_ex", Address(FindAllDevices)},
          {"pcap_freealldevs", Address(FreeAllDevices)},
          {"pcap_close", Address(Close)},
          {"pcap_next_ex", Address(NextFrame)},
          {"pcap_setfilter", Address(SetFilter)},
          {"pcap_compile", Address(Compile)},
          {"pcap_datalink", Address(DataLink)},
          {"pcap_open", Address(Open)}}},
        {"packet.dll",
         {{"PacketGetVersion", Address(LibraryVersion)},
          {"PacketCloseAdapter", Address(CloseAdapter)},
          {"PacketRequest", Address(Request)},
          {"PacketOpenAdapter", Address(OpenAdapter)}}},
    };
    for (const Module& module : modules)
        if (name == module.name) return &module;
    return nullptr;
}

class PosixCaptureModules : public CaptureModules {
  public:
    ModuleHandle Load(const char* name) override {
        return reinterpret_cast<ModuleHandle>(const_cast<Module*>(FindModule(name)));
    }
    void* Find(ModuleHandle module, const char* entryPoint) override {
        for (const EntryPoint& candidate : reinterpret_cast<const Module*>(module)->entryPoints)
            if (std::string_view(candidate.name) == entryPoint) return candidate.address;
        return nullptr;
    }
    void Free(ModuleHandle) override {}  // they are part of the program
};

}  // namespace

CaptureModules& SystemCaptureModules() {
    static PosixCaptureModules modules;
    return modules;
}

}  // namespace vardel

#include "capture/CaptureLibraryLoader.h"

#include "foundation/TcTrace.h"

namespace vardel {

namespace {

// Looks entry points up in one module and remembers whether each was there.
class Lookup {
  public:
    Lookup(CaptureModules& modules, ModuleHandle module) : modules_(modules), module_(module) {}

    template <class Function>
    Lookup& Take(const char* name, Function*& target) {
        target = reinterpret_cast<Function*>(modules_.Find(module_, name));
        complete_ = complete_ && target;
        return *this;
    }
    bool Complete() const { return complete_; }

  private:
    CaptureModules& modules_;
    const ModuleHandle module_;
    bool complete_ = true;
};

bool ResolveCapture(CaptureModules& modules, ModuleHandle module, CaptureEntryPoints& entries) {
    return Lookup(modules, module)
        .Take("pcap_findalldevs_ex", entries.findalldevs_ex)
        .Take("pcap_freealldevs", entries.freealldevs)
        .Take("pcap_close", entries.close)
        .Take("pcap_next_ex", entries.next_ex)
        .Take("pcap_setfilter", entries.setfilter)
        .Take("pcap_compile", entries.compile)
        .Take("pcap_datalink", entries.datalink)
        .Take("pcap_open", entries.open)
        .Complete();
}

bool ResolvePacket(CaptureModules& modules, ModuleHandle module, CaptureEntryPoints& entries) {
    return Lookup(modules, module)
        .Take("PacketGetVersion", entries.PacketGetVersion)
        .Take("PacketCloseAdapter", entries.PacketCloseAdapter)
        .Take("PacketRequest", entries.PacketRequest)
        .Take("PacketOpenAdapter", entries.PacketOpenAdapter)
        .Complete();
}

}  // namespace

bool LoadCaptureLibrary(CaptureModules& modules, ModuleHandle& captureModule, ModuleHandle& packetModule,
                        CaptureEntryPoints& entries) {
    captureModule = modules.Load("wpcap.dll");
    packetModule = modules.Load("packet.dll");
    VARDEL_TRACE("Vardel", "InitializeWinPCAP", "begin");
    bool complete = true;
    if (captureModule) {
        complete = ResolveCapture(modules, captureModule, entries);
    } else {
        VARDEL_TRACE("Vardel", "InitializeWinPCAP", "Couldn't load wpcap.dll");
        complete = false;
    }
    if (packetModule) {
        complete = ResolvePacket(modules, packetModule, entries) && complete;
    } else {
        VARDEL_TRACE("Vardel", "InitializeWinPCAP", "Couldn't load packet.dll");
        complete = false;
    }
    VARDEL_TRACE("Vardel", "InitializeWinPCAP", complete ? "end success" : "end failure");
    return complete;
}

}  // namespace vardel

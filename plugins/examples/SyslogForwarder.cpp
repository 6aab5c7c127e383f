// A notification plugin: forwards every item to a syslog server over UDP, in the form of RFC 5424, so that
// the watchers of many machines report into one collector.
//
// syslog_forwarder.ini beside the module says where to: `server` (127.0.0.1), `port` (514), `facility` (16),
// and with `hostcount` whether the number of hosts, which comes twice a second, is forwarded: "all",
// "changes" or "none".
#include <chrono>
#include <ctime>
#include <memory>
#include <string>

#include "plugins/examples/SyslogMessage.h"
#include "plugins/examples/support/PluginFiles.h"
#include "plugins/examples/support/TellUser.h"
#include "plugins/examples/support/UdpSender.h"
#include "plugins/plugin_interface.h"

namespace {

using namespace vardel::examples;

constexpr const char* kName = "Syslog forwarder";
constexpr std::chrono::seconds kRetry{60};

class Forwarder {
  public:
    explicit Forwarder(const IniFile& settings)
        : server_(settings.Text("server", "127.0.0.1")),
          port_(settings.Number("port", 1, 65535, 514)),
          hostCount_(settings.Text("hostcount", "all")),
          source_{settings.Number("facility", 0, 23, 16), LocalHostName()} {}

    void Forward(const PluginNotifyItem& item) {
        if (!IsWanted(item) || !IsReady()) return;
        for (const std::string& message : SyslogMessages(item, source_, std::time(nullptr)))
            sender_.Send(message);
    }

  private:
    bool IsWanted(const PluginNotifyItem& item) {
        if (item.kind != PLUGIN_NOTIFY_HOST_COUNT) return true;
        const bool isNew = static_cast<long long>(item.count) != lastCount_;
        lastCount_ = item.count;
        return hostCount_ == "all" || (hostCount_ == "changes" && isNew);
    }
    // A server whose name isn't known now may be later; asking for it takes time, so it isn't asked for each
    // item.
    bool IsReady() {
        const auto now = std::chrono::steady_clock::now();
        if (sender_.IsOpen()) return true;
        if (wasTried_ && now - lastTry_ < kRetry) return false;
        wasTried_ = true;
        lastTry_ = now;
        return sender_.Open(server_, port_, false);
    }

    const std::string server_;
    const long port_;
    const std::string hostCount_;
    const SyslogSource source_;
    UdpSender sender_;
    long long lastCount_ = -1;
    bool wasTried_ = false;
    std::chrono::steady_clock::time_point lastTry_;
};

// From Init to Exit; used by Run alone, which is one thread's.
std::unique_ptr<Forwarder>& TheForwarder() {
    static std::unique_ptr<Forwarder> forwarder;
    return forwarder;
}

IniFile Settings(const PluginInfo& info) {
    return IniFile(BesideModule(info, ".ini"));
}

uint32_t PLUGIN_CALL Init(PluginInfo* info) {
    TheForwarder() = std::make_unique<Forwarder>(Settings(*info));
    return 1;
}

uint32_t PLUGIN_CALL Exit(PluginInfo*) {
    TheForwarder().reset();
    return 1;
}

uint32_t PLUGIN_CALL Run(PluginInfo* info) {
    if (!TheForwarder() || info->dataCount != 1 || !info->data) return 0;
    TheForwarder()->Forward(*static_cast<const PluginNotifyItem*>(info->data));
    return 1;
}

uint32_t PLUGIN_CALL Configure(PluginInfo* info) {
    const IniFile settings = Settings(*info);
    TellUser(info->window, kName,
             "Notifications go to " + settings.Text("server", "127.0.0.1") + ", port " +
                 std::to_string(settings.Number("port", 1, 65535, 514)) + ". To change this, edit " +
                 BesideModule(*info, ".ini") + " and start the program anew.");
    return 1;
}

uint32_t PLUGIN_CALL About(PluginInfo* info) {
    TellUser(info->window, kName, "Forwards every notification to a syslog server (RFC 5424 over UDP).");
    return 1;
}

PluginInfo MakeBlock() {
    PluginInfo block{};
    block.size = sizeof block;
    block.name = kName;
    block.description = "Forwards every notification to a syslog server";
    block.type = PLUGIN_TYPE_NOTIFY;
    block.Init = Init;
    block.Exit = Exit;
    block.Configure = Configure;
    block.Run = Run;
    block.About = About;
    return block;
}

}  // namespace

PLUGIN_EXPORT PluginInfo* GetPluginInfo(void) {
    static PluginInfo block = MakeBlock();
    return &block;
}

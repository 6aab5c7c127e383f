#include "frame/EngineDeeds.h"

#include "frame/PluginNotify.h"
#include "frame/ReportGenerator.h"
#include "views/ApplicationLaunch.h"
#include "watchers/HostWatch.h"
#include "watchers/PingHost.h"

namespace vardel {

void EngineDeeds::QueuePluginNotify(u32 kind, i64 mark) { vardel::QueuePluginNotify(&data_, kind, mark); }

// Parameters that are empty need no expansion, and the application starts all the same.
void EngineDeeds::StartApplication(const TcString& file, const TcString& parameters, const HostRecord& host) {
    if (parameters.IsEmpty()) LaunchApplication(data_.services.shell, file, parameters);
    else LaunchForHost(data_, file, parameters, host);
}

void EngineDeeds::CheckWatchedHosts(NotifyPopup* popup, ModuleHandle language) {
    vardel::CheckWatchedHosts(data_, popup, language, [this](const char* address) {
        return PingHost(address, data_.services) == PingResult::Answered;
    });
}

void EngineDeeds::WriteReport() { ReportGenerator(data_); }

}  // namespace vardel

#include "frame/SyslogTick.h"

#include <algorithm>
#include <memory>

#include "resources/ResourceIds.h"

namespace vardel {

namespace {

constexpr int kMostMessages = 10;
constexpr int kLongestMessage = 60;

// The name of `number` in a run of `count` string ids; beyond it the one behind the run, which says that it is
// unknown. A number from a frame must not pick any other text of the program.
u32 NameId(u32 first, u32 count, i32 number) { return first + std::min(static_cast<u32>(number), count); }

void ReplaceFirst(std::string& text, const char* tag, const std::string& value) {
    const std::size_t at = text.find(tag);
    if (at != std::string::npos) text.replace(at, 2, value);
}

std::string Shortened(const TcString& message) {
    std::string text;
    text.assign(message.GetContent(), static_cast<std::size_t>(message.GetLength()));
    if (message.GetLength() > kLongestMessage) text.replace(kLongestMessage, std::string::npos, "...");
    return text;
}

// Each message fills a template of its own, the message itself last: what it holds is never taken for a tag.
std::string MessageText(const TickContext& tick, const std::string& format, const SyslogRecord& record) {
    std::string text = format;
    ReplaceFirst(text, "%1", record.source.GetContent());
    ReplaceFirst(text, "%2", tick.Text(NameId(IDS_SEVERITY_FIRST, 8, record.severity)));
    ReplaceFirst(text, "%3", tick.Text(NameId(IDS_FACILITY_FIRST, 24, record.facility)));
    ReplaceFirst(text, "%4", Shortened(record.text));
    return text;
}

}  // namespace

void RunSyslogTick(const TickContext& tick) {
    VardelData& data = tick.data;
    NotifyPopup* popup = tick.surface.SyslogPopup();
    if (!tick.surface.HostPopup() || !popup || data.syslogNotifications.IsEmpty()) return;
    const std::string format = tick.Text(IDS_ALERT_SYSLOG);
    if (format.empty() || tick.HostPopupIsShowing() || popup->IsShowing()) return;
    FenceTaken inside(data.fences, Fence::SysLog);
    std::string text;
    for (int taken = 0; taken < kMostMessages; ++taken) {
        const std::unique_ptr<SyslogRecord> record(data.syslogNotifications.TakeFront().value_or(nullptr));
        if (!record) break;
        if (taken > 0) text += "\n";
        text += MessageText(tick, format, *record);
    }
    popup->Show(text.c_str());
}

}  // namespace vardel

#include "frame/TrayTick.h"

#include <cstdio>
#include <cstring>
#include <optional>

#include "frame/AlertText.h"
#include "frame/NewHostApplication.h"
#include "resources/ResourceIds.h"

namespace vardel {

namespace {

void RefreshTooltip(const TickContext& tick, const char* tip) {
    tick.surface.ShowTrayNotify(kTrayProgram, kProductName, tip);
}

// ---- new hosts ----

bool IsTold(const VardelSettings& settings, const HostRecord& host) {
    return !settings.NotifyTrusted || !IsListed(settings.trustedHosts, host.ip);
}

bool AnyIsTold(const TickContext& tick, NewEntryList::Mark mark) {
    bool told = false;
    tick.data.newEntries.ForEach(mark, [&](const HostRecord* host) {
        told = IsTold(tick.data.settings, *host);
        return !told;
    });
    return told;
}

AlertText NewHostText(const TickContext& tick, NewEntryList::Mark mark) {
    AlertText text(tick.Text(IDS_ALERT_NEW_HOSTS));
    tick.data.newEntries.ForEach(mark, [&](const HostRecord* host) {
        if (!IsTold(tick.data.settings, *host)) return true;
        text.Add([host](std::string& line) {
            line = "\n\t";
            AppendText(line, host->hostName);
            line += " [";
            AppendText(line, host->ip);
            line += "]";
        });
        return true;
    });
    return text;
}

// False when the list is to be kept for a later tick.
bool AnnounceNewHosts(const TickContext& tick, NewEntryList::Mark mark, const char* tip) {
    const bool balloon = tick.data.settings.Visualization != 0;
    // Looked at before a text is formed: a flood that waits for the popup must not cost a long text every tick.
    if (!balloon && tick.HostPopupIsShowing() && AnyIsTold(tick, mark)) return false;
    const AlertText text = NewHostText(tick, mark);
    if (!text.HasContent()) RefreshTooltip(tick, tip);
    else if (balloon) tick.surface.ShowTrayNotify(kTrayInformation, text.Finish().c_str(), tip);
    else {
        const AlertLook look{{180, 196, 228}, {180, 196, 228}, {0, 0, 0}, tick.surface.MenuHighlight(), 0};
        ResetAndShowInPopup(tick.surface.HostPopup(), look, text.Finish());
    }
    return true;
}

// One start for each host that qualifies, also for those that the text left out.
void StartApplications(const TickContext& tick, NewEntryList::Mark mark) {
    const VardelSettings& settings = tick.data.settings;
    const TcString trustedApp(settings.TrustedApp), trustedParams(settings.TrustedAppParams);
    const TcString otherApp(settings.OtherApp), otherParams(settings.OtherAppParams);
    const NewHostRule rule{!trustedApp.IsEmpty(), !otherApp.IsEmpty(), settings.OtherAppDistrusted != 0,
                           settings.OtherAppUnknown != 0};
    if (!rule.hasTrustedApp && !rule.hasOtherApp) return;
    tick.data.newEntries.ForEach(mark, [&](const HostRecord* host) {
        switch (ChooseApplication(rule, IsListed(settings.trustedHosts, host->ip),
                                  IsListed(settings.distrustedHosts, host->ip))) {
            case NewHostApplication::Trusted: tick.deeds.StartApplication(trustedApp, trustedParams, *host); break;
            case NewHostApplication::Other: tick.deeds.StartApplication(otherApp, otherParams, *host); break;
            case NewHostApplication::None: break;
        }
        return true;
    });
}

void ConsumeNewHosts(const TickContext& tick, NewEntryList::Mark mark) {
    tick.deeds.QueuePluginNotify(kNotifyNewHosts, mark);
    tick.data.newEntries.ClearTo(mark);
}

void TellNewHosts(const TickContext& tick, const char* tip) {
    VardelData& data = tick.data;
    const bool silent = !data.settings.UseToolTips;
    if (!data.newEntries.IsEmpty()) {
        FenceTaken inside(data.fences, Fence::NewEntries);
        const NewEntryList::Mark mark = data.newEntries.TakeMark();
        if (!silent) {
            if (!AnnounceNewHosts(tick, mark, tip)) return;
            StartApplications(tick, mark);
        }
        ConsumeNewHosts(tick, mark);
        if (!silent) return;
    }
    RefreshTooltip(tick, tip);
}

// ---- MAC spoofing ----

AlertText MacSpoofText(const TickContext& tick, MacSpoofList::Mark mark) {
    AlertText text(tick.Text(IDS_ALERT_MAC_SPOOFING));
    tick.data.macSpoofs.ForEach(mark, [&](const HostRecord* host) {
        text.Add([host](std::string& line) {
            line = "\n";
            AppendText(line, host->hostName);
            line += " (";
            AppendText(line, host->ip);
            line += ")";
        });
        return true;
    });
    return text;
}

// False when the list is to be kept for a later tick.
bool AnnounceMacSpoofs(const TickContext& tick, MacSpoofList::Mark mark, const char* tip) {
    const bool balloon = tick.data.settings.MACSpoofingVisualizationStyle != 0;
    if (!balloon && tick.HostPopupIsShowing()) return false;
    const std::string text = MacSpoofText(tick, mark).Finish();
    if (balloon) tick.surface.ShowTrayNotify(kTrayMacSpoofing, text.c_str(), tip);
    else ResetAndShowInPopup(tick.surface.HostPopup(), kWarningLook, text);
    return true;
}

void TellMacSpoofs(const TickContext& tick, const char* tip) {
    VardelData& data = tick.data;
    if (data.macSpoofs.IsEmpty()) return;
    // While the alert is switched off the list is emptied without its fence.
    std::optional<FenceTaken> inside;
    const bool told = data.settings.MACSpoofingVisualization != 0;
    if (told) inside.emplace(data.fences, Fence::MacSpoofs);
    const MacSpoofList::Mark mark = data.macSpoofs.TakeMark();
    if (told && !AnnounceMacSpoofs(tick, mark, tip)) return;
    tick.deeds.QueuePluginNotify(kNotifyMacSpoofs, mark);
    data.macSpoofs.ClearTo(mark);
}

// What `format` has in place of the product's name and the number, put together without the heap.
void FillTooltip(const char* format, const char* hosts, char (&tip)[kTooltipSize]) {
    std::size_t length = 0;
    const auto put = [&](const char* text, std::size_t count) {
        count = count < kTooltipSize - 1 - length ? count : kTooltipSize - 1 - length;
        std::memcpy(tip + length, text, count);
        length += count;
    };
    for (; *format; ++format) {
        if (format[0] == '%' && format[1] == 's') put(kProductName, std::strlen(kProductName)), ++format;
        else if (format[0] == '%' && format[1] == 'd') put(hosts, std::strlen(hosts)), ++format;
        else put(format, 1);
    }
    tip[length] = 0;
}

}  // namespace

void FormTooltip(const VardelData& data, ModuleHandle language, char (&tip)[kTooltipSize]) {
    char format[kTooltipSize];
    data.services.strings.Load(language, IDS_TRAY_TOOLTIP, format, static_cast<int>(kTooltipSize));
    char hosts[12];
    std::snprintf(hosts, sizeof hosts, "%u", data.arpMap.Count());
    FillTooltip(format, hosts, tip);
}

void RunTrayTick(const TickContext& tick) {
    tick.deeds.QueuePluginNotify(kNotifyHostCount, 0);
    char tip[kTooltipSize];
    FormTooltip(tick.data, tick.language, tip);
    TellNewHosts(tick, tip);
    TellMacSpoofs(tick, tip);
}

}  // namespace vardel
